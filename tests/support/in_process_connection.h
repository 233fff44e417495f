// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/transport_connection.h"
#include "tests/support/in_process_transport.h"

#include <atomic>

namespace havrel::tests {

/// One end of a connection within the process.
///
/// Threads: any thread.
class InProcessConnection final : public TransportConnection
{
public:
    /// \param serviceName null: made by an endpoint, or accepted
    InProcessConnection(std::shared_ptr<InProcessPlace> place, QString serviceName);
    ~InProcessConnection() override;
    InProcessConnection(const InProcessConnection&) = delete;
    InProcessConnection& operator=(const InProcessConnection&) = delete;
    InProcessConnection(InProcessConnection&&) = delete;
    InProcessConnection& operator=(InProcessConnection&&) = delete;

    [[nodiscard]] QString serviceName() const override { return m_serviceName; }
    [[nodiscard]] std::optional<uid_t> effectiveUserIdentifier() const override;
    [[nodiscard]] QString description() const override;

    /// Makes this the accepting end of a connection from \p caller.
    void accept(const std::shared_ptr<InProcessConnection>& caller);
    [[nodiscard]] bool isEnded() const noexcept { return m_closed; }

protected:
    void open() override;
    void carry(const SentMessagePtr& sent) override;
    void askForAcknowledgement(quint32 count) override;
    void close() override;
    [[nodiscard]] XPCConnectionPtr connectionTo(const XPCEndpoint& endpoint) override;

private:
    [[nodiscard]] std::shared_ptr<InProcessConnection> peer() const HAVREL_EXCLUDES(m_peerLock);
    void setPeer(const std::shared_ptr<InProcessConnection>& peer) HAVREL_EXCLUDES(m_peerLock);
    void carryTo(const std::shared_ptr<InProcessConnection>& peer, const SentMessagePtr& sent);

    const std::shared_ptr<InProcessPlace> m_place;
    const QString m_serviceName;
    std::atomic<bool> m_closed = false;
    bool m_isAccepted = false;
    mutable Mutex m_peerLock;
    std::weak_ptr<InProcessConnection> m_peer HAVREL_GUARDED_BY(m_peerLock);
};

} // namespace havrel::tests
