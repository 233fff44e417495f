// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/error.h"
#include "foundation/thread_annotations.h"
#include "messaging/arrived_message.h"
#include "messaging/reply_queue.h"
#include "messaging/sent_message.h"
#include "messaging/xpc_connection.h"

#include <map>
#include <memory>
#include <vector>

namespace havrel {

/// What the connections of all transports have in common: checking messages against the protocols, waiting for replies,
/// the order of everything on the reply queue, and the end. A transport carries the messages.
///
/// One-way messages that the other end has not handled yet are counted: a sender waits while there are 1,024 of them.
/// Code on a reply queue never waits there, because two ends could then wait for each other; a connection with 65,536
/// of them to an end that hangs becomes invalid.
///
/// The last owner's end is the end of the connection; messages that wait for a reply then get an error.
///
/// Threads: any thread.
class TransportConnection : public XPCConnection, public std::enable_shared_from_this<TransportConnection>
{
public:
    void setRemoteObjectInterface(XPCInterfacePtr interface) override;
    void setExportedInterface(XPCInterfacePtr interface) override;
    void setExportedObject(std::shared_ptr<XPCExportedObject> object) override;
    void setInvalidationHandler(std::function<void()> handler) override;
    void resume() override;
    void invalidate() override;
    [[nodiscard]] XPCProxyPtr remoteObjectProxyWithErrorHandler(ErrorHandler handler) override;

    /// For the connection's proxies: checks, numbers and sends.
    void send(const QByteArray& keywordName, const QVariantList& values, XPCReply reply, const ErrorHandler& failed);

    /// Where everything that belongs to the connection is handled. Suspended until the connection is resumed.
    [[nodiscard]] ReplyQueue& replyQueue() noexcept { return m_queue; }

    // ---- what the carrier tells; on any thread, in the order in which it came

    void messageArrived(ArrivedMessage message);
    void replyArrived(const SentMessagePtr& sent, const QVariantList& values);
    void messageFailed(const SentMessagePtr& sent, const Error& error);
    /// The other end has handled \p count more one-way messages.
    void acknowledged(quint32 count);
    /// The way has been made: what waits to be sent is carried now.
    void opened();
    /// The other end has gone, or cannot be reached.
    void ended(const Error& reason);

protected:
    TransportConnection();

    /// Makes the way to the other end, then tells `opened` or `ended`. Called once, at the first message; must not
    /// wait.
    virtual void open() = 0;
    /// Called one at a time, in the order of sending: must not wait, nor call this connection.
    virtual void carry(const SentMessagePtr& sent) = 0;
    /// As carry: asks the other end to tell (`acknowledged`) when it has handled what was carried until now.
    virtual void askForAcknowledgement(quint32 count) = 0;
    /// Tells the other end, if it is not the one that ended it, and gives up what the way needed. Called once.
    virtual void close() = 0;
    /// A new one, by the same transport; null when that has gone.
    [[nodiscard]] virtual XPCConnectionPtr connectionTo(const XPCEndpoint& endpoint) = 0;

    /// For the destructors of subclasses: ends what has not ended.
    void abandon();
    /// For the side that accepts: it is open already, and lives until it has ended, whoever holds it.
    void keepOpen();
    [[nodiscard]] XPCInterfacePtr exportedInterface() const HAVREL_EXCLUDES(m_lock);

private:
    enum class State { New, Resumed, Opening, Open, Ended };
    using Waiting = std::map<quint64, SentMessagePtr>;

    [[nodiscard]] SentMessagePtr checked(const QByteArray& keywordName, const QVariantList& values) const;
    [[nodiscard]] bool sendOrKeep(const SentMessagePtr& sent) HAVREL_EXCLUDES(m_lock);
    void waitForRoom() HAVREL_REQUIRES(m_lock);
    [[nodiscard]] bool isFull() const HAVREL_REQUIRES(m_lock);
    void dispatch(const SentMessagePtr& sent) HAVREL_REQUIRES(m_lock);
    [[nodiscard]] bool take(const SentMessagePtr& sent) HAVREL_EXCLUDES(m_lock);
    void handle(const ArrivedMessage& arrived);
    void handleReply(const SentMessage& sent, const QVariantList& values);
    [[nodiscard]] std::optional<QVariantList> received(const SentMessage& sent, const QVariantList& values);
    void failLater(const SentMessagePtr& sent, const Error& error);
    void finish(bool here, const Error& reason);
    [[nodiscard]] bool markEnded(bool here, const Error& reason) HAVREL_EXCLUDES(m_lock);
    [[nodiscard]] Waiting takeWaiting() HAVREL_EXCLUDES(m_lock);
    void tellTheEnd();
    static void failAll(const Waiting& waiting, const Error& reason);

    ReplyQueue m_queue;
    mutable Mutex m_lock;
    ConditionVariable m_room;
    State m_state HAVREL_GUARDED_BY(m_lock) = State::New;
    bool m_isResumed HAVREL_GUARDED_BY(m_lock) = false;
    bool m_endedHere HAVREL_GUARDED_BY(m_lock) = false;
    bool m_hasToldTheEnd HAVREL_GUARDED_BY(m_lock) = false;
    Error m_reason HAVREL_GUARDED_BY(m_lock);
    XPCInterfacePtr m_remoteInterface HAVREL_GUARDED_BY(m_lock);
    XPCInterfacePtr m_exportedInterface HAVREL_GUARDED_BY(m_lock);
    std::shared_ptr<XPCExportedObject> m_exportedObject HAVREL_GUARDED_BY(m_lock);
    std::function<void()> m_invalidationHandler HAVREL_GUARDED_BY(m_lock);
    quint64 m_lastNumber HAVREL_GUARDED_BY(m_lock) = 0;
    Waiting m_waiting HAVREL_GUARDED_BY(m_lock);                           // for a reply
    std::vector<SentMessagePtr> m_unsent HAVREL_GUARDED_BY(m_lock);        // until the way is made
    quint32 m_outstanding HAVREL_GUARDED_BY(m_lock) = 0;                   // one-way messages not known to be handled
    quint32 m_unasked HAVREL_GUARDED_BY(m_lock) = 0;                       // those after the last that was asked about
    std::shared_ptr<TransportConnection> m_kept HAVREL_GUARDED_BY(m_lock); // itself, until it has ended
};

} // namespace havrel
