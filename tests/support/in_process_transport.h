// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"
#include "messaging/xpc_connection.h"

#include <map>
#include <memory>
#include <vector>

namespace havrel::tests {

class InProcessPlace;
struct Observers;

/// What goes wrong with one message to a service or an endpoint.
enum class Fault {
    Error,           ///< the message fails; the connection lives on
    LostReply,       ///< it is handled, and its reply never comes
    DeathBefore,     ///< the other end dies before it handles the message
    DeathAfterwards, ///< the other end dies when it has handled the message, with the reply in its hands
};

/// A transport within this process, whose services tests can break. A library of the tests, not of the product: a
/// product has no switches for faults.
///
/// Services and endpoints are told apart by their place: the name of a service (a privileged one has "!" before it),
/// or the path prefix of an endpoint. Queues, order, checks and errors are those of the message bus's connections,
/// which have them from the same class.
///
/// The transport outlives what it has made, or at least their use.
///
/// Threads: any thread.
class InProcessTransport final : public XPCTransport
{
public:
    InProcessTransport();
    ~InProcessTransport() override;
    InProcessTransport(const InProcessTransport&) = delete;
    InProcessTransport& operator=(const InProcessTransport&) = delete;
    InProcessTransport(InProcessTransport&&) = delete;
    InProcessTransport& operator=(InProcessTransport&&) = delete;

    [[nodiscard]] XPCConnectionPtr connectionToService(const QString& name, quint32 options) override;
    [[nodiscard]] XPCConnectionPtr connectionToEndpoint(const XPCEndpoint& endpoint) override;
    [[nodiscard]] std::unique_ptr<XPCListener> listenerForService(const QString& name, quint32 options) override;
    [[nodiscard]] std::unique_ptr<XPCListener> anonymousListener() override;
    void postDistributedNotification(const QString& name, const QString& object) override;
    [[nodiscard]] std::shared_ptr<void>
    addDistributedObserver(const QString& name, std::function<void(const QString& object)> block) override;

    /// The place of a service.
    [[nodiscard]] static QString placeOf(const QString& name, quint32 options = xpc_options::kNone);

    // ---- faults

    /// As if nobody served it, until it is served again: new connections fail, those that there are stay.
    void setRefusing(const QString& place, bool refusing);
    /// Happens to the next message of that name that a caller sends there.
    void atNextMessage(const QString& place, const QByteArray& keywordName, Fault fault);
    /// The far side ends all connections, as when its process dies.
    void invalidateFromFarSide(const QString& place);
    /// The far side handles nothing, as a stopped process; what was sent is handled when it goes on.
    void setStopped(const QString& place, bool stopped);
    /// Who is said to serve it: this process's effective user unless set.
    void setUser(const QString& place, uid_t user);

    // ---- what has happened

    /// Connections that its listener has been asked to accept, ever.
    [[nodiscard]] int connectionsMade(const QString& place);
    /// Those that have not ended.
    [[nodiscard]] int connectionsOpen(const QString& place);

private:
    friend class InProcessConnection;

    [[nodiscard]] std::shared_ptr<InProcessPlace> placeNamed(const QString& place);

    Mutex m_lock;
    std::map<QString, std::shared_ptr<InProcessPlace>> m_places HAVREL_GUARDED_BY(m_lock);
    int m_endpoints HAVREL_GUARDED_BY(m_lock) = 0;
    const std::shared_ptr<Observers> m_observers;
};

} // namespace havrel::tests
