// SPDX-License-Identifier: MIT
#include "messaging/bus_xpc_listener.h"

#include "foundation/dispatch.h"
#include "messaging/bus_names.h"
#include "messaging/bus_router.h"
#include "messaging/bus_xpc_connection.h"
#include "messaging/buses.h"
#include "messaging/reply_queue.h"
#include "messaging/xpc_endpoint.h"
#include "messaging/xpc_error.h"

#include <cerrno>

namespace havrel {

using platform::BusKind;

/// Where connections are received, one after the other; those that come when the listener has ended find nobody.
struct BusXPCListener::Reception
{
    void receive(const std::shared_ptr<BusXPCConnection>& connection);

    ReplyQueue queue;
    Mutex lock;
    Acceptor acceptor HAVREL_GUARDED_BY(lock);
    bool isListening HAVREL_GUARDED_BY(lock) = false;
};

void BusXPCListener::Reception::receive(const std::shared_ptr<BusXPCConnection>& connection)
{
    if (const int error = connection->checkPeer(); error != 0)
        return connection->ended(xpcError(xpc_error::kConnectionInvalid, systemErrorText(error)));
    Acceptor asked;
    {
        const MutexLock guard(lock);
        if (isListening)
            asked = acceptor;
    }
    bool isWelcome = false;
    runAtWall([&] { isWelcome = asked && asked(connection); });
    if (isWelcome)
        connection->resume();
    else
        connection->invalidate();
}

BusXPCListener::BusXPCListener(std::shared_ptr<Buses> buses, QString serviceName, BusKind kind)
    : m_buses(std::move(buses))
    , m_serviceName(std::move(serviceName))
    , m_kind(kind)
    , m_reception(std::make_shared<Reception>())
{
}

BusXPCListener::~BusXPCListener()
{
    end();
}

void BusXPCListener::setAcceptor(Acceptor acceptor)
{
    const MutexLock guard(m_reception->lock);
    m_reception->acceptor = std::move(acceptor);
}

XPCEndpoint BusXPCListener::endpoint() const
{
    return m_router ? XPCEndpoint{m_router->bus().uniqueName(), m_prefix} : XPCEndpoint();
}

int BusXPCListener::resume()
{
    int error = m_router ? EALREADY : findBus();
    if (error == 0)
        error = m_serviceName.isNull() ? listenForEndpoint() : listenForService();
    if (error != 0 && error != EALREADY)
        m_router.reset();
    return error;
}

int BusXPCListener::findBus()
{
    int error = 0;
    m_router = m_buses->router(m_kind, error);
    if (!m_router && m_serviceName.isNull()) {
        m_kind = BusKind::System;
        m_router = m_buses->router(m_kind, error);
    }
    return error;
}

int BusXPCListener::listen(const QByteArrayList& names)
{
    {
        const MutexLock guard(m_reception->lock);
        m_reception->isListening = true;
    }
    const auto receive = [reception = m_reception](const std::shared_ptr<BusXPCConnection>& connection) {
        reception->queue.async([reception, connection] { reception->receive(connection); });
    };
    return m_router->listen(m_prefix, names, receive) ? 0 : EEXIST;
}

int BusXPCListener::listenForEndpoint()
{
    m_prefix = m_router->freshPath(bus_names::endpointsOn(m_kind));
    return listen({});
}

/// Its own, and that which the bus can start it by.
QByteArrayList BusXPCListener::busNames() const
{
    QByteArrayList names{bus_names::ofService(m_serviceName)};
    if (const QByteArray starter = bus_names::ofStarter(m_serviceName); !starter.isEmpty())
        names << starter;
    return names;
}

/// Listens first: connections may come with the name.
int BusXPCListener::listenForService()
{
    m_prefix = bus_names::pathOfService(m_serviceName);
    const QByteArrayList names = busNames();
    if (const int error = listen(names); error != 0)
        return error;
    const int error = m_router->bus().requestName(names.constFirst());
    if (error != 0) {
        m_router->stopListening(m_prefix);
        return error;
    }
    // The name that the bus can start it by, last: who waits for that one then asks for the other.
    for (const QByteArray& each : names.sliced(1))
        (void)m_router->bus().requestName(each);
    return 0;
}

void BusXPCListener::invalidate()
{
    end();
}

void BusXPCListener::end()
{
    const std::shared_ptr<BusRouter> router = std::exchange(m_router, nullptr);
    if (!router)
        return;
    {
        const MutexLock guard(m_reception->lock);
        m_reception->isListening = false;
    }
    router->stopListening(m_prefix);
    if (m_serviceName.isNull())
        return;
    for (const QByteArray& each : busNames())
        (void)router->bus().releaseName(each);
}

} // namespace havrel
