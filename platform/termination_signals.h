// SPDX-License-Identifier: MIT
#pragma once

#include "platform/owned_descriptor.h"

#include <csignal>

namespace havrel::platform {

/// SIGTERM, SIGINT and SIGHUP, which end a process at once, as something to be read instead. Each signal is blocked as
/// long as this lives, in this thread and those that it starts later, so it is made before there are others.
///
/// \source signalfd(2)
///
/// Threads: one thread at a time.
class TerminationSignals
{
public:
    TerminationSignals();
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;
    TerminationSignals(TerminationSignals&&) = delete;
    TerminationSignals& operator=(TerminationSignals&&) = delete;

    /// Becomes readable when a signal has come; -1 when the system has no descriptor left (the signals then end the
    /// process as ever).
    [[nodiscard]] int descriptor() const noexcept { return m_descriptor.get(); }
    /// The number of a signal that has come; 0 when there is none. Does not wait.
    [[nodiscard]] int take() noexcept;

private:
    sigset_t m_before{};
    OwnedDescriptor m_descriptor;
};

} // namespace havrel::platform
