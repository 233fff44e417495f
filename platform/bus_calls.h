// SPDX-License-Identifier: MIT
#pragma once

#include "platform/bus_loop.h"
#include "platform/bus_messages.h"

namespace havrel::platform {

/// A call that waits for what comes back.
///
/// Threads: one thread at a time.
class HeldCall final : public BusHeld
{
public:
    HeldCall(BusLoop& loop, BusReplyHandler handler)
        : m_loop(loop)
        , m_handler(std::move(handler))
    {
    }
    /// Sends \p call; \p loop keeps what waits. A call that cannot be sent is answered at once.
    static void send(BusLoop& loop, const BusCall& call, BusReplyHandler handler);

    void lost(int error) override;

private:
    static int answered(sd_bus_message* message, void* self, sd_bus_error* error);
    [[nodiscard]] int start(const BusCall& call);

    BusLoop& m_loop;
    BusReplyHandler m_handler;
    OwnedBusSlot m_slot;
    quint64 m_number = 0;
};

/// Sends \p call without asking for an answer.
///
/// \return 0 or an errno value.
///
/// Threads: one thread at a time.
[[nodiscard]] int sendOneWay(BusLoop& loop, const BusCall& call);

/// Sends \p signal to everybody who listens.
///
/// \return 0 or an errno value.
///
/// Threads: one thread at a time.
[[nodiscard]] int sendSignal(BusLoop& loop, const BusBroadcast& signal);

/// A rule by which signals are caught.
///
/// Threads: one thread at a time.
class HeldMatch final : public BusHeld
{
public:
    /// \param installed is told 0 or an errno value, once the bus has taken the rule or refused it
    HeldMatch(BusSignalHandler handler, std::function<void(int error)> installed);

    /// \return 0 or an errno value; \p installed is not told then
    [[nodiscard]] int add(sd_bus* bus, const QByteArray& rule);
    void lost(int error) override;

private:
    static int caught(sd_bus_message* message, void* self, sd_bus_error* error);
    static int taken(sd_bus_message* message, void* self, sd_bus_error* error);

    std::shared_ptr<const BusSignalHandler> m_handler; // shared with a call that ends its own match
    std::function<void(int error)> m_installed;
    OwnedBusSlot m_slot;
};

} // namespace havrel::platform
