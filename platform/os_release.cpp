// SPDX-License-Identifier: MIT
#include "platform/os_release.h"

#include <algorithm>
#include <optional>

namespace havrel::platform {
namespace {

bool isNameCharacter(char character)
{
    return (character >= 'A' && character <= 'Z') || (character >= '0' && character <= '9') || character == '_';
}

bool isName(const QByteArray& text)
{
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), isNameCharacter);
}

/// What a backslash and \p next stand for between \p quote: in double quotes it escapes only what is special there.
QByteArray unescaped(char next, char quote)
{
    const bool kept = quote == '"' && QByteArrayView("\"\\$`").indexOf(next) < 0;
    return kept ? QByteArray("\\") + next : QByteArray(1, next);
}

bool isQuote(char character)
{
    return character == '"' || character == '\'';
}

bool isBlank(char character)
{
    return character == ' ' || character == '\t';
}

/// The value as a shell reads it; nullopt for an unfinished quote or more than one word.
std::optional<QByteArray> unquoted(const QByteArray& text)
{
    QByteArray value;
    char quote = 0; // the one that is open, 0 when none is
    for (qsizetype place = 0; place < text.size(); ++place) {
        const char character = text[place];
        if (quote == 0 && isBlank(character))
            return std::nullopt;
        if (quote == 0 && isQuote(character))
            quote = character;
        else if (quote != 0 && character == quote)
            quote = 0;
        else if (character == '\\' && quote != '\'' && place + 1 < text.size())
            value += unescaped(text[++place], quote);
        else
            value += character;
    }
    return quote == 0 ? std::optional(value) : std::nullopt;
}

} // namespace

QMap<QByteArray, QString> parseOSRelease(const QByteArray& text)
{
    QMap<QByteArray, QString> assignments;
    for (const QByteArray& line : text.split('\n')) {
        const QByteArray trimmed = line.trimmed();
        const qsizetype equals = trimmed.indexOf('=');
        if (equals < 0 || !isName(trimmed.first(equals)))
            continue;
        if (const std::optional<QByteArray> value = unquoted(trimmed.sliced(equals + 1)))
            assignments.insert(trimmed.first(equals), QString::fromUtf8(*value));
    }
    return assignments;
}

} // namespace havrel::platform
