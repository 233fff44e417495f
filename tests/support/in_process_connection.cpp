// SPDX-License-Identifier: MIT
#include "tests/support/in_process_connection.h"

#include "messaging/xpc_error.h"
#include "tests/support/in_process_place.h"

namespace havrel::tests {
namespace {

Error invalid(const char* description)
{
    return xpcError(xpc_error::kConnectionInvalid, QString::fromLatin1(description));
}

/// Answers the sender at its own end, or never where the reply gets lost.
class InProcessDuty final : public ReplyDuty
{
public:
    InProcessDuty(const std::shared_ptr<TransportConnection>& caller, SentMessagePtr sent, bool isLost)
        : m_caller(caller)
        , m_sent(std::move(sent))
        , m_isLost(isLost)
    {
    }

    void answer(const QByteArrayList&, const QVariantList& values) override
    {
        if (const auto caller = m_caller.lock(); caller && !m_isLost)
            caller->replyArrived(m_sent, values);
    }
    void refuse(Refusal, const QString& description) override
    {
        if (const auto caller = m_caller.lock(); caller && !m_isLost)
            caller->messageFailed(m_sent, xpcError(xpc_error::kReplyInvalid, description));
    }

private:
    const std::weak_ptr<TransportConnection> m_caller;
    const SentMessagePtr m_sent;
    const bool m_isLost;
};

} // namespace

InProcessConnection::InProcessConnection(std::shared_ptr<InProcessPlace> place, QString serviceName)
    : m_place(std::move(place))
    , m_serviceName(std::move(serviceName))
{
}

InProcessConnection::~InProcessConnection()
{
    abandon();
}

std::optional<uid_t> InProcessConnection::effectiveUserIdentifier() const
{
    return m_closed || !peer() ? std::nullopt : std::optional(m_place->user());
}

QString InProcessConnection::description() const
{
    return QStringLiteral("connection within the process %1 %2")
        .arg(m_isAccepted ? QStringLiteral("at") : QStringLiteral("to"), m_place->name());
}

std::shared_ptr<InProcessConnection> InProcessConnection::peer() const
{
    const MutexLock guard(m_peerLock);
    return m_peer.lock();
}

void InProcessConnection::setPeer(const std::shared_ptr<InProcessConnection>& peer)
{
    const MutexLock guard(m_peerLock);
    m_peer = peer;
}

void InProcessConnection::accept(const std::shared_ptr<InProcessConnection>& caller)
{
    m_isAccepted = true;
    setPeer(caller);
    keepOpen();
}

void InProcessConnection::open()
{
    const auto self = std::static_pointer_cast<InProcessConnection>(shared_from_this());
    const auto other = m_place->admit(self);
    setPeer(other);
    if (other)
        opened();
    else
        ended(invalid("nobody serves there"));
}

void InProcessConnection::carry(const SentMessagePtr& sent)
{
    const auto other = peer();
    std::optional<Fault> fault;
    if (!m_isAccepted)
        fault = m_place->takeFault(sent->message->keywordName);
    const auto endOther = [&] { other->replyQueue().async([other] { other->invalidate(); }); };
    if (!other)
        return; // it has gone, and told so
    if (fault == Fault::Error) {
        messageFailed(sent, xpcError(xpc_error::kConnectionInterrupted, QStringLiteral("a fault of the test")));
        return;
    }
    if (fault == Fault::DeathBefore)
        return endOther();
    const bool isLost = fault.has_value();
    other->messageArrived(
        {.keywordName = sent->message->keywordName,
         .values = sent->values,
         .duty = sent->reply ? std::make_shared<InProcessDuty>(shared_from_this(), sent, isLost) : nullptr,
         .protocolName = sent->declarer->name(),
         .signature = sent->message->signature});
    if (fault == Fault::DeathAfterwards)
        endOther();
}

void InProcessConnection::askForAcknowledgement(quint32 count)
{
    if (const auto other = peer())
        other->replyQueue().async([weak = weak_from_this(), count] {
            if (const auto self = weak.lock())
                self->acknowledged(count);
        });
}

void InProcessConnection::close()
{
    m_closed = true;
    if (const auto other = peer())
        other->ended(invalid("the other end has ended the connection"));
}

XPCConnectionPtr InProcessConnection::connectionTo(const XPCEndpoint& endpoint)
{
    return m_place->transport().connectionToEndpoint(endpoint);
}

} // namespace havrel::tests
