// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace havrel {

/// The unit that a count of time is given in. The numbers are stored in capture preferences and are the tags of the
/// unit menus, so they never change. A stored number may name no unit at all; every 32-bit number is a valid value.
enum class DurationScale : std::uint32_t {
    Minutes = 0,
    Hours = 1,
    Days = 2,
    Weeks = 3,
    Months = 4,
    Years = 5,
};

} // namespace havrel
