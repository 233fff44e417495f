// SPDX-License-Identifier: MIT
#include "messaging/bus_transport.h"

#include "messaging/bus_names.h"
#include "messaging/bus_notifications.h"
#include "messaging/bus_xpc_connection.h"
#include "messaging/bus_xpc_listener.h"
#include "messaging/xpc_endpoint.h"

#include <utility>

namespace havrel {
namespace {

using platform::BusKind;

BusKind busFor(quint32 options)
{
    return options & xpc_options::kPrivileged ? BusKind::System : BusKind::Session;
}

} // namespace

BusTransport::BusTransport(BusAddresses addresses)
    : m_buses(std::make_shared<Buses>(std::move(addresses)))
    , m_notifications(std::make_shared<BusNotifications>(m_buses))
{
    m_buses->setOpened([weak = std::weak_ptr(m_notifications)](BusKind kind, BusRouter& router) {
        if (const auto notifications = weak.lock())
            notifications->opened(kind, router);
    });
}

BusTransport::~BusTransport()
{
    m_buses->close();
}

XPCConnectionPtr BusTransport::connectionToService(const QString& name, quint32 options)
{
    // Named: the compiler takes a nameless one, once optimised, for used uninitialised.
    BusXPCConnection::Target target;
    target.serviceName = name;
    target.kind = busFor(options);
    return std::make_shared<BusXPCConnection>(m_buses, std::move(target));
}

XPCConnectionPtr BusTransport::connectionToEndpoint(const XPCEndpoint& endpoint)
{
    return std::make_shared<BusXPCConnection>(
        m_buses, BusXPCConnection::Target{.endpoint = endpoint, .kind = bus_names::busOfEndpoint(endpoint.pathPrefix)});
}

std::unique_ptr<XPCListener> BusTransport::listenerForService(const QString& name, quint32 options)
{
    return std::make_unique<BusXPCListener>(m_buses, name, busFor(options));
}

std::unique_ptr<XPCListener> BusTransport::anonymousListener()
{
    return std::make_unique<BusXPCListener>(m_buses, QString(), BusKind::Session);
}

void BusTransport::postDistributedNotification(const QString& name, const QString& object)
{
    m_notifications->post(name, object);
}

std::shared_ptr<void> BusTransport::addDistributedObserver(const QString& name,
                                                           std::function<void(const QString& object)> block)
{
    return m_notifications->addObserver(name, std::move(block));
}

} // namespace havrel
