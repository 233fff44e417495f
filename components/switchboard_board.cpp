// SPDX-License-Identifier: MIT
#include "components/switchboard_board.h"

#include "diagnostics/logr.h"
#include "messaging/switchboard_names.h"

#include <utility>

namespace havrel {
namespace {

void logRefusal(uid_t user, const QString& what)
{
    Logr::log(LogClassification::Warning, QStringLiteral("user %1 may not %2").arg(user).arg(what));
}

} // namespace

SwitchboardBoard::SwitchboardBoard(uid_t own, bool isOfMachine, std::function<void(const QString&)> startComponent)
    : m_own(own)
    , m_isOfMachine(isOfMachine)
    , m_startComponent(std::move(startComponent))
{
}

// ---- clients

auto SwitchboardBoard::addClient(uid_t user, NotificationRelay::Forward forward) -> Client
{
    const MutexLock guard(m_lock);
    m_relay.addClient(++m_lastClient, user, std::move(forward));
    return m_lastClient;
}

void SwitchboardBoard::removeClient(Client client)
{
    const MutexLock guard(m_lock);
    m_relay.removeClient(client);
    for (const QString& each : m_endpoints.redactAll(client))
        announce(switchboard_names::kEndpointRedacted, each);
}

void SwitchboardBoard::setUser(Client client, uid_t vouched, uid_t user)
{
    const MutexLock guard(m_lock);
    if (vouched == 0 || vouched == user)
        m_relay.setUser(client, user);
}

// ---- endpoints

void SwitchboardBoard::publish(Client client, uid_t vouched, const QString& identifier, const XPCEndpoint& endpoint)
{
    if (vouched != m_own)
        return logRefusal(vouched, QStringLiteral("publish \"%1\"").arg(identifier));
    const MutexLock guard(m_lock);
    m_endpoints.publish(identifier, endpoint, client);
    announce(switchboard_names::kEndpointPublished, identifier);
}

void SwitchboardBoard::redact(Client client, const QString& identifier)
{
    const MutexLock guard(m_lock);
    if (m_endpoints.redact(identifier, client))
        announce(switchboard_names::kEndpointRedacted, identifier);
}

std::optional<XPCEndpoint> SwitchboardBoard::published(const QString& identifier)
{
    const MutexLock guard(m_lock);
    return m_endpoints.find(identifier);
}

std::optional<XPCEndpoint> SwitchboardBoard::endpointOf(const QString& identifier)
{
    const std::optional<XPCEndpoint> known = published(identifier);
    if (known || !m_startComponent)
        return known;
    m_startComponent(identifier);
    return published(identifier);
}

void SwitchboardBoard::announce(QLatin1StringView name, const QString& identifier)
{
    m_relay.post({name.toString(), switchboard_names::kSwitchboard.toString(), {{switchboard_names::kID, identifier}}},
                 [](uid_t) { return true; });
}

// ---- notifications

void SwitchboardBoard::addObserver(Client client,
                                   const QString& observer,
                                   const QString& name,
                                   const std::optional<QString>& source)
{
    const MutexLock guard(m_lock);
    m_relay.addObserver(client, observer, name, source);
}

void SwitchboardBoard::removeObserver(Client client, const QString& observer)
{
    const MutexLock guard(m_lock);
    m_relay.removeObserver(client, observer);
}

void SwitchboardBoard::removeAllObservers(Client client)
{
    const MutexLock guard(m_lock);
    m_relay.removeAllObservers(client);
}

void SwitchboardBoard::post(uid_t vouched, const RelayedNotification& notification)
{
    if (notification.source == switchboard_names::kSwitchboard)
        return logRefusal(vouched, QStringLiteral("post \"%1\" as the switchboard").arg(notification.name));
    const MutexLock guard(m_lock);
    m_relay.post(notification, [this, vouched](uid_t user) { return vouched == m_own || vouched == user; });
}

} // namespace havrel
