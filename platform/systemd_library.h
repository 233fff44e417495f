// SPDX-License-Identifier: MIT
#pragma once

namespace havrel::platform {

/// The address of \p symbol in libsystemd, which is loaded with the first question: it and what it needs would cost
/// every start of the tool a sixth of its time, for things that most runs never do. Null where it is not installed or
/// does not have the symbol.
///
/// Threads: any thread.
[[nodiscard]] void* systemdSymbol(const char* symbol);

/// Tells the program that supervises this process what it is about to do. Nobody is told, and nothing is loaded, where
/// the environment names nobody (NOTIFY_SOCKET).
///
/// \param state "STOPPING=1"
/// \return 0 or an errno value.
///
/// \source sd_notify(3)
///
/// Threads: any thread.
int notifySupervisor(const char* state);

} // namespace havrel::platform
