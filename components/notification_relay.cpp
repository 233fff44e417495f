// SPDX-License-Identifier: MIT
#include "components/notification_relay.h"

#include <utility>

namespace havrel {

void NotificationRelay::addClient(Client client, uid_t user, Forward forward)
{
    m_subscribers[client] = {user, std::move(forward), {}};
}

void NotificationRelay::setUser(Client client, uid_t user)
{
    if (const auto found = m_subscribers.find(client); found != m_subscribers.end())
        found->second.user = user;
}

void NotificationRelay::removeClient(Client client)
{
    m_subscribers.erase(client);
}

void NotificationRelay::addObserver(Client client,
                                    const QString& observer,
                                    const QString& name,
                                    const std::optional<QString>& source)
{
    if (const auto found = m_subscribers.find(client); found != m_subscribers.end())
        found->second.wishes[observer] = {name, source};
}

void NotificationRelay::removeObserver(Client client, const QString& observer)
{
    if (const auto found = m_subscribers.find(client); found != m_subscribers.end())
        found->second.wishes.erase(observer);
}

void NotificationRelay::removeAllObservers(Client client)
{
    if (const auto found = m_subscribers.find(client); found != m_subscribers.end())
        found->second.wishes.clear();
}

void NotificationRelay::post(const RelayedNotification& notification, const Audience& audience) const
{
    const auto isWanted = [&notification](const Wish& wish) {
        return wish.name == notification.name && (!wish.source || wish.source == notification.source);
    };
    for (const auto& [client, subscriber] : m_subscribers) {
        if (!audience(subscriber.user))
            continue;
        for (const auto& [observer, wish] : subscriber.wishes)
            if (isWanted(wish))
                subscriber.forward(observer, notification);
    }
}

} // namespace havrel
