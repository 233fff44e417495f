// SPDX-License-Identifier: MIT
#include "app/display_loss_watch.h"

#include <QtGlobal>

#include <gtest/gtest.h>

namespace havrel::tests {
namespace {

TEST(DisplayLossWatch, HearsTheToolkitTellOfALostCompositor)
{
    int acted = 0;
    {
        const DisplayLossWatch watch([&acted] { ++acted; });
        qWarning("The Wayland protocol is spoken");
        EXPECT_EQ(acted, 0);
        qWarning("The Wayland connection broke. Did the Wayland compositor die?");
        EXPECT_EQ(acted, 1);
        qWarning("The Wayland connection experienced a fatal error: x");
        EXPECT_EQ(acted, 1); // once
    }
    {
        const DisplayLossWatch watch([&acted] { ++acted; });
        qWarning("The Wayland connection experienced a fatal error: x");
        EXPECT_EQ(acted, 2);
    }
    qWarning("The Wayland connection broke. Did the Wayland compositor die?");
    EXPECT_EQ(acted, 2);
}

TEST(DisplayLossWatchDeathTest, HearsTheToolkitExit)
{
    testing::FLAGS_gtest_death_test_style = "fast";
    EXPECT_EXIT(
        {
            const DisplayLossWatch watch([] { qWarning("written"); });
            std::exit(1);
        },
        testing::ExitedWithCode(1),
        "written");
}

} // namespace
} // namespace havrel::tests
