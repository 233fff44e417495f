// SPDX-License-Identifier: MIT
#pragma once

#include "components/kept_dictionary.h"
#include "components/scheduled_action.h"
#include "foundation/dispatch.h"
#include "foundation/thread_annotations.h"

#include <QVariantList>

#include <functional>
#include <optional>

namespace havrel {

/// Captures that are to be made, one after the other, and what became of the latest hundred. It is kept at every
/// change: what was not finished when the process ended, however it ended, is made when the next one starts; so is at
/// once what ended because its engine was made to stop. What has begun three times is given up.
///
/// While nothing is to be done it waits without waking; for an action with a time, until that time.
///
/// Times are in seconds since the reference date (foundation/reference_date.h).
///
/// Threads: any thread. Captures are made on a thread of its own.
class CaptureSchedule
{
public:
    /// Makes a capture; raises an exception that says why not. Gives up, raising one too, when the block says so.
    using Runner = std::function<CaptureSummary(
        const QByteArray& archive, const QByteArrayList& items, const EngineProgressBlock& progress)>;
    /// Is told what happens to an action (scheduler_notices.h), on the schedule's thread, which it must not hold up.
    using Listener = std::function<void(QLatin1StringView notice, const QVariantMap& info)>;

    /// Begins with what was kept. \param listener empty: nobody
    CaptureSchedule(const QByteArray& stateFile, Runner runner, Listener listener = {});
    /// As stop().
    ~CaptureSchedule();
    CaptureSchedule(const CaptureSchedule&) = delete;
    CaptureSchedule& operator=(const CaptureSchedule&) = delete;
    CaptureSchedule(CaptureSchedule&&) = delete;
    CaptureSchedule& operator=(CaptureSchedule&&) = delete;

    /// Stops the capture that is under way, and waits for that; it is made again by the next process. Nothing begins
    /// any more.
    void stop();

    /// As soon as nothing else is under way. \return the id of the action
    QString add(const QByteArray& archive, const QByteArrayList& items);
    /// Of an action that has not begun; nothing happens for others.
    void setTime(const QString& id, double time);
    void setSuspended(const QString& id, bool suspended);
    /// Nothing begins before \p time.
    void setHoldTime(double time);
    [[nodiscard]] double holdTime() const;
    /// Goes by a clock that is \p seconds ahead of the system's (behind it when negative), until it is told otherwise
    /// or the process ends: to try what happens at other times.
    void setClockAhead(double seconds);

    /// "queued" (integer: actions, the running one included), "holdTime" (double), "clockAhead" (double), and while a
    /// capture is under way "running" (its action), "started" (double), "fraction" (double, 0 to 1), "files",
    /// "filesDone", "bytes", "bytesDone" (integers).
    [[nodiscard]] QVariantMap volatileInfo() const;
    /// RunSummary by the id of its action.
    [[nodiscard]] QVariantMap runSummaries() const;
    /// ScheduledAction, the running one first, then in the order in which they were asked for.
    [[nodiscard]] QVariantList actions() const;
    /// What begins next, if anything ever does by itself: one ScheduledAction or none.
    [[nodiscard]] QVariantList nextAction() const;

private:
    using Actions = QList<ScheduledAction>;

    void load() HAVREL_REQUIRES(m_lock);
    void keep() const HAVREL_REQUIRES(m_lock);
    void changed() HAVREL_REQUIRES(m_lock);
    [[nodiscard]] Actions::iterator find(const QString& id) HAVREL_REQUIRES(m_lock);
    [[nodiscard]] Actions::const_iterator next() const HAVREL_REQUIRES(m_lock);
    [[nodiscard]] double time() const HAVREL_REQUIRES(m_lock);
    [[nodiscard]] double dueTimeOf(const ScheduledAction& action) const HAVREL_REQUIRES(m_lock);
    void waitForChange() HAVREL_REQUIRES(m_lock);
    void work();
    [[nodiscard]] std::optional<ScheduledAction> begin();
    [[nodiscard]] RunSummary run(const ScheduledAction& action);
    [[nodiscard]] platform::Proceed took(const QString& id, const EngineProgress& progress);
    void finish(const RunSummary& run);
    [[nodiscard]] bool isToBeMadeAgain(const RunSummary& run, ScheduledAction& action) const HAVREL_REQUIRES(m_lock);
    void tell(QLatin1StringView notice, const QVariantMap& info) const;
    void record(const RunSummary& run) HAVREL_REQUIRES(m_lock);

    const KeptDictionary m_file;
    const Runner m_runner;
    const Listener m_listener;
    mutable Mutex m_lock;
    ConditionVariable m_change;
    bool m_stops HAVREL_GUARDED_BY(m_lock) = false;
    Actions m_actions HAVREL_GUARDED_BY(m_lock);
    QVariantList m_runs HAVREL_GUARDED_BY(m_lock); // dictionaries, the oldest first
    qint64 m_lastNumber HAVREL_GUARDED_BY(m_lock) = 0;
    double m_holdTime HAVREL_GUARDED_BY(m_lock) = 0;
    double m_clockAhead HAVREL_GUARDED_BY(m_lock) = 0;
    QString m_running HAVREL_GUARDED_BY(m_lock); // id; null: nothing
    double m_started HAVREL_GUARDED_BY(m_lock) = 0;
    EngineProgress m_progress HAVREL_GUARDED_BY(m_lock);
    SerialQueue m_queue{QStringLiteral("captures")}; // last: its end waits for the work
};

} // namespace havrel
