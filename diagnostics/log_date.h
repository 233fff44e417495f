// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

namespace havrel {

/// The moment of a log call.
using LogDate = std::chrono::sys_time<std::chrono::nanoseconds>;

} // namespace havrel
