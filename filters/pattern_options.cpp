// SPDX-License-Identifier: MIT
#include "filters/pattern_options.h"

#include <QString>

#include <algorithm>
#include <array>

namespace havrel {
namespace {

constexpr quint64 kGreatestDepthText = std::numeric_limits<qint64>::max();

struct TypeWord
{
    QLatin1StringView word;
    PatternType type;
};

constexpr auto kTypeWords = std::to_array<TypeWord>({
    {QLatin1StringView{"re"}, PatternType::RegularExpression},
    {QLatin1StringView{"regex"}, PatternType::RegularExpression},
    {QLatin1StringView{"glob"}, PatternType::Glob},
    {QLatin1StringView{"shell"}, PatternType::Glob},
});

bool isASCIIDigit(QChar unit)
{
    return unit >= u'0' && unit <= u'9';
}

/// The value of a text of digits, at most kGreatestDepthText.
quint64 valueOfDigits(QStringView digits)
{
    quint64 value = 0;
    for (const QChar digit : digits) {
        const quint64 number = digit.unicode() - quint64{u'0'};
        if (value > (kGreatestDepthText - number) / 10)
            return kGreatestDepthText;
        value = value * 10 + number;
    }
    return value;
}

std::optional<quint64> readDepth(QStringView text)
{
    if (text == u'+')
        return kIndefiniteDepth;
    if (std::all_of(text.begin(), text.end(), isASCIIDigit))
        return valueOfDigits(text);
    return std::nullopt;
}

std::optional<PatternType> readType(QStringView word)
{
    for (const TypeWord& row : kTypeWords)
        if (word == row.word)
            return row.type;
    return std::nullopt;
}

} // namespace

std::optional<PatternOptions> readPatternOptions(QStringView text)
{
    qsizetype colon = text.indexOf(u':');
    const auto depth = readDepth(colon < 0 ? text : text.first(colon));
    if (!depth)
        return std::nullopt;
    PatternOptions options{*depth, PatternType::Glob};
    while (colon >= 0) {
        text = text.sliced(colon + 1);
        colon = text.indexOf(u':');
        const auto type = readType(colon < 0 ? text : text.first(colon));
        if (!type)
            return std::nullopt;
        options.type = *type;
    }
    return options;
}

QString textOf(const PatternOptions& options)
{
    QString text;
    if (options.depth == kIndefiniteDepth)
        text = u'+';
    else if (options.depth != 0)
        text = QString::number(options.depth);
    return text.append(u':').append(typeSuffixOf(options.type));
}

QString typeSuffixOf(PatternType type)
{
    return type == PatternType::RegularExpression ? QStringLiteral("re") : QStringLiteral("glob");
}

} // namespace havrel
