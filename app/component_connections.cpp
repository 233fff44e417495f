// SPDX-License-Identifier: MIT
#include "app/component_connections.h"

#include "messaging/published_connection.h"

namespace havrel {

ComponentConnections sharedComponentConnections()
{
    return {.monitor = HVConnection::monitorConnection, .scheduler = HVConnection::schedulerConnection};
}

} // namespace havrel
