// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"

#include <memory>

namespace havrel {

class HVPublishedConnection;
class HVSwitchboardConnection;

/// The connections that the whole process shares, behind the class operations of HVConnection. Each is made when it is
/// first asked for, and lives as long as the process.
///
/// Threads: any thread, except for what says otherwise.
class SharedConnections
{
public:
    [[nodiscard]] static SharedConnections& all();

    /// Hears of the start of switchboards from its making on.
    [[nodiscard]] std::shared_ptr<HVSwitchboardConnection> switchboard();
    /// Threads: the main thread only, the first time.
    [[nodiscard]] const std::shared_ptr<HVPublishedConnection>& scheduler();
    /// Threads: the main thread only, the first time.
    [[nodiscard]] const std::shared_ptr<HVPublishedConnection>& monitor();

    /// Lets go of all of them; the next use makes them anew. For the end of main, which they would outlive, and for
    /// tests, after each of which there is another transport.
    ///
    /// Threads: the main thread only.
    void forget();

private:
    struct Switchboard
    {
        std::shared_ptr<HVSwitchboardConnection> connection;
        std::shared_ptr<void> startObserver;
    };
    [[nodiscard]] static Switchboard makeSwitchboard();

    Mutex m_lock;
    Switchboard m_switchboard HAVREL_GUARDED_BY(m_lock);
    std::shared_ptr<HVPublishedConnection> m_scheduler;
    std::shared_ptr<HVPublishedConnection> m_monitor;
};

} // namespace havrel
