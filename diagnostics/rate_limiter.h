// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/log_date.h"

#include <QString>

#include <optional>
#include <vector>

namespace havrel {

/// Keeps a runaway loop from flooding the log. Counts lines and looks at their own dates, never at a clock.
///
/// The limit is 277.78 lines a second, checked over windows of 10,000 lines. When such a window (but the first) was too
/// short, lines are held back, only the newest 2000 to 4000 of them, until 2000 lines in a row came slowly enough or
/// somebody asks.
///
/// Threads: one thread at a time.
class RateLimiter
{
public:
    enum class Verdict {
        Write,   ///< the line is to be written
        Hold,    ///< the line was kept
        Release, ///< the line was kept, and the rate has fallen: take everything with unspool
    };

    /// What was held back.
    struct Held
    {
        qint64 discarded = 0; ///< lines dropped before them; one less than the truth, because the 10,000th is held too
        std::vector<QString> lines; ///< the newest, oldest first
    };

    /// Judges a line that was logged at \p date; keeps it unless the verdict is Write.
    [[nodiscard]] Verdict judge(const QString& line, LogDate date);
    /// What is held back, and starts a new window at \p date; nothing, and no new window, when no line is held.
    [[nodiscard]] std::optional<Held> unspool(LogDate date);

private:
    [[nodiscard]] double secondsBackTo(LogDate date) const;
    [[nodiscard]] Verdict endWindow(const QString& line, LogDate date);
    [[nodiscard]] Verdict hold(const QString& line, LogDate date);

    qint64 m_hotCount = 0;
    std::optional<LogDate> m_lastHotTime;
    std::vector<QString> m_tailLines;  // the newest
    std::vector<QString> m_tailLines2; // the batch before them
};

} // namespace havrel
