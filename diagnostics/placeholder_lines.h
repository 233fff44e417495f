// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/logr.h"
#include "foundation/thread_annotations.h"

#include <QHash>

namespace havrel {

/// Lines known by a key: headings that stand in the log once, however often what they head recurs.
///
/// Threads: any thread. Two threads that ask for the same heading get the same line.
class PlaceholderLines
{
public:
    /// The line stored under \p key; null when there is none.
    [[nodiscard]] LogLineIdentPtr line(const QString& key) const HAVREL_EXCLUDES(m_lock);
    /// Stores \p line under \p key; null removes the key.
    void setLine(const LogLineIdentPtr& line, const QString& key) HAVREL_EXCLUDES(m_lock);

    /// The heading of \p occurrence, logged through \p logger unless it is known; and under it, if there is an
    /// exception, its reason as a second heading, under which the exception is logged the first 60 times.
    LogLineIdentPtr log(Logr& logger, const LoggedOccurrence& occurrence);

private:
    LogLineIdentPtr heading(Logr& logger, const LoggedOccurrence& occurrence) HAVREL_REQUIRES(m_logging);

    mutable Mutex m_lock;
    QHash<QString, LogLineIdentPtr> m_lines HAVREL_GUARDED_BY(m_lock);
    RecursiveMutex m_logging; // one at a time; a logger may itself come back here
};

} // namespace havrel
