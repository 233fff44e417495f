// SPDX-License-Identifier: MIT
#include "messaging/switchboard_subscriber.h"

#include "messaging/switchboard_proxy.h"

#include <utility>

namespace havrel {

void SwitchboardSubscriber::received(const XPCMessage& message)
{
    if (message.keywordName != "forwardToObserver:notification:fromSource:withInfo:" || message.values.size() != 4)
        return;
    const QStringList source = message.values[2].toStringList();
    forwardToObserver(message.values[0].toString(),
                      message.values[1].toString(),
                      source.isEmpty() ? std::nullopt : std::optional(source.constFirst()),
                      message.values[3].toMap());
}

void SwitchboardSubscriber::forwardToObserver(const QString& identifier,
                                              const QString& /*notification*/,
                                              const std::optional<QString>& source,
                                              const QVariantMap& info)
{
    if (const Observer observer = observerOf(identifier))
        observer->forwardNotificationFromSource(source, info);
}

auto SwitchboardSubscriber::observerOf(const QString& identifier) const -> Observer
{
    const MutexLock guard(m_observerLock);
    const auto found = m_observers.find(identifier);
    return found == m_observers.cend() ? nullptr : found->second;
}

void SwitchboardSubscriber::addObserver(const QString& identifier, Observer observer)
{
    const MutexLock guard(m_observerLock);
    m_observers[identifier].swap(observer); // what the one before holds goes outside the lock
}

void SwitchboardSubscriber::removeLocalObserver(const QString& identifier)
{
    Observer removed; // goes outside the lock
    const MutexLock guard(m_observerLock);
    if (const auto found = m_observers.find(identifier); found != m_observers.end()) {
        removed = std::move(found->second);
        m_observers.erase(found);
    }
}

void SwitchboardSubscriber::removeAllLocalObservers()
{
    std::map<QString, Observer> removed; // emptied outside the lock
    const MutexLock guard(m_observerLock);
    m_observers.swap(removed);
}

QStringList SwitchboardSubscriber::registeredObserverIDs() const
{
    QStringList identifiers;
    const MutexLock guard(m_observerLock);
    for (const auto& [identifier, observer] : m_observers)
        identifiers << identifier;
    return identifiers;
}

void SwitchboardSubscriber::reregisterObserversWithSwitchboard(const SwitchboardProxy& switchboard)
{
    const MutexLock guard(m_observerLock);
    for (const auto& [identifier, observer] : m_observers)
        switchboard.addProxyObserver(identifier, observer->notificationName(), observer->sourceID());
}

} // namespace havrel
