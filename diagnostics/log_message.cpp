// SPDX-License-Identifier: MIT
#include "diagnostics/log_message.h"

#include "foundation/description.h"
#include "platform/file_names.h"

#include <QByteArray>

#include <fmt/format.h>

namespace havrel {
namespace {

// Formats are made of bytes. On the way through them a lone surrogate takes the three bytes that UTF-8 would give it if
// it were a character. Reading, those bytes come back as three file-name surrogates, and are put together again.

constexpr char16_t kByteSurrogates = 0xDC00; // plus the byte

bool isLoneSurrogate(QStringView text, qsizetype i)
{
    if (text[i].isHighSurrogate())
        return i + 1 == text.size() || !text[i + 1].isLowSurrogate();
    return text[i].isLowSurrogate() && (i == 0 || !text[i - 1].isHighSurrogate());
}

void appendSurrogate(QByteArray& bytes, char16_t unit)
{
    bytes += '\xED';
    bytes += static_cast<char>(0x80 | ((unit >> 6) & 0x3F));
    bytes += static_cast<char>(0x80 | (unit & 0x3F));
}

QByteArray bytesOfText(const QString& text)
{
    if (text.isValidUtf16())
        return text.toUtf8();
    QByteArray bytes;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!isLoneSurrogate(text, i))
            continue;
        bytes += QStringView(text).sliced(start, i - start).toUtf8();
        appendSurrogate(bytes, text[i].unicode());
        start = i + 1;
    }
    return bytes += QStringView(text).sliced(start).toUtf8();
}

/// The surrogate whose three bytes stand at \p i as file-name surrogates; 0 when none does.
char16_t surrogateAt(QStringView text, qsizetype i)
{
    const auto byteAt = [text](qsizetype at) -> unsigned {
        const unsigned byte = at < text.size() ? text[at].unicode() - unsigned{kByteSurrogates} : 0;
        return byte > 0xFF ? 0 : byte;
    };
    const unsigned second = byteAt(i + 1);
    const unsigned third = byteAt(i + 2);
    if (byteAt(i) != 0xED || second < 0xA0 || second > 0xBF || third < 0x80 || third > 0xBF)
        return 0;
    return static_cast<char16_t>(0xD000 | ((second & 0x3F) << 6) | (third & 0x3F));
}

bool isASCII(QByteArrayView bytes)
{
    unsigned all = 0;
    for (const char byte : bytes)
        all |= static_cast<unsigned char>(byte);
    return all < 0x80;
}

QString textOfFormatted(QByteArrayView bytes)
{
    if (isASCII(bytes))
        return QString::fromLatin1(bytes);
    const QString text = platform::textOfFileName(bytes);
    if (text.isValidUtf16())
        return text;
    QString joined;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t surrogate = surrogateAt(text, i);
        joined += surrogate ? QChar(surrogate) : text[i];
        i += surrogate ? 2 : 0;
    }
    return joined;
}

fmt::string_view viewOf(const QByteArray& bytes)
{
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

} // namespace

LogMessage LogMessage::formatted(fmt::string_view format, fmt::format_args arguments)
{
    fmt::memory_buffer buffer;
    try {
        fmt::vformat_to(fmt::appender(buffer), format, arguments);
    } catch (const fmt::format_error&) {
        buffer.clear();
        buffer.append(format);
    }
    const QByteArrayView bytes(buffer.data(), static_cast<qsizetype>(buffer.size()));
    if (bytes.size() <= static_cast<qsizetype>(Bytes().size()))
        return LogMessage(bytes);
    return textOfFormatted(bytes);
}

QString LogMessage::text() const
{
    return isText() ? m_text : textOfFormatted(QByteArrayView(m_bytes.data(), m_byteCount));
}

} // namespace havrel

auto fmt::formatter<QString>::format(const QString& text, fmt::format_context& context) const
    -> fmt::format_context::iterator
{
    return formatter<fmt::string_view>::format(havrel::viewOf(havrel::bytesOfText(text)), context);
}

auto fmt::formatter<QVariant>::format(const QVariant& value, fmt::format_context& context) const
    -> fmt::format_context::iterator
{
    const QByteArray bytes = havrel::bytesOfText(havrel::descriptionOf(value));
    return formatter<fmt::string_view>::format(havrel::viewOf(bytes), context);
}
