// SPDX-License-Identifier: MIT
#pragma once

#include "platform/bus_library.h"

namespace havrel::platform {

/// Whether the environment asks for every message of the process on standard error: `HAVREL_TRACE_BUS=1`.
///
/// Threads: any thread.
[[nodiscard]] bool tracesBus();

/// Writes \p message, which is complete, to standard error in the library's readable form, where that is asked for.
///
/// Threads: one thread at a time for one message.
void traceBusMessage(sd_bus_message* message);

} // namespace havrel::platform
