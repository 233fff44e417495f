// SPDX-License-Identifier: MIT
#include "foundation/string_values.h"

#include <QString> // defines the conversions of QStringView inline

#include <limits>

namespace havrel {
namespace {

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

bool isSign(QChar c)
{
    return c == u'+' || c == u'-';
}

QStringView withoutLeadingBlanks(QStringView text)
{
    while (!text.isEmpty() && text.front().isSpace())
        text = text.sliced(1);
    return text;
}

qsizetype endOfDigits(QStringView text, qsizetype from)
{
    while (from < text.size() && isDigit(text[from]))
        ++from;
    return from;
}

/// Where the exponent at \p from ends; \p from itself when none begins there.
qsizetype endOfExponent(QStringView text, qsizetype from)
{
    if (from >= text.size() || text[from].toLower() != u'e')
        return from;
    const qsizetype digits = from + 1 + (from + 1 < text.size() && isSign(text[from + 1]) ? 1 : 0);
    const qsizetype end = endOfDigits(text, digits);
    return end > digits ? end : from;
}

} // namespace

bool boolValue(QStringView text)
{
    text = withoutLeadingBlanks(text);
    if (!text.isEmpty() && QStringView(u"YyTt").contains(text.front()))
        return true;
    if (!text.isEmpty() && isSign(text.front()))
        text = text.sliced(1);
    while (text.startsWith(u'0'))
        text = text.sliced(1);
    return !text.isEmpty() && isDigit(text.front());
}

qint64 integerValue(QStringView text)
{
    text = withoutLeadingBlanks(text);
    const qsizetype start = !text.isEmpty() && isSign(text.front()) ? 1 : 0;
    const QStringView digits = text.first(endOfDigits(text, start));
    if (digits.size() == start)
        return 0;
    bool fits = false;
    const qint64 number = digits.toLongLong(&fits);
    if (fits)
        return number;
    return text.front() == u'-' ? std::numeric_limits<qint64>::min() : std::numeric_limits<qint64>::max();
}

double doubleValue(QStringView text)
{
    text = withoutLeadingBlanks(text);
    const qsizetype start = !text.isEmpty() && isSign(text.front()) ? 1 : 0;
    qsizetype end = endOfDigits(text, start);
    qsizetype digits = end - start;
    if (end < text.size() && text[end] == u'.') {
        const qsizetype fraction = end + 1;
        end = endOfDigits(text, fraction);
        digits += end - fraction;
    }
    if (digits == 0)
        return 0;
    return text.first(endOfExponent(text, end)).toDouble();
}

float floatValue(QStringView text)
{
    return static_cast<float>(doubleValue(text));
}

} // namespace havrel
