// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/buses.h"
#include "messaging/xpc_connection.h"

namespace havrel {

class BusNotifications;

/// Connections over the message bus.
///
/// What belongs to one connection is handled in order on its own reply queue; reply queues share a few threads. Waits
/// have no time limit, but what cannot come any more fails at once: a service that is not there, a process that has
/// died, a bus that has gone.
///
/// Threads: any thread.
class BusTransport final : public XPCTransport
{
public:
    explicit BusTransport(BusAddresses addresses = {});
    ~BusTransport() override;
    BusTransport(const BusTransport&) = delete;
    BusTransport& operator=(const BusTransport&) = delete;
    BusTransport(BusTransport&&) = delete;
    BusTransport& operator=(BusTransport&&) = delete;

    /// A name that begins with digits in its last element ("com.havrel.switchboard.1000") and has no owner is started
    /// as "com.havrel.Switchboard", and then asked for again.
    [[nodiscard]] XPCConnectionPtr connectionToService(const QString& name, quint32 options) override;
    [[nodiscard]] XPCConnectionPtr connectionToEndpoint(const XPCEndpoint& endpoint) override;
    [[nodiscard]] std::unique_ptr<XPCListener> listenerForService(const QString& name, quint32 options) override;
    [[nodiscard]] std::unique_ptr<XPCListener> anonymousListener() override;
    void postDistributedNotification(const QString& name, const QString& object) override;
    [[nodiscard]] std::shared_ptr<void>
    addDistributedObserver(const QString& name, std::function<void(const QString& object)> block) override;

    [[nodiscard]] Buses& buses() noexcept { return *m_buses; }

private:
    const std::shared_ptr<Buses> m_buses;
    const std::shared_ptr<BusNotifications> m_notifications;
};

} // namespace havrel
