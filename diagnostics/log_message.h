// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <array>
#include <cstddef>
#include <cstring>
#include <new>

#include <fmt/core.h>

namespace havrel {

/// The message of a line on its way to the log: a text, or what a format made, which is not turned into text before the
/// writer asks, because the caller shall not wait for that.
///
/// Threads: const members any thread, others one at a time.
class LogMessage
{
public:
    LogMessage(const QString& text) // NOLINT(google-explicit-constructor): a message is a text
        : m_text(text)
    {
    }
    /// What \p format makes of its arguments. Texts go through without loss, lone surrogates included; bytes of `char`
    /// strings that are not UTF-8 become file-name surrogates (platform/file_names.h). A format that does not fit its
    /// arguments, possible only where the compiler does not check it, gives the format itself.
    [[nodiscard]] static LogMessage formatted(fmt::string_view format, fmt::format_args arguments);

    LogMessage(const LogMessage& other)
        : m_byteCount(other.m_byteCount)
    {
        if (isText())
            ::new (&m_text) QString(other.m_text);
        else
            m_bytes = other.m_bytes;
    }
    LogMessage& operator=(const LogMessage&) = delete;
    ~LogMessage()
    {
        if (isText())
            m_text.~QString();
    }

    [[nodiscard]] QString text() const;

private:
    /// Few enough bytes to travel without an allocation.
    using Bytes = std::array<char, 71>;
    static constexpr unsigned char kIsText = 0xFF;

    explicit LogMessage(QByteArrayView bytes) noexcept
        : m_byteCount(static_cast<unsigned char>(bytes.size()))
    {
        std::memcpy(m_bytes.data(), bytes.data(), static_cast<std::size_t>(bytes.size()));
    }

    [[nodiscard]] bool isText() const noexcept { return m_byteCount == kIsText; }

    union {
        QString m_text; // NOLINT(readability-identifier-naming): private, which the check does not see
        Bytes m_bytes;  // NOLINT(readability-identifier-naming)
    };
    unsigned char m_byteCount = kIsText;
};

} // namespace havrel

/// Texts among the arguments of a format; takes width and alignment like any string.
template<>
struct fmt::formatter<QString> : fmt::formatter<fmt::string_view>
{
    auto format(const QString& text, fmt::format_context& context) const -> fmt::format_context::iterator;
};

/// Values among the arguments of a format: their description, "(null)" for nil.
template<>
struct fmt::formatter<QVariant> : fmt::formatter<fmt::string_view>
{
    auto format(const QVariant& value, fmt::format_context& context) const -> fmt::format_context::iterator;
};
