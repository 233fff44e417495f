// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/xpc_connection.h"

namespace havrel {

class TransportConnection;

/// The other end of a connection of any transport. Keeps the connection.
///
/// Threads: any thread.
class TransportProxy final : public XPCProxy
{
public:
    TransportProxy(std::shared_ptr<TransportConnection> connection, XPCConnection::ErrorHandler handler);

    void send(const QByteArray& keywordName, const QVariantList& values, XPCReply reply) override;

private:
    const std::shared_ptr<TransportConnection> m_connection;
    const XPCConnection::ErrorHandler m_handler;
};

} // namespace havrel
