// SPDX-License-Identifier: MIT
#include "messaging/bus_transport.h"

#include <atomic>

namespace havrel {
namespace {

std::atomic<XPCTransport*> s_replaced = nullptr;

/// Never destroyed: its connections may be used until the process goes.
XPCTransport& theBus()
{
    static BusTransport* const s_bus = std::make_unique<BusTransport>().release();
    return *s_bus;
}

} // namespace

XPCTransport& XPCTransport::shared()
{
    XPCTransport* const replaced = s_replaced;
    return replaced ? *replaced : theBus();
}

void XPCTransport::setShared(XPCTransport* transport)
{
    s_replaced = transport;
}

} // namespace havrel
