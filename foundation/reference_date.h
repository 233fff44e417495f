// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>

namespace havrel {

/// The moment that \p seconds after the reference date (2001-01-01 00:00:00 UTC) is, to the nearest millisecond, in
/// UTC; an invalid date when it is further than some 70,000 years away or not a number.
///
/// Threads: any thread.
[[nodiscard]] QDateTime dateFromReferenceInterval(double seconds);

/// Seconds from the reference date to \p date, negative before it. Exact: the way back gives the same millisecond.
///
/// Threads: any thread.
[[nodiscard]] double intervalSinceReferenceDate(const QDateTime& date);

} // namespace havrel
