// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"

#include <QtGlobal>

#include <deque>
#include <functional>

namespace havrel {

/// The threads that reply queues run on. A few serve all connections: idle ones end after some seconds, so that a
/// process at rest has none. Because what runs on them may wait for other connections, there is no highest number: when
/// every thread has been busy for a moment while work waits, one more is started.
///
/// Threads: any thread.
class ReplyThreads
{
public:
    using Job = std::function<void()>;

    /// Those of the process; never destroyed, because they run until it goes.
    [[nodiscard]] static ReplyThreads& shared();

    /// Runs \p job, which must not throw, as soon as there is a thread for it.
    void run(Job job) HAVREL_EXCLUDES(m_lock);

    /// To be called at the end of main, before what jobs may use is destroyed: begins no more jobs, and waits for those
    /// that run; for two seconds at most, because they may wait themselves for somebody who does not answer. Not to be
    /// called by a job.
    void leave() HAVREL_EXCLUDES(m_lock);

private:
    void work();
    void watch() HAVREL_EXCLUDES(m_lock);
    [[nodiscard]] bool take(Job& job) HAVREL_EXCLUDES(m_lock);
    void start() HAVREL_REQUIRES(m_lock);
    void startWatch() HAVREL_REQUIRES(m_lock);

    Mutex m_lock;
    ConditionVariable m_came;
    ConditionVariable m_watch;
    ConditionVariable m_gone;
    std::deque<Job> m_jobs HAVREL_GUARDED_BY(m_lock);
    std::size_t m_idle HAVREL_GUARDED_BY(m_lock) = 0;
    std::size_t m_threads HAVREL_GUARDED_BY(m_lock) = 0;
    quint64 m_taken HAVREL_GUARDED_BY(m_lock) = 0; // jobs, ever
    bool m_watched HAVREL_GUARDED_BY(m_lock) = false;
    bool m_left HAVREL_GUARDED_BY(m_lock) = false;
};

} // namespace havrel
