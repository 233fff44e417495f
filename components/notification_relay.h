// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>
#include <map>
#include <optional>

#include <sys/types.h>

namespace havrel {

/// A notification that a component has posted to all who want to know.
struct RelayedNotification
{
    QString name;
    std::optional<QString> source; ///< who says so; none: nobody in particular
    QVariantMap userInfo;
};

/// Who wants to know of which notifications, and tells them. Observers are known by their client and an identifier of
/// the client's own.
///
/// Threads: one thread at a time.
class NotificationRelay
{
public:
    using Client = quint64;
    /// Tells a client's observer; must not wait.
    using Forward = std::function<void(const QString& observer, const RelayedNotification& notification)>;
    /// Which client may hear of it.
    using Audience = std::function<bool(uid_t user)>;

    /// \param user for whom the client works
    void addClient(Client client, uid_t user, Forward forward);
    void setUser(Client client, uid_t user);
    /// With its observers.
    void removeClient(Client client);

    /// Replaces the observer of the same identifier. \param source none: whoever posts it
    void addObserver(Client client, const QString& observer, const QString& name, const std::optional<QString>& source);
    void removeObserver(Client client, const QString& observer);
    void removeAllObservers(Client client);

    /// Forwards it to each observer of its name that wants its source, those of one client in the order of their
    /// identifiers.
    void post(const RelayedNotification& notification, const Audience& audience) const;

private:
    struct Wish
    {
        QString name;
        std::optional<QString> source;
    };
    struct Subscriber
    {
        uid_t user = 0;
        Forward forward;
        std::map<QString, Wish> wishes;
    };

    std::map<Client, Subscriber> m_subscribers;
};

} // namespace havrel
