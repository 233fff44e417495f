// SPDX-License-Identifier: MIT
#include "app/endable_timers.h"

#include "tests/support/fake_timers.h"

#include <gtest/gtest.h>

namespace havrel::tests {
namespace {

using namespace std::chrono_literals;

TEST(EndableTimers, StandStillFromTheEndOn)
{
    FakeTimers time;
    EndableTimers timers(time);
    time.pass(3s);
    EXPECT_EQ(timers.elapsed(), 3s);
    int fired = 0;
    const auto timer = timers.makeTimer([&fired] { ++fired; });
    timer->start(1s);
    timers.end();
    time.pass(2s);
    EXPECT_EQ(timers.elapsed(), 3s);
    EXPECT_EQ(fired, 1);
}

} // namespace
} // namespace havrel::tests
