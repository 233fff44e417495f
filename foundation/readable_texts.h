// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/duration_scale.h"

#include <QString>

class QDateTime;

namespace havrel {

/// How much of a time of day is written.
enum class ReadableTimeStyle {
    Short = 1, ///< hours and minutes: "09:00"
};

/// A count with its unit in words: "23 hours", "1 hour", "0 minutes". The singular stands for exactly 1.
/// A scale that names no unit gives the bare count: "7".
///
/// \selector stringWithReadableDuration:scale:
///
/// Threads: any thread.
[[nodiscard]] QString stringWithReadableDuration(qint64 duration, DurationScale scale);

/// The time of day of \p time on the user's clock, 24 hours with leading zeros, the same in every locale.
/// A null date gives an empty text.
///
/// \selector stringWithReadableTime:style:
///
/// Threads: any thread.
[[nodiscard]] QString stringWithReadableTime(const QDateTime& time, ReadableTimeStyle style);

} // namespace havrel
