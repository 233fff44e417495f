// SPDX-License-Identifier: MIT
#include "foundation/date_additions.h"

#include "foundation/clock.h"
#include "foundation/floored_division.h"
#include "foundation/wall_clock.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <utility>

namespace havrel {
namespace {

constexpr qint64 kMinutesADay = 24LL * 60;

QTime timeAtMinute(qint64 minuteOfDay)
{
    return QTime::fromMSecsSinceStartOfDay(static_cast<int>(minuteOfDay * 60 * 1000));
}

std::optional<qint64> product(qint64 count, qint64 unit)
{
    qint64 result = 0;
    return __builtin_mul_overflow(count, unit, &result) ? std::nullopt : std::optional(result);
}

QDateTime offsetByMilliseconds(const QDateTime& date, qint64 count, qint64 unit)
{
    const std::optional<qint64> length = product(count, unit);
    qint64 moment = 0;
    if (!length || __builtin_add_overflow(date.toMSecsSinceEpoch(), *length, &moment))
        return {};
    return QDateTime::fromMSecsSinceEpoch(moment, Qt::UTC);
}

QDateTime offsetByDays(const QDateTime& date, qint64 count, qint64 daysAUnit)
{
    const std::optional<qint64> days = product(count, daysAUnit);
    const WallClock shown(date);
    return days ? WallClock(shown.date().addDays(*days), shown.time()).moment() : QDateTime();
}

/// The day \p months later, or the last of its month where that day does not exist. Not the toolkit's own, which goes
/// through the years one by one and overflows on large counts.
QDate monthsLater(QDate date, qint64 months)
{
    const qint64 year = date.year() > 0 ? date.year() : date.year() + 1; // there is a year 0 to count with
    qint64 month = 0;
    if (__builtin_add_overflow(12 * year + date.month() - 1, months, &month))
        return {};
    const FlooredQuotient later = flooredQuotient(month, 12);
    const qint64 calendarYear = later.whole > 0 ? later.whole : later.whole - 1;
    if (!std::in_range<int>(calendarYear))
        return {};
    const QDate first(static_cast<int>(calendarYear), static_cast<int>(later.rest) + 1, 1);
    return first.addDays(std::min(date.day(), first.daysInMonth()) - 1);
}

QDateTime offsetByMonths(const QDateTime& date, qint64 count, qint64 monthsAUnit)
{
    const std::optional<qint64> months = product(count, monthsAUnit);
    const WallClock shown(date);
    return months ? WallClock(monthsLater(shown.date(), *months), shown.time()).moment() : QDateTime();
}

struct ScaleRule
{
    QDateTime (*offset)(const QDateTime& date, qint64 count, qint64 unit);
    qint64 unit; // of this scale, in what the operation counts in
};

// Indexed by the number of the scale.
constexpr auto kScaleRules = std::to_array<ScaleRule>({
    {offsetByMilliseconds, 60LL * 1000},
    {offsetByMilliseconds, 60LL * 60 * 1000},
    {offsetByDays, 1},
    {offsetByDays, 7},
    {offsetByMonths, 1},
    {offsetByMonths, 12},
});

} // namespace

QDateTime startOfToday()
{
    return startOfDay(now());
}

QDateTime todayWithHour(std::chrono::hours hour, std::chrono::minutes minute)
{
    return dateWithHour(now(), hour, minute);
}

QDateTime startOfEra(const QDateTime& date)
{
    return WallClock::firstMomentOf(date.isValid() ? QDate(WallClock(date).date().year() > 0 ? 1 : -1, 1, 1) : QDate());
}

QDateTime startOfYear(const QDateTime& date)
{
    return WallClock::firstMomentOf(QDate(WallClock(date).date().year(), 1, 1));
}

QDateTime startOfMonth(const QDateTime& date)
{
    const QDate day = WallClock(date).date();
    return WallClock::firstMomentOf(QDate(day.year(), day.month(), 1));
}

QDateTime startOfDay(const QDateTime& date)
{
    return WallClock::firstMomentOf(WallClock(date).date());
}

QDateTime dateWithHour(const QDateTime& date, std::chrono::hours hour, std::chrono::minutes minute)
{
    if (!date.isValid())
        return {};
    const WallClock shown(date);
    const FlooredQuotient hours = flooredQuotient(hour == kOwnHour ? shown.time().hour() : hour.count(), 24);
    const FlooredQuotient minutes =
        flooredQuotient(minute == kOwnMinute ? shown.time().minute() : minute.count(), kMinutesADay);
    const FlooredQuotient rest = flooredQuotient(60 * hours.rest + minutes.rest, kMinutesADay);
    return WallClock(shown.date().addDays(hours.whole + minutes.whole + rest.whole), timeAtMinute(rest.rest)).moment();
}

QDateTime nextHour(const QDateTime& date, std::chrono::hours hour, std::chrono::minutes minute)
{
    const QDateTime moment = dateWithHour(date, hour, minute);
    return moment > now() ? moment : dateOffsetBy(moment, 1, DurationScale::Days);
}

QDateTime dateOffsetBy(const QDateTime& date, qint64 offset, DurationScale scale)
{
    return dateOffsetBy(date, offset, ReverseDirection::No, scale);
}

QDateTime dateOffsetBy(const QDateTime& date, qint64 offset, ReverseDirection direction, DurationScale scale)
{
    const auto rule = static_cast<std::size_t>(scale);
    if (offset == 0 || rule >= kScaleRules.size() || !date.isValid())
        return date;
    if (direction == ReverseDirection::No)
        return kScaleRules[rule].offset(date, offset, kScaleRules[rule].unit);
    if (offset == std::numeric_limits<qint64>::min())
        return {};
    return kScaleRules[rule].offset(date, -offset, kScaleRules[rule].unit);
}

int minuteOfDay(const QDateTime& date)
{
    const QTime shown = WallClock(date).time();
    return shown.isValid() ? 60 * shown.hour() + shown.minute() : 0;
}

} // namespace havrel
