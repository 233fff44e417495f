// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/reply_duty.h"

#include <QByteArray>
#include <QVariantList>

#include <memory>
#include <optional>

namespace havrel {

/// A message as a carrier brings it, not yet held against the exported interface.
///
/// Threads: const members any thread, others one at a time.
struct ArrivedMessage
{
    QByteArray keywordName;
    QVariantList values{};
    std::shared_ptr<ReplyDuty> duty{};     ///< null where the sender asked for no answer
    QByteArray protocolName{};             ///< that declares it; empty: the sender did not say
    std::optional<QByteArray> signature{}; ///< types of the values on their way; none: the values themselves tell
};

} // namespace havrel
