// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArrayList>

#include <vector>

namespace havrel::platform {

/// The words of a command as the calls that start programs want them. Owns what the pointers point to.
///
/// Threads: one thread at a time.
class ArgumentVector
{
public:
    ArgumentVector(const QByteArray& program, const QByteArrayList& arguments);
    ArgumentVector(const ArgumentVector&) = delete;
    ArgumentVector& operator=(const ArgumentVector&) = delete;
    ArgumentVector(ArgumentVector&&) = delete;
    ArgumentVector& operator=(ArgumentVector&&) = delete;
    ~ArgumentVector() = default;

    /// The words, the program first, ended by a null pointer; as long as this object lives.
    [[nodiscard]] char** data() noexcept { return m_pointers.data(); }

private:
    QByteArrayList m_words;
    std::vector<char*> m_pointers;
};

} // namespace havrel::platform
