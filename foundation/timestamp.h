// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>

#include <compare>

struct timespec;

namespace havrel {

/// A date as file systems keep it: to the nanosecond, over the whole range of 64-bit seconds. A QDateTime keeps only
/// milliseconds, and nanoseconds in one 64-bit number end in the year 2262.
///
/// Threads: const members any thread, others one at a time.
struct Timestamp
{
    qint64 seconds = 0;     ///< since 1970-01-01 00:00:00 UTC
    qint32 nanoseconds = 0; ///< after that second, 0 to 999,999,999

    /// In UTC; what is finer than a millisecond is cut off towards the past. Null beyond the range of dates.
    [[nodiscard]] QDateTime dateTime() const;
    /// Of a date in any time specification; the epoch for a null date.
    [[nodiscard]] static Timestamp ofDateTime(const QDateTime& date);

    /// The earlier one is less.
    friend auto operator<=>(const Timestamp&, const Timestamp&) = default;
};

/// The date that a system call filled in, without loss. Nanoseconds out of their range are carried into the seconds,
/// which end at the limits of 64 bits.
///
/// \selector newCFDateWithBSDTimeSpec:
/// \source timespec(3type)
///
/// Threads: any thread.
[[nodiscard]] Timestamp newCFDateWithBSDTimeSpec(const timespec& time);

} // namespace havrel
