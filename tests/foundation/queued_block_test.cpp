// SPDX-License-Identifier: MIT
#include "foundation/queued_block.h"

#include "foundation/block_batch.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace havrel {
namespace {

/// Counts how many copies of it live.
class Counted
{
public:
    explicit Counted(int& alive)
        : m_alive(&alive)
    {
        ++*m_alive;
    }
    Counted(const Counted& other)
        : m_alive(other.m_alive)
    {
        ++*m_alive;
    }
    Counted& operator=(const Counted&) = delete;
    ~Counted() { --*m_alive; }

private:
    int* m_alive;
};

TEST(QueuedBlock, RunsWhatItTook)
{
    int runs = 0;
    QueuedBlock block;
    block.take([&runs] { ++runs; });
    block();
    block();
    EXPECT_EQ(runs, 2);
}

TEST(QueuedBlock, TakesWhatCannotBeCopied)
{
    std::string result;
    QueuedBlock block;
    block.take([text = std::make_unique<std::string>("moved"), &result] { result = *text; });
    block();
    EXPECT_EQ(result, "moved");
}

TEST(QueuedBlock, CopiesWhatStaysWithTheCaller)
{
    int alive = 0;
    int runs = 0;
    auto callable = [counted = Counted(alive), &runs] { ++runs; };
    const std::function<void()> function = [&runs] { runs += 10; };
    QueuedBlock first;
    QueuedBlock second;
    first.take(callable);
    second.take(function);
    EXPECT_EQ(alive, 2);
    first();
    second();
    callable();
    EXPECT_EQ(runs, 12);
}

TEST(QueuedBlock, HoldsWhatIsLargerThanItsRoom)
{
    std::array<int, 1000> numbers{};
    numbers.back() = 7;
    int last = 0;
    QueuedBlock block;
    block.take([numbers, &last] { last = numbers.back(); });
    block();
    EXPECT_EQ(last, 7);
}

TEST(QueuedBlock, LetsGoOfWhatItHolds)
{
    int alive = 0;
    {
        QueuedBlock block;
        block.take([counted = Counted(alive)] {});
        EXPECT_EQ(alive, 1);
        block.take([counted = Counted(alive), large = std::array<char, 500>{}] { EXPECT_EQ(large.size(), 500U); });
        EXPECT_EQ(alive, 1);
        block.reset();
        EXPECT_EQ(alive, 0);
        block.reset();
        block.take([counted = Counted(alive)] {});
    }
    EXPECT_EQ(alive, 0);
}

struct Doubled
{
    struct Request
    {
        using QueuedAs = Doubled;
        int& result;
        const int& number;
    };
    explicit Doubled(const Request& request)
        : result(request.result)
        , number(request.number)
    {
    }
    void operator()() const { result = 2 * number; }

    int& result;
    const int number;
};

TEST(QueuedBlock, HoldsWhatARequestIsQueuedAs)
{
    int result = 0;
    int number = 21;
    QueuedBlock block;
    block.take(Doubled::Request{.result = result, .number = number});
    number = 0;
    block();
    EXPECT_EQ(result, 42);
}

TEST(QueuedBlock, HoldsNothingWhenTakingRaises)
{
    struct Unmovable
    {
        Unmovable() = default;
        Unmovable(const Unmovable&) { throw std::runtime_error("no"); }
        void operator()() const {}
    };
    int alive = 0;
    QueuedBlock block;
    block.take([counted = Counted(alive)] {});
    const Unmovable unmovable;
    EXPECT_THROW(block.take(unmovable), std::runtime_error);
    EXPECT_EQ(alive, 0);
    block.reset();
}

TEST(BlockBatch, HandsOutItsBlocksInOrderAndTakesThemAnew)
{
    BlockBatch batch;
    for (const int count : {0, 1, 255, 256, 257, 10000, 3}) {
        std::vector<int> order;
        for (int i = 0; i < count; ++i)
            batch.push([&order, i] { order.push_back(i); });
        EXPECT_EQ(batch.isEmpty(), count == 0);
        batch.drain([](QueuedBlock& block) { block(); });
        EXPECT_TRUE(batch.isEmpty());
        ASSERT_EQ(order.size(), static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i)
            ASSERT_EQ(order[static_cast<std::size_t>(i)], i);
    }
}

TEST(BlockBatch, LetsGoOfABlockBeforeTheNextOneRuns)
{
    int alive = 0;
    std::vector<int> seen;
    BlockBatch batch;
    for (int i = 0; i < 3; ++i)
        batch.push([counted = Counted(alive), &alive, &seen] { seen.push_back(alive); });
    batch.drain([](QueuedBlock& block) { block(); });
    EXPECT_EQ(seen, (std::vector<int>{3, 2, 1}));
    EXPECT_EQ(alive, 0);
}

TEST(BlockBatch, DropsWhatWasNeverRun)
{
    int alive = 0;
    {
        BlockBatch batch;
        BlockBatch other;
        for (int i = 0; i < 300; ++i)
            batch.push([counted = Counted(alive)] {});
        batch.swap(other);
        EXPECT_TRUE(batch.isEmpty());
        EXPECT_EQ(alive, 300);
    }
    EXPECT_EQ(alive, 0);
}

} // namespace
} // namespace havrel
