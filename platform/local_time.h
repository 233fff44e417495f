// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace havrel::platform {

/// What calendar and clock show at a moment in the process's time zone (proleptic Gregorian).
struct LocalTime
{
    int year = 1970;
    int month = 1;            ///< 1 to 12
    int day = 1;              ///< 1 to 31
    int hour = 0;             ///< 0 to 23
    int minute = 0;           ///< 0 to 59
    int second = 0;           ///< 0 to 60
    int secondsEastOfUTC = 0; ///< the zone's offset at that moment
};

/// The local time \p seconds after 1970-01-01 00:00 UTC. A moment whose year does not fit gives 1970-01-01 00:00.
///
/// \source localtime_r(3)
///
/// Threads: any thread.
[[nodiscard]] LocalTime localTimeAt(std::int64_t seconds);

} // namespace havrel::platform
