// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"
#include "messaging/reply_queue.h"
#include "tests/support/in_process_transport.h"

#include <optional>

namespace havrel::tests {

class InProcessConnection;

/// Where connections go: a service or an endpoint, with what is to go wrong there.
///
/// Threads: any thread.
class InProcessPlace : public std::enable_shared_from_this<InProcessPlace>
{
public:
    InProcessPlace(InProcessTransport& transport, QString name)
        : m_transport(transport)
        , m_name(std::move(name))
    {
    }

    [[nodiscard]] InProcessTransport& transport() const noexcept { return m_transport; }
    [[nodiscard]] const QString& name() const noexcept { return m_name; }

    /// \return false when it is served already
    [[nodiscard]] bool listen(std::shared_ptr<XPCListener::Acceptor> acceptor);
    void stopListening();
    /// Makes the other end of \p caller and has the listener asked about it. \return null: nobody serves
    [[nodiscard]] std::shared_ptr<InProcessConnection> admit(const std::shared_ptr<InProcessConnection>& caller);

    void setRefusing(bool refusing);
    void addFault(const QByteArray& keywordName, Fault fault);
    [[nodiscard]] std::optional<Fault> takeFault(const QByteArray& keywordName);
    void setStopped(bool stopped);
    void setUser(uid_t user);
    [[nodiscard]] uid_t user();
    /// The accepting ends of connections that have not ended.
    [[nodiscard]] std::vector<std::shared_ptr<InProcessConnection>> accepted();
    [[nodiscard]] int made();

private:
    /// Ended ones too, as long as something holds them.
    [[nodiscard]] std::vector<std::shared_ptr<InProcessConnection>> alive() HAVREL_REQUIRES(m_lock);

    InProcessTransport& m_transport;
    const QString m_name;
    ReplyQueue m_queue; // the listener's
    Mutex m_lock;
    std::shared_ptr<XPCListener::Acceptor> m_acceptor HAVREL_GUARDED_BY(m_lock);
    bool m_refusing HAVREL_GUARDED_BY(m_lock) = false;
    bool m_stopped HAVREL_GUARDED_BY(m_lock) = false;
    int m_made HAVREL_GUARDED_BY(m_lock) = 0;
    std::optional<uid_t> m_user HAVREL_GUARDED_BY(m_lock);
    std::vector<std::pair<QByteArray, Fault>> m_faults HAVREL_GUARDED_BY(m_lock);
    std::vector<std::weak_ptr<InProcessConnection>> m_accepted HAVREL_GUARDED_BY(m_lock);
};

} // namespace havrel::tests
