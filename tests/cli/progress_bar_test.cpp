// SPDX-License-Identifier: MIT
#include "cli/progress_bar.h"

#include "tests/support/terminal_for_errors.h"

#include <gtest/gtest.h>

#include <stdlib.h> // NOLINT(modernize-deprecated-headers): declares setenv

namespace havrel::cli {
namespace {

using namespace std::chrono_literals;
using tests::TerminalForErrors;

/// A bar, and the clock that it goes by.
class DrawnProgressBar : public testing::Test
{
protected:
    void SetUp() override { ::setenv("TERM", "xterm", 1); } // each test is a process of its own, or sets it again

    /// What a bar writes that is told of its work after each of these pauses, and hidden in the end.
    void work(std::initializer_list<std::chrono::milliseconds> pauses)
    {
        ProgressBar bar([this] { return m_now; });
        qint64 count = 0;
        for (const auto pause : pauses) {
            m_now += pause;
            bar.update(0.5, ++count);
        }
    }

    ProgressBar::Clock::time_point m_now;
};

QByteArray drawn(const QByteArray& line)
{
    return '\r' + line + "\x1b[K";
}

TEST_F(DrawnProgressBar, ShowsItselfOnATerminalAfterASecondAndGoesInTheEnd)
{
    TerminalForErrors terminal(80);
    work({0ms, 999ms, 1ms});
    EXPECT_EQ(terminal.taken(), drawn(progressLine(0.5, 3, 80)) + drawn(""));
}

TEST_F(DrawnProgressBar, DrawsTenTimesASecondAtMost)
{
    TerminalForErrors terminal(80);
    work({1000ms, 99ms, 1ms, 50ms, 50ms});
    EXPECT_EQ(terminal.taken(),
              drawn(progressLine(0.5, 1, 80)) + drawn(progressLine(0.5, 3, 80)) + drawn(progressLine(0.5, 5, 80)) +
                  drawn(""));
}

TEST_F(DrawnProgressBar, KeepsToTheWidthOfTheTerminal)
{
    TerminalForErrors terminal(20);
    work({2000ms});
    EXPECT_EQ(terminal.taken(), drawn(progressLine(0.5, 1, 20)) + drawn(""));
}

TEST_F(DrawnProgressBar, ComesBackAfterItWasHidden)
{
    TerminalForErrors terminal(80);
    {
        ProgressBar bar([this] { return m_now; });
        bar.hide(); // nothing to hide
        m_now += 2s;
        bar.update(0, 1);
        bar.hide();
        m_now += 2s;
        bar.update(1, 2);
    }
    EXPECT_EQ(terminal.taken(), drawn(progressLine(0, 1, 80)) + drawn("") + drawn(progressLine(1, 2, 80)) + drawn(""));
}

TEST_F(DrawnProgressBar, WritesNothingForWorkThatIsSoonDone)
{
    TerminalForErrors terminal(80);
    work({0ms, 500ms, 499ms});
    EXPECT_EQ(terminal.taken(), "");
}

TEST_F(DrawnProgressBar, WritesNothingToATerminalThatCannotMoveTheCursor)
{
    ::setenv("TERM", "dumb", 1);
    TerminalForErrors terminal(80);
    work({2000ms});
    EXPECT_EQ(terminal.taken(), "");
}

TEST_F(DrawnProgressBar, WritesNothingWhereNobodyLooks)
{
    testing::internal::CaptureStderr();
    work({2000ms});
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

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
