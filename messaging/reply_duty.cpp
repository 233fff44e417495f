// SPDX-License-Identifier: MIT
#include "messaging/reply_duty.h"

#include "diagnostics/exception.h"
#include "messaging/carried_value.h"
#include "messaging/protocol.h"

#include <atomic>

namespace havrel {
namespace {

/// What the copies of one reply block share.
class SharedReply
{
public:
    SharedReply(std::shared_ptr<ReplyDuty> duty, const ProtocolMessage& message)
        : m_duty(std::move(duty))
        , m_types(message.answers.value_or(QByteArrayList()))
        , m_keywordName(QString::fromLatin1(message.keywordName))
    {
    }
    ~SharedReply()
    {
        if (m_duty && !m_done)
            m_duty->refuse(ReplyDuty::Refusal::NotAnswered, QStringLiteral("%1 was not answered").arg(m_keywordName));
    }
    SharedReply(const SharedReply&) = delete;
    SharedReply& operator=(const SharedReply&) = delete;
    SharedReply(SharedReply&&) = delete;
    SharedReply& operator=(SharedReply&&) = delete;

    void answer(const QVariantList& values)
    {
        if (m_done.exchange(true))
            return;
        const std::optional<QVariantList> carried = carriedValues(m_types, values);
        if (carried && m_duty)
            m_duty->answer(m_types, values);
        else if (!carried)
            refuseAndRaise();
    }

private:
    void refuseAndRaise()
    {
        const QString reason = QStringLiteral("the reply to %1 does not fit its protocol").arg(m_keywordName);
        if (m_duty)
            m_duty->refuse(ReplyDuty::Refusal::NotAnswered, reason);
        HVException::exceptionWithName(exception_name::kBug, reason).raise();
    }

    const std::shared_ptr<ReplyDuty> m_duty;
    const QByteArrayList m_types;
    const QString m_keywordName;
    std::atomic<bool> m_done = false;
};

} // namespace

ReplyDuty::~ReplyDuty() = default;

XPCReply replyWith(std::shared_ptr<ReplyDuty> duty, const ProtocolMessage& message)
{
    return [shared = std::make_shared<SharedReply>(std::move(duty), message)](const QVariantList& values) {
        shared->answer(values);
    };
}

} // namespace havrel
