// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/log_date.h"

#include <QString>

#include <optional>

namespace havrel {

/// Writes dates as they stand at the head of log lines: "2025-07-30 12:34:56.789 +0200", in local time, Gregorian
/// calendar, ASCII digits whatever the locale; milliseconds are cut, not rounded.
///
/// Threads: one thread at a time.
class LogDateFormatter
{
public:
    [[nodiscard]] QString stringFromDate(LogDate date);

private:
    void rememberSecond(std::chrono::sys_seconds second);

    // Lines come many in a second: what stands before and after the milliseconds is made once.
    std::optional<std::chrono::sys_seconds> m_second;
    QString m_untilSeconds;
    QString m_zone;
};

} // namespace havrel
