// SPDX-License-Identifier: MIT
#include "foundation/condition_lock.h"

#include <gtest/gtest.h>

#include <cmath>
#include <future>
#include <limits>
#include <thread>
#include <vector>

namespace havrel {
namespace {

using namespace std::chrono_literals;
using Interval = ConditionLock::Interval;

template<class Block>
std::future<void> onAnotherThread(Block block)
{
    return std::async(std::launch::async, std::move(block));
}

bool isStillWaiting(const std::future<void>& thread)
{
    return thread.wait_for(0s) == std::future_status::timeout;
}

TEST(ConditionLock, BeginsWithItsConditionFree)
{
    ConditionLock lock(7);

    EXPECT_EQ(lock.condition(), 7);
    EXPECT_TRUE(lock.tryLock());
    EXPECT_FALSE(lock.tryLock());
    lock.unlock();
    EXPECT_EQ(lock.condition(), 7);
}

TEST(ConditionLock, IsTakenOnlyWithTheConditionAskedFor)
{
    ConditionLock lock(1);

    EXPECT_FALSE(lock.tryLockWhenCondition(2));
    EXPECT_TRUE(lock.tryLockWhenCondition(1));
    EXPECT_FALSE(lock.tryLockWhenCondition(1)) << "it is taken";
    lock.unlockWithCondition(2);
    EXPECT_TRUE(lock.tryLockWhenCondition(2));
    lock.unlock();
}

TEST(ConditionLock, KeepsOtherThreadsOutUntilItIsGivenBack)
{
    ConditionLock lock;
    int guarded = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&] {
            for (int round = 0; round < 1000; ++round) {
                lock.lock();
                ++guarded;
                lock.unlock();
            }
        });
    for (std::thread& thread : threads)
        thread.join();

    EXPECT_EQ(guarded, 4000);
}

TEST(LockAdditions, SleepUntilAConditionWithoutChangingAnything)
{
    ConditionLock lock;
    const auto sleeper = onAnotherThread([&] { lock.sleepUntilCondition(5); });
    EXPECT_TRUE(isStillWaiting(sleeper));
    lock.transitionToCondition(4);
    EXPECT_TRUE(isStillWaiting(sleeper));
    lock.transitionToCondition(5);
    sleeper.wait();

    EXPECT_EQ(lock.condition(), 5);
    EXPECT_TRUE(lock.tryLock()) << "the sleeper gave it back";
    lock.unlock();
}

TEST(LockAdditions, SleepAtOnceWhenTheConditionHolds)
{
    ConditionLock lock(5);
    lock.sleepUntilCondition(5);

    EXPECT_EQ(lock.condition(), 5);
}

TEST(LockAdditions, TransitionWhateverTheCondition)
{
    ConditionLock lock(3);
    lock.transitionToCondition(9);

    EXPECT_EQ(lock.condition(), 9);
}

TEST(LockAdditions, TransitionOnlyWhenTheLockIsFree)
{
    ConditionLock lock;
    lock.lock();
    const auto other = onAnotherThread([&] { lock.transitionToCondition(9); });

    EXPECT_TRUE(isStillWaiting(other));
    EXPECT_EQ(lock.condition(), 0);
    lock.unlock();
    other.wait();
    EXPECT_EQ(lock.condition(), 9);
}

TEST(LockAdditions, TransitionFromAConditionThatIsWaitedFor)
{
    ConditionLock lock(0);
    const auto other = onAnotherThread([&] { lock.transitionFromCondition(1, 2); });
    EXPECT_TRUE(isStillWaiting(other));
    lock.transitionToCondition(1);
    other.wait();

    EXPECT_EQ(lock.condition(), 2);
}

TEST(LockAdditions, TransitionConditionallyWithoutWaiting)
{
    ConditionLock lock(1);

    EXPECT_TRUE(lock.conditionallyTranstionFrom(1, 2));
    EXPECT_EQ(lock.condition(), 2);
    EXPECT_FALSE(lock.conditionallyTranstionFrom(1, 3));
    EXPECT_EQ(lock.condition(), 2);
    EXPECT_TRUE(lock.tryLock()) << "given back in both cases";
    lock.unlock();
}

TEST(MessageLock, BeginsWithoutAReply)
{
    const auto message = ConditionLock::messageLock();

    EXPECT_EQ(message->condition(), 0);
    EXPECT_FALSE(message->waitForMessageReplyBeforeInterval(0s));
}

