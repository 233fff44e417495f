// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"

#include <QtGlobal>

#include <chrono>
#include <memory>

namespace havrel {

/// A lock with a number, its condition: a thread takes it as soon as it is free, or waits until it is free with a given
/// condition, and gives it back with the same or another one. Made for two threads, one of which waits for what the
/// other has done.
///
/// Intervals are measured on the monotonic clock, which setting the system's clock does not change. An interval of 0 or
/// less does not wait; one of a year or more has no end.
///
/// The thread that took the lock gives it back.
///
/// Threads: any thread.
class ConditionLock
{
public:
    using Condition = qint64;
    using Interval = std::chrono::duration<double>;

    explicit ConditionLock(Condition condition = 0) noexcept
        : m_condition(condition)
    {
    }
    ~ConditionLock() = default;
    ConditionLock(const ConditionLock&) = delete;
    ConditionLock& operator=(const ConditionLock&) = delete;
    ConditionLock(ConditionLock&&) = delete;
    ConditionLock& operator=(ConditionLock&&) = delete;

    /// The condition at this moment. \selector condition
    [[nodiscard]] Condition condition() const;

    void lock();                  ///< Takes the lock, whatever its condition. \selector lock
    [[nodiscard]] bool tryLock(); ///< \selector tryLock
    /// Takes the lock when it has \p condition. \selector lockWhenCondition:
    void lockWhenCondition(Condition condition);
    /// \selector tryLockWhenCondition:
    [[nodiscard]] bool tryLockWhenCondition(Condition condition);
    /// lockWhenCondition, giving up after \p interval. \return whether the lock was taken.
    [[nodiscard]] bool lockWhenConditionBefore(Condition condition, Interval interval);
    void unlock(); ///< Gives the lock back. \selector unlock
    /// Gives the lock back with another condition. \selector unlockWithCondition:
    void unlockWithCondition(Condition condition);

    // ---- signals between two threads

    /// Waits until the lock is free with \p condition, and changes nothing. \selector sleepUntilCondition:
    void sleepUntilCondition(Condition condition);
    /// Sets the condition as soon as the lock is free. \selector transitionToCondition:
    void transitionToCondition(Condition condition);
    /// Waits for \p from, then sets \p to. \selector transitionFromCondition:to:
    void transitionFromCondition(Condition from, Condition to);
    /// Takes the lock; if the condition is \p from, sets \p to. Does not wait for the condition.
    ///
    /// \return whether it was \p from.
    /// \selector conditionallyTranstionFrom:to:
    bool conditionallyTranstionFrom(Condition from, Condition to);

    // ---- one message that is replied to

    /// A lock at condition 0, not replied to. \selector messageLock
    [[nodiscard]] static std::shared_ptr<ConditionLock> messageLock();
    void rearmMessageSync();    ///< Not replied to again. \selector rearmMessageSync
    void messageReplied();      ///< \selector messageReplied
    void waitForMessageReply(); ///< Waits for the reply, without a time limit. \selector waitForMessageReply
    /// Waits for the reply, at most for \p interval. \return whether it came.
    ///
    /// \selector waitForMessageReplyBeforeInterval:
    [[nodiscard]] bool waitForMessageReplyBeforeInterval(Interval interval);

private:
    [[nodiscard]] bool takeIfFree() HAVREL_REQUIRES(m_guard);
    [[nodiscard]] bool takeIfFreeWith(Condition condition) HAVREL_REQUIRES(m_guard);

    mutable Mutex m_guard;
    ConditionVariable m_freed;
    bool m_taken HAVREL_GUARDED_BY(m_guard) = false;
    Condition m_condition HAVREL_GUARDED_BY(m_guard);
};

} // namespace havrel
