// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/error.h"
#include "messaging/xpc_error.h"

#include <optional>

namespace havrel {

/// How a round trip to another process ended.
///
/// Threads: const members any thread, others one at a time.
struct SyncOutcome
{
    bool succeeded = false;
    std::optional<Error> error{}; ///< why it failed; none also when nothing was tried, for want of a connection

    explicit operator bool() const noexcept { return succeeded; }
};

/// There is no connection.
///
/// Threads: any thread.
[[nodiscard]] inline Error invalidConnectionError()
{
    return {error_domain::kCocoa, xpc_error::kConnectionInvalid};
}

} // namespace havrel
