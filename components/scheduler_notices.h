// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/dispatch.h"

#include <QVariantMap>

#include <atomic>

/// What the scheduler tells, through the switchboard, whoever observes these names from the source kSource. The user
/// info has the action's id under kID.
namespace havrel::scheduler_notices {

/// An action is under way: also "fraction" (double, 0 to 1), "files", "filesDone", "bytes", "bytesDone" (integers). A
/// few times a second.
inline constexpr QLatin1StringView kProgressed{"SchedulerActionProgressed"};
/// An action has ended: its run summary is there to be asked for.
inline constexpr QLatin1StringView kEnded{"SchedulerActionEnded"};
inline constexpr QLatin1StringView kSource{"Scheduler"};
inline constexpr QLatin1StringView kID{"id"};

} // namespace havrel::scheduler_notices

namespace havrel {

/// Posts what the scheduler tells at the process's shared switchboard connection. A switchboard that hangs holds up
/// nobody but itself: what is told of progress meanwhile is left out.
///
/// Threads: any thread.
class SchedulerNotices
{
public:
    /// Queues it; does not wait.
    void post(QLatin1StringView notice, const QVariantMap& info);

private:
    std::atomic<bool> m_isBehind{false};
    SerialQueue m_queue{QStringLiteral("notices")}; // last: its end waits for the work
};

} // namespace havrel
