// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

namespace havrel {

/// A whole quotient rounded down, and what remains.
struct FlooredQuotient
{
    qint64 whole;
    qint64 rest; ///< 0 up to the divisor
};

/// Divides by a positive number, rounding towards the past as calendars and clocks do: -1 by 24 is -1, and 23 remain.
///
/// Threads: any thread.
[[nodiscard]] constexpr FlooredQuotient flooredQuotient(qint64 dividend, qint64 divisor) noexcept
{
    const qint64 rest = dividend % divisor;
    return rest < 0 ? FlooredQuotient{dividend / divisor - 1, rest + divisor}
                    : FlooredQuotient{dividend / divisor, rest};
}

} // namespace havrel
