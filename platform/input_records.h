// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <cstdio>
#include <memory>
#include <optional>

namespace havrel::platform {

/// The records of a file or of standard input, one after the other: lines, or whatever ends with a given byte.
///
/// Blocks while reading. A record may hold any other byte and be as long as memory allows; the last one need not end.
///
/// Threads: one thread at a time.
class InputRecords
{
public:
    /// \param path "-" for standard input
    /// \param end  the byte that ends a record and does not belong to it
    InputRecords(const QByteArray& path, char end);

    /// The next record; nullopt at the end and after a failure.
    [[nodiscard]] std::optional<QByteArray> next();
    /// 0, or the errno value of what failed: opening or reading.
    [[nodiscard]] int error() const noexcept { return m_error; }

private:
    struct Close
    {
        void operator()(std::FILE* file) const noexcept;
    };
    struct Free
    {
        void operator()(char* buffer) const noexcept;
    };

    std::unique_ptr<std::FILE, Close> m_opened;
    std::FILE* m_file = nullptr;
    char m_end;
    int m_error = 0;
    std::unique_ptr<char, Free> m_buffer;
    std::size_t m_capacity = 0;
};

} // namespace havrel::platform
