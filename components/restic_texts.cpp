// SPDX-License-Identifier: MIT
#include "components/restic_texts.h"

#include "platform/file_names.h"

#include <QString>

#include <array>
#include <cstring>

namespace havrel::restic {
namespace {

struct Escape
{
    char letter;
    char means;
};
constexpr std::array kEscapes{Escape{'a', '\a'},
                              Escape{'b', '\b'},
                              Escape{'f', '\f'},
                              Escape{'n', '\n'},
                              Escape{'r', '\r'},
                              Escape{'t', '\t'},
                              Escape{'v', '\v'},
                              Escape{'\\', '\\'},
                              Escape{'"', '"'}};

struct NumberedEscape
{
    char letter;
    qsizetype digits;
};
constexpr std::array kNumberedEscapes{NumberedEscape{'x', 2}, NumberedEscape{'u', 4}, NumberedEscape{'U', 8}};

bool isHexadecimal(const QByteArray& digits)
{
    return std::strspn(digits.constData(), "0123456789abcdefABCDEF") == static_cast<std::size_t>(digits.size());
}

std::optional<QByteArray> bytesOfNumber(char letter, const QByteArray& digits, qsizetype wanted)
{
    if (digits.size() != wanted || !isHexadecimal(digits))
        return std::nullopt;
    const uint number = digits.toUInt(nullptr, 16);
    if (letter == 'x')
        return QByteArray(1, static_cast<char>(number));
    const bool isCharacter = number <= QChar::LastValidCodePoint && !QChar::isSurrogate(number);
    return isCharacter ? std::optional(QString::fromUcs4(reinterpret_cast<const char32_t*>(&number), 1).toUtf8())
                       : std::nullopt;
}

/// What the escape means whose letter is at \p at, which moves behind it.
std::optional<QByteArray> bytesOfEscape(const QByteArray& quoted, qsizetype& at)
{
    if (at >= quoted.size())
        return std::nullopt;
    const char letter = quoted[at++];
    for (const Escape& each : kEscapes)
        if (each.letter == letter)
            return QByteArray(1, each.means);
    for (const NumberedEscape& each : kNumberedEscapes) {
        if (each.letter != letter)
            continue;
        const QByteArray digits = quoted.mid(at, each.digits);
        at += each.digits;
        return bytesOfNumber(letter, digits, each.digits);
    }
    return std::nullopt;
}

} // namespace

QByteArray patternOf(const QByteArray& path)
{
    QByteArray pattern;
    for (const char each : path) {
        if (std::strchr("*?[\\", each) != nullptr && each != '\0')
            pattern += '\\';
        pattern += each;
    }
    return pattern;
}

QByteArray tagTextOf(const QByteArray& bytes)
{
    return bytes.toPercentEncoding("/");
}

QByteArray bytesOfTagText(const QByteArray& text)
{
    return QByteArray::fromPercentEncoding(text);
}

std::optional<QByteArray> bytesOfQuoted(const QByteArray& quoted)
{
    QByteArray bytes;
    for (qsizetype at = 0; at < quoted.size();) {
        if (quoted[at] != '\\') {
            bytes += quoted[at++];
            continue;
        }
        const std::optional<QByteArray> escaped = bytesOfEscape(quoted, ++at);
        if (!escaped)
            return std::nullopt;
        bytes += *escaped;
    }
    return bytes;
}

bool survivesAsText(const QByteArray& bytes)
{
    const QString text = platform::textOfFileName(bytes);
    return text.isValidUtf16() && !text.contains(QChar::ReplacementCharacter);
}

} // namespace havrel::restic
