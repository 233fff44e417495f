// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/error.h"

#include <optional>

namespace havrel {

class XPCConnection;

/// Whether the other end of a candidate for a connection, which has been resumed, answers a barrier. Blocks until it
/// has answered or failed, without a time limit.
///
/// \return why not; none when it answers
///
/// Threads: any thread.
[[nodiscard]] std::optional<Error> verificationErrorOf(XPCConnection& candidate);

} // namespace havrel
