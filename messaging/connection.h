// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"
#include "messaging/barrier_round_trips.h"
#include "messaging/sync_outcome.h"
#include "messaging/xpc_connection.h"

#include <QMetaType>
#include <QString>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

namespace havrel {

class HVPublishedConnection;
class HVSwitchboardConnection;
class MonitorProxy;
class Protocol;
class SchedulerProxy;
class SwitchboardProxy;

/// Names of what is posted to the default notification center, on the main queue, about an HVConnection. Its object is
/// HVConnection::asNotificationObject.
namespace connection_notification {
inline constexpr QLatin1StringView kDidConnect{"HVConnectionDidConnect"};           ///< it has a new proxy
inline constexpr QLatin1StringView kWasDisconnected{"HVConnectionWasDisconnected"}; ///< its connection was dropped
} // namespace connection_notification

/// A way to a component of the product. Connects when it is first used, checks that the other end answers before it
/// trusts it, hands out one proxy, and connects anew after a disconnection whenever it is used again. What makes the
/// candidates for a connection is the matter of subclasses.
///
/// Connecting blocks until the other end has answered a barrier, without a time limit (an end that dies ends the wait);
/// meanwhile every other use of the same object waits. So code that runs on the connection's reply queue (replies,
/// messages from the other end) may send, but must not wait for a round trip on the same connection.
///
/// Held by std::shared_ptr.
///
/// Threads: any thread, except for what says otherwise.
class HVConnection : public std::enable_shared_from_this<HVConnection>
{
public:
    /// \param options xpc_options. \selector initWithXPCOptions:protocol:
    HVConnection(quint32 options, const Protocol& protocol);
    /// \selector initWithXPCOptions:interface:
    HVConnection(quint32 options, XPCInterfacePtr interface);
    /// Drops the connection, without a notification. \selector dealloc
    virtual ~HVConnection();
    HVConnection(const HVConnection&) = delete;
    HVConnection& operator=(const HVConnection&) = delete;
    HVConnection(HVConnection&&) = delete;
    HVConnection& operator=(HVConnection&&) = delete;

    // ---- the shared connections, which live as long as the process (messaging/shared_connections.h)

    /// \selector +switchboardConnection
    [[nodiscard]] static std::shared_ptr<HVSwitchboardConnection> switchboardConnection();
    /// Connects if needed; nobody when that fails. \selector +switchboard
    [[nodiscard]] static SwitchboardProxy switchboard();
    /// Threads: the main thread only, the first time. \selector +schedulerConnection
    [[nodiscard]] static std::shared_ptr<HVPublishedConnection> schedulerConnection();
    /// \selector +schedulerInterface
    [[nodiscard]] static XPCInterfacePtr schedulerInterface();
    /// Connects if needed; nobody when that fails. \selector +scheduler
    [[nodiscard]] static SchedulerProxy scheduler();
    /// Threads: the main thread only, the first time. \selector +monitorConnection
    [[nodiscard]] static std::shared_ptr<HVPublishedConnection> monitorConnection();
    /// \selector +monitorInterface
    [[nodiscard]] static XPCInterfacePtr monitorInterface();
    /// Connects if needed; nobody when that fails. \selector +monitor
    [[nodiscard]] static MonitorProxy monitor();
    /// A new one. \selector +connectionWithPublishedName:options:protocol:
    [[nodiscard]] static std::shared_ptr<HVPublishedConnection>
    connectionWithPublishedName(const QString& name, quint32 options, const Protocol& protocol);
    /// \selector +connectionWithPublishedName:options:interface:
    [[nodiscard]] static std::shared_ptr<HVPublishedConnection>
    connectionWithPublishedName(const QString& name, quint32 options, XPCInterfacePtr interface);

    // ---- talking

    /// Connects if needed. \return the proxy; null when no connection could be made. \selector serviceProxy
    [[nodiscard]] XPCProxyPtr serviceProxy();
    /// Whether a round trip succeeds. Connects if needed, blocks. \selector ping
    [[nodiscard]] bool ping();
    /// One round trip: when it has succeeded, the other end has handled everything sent before. Connects if needed,
    /// blocks. Without a connection the error is NSCocoaErrorDomain 4099. \selector syncReturningError:
    [[nodiscard]] SyncOutcome syncReturningError();
    /// Calls \p block with the proxy, which it sends messages to, then makes a round trip: so the messages have been
    /// handled, and their replies have come, if this succeeds. Connects if needed, blocks.
    ///
    /// A connection that is lost meanwhile keeps its proxy until the queue on which it was made hears of the loss, so
    /// the round trip fails. Only where somebody disconnects between block and round trip, that one connects anew, and
    /// proves nothing about the block's messages.
    ///
    /// \return failure without an error when there is no proxy; then the block has not run
    /// \selector performSynchronousBlock:
    /// \selector performSynchronousBlock:returningError:
    [[nodiscard]] SyncOutcome performSynchronousBlock(const std::function<void(const XPCProxyPtr& proxy)>& block);

