// SPDX-License-Identifier: MIT
#include "cli/progress_bar.h"

#include <gtest/gtest.h>

namespace havrel::cli {
namespace {

TEST(ProgressLine, ShowsHowMuchIsDoneAndHowManyItems)
{
    EXPECT_EQ(progressLine(0, 0, 80), "[..............................]   0%  0 items");
    EXPECT_EQ(progressLine(0.5, 1, 80), "[###############...............]  50%  1 item");
    EXPECT_EQ(progressLine(1, 12345, 80), "[##############################] 100%  12345 items");
}

TEST(ProgressLine, StaysWithinTheTerminalAndWithinTheBar)
{
    EXPECT_EQ(progressLine(0.5, 5, 20).size(), 19);
    EXPECT_EQ(progressLine(0.5, 5, 0), "");
    EXPECT_EQ(progressLine(7, 5, 80), progressLine(1, 5, 80));
    EXPECT_EQ(progressLine(-7, 5, 80), progressLine(0, 5, 80));
}

} // namespace
} // namespace havrel::cli
