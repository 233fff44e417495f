// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/duration_scale.h"

#include <QByteArray>

#include <optional>

namespace havrel::cli {

/// A count of a unit, as people give it.
struct Duration
{
    qint64 count = 0;
    DurationScale scale = DurationScale::Hours;
};

/// A part of the day, in minutes after midnight; it may go past midnight.
struct PartOfDay
{
    quint64 fromMinute = 0; ///< 0 to 1439
    quint64 toMinute = 0;   ///< 0 to 1439
};

/// "23 hours", "23h", "1 day", "31 days", "2 weeks", "3 months", "1 year", "90 min": a count of at least 1 and a unit,
/// letters of either case. Nullopt for anything else, a count without unit included.
///
/// Threads: any thread.
[[nodiscard]] std::optional<Duration> durationOf(const QByteArray& text);

/// "09:00-17:00" or "22:00-6:00"; two different times of day. Nullopt for anything else.
///
/// Threads: any thread.
[[nodiscard]] std::optional<PartOfDay> partOfDayOf(const QByteArray& text);

} // namespace havrel::cli
