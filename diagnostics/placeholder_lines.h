// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/logr.h"

#include <QHash>

#include <mutex>

namespace havrel {

/// Lines known by a key: headings that stand in the log once, however often what they head recurs.
///
/// Threads: any thread. Two threads that ask for the same heading get the same line.
class PlaceholderLines
{
public:
    /// The line stored under \p key; null when there is none.
    [[nodiscard]] LogLineIdentPtr line(const QString& key) const;
    /// Stores \p line under \p key; null removes the key.
    void setLine(const LogLineIdentPtr& line, const QString& key);

    /// The heading of \p occurrence, logged through \p logger unless it is known; and under it, if there is an
    /// exception, its reason as a second heading, under which the exception is logged the first 60 times.
    LogLineIdentPtr log(Logr& logger, const LoggedOccurrence& occurrence);

private:
    LogLineIdentPtr heading(Logr& logger, const LoggedOccurrence& occurrence);

    mutable std::mutex m_lock;
    QHash<QString, LogLineIdentPtr> m_lines; // guarded by m_lock
    std::recursive_mutex m_logging;          // one at a time; a logger may itself come back here
};

} // namespace havrel
