// SPDX-License-Identifier: MIT
#include "messaging/transport_connection.h"

#include "diagnostics/exception.h"
#include "foundation/dispatch.h"
#include "messaging/carried_value.h"
#include "messaging/remote_objects.h"
#include "messaging/transport_proxy.h"
#include "messaging/xpc_endpoint.h"
#include "messaging/xpc_error.h"

#include <utility>

namespace havrel {
namespace {

constexpr quint32 kMostOutstanding = 1'024;
constexpr quint32 kMostOnQueues = 65'536;
constexpr quint32 kAskedAfter = 256; // one-way messages

[[noreturn]] void raiseBug(const QByteArray& keywordName, const char* problem)
{
    HVException::exceptionWithName(exception_name::kBug, QString::fromLatin1(problem))
        .setMessage(QString::fromLatin1(keywordName))
        .raise();
}

void callHandler(const XPCConnection::ErrorHandler& handler, const Error& error)
{
    if (handler)
        runAtWall([&] { handler(error); });
}

/// Lets \p object handle a message. A sender that waits although the message has no reply block is told when that is
/// done; most do not wait.
void handOver(XPCExportedObject& object,
              const ProtocolMessage& message,
              const QVariantList& values,
              const std::shared_ptr<ReplyDuty>& duty)
{
    if (!duty && !message.answers)
        return runAtWall([&] { object.received({message.keywordName, values}); });
    const XPCReply reply = replyWith(duty, message);
    runAtWall([&] {
        object.received({message.keywordName, values, message.answers ? reply : XPCReply()});
        if (!message.answers)
            reply({});
    });
}

/// What \p protocol says of a message, when it is declared where the sender thinks it is.
const ProtocolMessage* declared(const Protocol& protocol, const ArrivedMessage& arrived)
{
    const Protocol* declarer = protocol.declarerOf(arrived.keywordName);
    if (!declarer || (!arrived.protocolName.isEmpty() && declarer->name() != arrived.protocolName))
        return nullptr;
    return declarer->messageNamed(arrived.keywordName);
}

bool hasItsTypes(const ProtocolMessage& message, const ArrivedMessage& arrived)
{
    return !arrived.signature || *arrived.signature == message.signature;
}

} // namespace

TransportConnection::TransportConnection()
{
    m_queue.suspend();
}

void TransportConnection::setRemoteObjectInterface(XPCInterfacePtr interface)
{
    const MutexLock guard(m_lock);
    m_remoteInterface = std::move(interface);
}

void TransportConnection::setExportedInterface(XPCInterfacePtr interface)
{
    const MutexLock guard(m_lock);
    m_exportedInterface = std::move(interface);
}

void TransportConnection::setExportedObject(std::shared_ptr<XPCExportedObject> object)
{
    const MutexLock guard(m_lock);
    m_exportedObject.swap(object); // the old one ends without the lock
}

void TransportConnection::setInvalidationHandler(std::function<void()> handler)
{
    const MutexLock guard(m_lock);
    if (m_hasToldTheEnd && handler)
        m_queue.async(std::move(handler));
    else
        m_invalidationHandler.swap(handler);
}

XPCProxyPtr TransportConnection::remoteObjectProxyWithErrorHandler(ErrorHandler handler)
{
    return std::make_shared<TransportProxy>(shared_from_this(), std::move(handler));
}

// ---- sending

SentMessagePtr TransportConnection::checked(const QByteArray& keywordName, const QVariantList& values) const
{
    auto sent = std::make_shared<SentMessage>();
    {
        const MutexLock guard(m_lock);
        sent->interface = m_remoteInterface;
    }
    const Protocol* protocol = sent->interface ? &sent->interface->protocol() : nullptr;
    sent->declarer = protocol ? protocol->declarerOf(keywordName) : nullptr;
    if (!sent->declarer)
        raiseBug(keywordName, "the interface of the remote object has no such message");
    sent->message = sent->declarer->messageNamed(keywordName);
    if (!carriedValues(sent->message->takes, values))
        raiseBug(keywordName, "the values do not fit the message");
    sent->values = values;
    return sent;
}

void TransportConnection::send(const QByteArray& keywordName,
                               const QVariantList& values,
                               XPCReply reply,
                               const ErrorHandler& failed)
{
    const SentMessagePtr sent = checked(keywordName, values);
    if (sent->message->answers.has_value() != (reply != nullptr))
        raiseBug(keywordName, "a reply block is for messages that are replied to, and for each of them");
    sent->reply = std::move(reply);
    sent->failed = failed;
    if (sendOrKeep(sent))
        open();
}

/// \return whether the way is to be made now
bool TransportConnection::sendOrKeep(const SentMessagePtr& sent)
{
    const MutexLock guard(m_lock);
    if (!sent->reply)
        waitForRoom();
    sent->number = ++m_lastNumber;
    if (m_state == State::Ended) {
        failLater(sent, m_reason);
        return false;
    }
    if (m_state == State::Open) {
        dispatch(sent);
        return false;
    }
    m_unsent.push_back(sent);
    if (m_state != State::Resumed)
        return false;
    m_state = State::Opening;
    return true;
}

bool TransportConnection::isFull() const
{
    return m_outstanding >= kMostOutstanding && (m_state == State::Opening || m_state == State::Open);
}

void TransportConnection::waitForRoom()
{
    while (isFull() && !ReplyQueue::isAnyCurrent())
        m_room.wait(m_lock);
    ++m_outstanding;
    if (m_outstanding == kMostOnQueues)
        m_queue.async([weak = weak_from_this()] {
            if (const auto self = weak.lock())
                self->finish(true, xpcError(xpc_error::kConnectionInvalid, QStringLiteral("the other end hangs")));
        });
}

void TransportConnection::dispatch(const SentMessagePtr& sent)
{
    if (sent->reply)
        m_waiting.emplace(sent->number, sent);
    carry(sent);
    if (sent->reply || ++m_unasked < kAskedAfter)
        return;
    askForAcknowledgement(std::exchange(m_unasked, 0));
}

void TransportConnection::acknowledged(quint32 count)
{
    const MutexLock guard(m_lock);
    m_outstanding -= std::min(count, m_outstanding);
    m_room.notifyAll();
}

void TransportConnection::resume()
{
    bool opens = false;
    {
        const MutexLock guard(m_lock);
        if (std::exchange(m_isResumed, true))
            return;
        if (m_state == State::New) {
            opens = !m_unsent.empty();
            m_state = opens ? State::Opening : State::Resumed;
        }
    }
    m_queue.resume();
    if (opens)
        open();
}

void TransportConnection::opened()
{
    const MutexLock guard(m_lock);
    if (m_state == State::Ended)
        return;
    m_state = State::Open;
    for (const SentMessagePtr& each : std::exchange(m_unsent, {}))
        dispatch(each);
}

void TransportConnection::keepOpen()
{
    const MutexLock guard(m_lock);
    m_state = State::Open;
    m_kept = shared_from_this();
}

// ---- what comes back

bool TransportConnection::take(const SentMessagePtr& sent)
{
    const MutexLock guard(m_lock);
    return m_waiting.erase(sent->number) > 0;
}

void TransportConnection::replyArrived(const SentMessagePtr& sent, const QVariantList& values)
{
    m_queue.async([self = shared_from_this(), sent, values] {
        if (self->take(sent))
            self->handleReply(*sent, values);
    });
}

/// What its reply block gets of \p values; none when they do not fit the protocol.
std::optional<QVariantList> TransportConnection::received(const SentMessage& sent, const QVariantList& values)
{
    const std::optional<QVariantList> carried = carriedValues(*sent.message->answers, values);
    const auto makeObject = [&](const XPCEndpoint& endpoint, const XPCInterfacePtr& interface) -> XPCProxyPtr {
        const XPCConnectionPtr connection = connectionTo(endpoint);
        if (!connection)
            return nullptr;
        connection->setRemoteObjectInterface(interface);
        connection->resume();
        return connection->remoteObjectProxyWithErrorHandler(sent.failed);
    };
    return carried ? withRemoteObjects(*sent.interface, sent.message->keywordName, *carried, makeObject) : carried;
}

void TransportConnection::handleReply(const SentMessage& sent, const QVariantList& values)
{
    const std::optional<QVariantList> fitting = received(sent, values);
    if (fitting)
        runAtWall([&] { sent.reply(*fitting); });
    else
        callHandler(sent.failed,
                    xpcError(xpc_error::kReplyInvalid,
                             QStringLiteral("the reply to %1 does not fit its protocol")
                                 .arg(QString::fromLatin1(sent.message->keywordName))));
}

void TransportConnection::messageFailed(const SentMessagePtr& sent, const Error& error)
{
    m_queue.async([self = shared_from_this(), sent, error] {
        if (!sent->reply || self->take(sent))
            callHandler(sent->failed, error);
    });
}

void TransportConnection::failLater(const SentMessagePtr& sent, const Error& error)
{
    m_queue.async([failed = sent->failed, error] { callHandler(failed, error); });
}

// ---- what the other end sends

void TransportConnection::messageArrived(ArrivedMessage message)
{
    m_queue.async([self = shared_from_this(), message = std::move(message)] { self->handle(message); });
}

XPCInterfacePtr TransportConnection::exportedInterface() const
{
    const MutexLock guard(m_lock);
    return m_exportedInterface;
}

void TransportConnection::handle(const ArrivedMessage& arrived)
{
    std::shared_ptr<XPCExportedObject> object;
    XPCInterfacePtr interface;
    {
        const MutexLock guard(m_lock);
        if (m_endedHere)
            return;
        object = m_exportedObject;
        interface = m_exportedInterface;
    }
    const ProtocolMessage* message = object && interface ? declared(interface->protocol(), arrived) : nullptr;
    const auto values =
        message && hasItsTypes(*message, arrived) ? carriedValues(message->takes, arrived.values) : std::nullopt;
    if (values)
        handOver(*object, *message, *values, arrived.duty);
    else if (arrived.duty)
        arrived.duty->refuse(message ? ReplyDuty::Refusal::WrongTypes : ReplyDuty::Refusal::UnknownMessage,
                             QStringLiteral("%1 cannot be handled here").arg(QString::fromLatin1(arrived.keywordName)));
}

// ---- the end

void TransportConnection::invalidate()
{
    finish(true, xpcError(xpc_error::kConnectionInvalid, QStringLiteral("the connection was invalidated")));
}

void TransportConnection::ended(const Error& reason)
{
    finish(false, reason);
}

/// \return false when it had ended before
bool TransportConnection::markEnded(bool here, const Error& reason)
{
    bool isResumed = false;
    {
        const MutexLock guard(m_lock);
        if (m_state == State::Ended)
            return false;
        m_state = State::Ended;
        m_endedHere = here;
        m_reason = reason;
        isResumed = std::exchange(m_isResumed, true);
        m_room.notifyAll();
    }
    if (!isResumed)
        m_queue.resume();
    return true;
}

void TransportConnection::finish(bool here, const Error& reason)
{
    if (!markEnded(here, reason))
        return;
    close();
    m_queue.async([self = shared_from_this()] { self->tellTheEnd(); });
}

TransportConnection::Waiting TransportConnection::takeWaiting()
{
    const MutexLock guard(m_lock);
    Waiting waiting = std::exchange(m_waiting, {});
    for (const SentMessagePtr& each : std::exchange(m_unsent, {}))
        waiting.emplace(each->number, each);
    return waiting;
}

void TransportConnection::failAll(const Waiting& waiting, const Error& reason)
{
    for (const auto& [number, sent] : waiting)
        callHandler(sent->failed, reason);
}

void TransportConnection::tellTheEnd()
{
    const Waiting waiting = takeWaiting();
    std::function<void()> handler;
    std::shared_ptr<XPCExportedObject> object;
    std::shared_ptr<TransportConnection> kept;
    Error reason;
    {
        const MutexLock guard(m_lock);
        m_hasToldTheEnd = true;
        handler.swap(m_invalidationHandler);
        object.swap(m_exportedObject);
        kept.swap(m_kept);
        reason = m_reason;
    }
    failAll(waiting, reason);
    if (handler)
        runAtWall(handler);
}

void TransportConnection::abandon()
{
    const Error reason = xpcError(xpc_error::kConnectionInvalid, QStringLiteral("the connection was dropped"));
    if (!markEnded(true, reason))
        return;
    close();
    m_queue.async([waiting = takeWaiting(), reason] { failAll(waiting, reason); });
}

} // namespace havrel
