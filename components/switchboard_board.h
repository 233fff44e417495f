// SPDX-License-Identifier: MIT
#pragma once

#include "components/endpoint_registry.h"
#include "components/notification_relay.h"
#include "foundation/thread_annotations.h"

#include <functional>

namespace havrel {

/// What all clients of a switchboard share: its endpoints, its observers, and the rules.
///
/// Threads: any thread; forwards while it is locked, so that all hear the same order.
class SwitchboardBoard
{
public:
    using Client = EndpointRegistry::Client;

    /// \param own the switchboard's user
    SwitchboardBoard(uid_t own, bool isOfMachine, std::function<void(const QString&)> startComponent);

    [[nodiscard]] bool admits(uid_t user) const noexcept { return m_isOfMachine || user == m_own; }

    /// \return its number
    [[nodiscard]] Client addClient(uid_t user, NotificationRelay::Forward forward);
    /// With its observers and endpoints, of which everybody hears.
    void removeClient(Client client);
    /// For whom \p client, a process of \p vouched, works: only root's processes work for others.
    void setUser(Client client, uid_t vouched, uid_t user);

    /// What \p vouched's processes may not do is logged, and not done.
    void publish(Client client, uid_t vouched, const QString& identifier, const XPCEndpoint& endpoint);
    void redact(Client client, const QString& identifier);
    /// Waits for the component to start, where it can be.
    [[nodiscard]] std::optional<XPCEndpoint> endpointOf(const QString& identifier);

    void addObserver(Client client, const QString& observer, const QString& name, const std::optional<QString>& source);
    void removeObserver(Client client, const QString& observer);
    void removeAllObservers(Client client);
    void post(uid_t vouched, const RelayedNotification& notification);

private:
    [[nodiscard]] std::optional<XPCEndpoint> published(const QString& identifier);
    void announce(QLatin1StringView name, const QString& identifier) HAVREL_REQUIRES(m_lock);

    const uid_t m_own;
    const bool m_isOfMachine;
    const std::function<void(const QString&)> m_startComponent;
    Mutex m_lock;
    Client m_lastClient HAVREL_GUARDED_BY(m_lock) = 0;
    EndpointRegistry m_endpoints HAVREL_GUARDED_BY(m_lock);
    NotificationRelay m_relay HAVREL_GUARDED_BY(m_lock);
};

} // namespace havrel
