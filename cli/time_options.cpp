// SPDX-License-Identifier: MIT
#include "cli/time_options.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace havrel::cli {
namespace {

struct Unit
{
    const char* name;
    DurationScale scale;
};

constexpr auto kUnits = std::to_array<Unit>({
    {"minutes", DurationScale::Minutes},
    {"minute", DurationScale::Minutes},
    {"min", DurationScale::Minutes},
    {"hours", DurationScale::Hours},
    {"hour", DurationScale::Hours},
    {"h", DurationScale::Hours},
    {"days", DurationScale::Days},
    {"day", DurationScale::Days},
    {"d", DurationScale::Days},
    {"weeks", DurationScale::Weeks},
    {"week", DurationScale::Weeks},
    {"w", DurationScale::Weeks},
    {"months", DurationScale::Months},
    {"month", DurationScale::Months},
    {"years", DurationScale::Years},
    {"year", DurationScale::Years},
    {"y", DurationScale::Years},
});

/// A number of at most \p most digits and nothing else.
template<class Number>
std::optional<Number> numberOf(QByteArrayView digits, qsizetype most)
{
    Number number = 0;
    const auto read = std::from_chars(digits.begin(), digits.end(), number);
    const bool valid =
        digits.size() <= most && !digits.startsWith('-') && read.ec == std::errc() && read.ptr == digits.end();
    return valid ? std::optional(number) : std::nullopt;
}

std::optional<quint64> minuteOf(const QByteArray& text)
{
    const qsizetype colon = text.indexOf(':');
    const auto hour = numberOf<quint64>(QByteArrayView(text).first(qMax<qsizetype>(colon, 0)), 2);
    const auto minute = numberOf<quint64>(QByteArrayView(text).sliced(colon + 1), 2);
    if (!hour || !minute || *hour > 23 || *minute > 59 || text.size() - colon != 3)
        return std::nullopt;
    return *hour * 60 + *minute;
}

} // namespace

std::optional<Duration> durationOf(const QByteArray& text)
{
    const auto* const digitsEnd =
        std::find_if_not(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    const auto count = numberOf<qint64>(QByteArrayView(text.begin(), digitsEnd), text.size());
    const QByteArray unit = text.mid(digitsEnd - text.begin()).trimmed().toLower();
    const auto* const row =
        std::find_if(kUnits.begin(), kUnits.end(), [&](const Unit& each) { return unit == each.name; });
    if (!count || *count == 0 || row == kUnits.end())
        return std::nullopt;
    return Duration{*count, row->scale};
}

std::optional<PartOfDay> partOfDayOf(const QByteArray& text)
{
    const qsizetype hyphen = text.indexOf('-');
    const auto from = minuteOf(text.first(qMax<qsizetype>(hyphen, 0)));
    const auto to = minuteOf(text.mid(hyphen + 1));
    if (!from || !to || *from == *to)
        return std::nullopt;
    return PartOfDay{*from, *to};
}

} // namespace havrel::cli
