// SPDX-License-Identifier: MIT
#include "foundation/readable_texts.h"

#include "foundation/date_additions.h"

#include <QDateTime>

#include <array>
#include <cstddef>

namespace havrel {
namespace {

struct UnitNames
{
    QLatin1StringView one;
    QLatin1StringView many;
};

// Indexed by the number of the scale.
constexpr auto kUnitNames = std::to_array<UnitNames>({
    {QLatin1StringView("minute"), QLatin1StringView("minutes")},
    {QLatin1StringView("hour"), QLatin1StringView("hours")},
    {QLatin1StringView("day"), QLatin1StringView("days")},
    {QLatin1StringView("week"), QLatin1StringView("weeks")},
    {QLatin1StringView("month"), QLatin1StringView("months")},
    {QLatin1StringView("year"), QLatin1StringView("years")},
});

} // namespace

QString stringWithReadableDuration(qint64 duration, DurationScale scale)
{
    QString count = QString::number(duration);
    const auto unit = static_cast<std::size_t>(scale);
    if (unit >= kUnitNames.size())
        return count;
    return count + u' ' + (duration == 1 ? kUnitNames[unit].one : kUnitNames[unit].many);
}

QString stringWithReadableTime(const QDateTime& time, ReadableTimeStyle style)
{
    if (!time.isValid())
        return {};
    const int minute = minuteOfDay(time);
    switch (style) {
    case ReadableTimeStyle::Short:
        return QStringLiteral("%1:%2")
            .arg(minute / 60, 2, 10, QLatin1Char('0'))
            .arg(minute % 60, 2, 10, QLatin1Char('0'));
    }
    return {};
}

} // namespace havrel