    // ---- being connected

    /// Whether there is a live connection. \selector connected
    [[nodiscard]] bool connected() const;
    /// Makes and verifies a connection if there is none. Blocks. \selector connect
    void connect();
    /// Drops the live connection, whichever it is. \return whether there was one. \selector disconnect
    bool disconnect();
    /// Drops the live connection if it is \p connection, or if \p connection is null. \return whether it did.
    /// \selector disconnect:
    bool disconnect(const XPCConnectionPtr& connection);

    // ---- properties

    [[nodiscard]] XPCInterfacePtr serviceInterface() const; ///< \selector serviceInterface
    /// For the live connection as well as for later ones. \selector setServiceInterface:
    void setServiceInterface(XPCInterfacePtr interface);
    [[nodiscard]] std::function<void()> invalidationHandler() const; ///< \selector invalidationHandler
    /// Called after the live connection was lost, not for disconnect(), on the queue on which it was made: a serial
    /// queue, else the main queue. Empty: nobody. \selector setInvalidationHandler:
    void setInvalidationHandler(std::function<void()> handler);
    /// Whom it is for, in logs; null when it has no name. \selector identifier
    [[nodiscard]] virtual QString identifier() const;
    /// Whether a connection without an alternative is verified before it is used, true at first. Where there are
    /// alternatives, each is. \selector verifyConnection
    [[nodiscard]] bool verifyConnection() const;
    void setVerifyConnection(bool verify); ///< \selector setVerifyConnection:

    /// What its notifications are posted with, to be handed to NotificationCenter::addObserver; keeps it alive.
    [[nodiscard]] QVariant asNotificationObject();

protected:
    /// Called for each new proxy; must not ask for serviceProxy(). Posts that it has connected.
    /// \selector setupProxy:
    virtual void setupProxy(const XPCProxyPtr& proxy) HAVREL_REQUIRES(m_connectionLock);
    /// Ends the live connection without a notification. \selector disconnect_Internal
    virtual void disconnect_Internal() HAVREL_REQUIRES(m_connectionLock);
    /// A new candidate, not resumed; null for none, as here. \selector makeConnection
    [[nodiscard]] virtual XPCConnectionPtr makeConnection();
    /// The candidates, the preferred one first: here the one of makeConnection, if any. \selector makeConnections
    [[nodiscard]] virtual std::vector<XPCConnectionPtr> makeConnections();

    /// What the destructor of the base does; called before by the destructor of each subclass that overrides
    /// disconnect_Internal or identifier, as long as these are still in force.
    void dealloc();

    [[nodiscard]] quint32 connectionOptions() const noexcept { return m_connectionOptions; }
    /// Null while disconnected.
    [[nodiscard]] const XPCConnectionPtr& liveConnection() const HAVREL_REQUIRES(m_connectionLock)
    {
        return m_connection;
    }

    /// Held while a connection is made and verified. Not recursive.
    mutable Mutex m_connectionLock;

private:
    struct FailedCandidate;
    struct NumberedProxy;

    [[nodiscard]] NumberedProxy connectedProxy();
    [[nodiscard]] XPCProxyPtr makeProxy() HAVREL_REQUIRES(m_connectionLock);
    void accept(const XPCConnectionPtr& candidate) HAVREL_REQUIRES(m_connectionLock);
    void logFailures(const std::vector<FailedCandidate>& failures) HAVREL_REQUIRES(m_connectionLock);
    void wasInvalidated(const XPCConnectionPtr& connection);
    void announce(QLatin1StringView notification);

    XPCConnectionPtr m_connection HAVREL_GUARDED_BY(m_connectionLock);
    const quint32 m_connectionOptions;
    XPCInterfacePtr m_connectionInterface HAVREL_GUARDED_BY(m_connectionLock);
    XPCProxyPtr m_barrierProxy HAVREL_GUARDED_BY(m_connectionLock);
    BarrierRoundTrips::ProxyNumber m_proxyNumber HAVREL_GUARDED_BY(m_connectionLock) = 0; // of the latest proxy
    std::shared_ptr<BarrierRoundTrips> m_roundTrips =
        std::make_shared<BarrierRoundTrips>(); // null once it is destroyed
    bool m_loggedConnectionError HAVREL_GUARDED_BY(m_connectionLock) = false;
    std::function<void()> m_invalidationHandler HAVREL_GUARDED_BY(m_connectionLock);
    std::atomic<bool> m_verifyConnection{true};
    bool m_isDeallocated = false; // only while it is destroyed
    const QString m_identifier;   // nobody sets one
};

using HVConnectionPtr = std::shared_ptr<HVConnection>;

} // namespace havrel
