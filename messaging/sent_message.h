// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/protocol.h"
#include "messaging/xpc_connection.h"

#include <memory>

namespace havrel {

/// A message on its way to the other end, with what waits for it.
///
/// Threads: const members any thread, others one at a time.
struct SentMessage
{
    XPCInterfacePtr interface;                ///< keeps what follows
    const Protocol* declarer = nullptr;       ///< of the message
    const ProtocolMessage* message = nullptr; ///< what the protocol says of it
    QVariantList values{};                    ///< fit it
    XPCReply reply{};                         ///< empty: no reply is asked for
    XPCConnection::ErrorHandler failed{};
    quint64 number = 0; ///< in the order of sending, from 1
};

using SentMessagePtr = std::shared_ptr<SentMessage>;

} // namespace havrel
