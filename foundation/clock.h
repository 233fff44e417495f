// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>

namespace havrel {

/// Where the present moment comes from.
using Clock = QDateTime (*)();

/// The present moment, in UTC with milliseconds: the system's clock, unless a test replaced it.
///
/// Threads: any thread.
[[nodiscard]] QDateTime now();

/// Makes now() ask \p clock from here on, everywhere; a null pointer brings the system's clock back.
///
/// \return the clock that was in use.
///
/// Threads: any thread.
Clock replaceClock(Clock clock);

} // namespace havrel
