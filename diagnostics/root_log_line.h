// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/log_line_ident.h"
#include "platform/local_time.h"

namespace havrel {

/// The day stamp of a local time: the day's ordinal in the Gregorian era (0001-01-01 is 1) times 100, plus how much of
/// the day has gone in whole percent, 0 to 99.
///
/// Threads: any thread.
[[nodiscard]] std::uint64_t dayStampAt(const platform::LocalTime& local);

/// The line under which a process logs: application 6, day stamp, process id.
///
/// Threads: any thread.
[[nodiscard]] LogLineIdentPtr rootLogLineFor(const platform::LocalTime& local, std::uint64_t processID);

} // namespace havrel
