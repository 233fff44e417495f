// SPDX-License-Identifier: MIT
#include "foundation/condition_lock.h"

#include <utility>

namespace havrel {
namespace {

constexpr ConditionLock::Condition kNotReplied = 0;
constexpr ConditionLock::Condition kReplied = 1;

// Longer intervals are as good as endless, and would overflow the clock.
constexpr ConditionLock::Interval kEndless = std::chrono::hours(24 * 365);

} // namespace

ConditionLock::Condition ConditionLock::condition() const
{
    const MutexLock guard(m_guard);
    return m_condition;
}

bool ConditionLock::takeIfFree()
{
    return !std::exchange(m_taken, true);
}

bool ConditionLock::takeIfFreeWith(Condition condition)
{
    return m_condition == condition && takeIfFree();
}

void ConditionLock::lock()
{
    const MutexLock guard(m_guard);
    while (!takeIfFree())
        m_freed.wait(m_guard);
}

bool ConditionLock::tryLock()
{
    const MutexLock guard(m_guard);
    return takeIfFree();
}

void ConditionLock::lockWhenCondition(Condition condition)
{
    const MutexLock guard(m_guard);
    while (!takeIfFreeWith(condition))
        m_freed.wait(m_guard);
}

bool ConditionLock::tryLockWhenCondition(Condition condition)
{
    const MutexLock guard(m_guard);
    return takeIfFreeWith(condition);
}

bool ConditionLock::lockWhenConditionBefore(Condition condition, Interval interval)
{
    if (interval >= kEndless) {
        lockWhenCondition(condition);
        return true;
    }
    if (!(interval > Interval::zero())) // what is not a number is no time at all
        return tryLockWhenCondition(condition);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::ceil<std::chrono::nanoseconds>(interval);
    const MutexLock guard(m_guard);
    bool inTime = true;
    while (!takeIfFreeWith(condition)) {
        if (!inTime)
            return false;
        inTime = m_freed.waitUntil(m_guard, deadline);
    }
    return true;
}

void ConditionLock::unlock()
{
    // Told under the guard: the lock may be gone as soon as a waiting thread sees it free.
    const MutexLock guard(m_guard);
    Q_ASSERT_X(m_taken, "ConditionLock", "given back without having been taken");
    m_taken = false;
    m_freed.notifyAll();
}

void ConditionLock::unlockWithCondition(Condition condition)
{
    const MutexLock guard(m_guard);
    Q_ASSERT_X(m_taken, "ConditionLock", "given back without having been taken");
    m_taken = false;
    m_condition = condition;
    m_freed.notifyAll();
}

void ConditionLock::sleepUntilCondition(Condition condition)
{
    lockWhenCondition(condition);
    unlock();
}

void ConditionLock::transitionToCondition(Condition condition)
{
    lock();
    unlockWithCondition(condition);
}

void ConditionLock::transitionFromCondition(Condition from, Condition to)
{
    lockWhenCondition(from);
    unlockWithCondition(to);
}

bool ConditionLock::conditionallyTranstionFrom(Condition from, Condition to)
{
    lock();
    if (condition() != from) {
        unlock();
        return false;
    }
    unlockWithCondition(to);
    return true;
}

std::shared_ptr<ConditionLock> ConditionLock::messageLock()
{
    return std::make_shared<ConditionLock>(kNotReplied);
}

void ConditionLock::rearmMessageSync()
{
    transitionToCondition(kNotReplied);
}

void ConditionLock::messageReplied()
{
    transitionToCondition(kReplied);
}

void ConditionLock::waitForMessageReply()
{
    sleepUntilCondition(kReplied);
}

bool ConditionLock::waitForMessageReplyBeforeInterval(Interval interval)
{
    if (!lockWhenConditionBefore(kReplied, interval))
        return false;
    unlock();
    return true;
}

} // namespace havrel
