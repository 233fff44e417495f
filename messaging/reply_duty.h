// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/xpc_proxy.h"

#include <QByteArrayList>
#include <QString>

#include <memory>

namespace havrel {

struct ProtocolMessage;

/// A message that waits to be answered, in the hands of the side that got it. Whoever drops it unanswered leaves the
/// sender waiting, which `replyWith` never does.
///
/// Threads: any thread.
class ReplyDuty
{
public:
    ReplyDuty() = default;
    virtual ~ReplyDuty();
    ReplyDuty(const ReplyDuty&) = delete;
    ReplyDuty& operator=(const ReplyDuty&) = delete;
    ReplyDuty(ReplyDuty&&) = delete;
    ReplyDuty& operator=(ReplyDuty&&) = delete;

    /// \param types those that the protocol says, which the values fit. Nothing happens when the sender has gone.
    virtual void answer(const QByteArrayList& types, const QVariantList& values) = 0;

    enum class Refusal { UnknownMessage, WrongTypes, NotAnswered };
    /// The sender gets an error.
    virtual void refuse(Refusal why, const QString& description) = 0;
};

/// The block that answers \p message by \p duty. Only its first call counts. Values that do not fit the protocol raise
/// an exception "Bug", and the sender gets an error, as it does when the last copy of the block goes uncalled.
///
/// \param duty null: nobody waits
///
/// Threads: any thread.
[[nodiscard]] XPCReply replyWith(std::shared_ptr<ReplyDuty> duty, const ProtocolMessage& message);

} // namespace havrel
