// SPDX-License-Identifier: MIT
#include "diagnostics/backtrace_registry.h"

#include <gtest/gtest.h>

#include <limits>

namespace havrel {
namespace {

LogDate after(int seconds)
{
    return LogDate(std::chrono::seconds(1000000 + seconds));
}

TEST(BacktraceRegistry, SumsTheAddressesWrapping)
{
    BacktraceRegistry registry;
    EXPECT_EQ(registry.tagFor({1, 2, 3}, after(0)).key, 6U);
    EXPECT_EQ(registry.tagFor({std::numeric_limits<std::uintptr_t>::max(), 10}, after(0)).key, 9U);
    EXPECT_EQ(registry.tagFor({}, after(0)).key, 0U);
}

TEST(BacktraceRegistry, AsksForFramesOncePerSixHours)
{
    BacktraceRegistry registry;
    EXPECT_TRUE(registry.tagFor({1, 2}, after(0)).writeFrames);
    EXPECT_FALSE(registry.tagFor({1, 2}, after(1)).writeFrames);
    EXPECT_FALSE(registry.tagFor({1, 2}, after(21600)).writeFrames); // not more than six hours
    EXPECT_TRUE(registry.tagFor({1, 2}, after(21601)).writeFrames);
    EXPECT_FALSE(registry.tagFor({1, 2}, after(21602)).writeFrames);
    EXPECT_FALSE(registry.tagFor({1, 2}, after(21601 + 21600)).writeFrames);
    EXPECT_TRUE(registry.tagFor({1, 2}, after(21601 + 21601)).writeFrames);
}

TEST(BacktraceRegistry, GivesTheNextFreeNumberToAnotherBacktraceOfTheSameSum)
{
    BacktraceRegistry registry;
    EXPECT_EQ(registry.tagFor({1, 5}, after(0)).key, 6U);
    EXPECT_EQ(registry.tagFor({2, 4}, after(0)).key, 7U);
    EXPECT_EQ(registry.tagFor({3, 3}, after(0)).key, 8U);
    EXPECT_EQ(registry.tagFor({7}, after(0)).key, 9U);
    EXPECT_EQ(registry.tagFor({2, 4}, after(1)).key, 7U);
    EXPECT_FALSE(registry.tagFor({3, 3}, after(1)).writeFrames);
}

TEST(BacktraceRegistry, ForgetsOldBacktracesWhenANewOneComes)
{
    BacktraceRegistry registry;
    EXPECT_EQ(registry.tagFor({1, 5}, after(0)).key, 6U);
    EXPECT_EQ(registry.tagFor({2, 4}, after(0)).key, 7U);
    EXPECT_EQ(registry.tagFor({100}, after(21601)).key, 100U); // sweeps 6 and 7
    const auto again = registry.tagFor({2, 4}, after(21602));
    EXPECT_EQ(again.key, 6U);
    EXPECT_TRUE(again.writeFrames);
}

TEST(BacktraceRegistry, KeepsWhatIsExactlySixHoursOldWhenItSweeps)
{
    BacktraceRegistry registry;
    EXPECT_EQ(registry.tagFor({1, 5}, after(0)).key, 6U);
    EXPECT_EQ(registry.tagFor({2, 4}, after(21600)).key, 7U);
}

} // namespace
} // namespace havrel