TEST(MessageLock, TellsOfAReplyThatCameBefore)
{
    const auto message = ConditionLock::messageLock();
    message->messageReplied();

    message->waitForMessageReply();
    EXPECT_TRUE(message->waitForMessageReplyBeforeInterval(0s));
    EXPECT_TRUE(message->waitForMessageReplyBeforeInterval(1h)) << "at once, or this test does not end";
    EXPECT_EQ(message->condition(), 1) << "the reply stays";
    EXPECT_TRUE(message->tryLock()) << "given back";
    message->unlock();
}

TEST(MessageLock, WakesWhoWaitsForTheReply)
{
    const auto message = ConditionLock::messageLock();
    const auto endless = onAnotherThread([&] { message->waitForMessageReply(); });
    bool came = false;
    const auto limited = onAnotherThread([&] { came = message->waitForMessageReplyBeforeInterval(1h); });
    EXPECT_TRUE(isStillWaiting(endless));
    EXPECT_TRUE(isStillWaiting(limited));
    message->messageReplied();
    endless.wait();
    limited.wait();

    EXPECT_TRUE(came);
}

TEST(MessageLock, IsRearmedForAnotherMessage)
{
    const auto message = ConditionLock::messageLock();
    message->messageReplied();
    message->rearmMessageSync();

    EXPECT_EQ(message->condition(), 0);
    EXPECT_FALSE(message->waitForMessageReplyBeforeInterval(0s));
}

TEST(MessageLock, GivesUpNoEarlierThanTheInterval)
{
    const auto message = ConditionLock::messageLock();
    const auto before = std::chrono::steady_clock::now();

    EXPECT_FALSE(message->waitForMessageReplyBeforeInterval(20ms));
    EXPECT_GE(std::chrono::steady_clock::now() - before, 20ms);
    EXPECT_EQ(message->condition(), 0);
    EXPECT_TRUE(message->tryLock()) << "not taken";
    message->unlock();
}

TEST(MessageLock, GivesUpWhileTheLockIsHeldByAnother)
{
    const auto message = ConditionLock::messageLock();
    message->messageReplied();
    message->lock();

    EXPECT_FALSE(message->waitForMessageReplyBeforeInterval(1ms));
    message->unlock();
}

TEST(MessageLock, TakesIntervalsThatAreNoLengthOfTime)
{
    const auto message = ConditionLock::messageLock();

    EXPECT_FALSE(message->waitForMessageReplyBeforeInterval(-1s));
    EXPECT_FALSE(message->waitForMessageReplyBeforeInterval(Interval(std::nan(""))));
    EXPECT_FALSE(message->waitForMessageReplyBeforeInterval(Interval(std::numeric_limits<double>::denorm_min())));
    message->messageReplied();
    EXPECT_TRUE(message->waitForMessageReplyBeforeInterval(-1s)) << "the reply is there";
}

TEST(MessageLock, WaitsWithoutEndForIntervalsBeyondTheClock)
{
    for (const Interval interval :
         {Interval(1e300), Interval(std::numeric_limits<double>::infinity()), Interval(std::chrono::seconds::max())}) {
        const auto message = ConditionLock::messageLock();
        bool came = false;
        const auto waiter = onAnotherThread([&] { came = message->waitForMessageReplyBeforeInterval(interval); });
        EXPECT_TRUE(isStillWaiting(waiter));
        message->messageReplied();
        waiter.wait();
        EXPECT_TRUE(came);
    }
}

TEST(MessageLock, MayGoAsSoonAsTheReplyWasSeen)
{
    for (int round = 0; round < 2000; ++round) {
        auto message = std::make_unique<ConditionLock>();
        ConditionLock* const seenByTheOther = message.get();
        const auto other = onAnotherThread([seenByTheOther] { seenByTheOther->messageReplied(); });
        message->waitForMessageReply();
        message.reset();
        other.wait();
    }
}

TEST(LockAdditions, PassWorkBackAndForth)
{
    ConditionLock lock(0);
    constexpr int kRounds = 2000;
    int passed = 0;
    const auto other = onAnotherThread([&] {
        for (int round = 0; round < kRounds; ++round) {
            lock.lockWhenCondition(1);
            ++passed;
            lock.unlockWithCondition(0);
        }
    });
    for (int round = 0; round < kRounds; ++round) {
        lock.lockWhenCondition(0);
        ++passed;
        lock.unlockWithCondition(1);
    }
    other.wait();

    EXPECT_EQ(passed, 2 * kRounds);
}

} // namespace
} // namespace havrel
