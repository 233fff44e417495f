// SPDX-License-Identifier: MIT
#include "messaging/buses.h"

#include "messaging/bus_router.h"

#include <cerrno>

namespace havrel {

using platform::BusKind;

Buses::Buses(BusAddresses addresses)
    : m_addresses(std::move(addresses))
{
}

Buses::~Buses()
{
    close();
}

std::shared_ptr<BusRouter> Buses::router(BusKind kind, int& error, Side side)
{
    const MutexLock guard(m_lock);
    error = m_closed ? ECANCELED : 0;
    if (m_closed)
        return nullptr;
    auto& router = m_routers[{kind, side}];
    if (router && !router->isLost())
        return router;
    router =
        BusRouter::opened({.address = kind == BusKind::System ? m_addresses.system : m_addresses.session, .kind = kind},
                          weak_from_this(),
                          error);
    if (router && side == Side::Usual && m_opened)
        m_opened(kind, *router);
    return router;
}

void Buses::close()
{
    std::map<Key, std::shared_ptr<BusRouter>> routers;
    {
        const MutexLock guard(m_lock);
        m_closed = true;
        m_opened = nullptr;
        routers.swap(m_routers);
    }
    for (const auto& [key, router] : routers)
        if (router)
            router->close();
}

void Buses::setOpened(std::function<void(BusKind kind, BusRouter& router)> opened)
{
    const MutexLock guard(m_lock);
    m_opened = std::move(opened);
}

} // namespace havrel
