// SPDX-License-Identifier: MIT
#pragma once

#include <QStringView>

#include <cstdint>

namespace havrel::platform {

/// What the engine says about a regular expression.
struct RegularExpressionVerdict
{
    int code = 0;             ///< 0: accepted; else the engine's positive error code (UErrorCode)
    std::int32_t line = 0;    ///< where the fault was noticed: lines counted from 1; 0 when the engine does not say
    std::int32_t offset = -1; ///< UTF-16 units from the start of that line; -1 when the engine does not say

    [[nodiscard]] bool isAccepted() const noexcept { return code == 0; }
};

/// Compiles \p pattern as a regular expression whose dot matches line separators and whose word boundaries are those of
/// Unicode, and forgets it; nothing is matched. The empty pattern is refused. What people write takes microseconds, but
/// the engine's time may grow with the square of the length: tens of thousands of repeated groups take more than a
/// minute.
///
/// \source ICU, uregex_open with UREGEX_DOTALL and UREGEX_UWORD.
///
/// Threads: any thread.
[[nodiscard]] RegularExpressionVerdict judgeRegularExpression(QStringView pattern);

} // namespace havrel::platform
