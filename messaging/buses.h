// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"
#include "platform/bus_messages.h"

#include <QByteArray>

#include <functional>
#include <map>
#include <memory>
#include <utility>

namespace havrel {

class BusRouter;

/// Where the buses are; empty: where the environment says.
struct BusAddresses
{
    QByteArray session = {};
    QByteArray system = {};
};

/// The process's connections to the session's and to the machine's bus, made when they are needed, and again when the
/// bus was lost. A process that connects to a service of its own gets another connection for that: both ends of a
/// conversation could not be told apart on one.
///
/// Held by std::shared_ptr.
///
/// Threads: any thread.
class Buses : public std::enable_shared_from_this<Buses>
{
public:
    enum class Side { Usual, Loopback };

    explicit Buses(BusAddresses addresses);
    ~Buses();
    Buses(const Buses&) = delete;
    Buses& operator=(const Buses&) = delete;
    Buses(Buses&&) = delete;
    Buses& operator=(Buses&&) = delete;

    /// Waits for the bus when there is no connection to it.
    ///
    /// \return null with an errno value in \p error, where there is no such bus
    [[nodiscard]] std::shared_ptr<BusRouter> router(platform::BusKind kind, int& error, Side side = Side::Usual);
    /// Ends all connections to buses; there are no new ones afterwards.
    void close();

    /// Called with each bus that is connected from now on, on a thread that may wait.
    void setOpened(std::function<void(platform::BusKind kind, BusRouter& router)> opened);

private:
    using Key = std::pair<platform::BusKind, Side>;

    const BusAddresses m_addresses;
    Mutex m_lock; // also while a bus is connected: two threads do not connect at once
    bool m_closed HAVREL_GUARDED_BY(m_lock) = false;
    std::map<Key, std::shared_ptr<BusRouter>> m_routers HAVREL_GUARDED_BY(m_lock);
    std::function<void(platform::BusKind kind, BusRouter& router)> m_opened HAVREL_GUARDED_BY(m_lock);
};

} // namespace havrel
