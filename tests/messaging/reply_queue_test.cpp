// SPDX-License-Identifier: MIT
#include "messaging/reply_queue.h"

#include "messaging/reply_threads.h"
#include "tests/support/awaited.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

namespace havrel {
namespace {

using tests::Awaited;

TEST(ReplyQueue, RunsItsBlocksInOrderOneAtATime)
{
    ReplyQueue queue;
    Awaited<int> order;
    int running = 0; // a data race, were there two at a time
    for (int i = 0; i < 1'000; ++i)
        queue.async([&, i] {
            EXPECT_EQ(++running, 1);
            --running;
            order.tell(i); // the test may end with the last one
        });
    const auto all = order.first(1'000);
    ASSERT_EQ(all.size(), 1'000U);
    for (std::size_t i = 0; i < all.size(); ++i)
        ASSERT_EQ(all[i], static_cast<int>(i));
}

TEST(ReplyQueue, RunsNothingWhileItIsSuspended)
{
    ReplyQueue queue;
    Awaited<int> order;
    queue.suspend();
    queue.suspend();
    queue.async([&] { order.tell(2); });
    queue.resume();
    ReplyQueue other;
    Awaited<bool> passed;
    other.async([&] { passed.tell(true); });
    EXPECT_TRUE(passed.one().has_value());
    order.tell(1);
    queue.resume();
    EXPECT_EQ(order.first(2), (std::vector<int>{1, 2}));
}

TEST(ReplyQueue, KnowsWhetherItIsTheCurrentOne)
{
    ReplyQueue queue;
    ReplyQueue other;
    Awaited<bool> is;
    queue.async([&] {
        is.tell(queue.isCurrent());
        is.tell(other.isCurrent());
        is.tell(ReplyQueue::isAnyCurrent());
    });
    EXPECT_EQ(is.first(3), (std::vector<bool>{true, false, true}));
    EXPECT_FALSE(queue.isCurrent());
    EXPECT_FALSE(ReplyQueue::isAnyCurrent());
}

TEST(ReplyQueue, GoesOnAfterABlockThatThrows)
{
    ReplyQueue queue;
    Awaited<bool> passed;
    queue.async([] { throw std::runtime_error("no"); });
    queue.async([&] { passed.tell(true); });
    EXPECT_TRUE(passed.one().has_value());
}

TEST(ReplyQueue, RunsWhatIsQueuedWhenItEnds)
{
    Awaited<int> ran;
    {
        ReplyQueue queue;
        for (int i = 0; i < 100; ++i)
            queue.async([&, i] { ran.tell(i); });
    }
    EXPECT_EQ(ran.first(100).size(), 100U);
}

/// Each block waits for the next queue's: with a fixed number of threads they would wait for ever.
TEST(ReplyQueue, LetsAnyNumberOfBlocksWaitForEachOther)
{
    constexpr std::size_t kQueues = 40;
    std::vector<ReplyQueue> queues(kQueues);
    std::vector<Awaited<bool>> done(kQueues + 1);
    for (std::size_t i = 0; i < kQueues; ++i)
        queues[i].async([&done, i] {
            EXPECT_TRUE(done[i + 1].one().has_value());
            done[i].tell(true);
        });
    done[kQueues].tell(true);
    EXPECT_TRUE(done[0].one().has_value());
}

TEST(ReplyThreads, BeginNothingMoreOnceTheyAreLeftAndEndWhatRuns)
{
    static auto& s_all = *std::make_unique<std::vector<std::unique_ptr<ReplyThreads>>>().release();
    ReplyThreads& threads = *s_all.emplace_back(std::make_unique<ReplyThreads>()); // some may still be on their way out
    Awaited<bool> begun;
    Awaited<bool> goOn;
    std::atomic<bool> ended = false;
    std::atomic<bool> ranLate = false;
    threads.run([&] {
        begun.tell(true);
        EXPECT_TRUE(goOn.one().has_value());
        ended = true;
    });
    ASSERT_TRUE(begun.one().has_value());

    std::thread leaving([&] { threads.leave(); });
    goOn.tell(true);
    leaving.join();

    EXPECT_TRUE(ended);
    threads.run([&] { ranLate = true; });
    threads.leave();
    EXPECT_FALSE(ranLate);
}

} // namespace
} // namespace havrel
