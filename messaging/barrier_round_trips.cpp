// SPDX-License-Identifier: MIT
#include "messaging/barrier_round_trips.h"

#include "diagnostics/logr.h"
#include "messaging/component_proxy.h"

#include <utility>

namespace havrel {
namespace {

constexpr ConditionLock::Condition kIdle = 0;
constexpr ConditionLock::Condition kAnswered = 1;
constexpr ConditionLock::Condition kWaiting = 2;

} // namespace

SyncOutcome BarrierRoundTrips::perform(const XPCProxyPtr& proxy, ProxyNumber number)
{
    m_barrierLock.lockWhenCondition(kIdle);
    if (!proxy) {
        m_barrierLock.unlock();
        return {false, invalidConnectionError()};
    }
    m_proxyNumber = number;
    send(proxy);
    m_barrierLock.unlockWithCondition(kWaiting);

    m_barrierLock.lockWhenCondition(kAnswered);
    const std::optional<Error> error = std::exchange(m_proxyError, std::nullopt);
    if (!error)
        m_loggedBarrierError = false;
    m_barrierLock.unlockWithCondition(kIdle);
    return {!error, error};
}

/// With the lock held, which a proxy that refuses the barrier gives back.
void BarrierRoundTrips::send(const XPCProxyPtr& proxy)
{
    try {
        ComponentProxy(proxy).barrier(
            [self = shared_from_this(), roundTrip = ++m_roundTrip] { self->replied(roundTrip); });
    } catch (...) {
        m_barrierLock.unlock();
        throw;
    }
}

/// A reply that comes after an error has ended its wait must not end, or block, a later one.
void BarrierRoundTrips::replied(quint64 roundTrip)
{
    m_barrierLock.lock();
    const bool isAwaited = m_barrierLock.condition() == kWaiting && m_roundTrip == roundTrip;
    m_barrierLock.unlockWithCondition(isAwaited ? kAnswered : m_barrierLock.condition());
}

void BarrierRoundTrips::proxyFailed(ProxyNumber number, const QString& text, const Error& error)
{
    m_barrierLock.lock();
    const bool endsWait = m_barrierLock.condition() == kWaiting && m_proxyNumber == number;
    if (endsWait)
        m_proxyError = error;
    logOnce(text, error);
    m_barrierLock.unlockWithCondition(endsWait ? kAnswered : m_barrierLock.condition());
}

void BarrierRoundTrips::logOnce(const QString& text, const Error& error)
{
    if (!std::exchange(m_loggedBarrierError, true))
        Logr::logError(LogClassification::Debug, text, error);
}

} // namespace havrel
