// SPDX-License-Identifier: MIT
#include "messaging/shared_connections.h"

#include "messaging/published_connection.h"
#include "messaging/switchboard_connection.h"
#include "messaging/switchboard_names.h"

#include <utility>

namespace havrel {

SharedConnections& SharedConnections::all()
{
    // Never destroyed: other threads may use them while the process ends.
    static SharedConnections* const s_all = std::make_unique<SharedConnections>().release();
    return *s_all;
}

auto SharedConnections::makeSwitchboard() -> Switchboard
{
    const auto connection = std::make_shared<HVSwitchboardConnection>();
    const auto tell = [weak = std::weak_ptr<HVSwitchboardConnection>(connection)](const QString& startedService) {
        if (const auto switchboard = weak.lock())
            switchboard->switchboardDidStartNotification(startedService);
    };
    return {connection, XPCTransport::shared().addDistributedObserver(switchboard_names::kDidStart, tell)};
}

std::shared_ptr<HVSwitchboardConnection> SharedConnections::switchboard()
{
    const MutexLock guard(m_lock);
    if (!m_switchboard.connection)
        m_switchboard = makeSwitchboard();
    return m_switchboard.connection;
}

const std::shared_ptr<HVPublishedConnection>& SharedConnections::scheduler()
{
    if (!m_scheduler)
        m_scheduler = HVConnection::connectionWithPublishedName(
            QStringLiteral("com.havrel.scheduler"), xpc_options::kNone, HVConnection::schedulerInterface());
    return m_scheduler;
}

const std::shared_ptr<HVPublishedConnection>& SharedConnections::monitor()
{
    if (!m_monitor)
        m_monitor = HVConnection::connectionWithPublishedName(
            QStringLiteral("com.havrel.monitor"), xpc_options::kNone, HVConnection::monitorInterface());
    return m_monitor;
}

void SharedConnections::forget()
{
    m_scheduler.reset();
    m_monitor.reset();
    Switchboard switchboard; // goes outside the lock
    const MutexLock guard(m_lock);
    std::swap(switchboard, m_switchboard);
}

} // namespace havrel
