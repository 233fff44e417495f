// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/notification_center.h"
#include "messaging/xpc_connection.h"

#include <QString>

#include <functional>
#include <memory>

namespace havrel {

class Protocol;

/// Under which names a component is found.
struct PublicationSettings
{
    QString identifier;       ///< at the switchboard: "com.havrel.scheduler"
    QString serviceName;      ///< by which it can be started: "com.havrel.Scheduler"
    const Protocol& protocol; ///< outlives it
};

/// Makes a component reachable for processes of this user, as long as it lives: publishes its endpoint at the
/// process's shared switchboard connection, and again at every switchboard that this connects to later; serves the
/// name by which it can be started, too. Who connects by that name finds it published when the connection is accepted.
///
/// Threads: the main thread only.
class PublishedComponent
{
public:
    /// Makes what a new connection is shown, which the connection then keeps. Called on listeners' own queues.
    using Maker = std::function<std::shared_ptr<XPCExportedObject>()>;

    PublishedComponent(Maker maker, const PublicationSettings& settings);
    /// Connections that it has accepted end with their other ends.
    ~PublishedComponent();
    PublishedComponent(const PublishedComponent&) = delete;
    PublishedComponent& operator=(const PublishedComponent&) = delete;
    PublishedComponent(PublishedComponent&&) = delete;
    PublishedComponent& operator=(PublishedComponent&&) = delete;

    /// Connects to the switchboard, which it waits for. That there is none is no error. When this returns, who asks a
    /// switchboard that is there finds the component.
    ///
    /// \return 0 or an errno value: EEXIST when another process serves the name, ...
    [[nodiscard]] int start();

private:
    class Publication;

    const std::unique_ptr<XPCListener> m_endpoint;
    const std::unique_ptr<XPCListener> m_service;
    const std::shared_ptr<Publication> m_publication;
    NotificationRegistration m_connected;
};

} // namespace havrel
