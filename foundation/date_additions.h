// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/duration_scale.h"

#include <QDateTime>

#include <chrono>

namespace havrel {

// Calendar arithmetic in the user's calendar: the Gregorian one, carried on before 1582 (without a year 0), in the time
// zone of the process ($TZ, else /etc/localtime).
//
// Every operation takes a date of any time specification and answers one in UTC with milliseconds. A null date stands
// for nil: it gives a null date. So does a result beyond the range of dates.
//
// Wall-clock times that a zone leaves out (clocks set forward) are moved forward by as much as was left out; of those
// that it has twice (clocks set back) the first is taken.
//
// Threads: any thread.

/// What stands for "the date's own" where an hour or a minute is asked for.
inline constexpr std::chrono::hours kOwnHour{-1};
inline constexpr std::chrono::minutes kOwnMinute{-1};

/// Which way an offset goes.
enum class ReverseDirection { No, Yes };

/// The first moment of the present day.
///
/// \selector startOfToday
[[nodiscard]] QDateTime startOfToday();

/// dateWithHour of the present moment. \selector todayWithHour:minute:
[[nodiscard]] QDateTime todayWithHour(std::chrono::hours hour, std::chrono::minutes minute);

/// The first moment of the year 1 of the date's era (AD or BC). \selector startOfEra
[[nodiscard]] QDateTime startOfEra(const QDateTime& date);
/// The first moment of 1 January of the date's year. \selector startOfYear
[[nodiscard]] QDateTime startOfYear(const QDateTime& date);
/// The first moment of day 1 of the date's month. \selector startOfMonth
[[nodiscard]] QDateTime startOfMonth(const QDateTime& date);
/// The first moment of the date's day: later than 00:00 where a zone leaves midnight out. \selector startOfDay
[[nodiscard]] QDateTime startOfDay(const QDateTime& date);

/// The given time on the date's day, with second 0. \p hour and \p minute count from midnight and may lie outside a day
/// (25 hours is 01:00 of the next one); kOwnHour and kOwnMinute keep the date's own.
///
/// \selector dateWithHour:minute:
[[nodiscard]] QDateTime dateWithHour(const QDateTime& date, std::chrono::hours hour, std::chrono::minutes minute);

/// dateWithHour, a day later where that moment is not in the future (at or before now()).
///
/// \selector nextHour:minute:
[[nodiscard]] QDateTime nextHour(const QDateTime& date, std::chrono::hours hour, std::chrono::minutes minute);

/// The date moved forwards by \p offset units (backwards where it is negative). \selector dateOffsetBy:scale:
[[nodiscard]] QDateTime dateOffsetBy(const QDateTime& date, qint64 offset, DurationScale scale);

/// The date moved by \p offset units, backwards with ReverseDirection::Yes.
///
/// Minutes and hours are lengths of time; from days on the wall-clock time stays, and a month or year in which the day
/// does not exist gives its last day. A scale that names no unit adds nothing; an offset of 0 gives the very \p date.
///
/// \selector dateOffsetBy:reverseDirection:scale:
[[nodiscard]] QDateTime
dateOffsetBy(const QDateTime& date, qint64 offset, ReverseDirection direction, DurationScale scale);

/// The minute of the day on the user's clock: 60 * hour + minute, 0 to 1439; 0 for a null date.
///
/// \selector minuteOfDay
[[nodiscard]] int minuteOfDay(const QDateTime& date);

} // namespace havrel
