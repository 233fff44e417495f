// SPDX-License-Identifier: MIT
#pragma once

#include "capture_prefs_ui/timers.h"

#include <optional>

namespace havrel {

/// Time of a process that may lose its display: from then on it stands still, so that work which would show its
/// progress after a while is done without.
///
/// Threads: the main thread only.
class EndableTimers final : public Timers
{
public:
    explicit EndableTimers(Timers& timers)
        : m_timers(timers)
    {
    }
    void end() { m_end = m_timers.elapsed(); }

    [[nodiscard]] std::unique_ptr<Timer> makeTimer(std::function<void()> fired) override;
    [[nodiscard]] std::chrono::milliseconds elapsed() override { return m_end ? *m_end : m_timers.elapsed(); }

private:
    Timers& m_timers;
    std::optional<std::chrono::milliseconds> m_end;
};

} // namespace havrel
