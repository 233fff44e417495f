// SPDX-License-Identifier: MIT
#include "foundation/pooled_allocator.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <set>
#include <thread>
#include <vector>

namespace havrel {
namespace {

struct Number
{
    explicit Number(std::uint64_t given)
        : value(given)
    {
    }
    std::uint64_t value;
    std::array<char, 40> padding{};
};

std::shared_ptr<Number> pooled(std::uint64_t value)
{
    return std::allocate_shared<Number>(PooledAllocator<Number>(), value);
}

TEST(PooledAllocator, GivesEachObjectItsOwnMemory)
{
    std::vector<std::shared_ptr<Number>> numbers;
    std::set<const Number*> addresses;
    for (std::uint64_t i = 0; i < 1000; ++i) {
        numbers.push_back(pooled(i));
        addresses.insert(numbers.back().get());
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(numbers.back().get()) % alignof(void*), 0U);
    }
    EXPECT_EQ(addresses.size(), 1000U);
    for (std::uint64_t i = 0; i < 1000; ++i)
        EXPECT_EQ(numbers[i]->value, i);
}

TEST(PooledAllocator, LetsObjectsDieOnAnotherThreadAndOutliveTheirs)
{
    std::vector<std::shared_ptr<Number>> numbers;
    std::thread maker([&numbers] {
        for (std::uint64_t i = 0; i < 500; ++i)
            numbers.push_back(pooled(i));
    });
    maker.join();
    for (std::uint64_t i = 0; i < 500; i += 2)
        numbers[i].reset();
    for (std::uint64_t i = 1; i < 500; i += 2)
        EXPECT_EQ(numbers[i]->value, i);
    std::thread([&numbers] { numbers.clear(); }).join();
}

TEST(PooledAllocator, ServesManyThreadsAtOnce)
{
    std::vector<std::thread> threads;
    std::array<std::vector<std::shared_ptr<Number>>, 4> all;
    for (auto& numbers : all)
        threads.emplace_back([&numbers] {
            for (std::uint64_t i = 0; i < 5000; ++i) {
                numbers.push_back(pooled(i));
                if (i % 3 == 0)
                    numbers.front().reset();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    for (auto& numbers : all)
        EXPECT_EQ(numbers.back()->value, 4999U);
}

TEST(PooledAllocator, TakesArraysFromTheHeap)
{
    PooledAllocator<Number> allocator;
    Number* const numbers = allocator.allocate(3);
    std::memset(static_cast<void*>(numbers), 0, 3 * sizeof(Number));
    allocator.deallocate(numbers, 3);
    EXPECT_TRUE(allocator == PooledAllocator<int>());
}

} // namespace
} // namespace havrel
