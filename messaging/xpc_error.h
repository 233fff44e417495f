// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/error.h"

namespace havrel {

/// What error handlers of connections get: errors of NSCocoaErrorDomain with these codes.
///
/// \source the platform's documented values
namespace xpc_error {
inline constexpr qint64 kConnectionInterrupted = 4097; ///< this message failed; the connection lives on
inline constexpr qint64 kConnectionInvalid = 4099;     ///< the connection has ended, or never came to be
inline constexpr qint64 kReplyInvalid = 4101; ///< a reply came that does not fit the protocol, or none can come
} // namespace xpc_error

/// \param description what happened, for logs
///
/// Threads: any thread.
[[nodiscard]] Error xpcError(qint64 code, const QString& description);

} // namespace havrel
