// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/transport_connection.h"
#include "messaging/xpc_endpoint.h"
#include "platform/bus_messages.h"
#include "platform/bus_tree.h"

namespace havrel {

class BusRouter;
class Buses;

/// One end of a connection on the message bus: an object path that both ends serve, bound to the unique name of the
/// peer, whose effective user was checked.
///
/// Threads: any thread.
class BusXPCConnection final : public TransportConnection
{
public:
    /// Who is to be at the other end.
    struct Target
    {
        QString serviceName{};  ///< null: the endpoint is
        XPCEndpoint endpoint{}; ///< where there is no service name
        platform::BusKind kind = platform::BusKind::Session;
    };

    BusXPCConnection(std::shared_ptr<Buses> buses, Target target);
    ~BusXPCConnection() override;
    BusXPCConnection(const BusXPCConnection&) = delete;
    BusXPCConnection& operator=(const BusXPCConnection&) = delete;
    BusXPCConnection(BusXPCConnection&&) = delete;
    BusXPCConnection& operator=(BusXPCConnection&&) = delete;

    /// One that \p peer has begun. It lives until it has ended.
    [[nodiscard]] static std::shared_ptr<BusXPCConnection>
    accepted(const std::shared_ptr<BusRouter>& router, const QByteArray& peer, const QByteArray& path);
    /// Asks the bus about the peer, and waits.
    ///
    /// \return 0 or an errno value: the peer has gone, EPERM when it is another user's on the session's bus
    [[nodiscard]] int checkPeer();

    /// A call of the peer, on the event thread.
    void arrived(const platform::BusTreeCall& call);

    [[nodiscard]] QString serviceName() const override { return m_target.serviceName; }
    [[nodiscard]] std::optional<uid_t> effectiveUserIdentifier() const override;
    [[nodiscard]] QString description() const override;

protected:
    void open() override;
    void carry(const SentMessagePtr& sent) override;
    void askForAcknowledgement(quint32 count) override;
    void close() override;
    [[nodiscard]] XPCConnectionPtr connectionTo(const XPCEndpoint& endpoint) override;

private:
    /// From here to there.
    struct Way
    {
        std::shared_ptr<BusRouter> router;
        QByteArray peer;
        QByteArray path;
    };

    [[nodiscard]] std::shared_ptr<BusXPCConnection> self();
    [[nodiscard]] Way way() const HAVREL_EXCLUDES(m_wayLock);
    [[nodiscard]] bool setWay(Way way) HAVREL_EXCLUDES(m_wayLock);
    [[nodiscard]] int pin();
    [[nodiscard]] int findOwner(BusRouter& router, QByteArray& owner) const;
    [[nodiscard]] int startOwner(BusRouter& router, QByteArray& owner) const;
    [[nodiscard]] bool isToEndpoint() const { return m_target.serviceName.isNull(); }
    [[nodiscard]] bool isRightUser(uid_t user) const;
    [[nodiscard]] QByteArray prefix() const;
    [[nodiscard]] platform::BusCall callOf(const QByteArray& interface, const QByteArray& member) const;
    void describe(const platform::BusTreeCall& call);

    const std::shared_ptr<Buses> m_buses; // null for one that was accepted
    const Target m_target;
    mutable Mutex m_wayLock;
    Way m_way HAVREL_GUARDED_BY(m_wayLock);
    bool m_isClosed HAVREL_GUARDED_BY(m_wayLock) = false;
    std::optional<uid_t> m_user HAVREL_GUARDED_BY(m_wayLock);
};

} // namespace havrel
