// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/condition_lock.h"
#include "messaging/sync_outcome.h"
#include "messaging/xpc_proxy.h"

#include <QString>

#include <memory>

namespace havrel {

/// Round trips through the proxies of one connection object, one at a time: a barrier is sent, and its reply, or an
/// error of the proxy, ends the wait. Messages arrive in order, so everything that was sent through the same proxy
/// before has been handled when the reply is there.
///
/// Outlives the connection object in the handlers that hold it, so that these can come whenever they like.
///
/// Threads: any thread.
class BarrierRoundTrips : public std::enable_shared_from_this<BarrierRoundTrips>
{
public:
    /// Tells the proxies of a connection object apart, which has a new one after each reconnection.
    using ProxyNumber = quint64;

    /// Sends the barrier and waits, without a time limit, for what ends it. Waits before for its turn.
    ///
    /// \param proxy null: there is no connection, which is the error NSCocoaErrorDomain 4099
    /// \throws Exception "Bug" when the proxy does not know barriers; the next round trip is not hindered
    [[nodiscard]] SyncOutcome perform(const XPCProxyPtr& proxy, ProxyNumber number);

    /// A message to the proxy has failed: ends the round trip that waits on that proxy, if any. The first failure since
    /// the last round trip that succeeded is logged, at Debug.
    ///
    /// \param text of the log line
    void proxyFailed(ProxyNumber number, const QString& text, const Error& error);

private:
    void send(const XPCProxyPtr& proxy);
    void replied(quint64 roundTrip);
    void logOnce(const QString& text, const Error& error);

    /// 0: idle; 2: a round trip waits; 1: its reply or an error has arrived. Guards what follows.
    ConditionLock m_barrierLock{0};
    std::optional<Error> m_proxyError;
    bool m_loggedBarrierError = false;
    quint64 m_roundTrip = 0;       // the present one, or the last
    ProxyNumber m_proxyNumber = 0; // that it goes through
};

} // namespace havrel
