// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace havrel {

/// \p reason as it can stand in one line of the log: each newline character becomes " | ", each other control or
/// illegal character "?". Newlines are U+000A to U+000D, U+0085, U+2028 and U+2029; control characters those of the
/// general categories Cc and Cf; illegal ones are unassigned code points and noncharacters.
///
/// Threads: any thread.
[[nodiscard]] QString cleanedReason(const QString& reason);

} // namespace havrel
