// SPDX-License-Identifier: MIT
#include "messaging/connection.h"

#include "diagnostics/logr.h"
#include "foundation/description.h"
#include "foundation/dispatch.h"
#include "foundation/notification_center.h"
#include "messaging/component_proxy.h"
#include "messaging/verification.h"

#include <QCoreApplication>

#include <utility>

namespace havrel {
namespace {

QString textOf(const QString& name)
{
    return descriptionOf(name.isNull() ? QVariant() : QVariant(name));
}

/// On \p queue; on the main queue when that has ended, and in a program without one on the global queue.
void runOn(const QueueReference& queue, const std::function<void()>& block)
{
    if (queue.async(block))
        return;
    if (QCoreApplication::instance())
        onMainQueue(block);
    else
        onGlobalQueue(block);
}

} // namespace

struct HVConnection::FailedCandidate
{
    Error error;
    XPCConnectionPtr candidate;
};

struct HVConnection::NumberedProxy
{
    XPCProxyPtr proxy;
    BarrierRoundTrips::ProxyNumber number;
};

HVConnection::HVConnection(quint32 options, const Protocol& protocol)
    : HVConnection(options, std::make_shared<const XPCInterface>(protocol))
{
}

HVConnection::HVConnection(quint32 options, XPCInterfacePtr interface)
    : m_connectionOptions(options)
    , m_connectionInterface(std::move(interface))
{
}

HVConnection::~HVConnection()
{
    HVConnection::dealloc();
}

void HVConnection::dealloc()
{
    if (std::exchange(m_isDeallocated, true))
        return;
    m_roundTrips.reset(); // before anything fails by the end of the connection: nobody is there to be told
    XPCProxyPtr proxy;    // goes outside the lock, like the connection
    XPCConnectionPtr connection;
    const MutexLock guard(m_connectionLock);
    proxy = std::exchange(m_barrierProxy, nullptr);
    connection = m_connection;
    disconnect_Internal();
}

// ---- connecting

void HVConnection::connect()
{
    std::vector<FailedCandidate> failures; // what has failed goes outside the lock
    std::vector<XPCConnectionPtr> candidates;
    const MutexLock guard(m_connectionLock);
    if (m_connection)
        return;
    m_barrierProxy.reset();
    candidates = makeConnections();
    const bool mustVerify = m_verifyConnection || candidates.size() >= 2;
    for (const XPCConnectionPtr& candidate : candidates) {
        candidate->setRemoteObjectInterface(m_connectionInterface);
        candidate->resume();
        const std::optional<Error> error = mustVerify ? verificationErrorOf(*candidate) : std::nullopt;
        if (!error) {
            if (mustVerify)
                m_loggedConnectionError = false;
            accept(candidate);
            return;
        }
        candidate->invalidate();
        failures.push_back({*error, candidate});
    }
    logFailures(failures);
}

/// The handler is held by the candidate, so it must not hold either in return.
void HVConnection::accept(const XPCConnectionPtr& candidate)
{
    m_connection = candidate;
    candidate->setInvalidationHandler([self = weak_from_this(),
                                       invalid = std::weak_ptr<XPCConnection>(candidate),
                                       queue = QueueReference::current()] {
        runOn(queue, [self, invalid] {
            const HVConnectionPtr connection = self.lock();
            if (connection)
                connection->wasInvalidated(invalid.lock());
        });
    });
}

/// \param connection null when it has gone: then it is not the live one, and must not be taken for "whichever it is"
void HVConnection::wasInvalidated(const XPCConnectionPtr& connection)
{
    if (!connection || !disconnect(connection))
        return;
    if (const auto handler = invalidationHandler())
        handler();
}

void HVConnection::logFailures(const std::vector<FailedCandidate>& failures)
{
    if (failures.empty() || m_loggedConnectionError)
        return;
    for (const FailedCandidate& each : failures) {
        const QString text = QStringLiteral("failed to verify connection %1 with %2");
        Logr::logError(
            LogClassification::Debug, text.arg(textOf(identifier()), each.candidate->description()), each.error);
    }
    m_loggedConnectionError = true;
}

XPCConnectionPtr HVConnection::makeConnection()
{
    return nullptr;
}

std::vector<XPCConnectionPtr> HVConnection::makeConnections()
{
    XPCConnectionPtr connection = makeConnection();
    if (!connection)
        return {};
    return {std::move(connection)};
}

bool HVConnection::connected() const
{
    const MutexLock guard(m_connectionLock);
    return m_connection != nullptr;
}

// ---- disconnecting

bool HVConnection::disconnect()
{
    return disconnect(nullptr);
}

bool HVConnection::disconnect(const XPCConnectionPtr& connection)
{
    XPCProxyPtr proxy; // goes outside the lock, like the connection: its end may wait for handlers
    XPCConnectionPtr dropped;
    {
        const MutexLock guard(m_connectionLock);
        if (connection && connection != m_connection)
            return false;
        proxy = std::exchange(m_barrierProxy, nullptr);
        dropped = m_connection;
        if (!dropped)
            return false;
        disconnect_Internal();
    }
    announce(connection_notification::kWasDisconnected);
    return true;
}

void HVConnection::disconnect_Internal()
{
    const QString text = QStringLiteral("%1 invalidating connection (%2)");
    Logr::debugMessage(text.arg(QStringLiteral("-[HVConnection disconnect_Internal]"), textOf(identifier())));
    const XPCConnectionPtr connection = std::exchange(m_connection, nullptr);
    if (!connection)
        return;
    connection->setInvalidationHandler({});
    connection->invalidate();
}

// ---- talking

XPCProxyPtr HVConnection::serviceProxy()
{
    return connectedProxy().proxy;
}

HVConnection::NumberedProxy HVConnection::connectedProxy()
{
    connect();
    const MutexLock guard(m_connectionLock);
    if (!m_barrierProxy && m_connection) {
        m_barrierProxy = makeProxy();
        if (m_barrierProxy)
            setupProxy(m_barrierProxy);
    }
    return {m_barrierProxy, m_proxyNumber};
}

XPCProxyPtr HVConnection::makeProxy()
{
    const QString text = QStringLiteral("message from %1 to %2 failed");
    return m_connection->remoteObjectProxyWithErrorHandler(
        [roundTrips = std::weak_ptr(m_roundTrips), // nobody is told once this has gone
         number = ++m_proxyNumber,
         line = text.arg(textOf(m_identifier), textOf(m_connection->serviceName()))](const Error& error) {
            if (const auto present = roundTrips.lock())
                present->proxyFailed(number, line, error);
        });
}

void HVConnection::setupProxy(const XPCProxyPtr& /*proxy*/)
{
    announce(connection_notification::kDidConnect);
}

void HVConnection::announce(QLatin1StringView notification)
{
    onMainQueue([self = shared_from_this(), notification] {
        NotificationCenter::defaultCenter().post(notification, self->asNotificationObject());
    });
}

QVariant HVConnection::asNotificationObject()
{
    return QVariant::fromValue(shared_from_this());
}

bool HVConnection::ping()
{
    return syncReturningError().succeeded;
}

SyncOutcome HVConnection::syncReturningError()
{
    const NumberedProxy connected = connectedProxy();
    return m_roundTrips->perform(connected.proxy, connected.number);
}

SyncOutcome HVConnection::performSynchronousBlock(const std::function<void(const XPCProxyPtr& proxy)>& block)
{
    const XPCProxyPtr proxy = serviceProxy();
    if (!proxy)
        return {};
    block(proxy);
    return syncReturningError();
}

// ---- properties

XPCInterfacePtr HVConnection::serviceInterface() const
{
    const MutexLock guard(m_connectionLock);
    return m_connectionInterface;
}

void HVConnection::setServiceInterface(XPCInterfacePtr interface)
{
    const MutexLock guard(m_connectionLock);
    m_connectionInterface = std::move(interface);
    if (m_connection)
        m_connection->setRemoteObjectInterface(m_connectionInterface);
}

std::function<void()> HVConnection::invalidationHandler() const
{
    const MutexLock guard(m_connectionLock);
    return m_invalidationHandler;
}

void HVConnection::setInvalidationHandler(std::function<void()> handler)
{
    const MutexLock guard(m_connectionLock);
    m_invalidationHandler.swap(handler); // what it holds goes outside the lock
}

QString HVConnection::identifier() const
{
    return m_identifier;
}

bool HVConnection::verifyConnection() const
{
    return m_verifyConnection;
}

void HVConnection::setVerifyConnection(bool verify)
{
    m_verifyConnection = verify;
}

} // namespace havrel
