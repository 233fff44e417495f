// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"
#include "platform/bus_connection.h"

#include <functional>
#include <future>

namespace havrel {

/// The session bus, which opens on a thread of its own while the toolkit starts on the main thread: the two take
/// turns in waiting for others, the one for the bus and the other for the display.
///
/// Threads: the main thread only.
class OpeningBus
{
public:
    /// Begins. Signals that are to reach the main thread only must be blocked by now.
    OpeningBus();
    /// Waits until it is open or has failed, and ends it.
    ~OpeningBus();
    OpeningBus(const OpeningBus&) = delete;
    OpeningBus& operator=(const OpeningBus&) = delete;
    OpeningBus(OpeningBus&&) = delete;
    OpeningBus& operator=(OpeningBus&&) = delete;

    /// Waits until it is open or has failed.
    ///
    /// \return 0 or an errno value, as BusConnection::open().
    [[nodiscard]] int opened();

    /// Open after opened() has answered 0; before, it may only be referred to.
    [[nodiscard]] platform::BusConnection& connection() noexcept { return m_connection; }

    /// Has \p lost called, on any thread, when the bus goes away after it was opened; at once when it has gone by now.
    /// Once this has been called with nothing, what was given before is called no more.
    void whenLost(std::function<void()> lost);

private:
    void tellOfLoss();

    Mutex m_mutex;
    std::function<void()> m_whenLost HAVREL_GUARDED_BY(m_mutex);
    bool m_isLost HAVREL_GUARDED_BY(m_mutex) = false;
    platform::BusConnection m_connection;
    std::shared_future<int> m_opening;
};

} // namespace havrel
