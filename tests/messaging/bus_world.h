// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/bus_transport.h"
#include "tests/support/private_bus.h"

namespace havrel::tests {

/// Both ends on a real message bus of the test's own, each with a connection of its own. There is no system bus.
class BusWorld
{
public:
    [[nodiscard]] XPCTransport& caller() { return m_caller; }
    [[nodiscard]] XPCTransport& server() { return m_server; }
    [[nodiscard]] BusTransport& callersBus() { return m_caller; }
    [[nodiscard]] BusTransport& serversBus() { return m_server; }
    [[nodiscard]] PrivateBus& bus() { return m_bus; }

private:
    [[nodiscard]] BusAddresses addresses() const { return {.session = m_bus.address(), .system = "unix:path=/none"}; }

    PrivateBus m_bus;
    BusTransport m_caller{addresses()};
    BusTransport m_server{addresses()};
};

/// Both ends in one process, which connects to a service of its own.
class OneProcessBusWorld
{
public:
    [[nodiscard]] XPCTransport& caller() { return m_transport; }
    [[nodiscard]] XPCTransport& server() { return m_transport; }

private:
    PrivateBus m_bus;
    BusTransport m_transport{{.session = m_bus.address(), .system = "unix:path=/none"}};
};

} // namespace havrel::tests
