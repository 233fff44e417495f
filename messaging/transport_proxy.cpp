// SPDX-License-Identifier: MIT
#include "messaging/transport_proxy.h"

#include "messaging/transport_connection.h"

namespace havrel {

TransportProxy::TransportProxy(std::shared_ptr<TransportConnection> connection, XPCConnection::ErrorHandler handler)
    : m_connection(std::move(connection))
    , m_handler(std::move(handler))
{
}

void TransportProxy::send(const QByteArray& keywordName, const QVariantList& values, XPCReply reply)
{
    m_connection->send(keywordName, values, std::move(reply), m_handler);
}

} // namespace havrel
