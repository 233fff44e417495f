// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/xpc_connection.h"
#include "platform/bus_messages.h"

#include <QByteArray>

namespace havrel {

class BusRouter;
class BusXPCConnection;
class Buses;

/// Waits for connections on the message bus: to a service by its well-known name, or to an endpoint.
///
/// Threads: one thread at a time.
class BusXPCListener final : public XPCListener
{
public:
    /// \param serviceName null: an endpoint
    /// \param kind the bus of the service; an endpoint is on the session's bus, or else on the machine's
    BusXPCListener(std::shared_ptr<Buses> buses, QString serviceName, platform::BusKind kind);
    ~BusXPCListener() override;
    BusXPCListener(const BusXPCListener&) = delete;
    BusXPCListener& operator=(const BusXPCListener&) = delete;
    BusXPCListener(BusXPCListener&&) = delete;
    BusXPCListener& operator=(BusXPCListener&&) = delete;

    void setAcceptor(Acceptor acceptor) override;
    [[nodiscard]] int resume() override;
    void invalidate() override;
    [[nodiscard]] XPCEndpoint endpoint() const override;

private:
    struct Reception;

    [[nodiscard]] int findBus();
    [[nodiscard]] int listenForService();
    [[nodiscard]] int listenForEndpoint();
    [[nodiscard]] int listen(const QByteArrayList& names);
    [[nodiscard]] QByteArrayList busNames() const;
    void end();

    const std::shared_ptr<Buses> m_buses;
    const QString m_serviceName;
    platform::BusKind m_kind;
    const std::shared_ptr<Reception> m_reception;
    std::shared_ptr<BusRouter> m_router; // while it listens
    QByteArray m_prefix;
};

} // namespace havrel
