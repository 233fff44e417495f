// SPDX-License-Identifier: MIT
#include "diagnostics/rate_limiter.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace havrel {
namespace {

using Verdict = RateLimiter::Verdict;
using std::chrono::milliseconds;

/// Feeds numbered lines to a limiter and writes what comes out, as the writer does.
class RateLimiterTest : public testing::Test
{
protected:
    void log(int count, milliseconds start, milliseconds step)
    {
        for (int i = 0; i < count; ++i)
            logAt(start + i * step);
    }

    void logAt(milliseconds when)
    {
        const QString line = QString::number(m_next++);
        const LogDate date{when};
        switch (m_limiter.judge(line, date)) {
        case Verdict::Write:
            m_written << line;
            break;
        case Verdict::Release:
            release(date);
            break;
        case Verdict::Hold:
            break;
        }
    }

    void release(LogDate date)
    {
        const auto held = m_limiter.unspool(date);
        if (!held)
            return;
        if (held->discarded > 0)
            m_written << QStringLiteral("%1 discarded").arg(held->discarded);
        for (const QString& line : held->lines)
            m_written << line;
    }

    static QStringList numbers(int first, int last)
    {
        QStringList lines;
        for (int i = first; i <= last; ++i)
            lines << QString::number(i);
        return lines;
    }

    RateLimiter m_limiter;
    QStringList m_written;
    int m_next = 0;
};

TEST_F(RateLimiterTest, WritesTheWholeFirstWindowHoweverFast)
{
    log(19999, milliseconds(0), milliseconds(0));
    EXPECT_EQ(m_written, numbers(0, 19998));
}

TEST_F(RateLimiterTest, HoldsFromThe10000thLineOfALaterWindowThatWasTooShort)
{
    log(10000, milliseconds(0), milliseconds(1));
    log(10000, milliseconds(20000), milliseconds(1));
    EXPECT_EQ(m_written, numbers(0, 19998));
}

TEST_F(RateLimiterTest, WritesEverythingAtTheDesignRate)
{
    log(10000, milliseconds(0), milliseconds(4));
    log(200000, milliseconds(40000), milliseconds(4)); // 250 lines a second
    EXPECT_EQ(m_written, numbers(0, 209999));
}

TEST_F(RateLimiterTest, WritesEverythingOfADayAtAThousandLinesAnHour)
{
    log(24000, milliseconds(0), milliseconds(3600));
    EXPECT_EQ(m_written, numbers(0, 23999));
}

TEST_F(RateLimiterTest, DoesNotHoldWhenTheWindowTookNoTimeAtAll)
{
    log(40000, milliseconds(5000), milliseconds(0));
    EXPECT_EQ(m_written, numbers(0, 39999));
}

TEST_F(RateLimiterTest, HoldsWhenTheClockWasSetBack)
{
    log(10000, milliseconds(1000000), milliseconds(0));
    log(9999, milliseconds(1000001), milliseconds(0));
    logAt(milliseconds(0));
    EXPECT_EQ(m_written, numbers(0, 19998));
}

TEST_F(RateLimiterTest, HoldsJustInsideTheBoundOfAWindowOnly)
{
    log(10000, milliseconds(0), milliseconds(0));
    log(9999, milliseconds(0), milliseconds(0));
    logAt(milliseconds(36000)); // longer than 35.99971200230399 seconds
    EXPECT_EQ(m_written, numbers(0, 19999));
    log(9999, milliseconds(36000), milliseconds(0));
    logAt(milliseconds(36000 + 35999)); // shorter
    EXPECT_EQ(m_written, numbers(0, 29998));
}

TEST_F(RateLimiterTest, ReportsWhatItDroppedAndWritesTheNewestLinesOldestFirst)
{
    log(10000, milliseconds(0), milliseconds(1));
    log(10000, milliseconds(20000), milliseconds(1));
    log(1999, milliseconds(31000), milliseconds(1));
    log(2000, milliseconds(33500), milliseconds(1));
    log(2000, milliseconds(36000), milliseconds(10));
    EXPECT_EQ(m_written, numbers(0, 19998) + QStringList{QStringLiteral("1999 discarded")} + numbers(21999, 25998));
}

TEST_F(RateLimiterTest, SaysNothingOfDroppedLinesWhenNoneWas)
{
    log(10000, milliseconds(0), milliseconds(1));
    log(10000, milliseconds(20000), milliseconds(1));
    log(1999, milliseconds(40000), milliseconds(10));
    EXPECT_EQ(m_written, numbers(0, 21998));
}

TEST_F(RateLimiterTest, ReleasesWhatItHoldsWhenAsked)
{
    log(10000, milliseconds(0), milliseconds(1));
    log(10003, milliseconds(20000), milliseconds(1));
    EXPECT_EQ(m_written.size(), 19999);
    release(LogDate{milliseconds(31000)});
    EXPECT_EQ(m_written, numbers(0, 20002));
}

TEST_F(RateLimiterTest, KeepsAtMost4000LinesOfAFlood)
{
    log(10000, milliseconds(0), milliseconds(1));
    log(1000000, milliseconds(20000), milliseconds(1));
    const auto held = m_limiter.unspool(LogDate{milliseconds(2000000)});
    ASSERT_TRUE(held);
    EXPECT_LE(held->lines.size(), 4000U);
    EXPECT_EQ(held->lines.back(), QStringLiteral("1009999"));
    EXPECT_EQ(static_cast<qint64>(held->lines.size()) + held->discarded + 9999 + 10000 + 1, 1010000);
}

TEST_F(RateLimiterTest, StartsANewWindowAfterARelease)
{
    log(10000, milliseconds(0), milliseconds(1));
    log(10000, milliseconds(20000), milliseconds(1));
    release(LogDate{milliseconds(30000)});
    m_written.clear();
    log(9999, milliseconds(30000), milliseconds(1));
    EXPECT_EQ(m_written, numbers(20000, 29998));
    logAt(milliseconds(30000 + 9999)); // within 36 seconds of the release
    EXPECT_EQ(m_written, numbers(20000, 29998));
}

TEST_F(RateLimiterTest, KeepsItsWindowWhenNothingWasHeld)
{
    log(10000, milliseconds(0), milliseconds(1));
    release(LogDate{milliseconds(1000000)});
    log(10000, milliseconds(20000), milliseconds(1));
    EXPECT_EQ(m_written, numbers(0, 19998)); // the window still began at the 10000th line
}

TEST_F(RateLimiterTest, HoldsOnJustInsideTheBoundOfABatchOnly)
{
    log(10000, milliseconds(0), milliseconds(0));
    log(10000, milliseconds(1), milliseconds(0)); // the last one is held, and dates the window
    log(1998, milliseconds(1), milliseconds(0));
    logAt(milliseconds(1 + 7199)); // shorter than 7.199942400460797 seconds
    EXPECT_EQ(m_written.size(), 19999);
    log(1999, milliseconds(7200), milliseconds(0));
    logAt(milliseconds(7200 + 7200)); // longer
    EXPECT_EQ(m_written.size(), 19999 + 4000);
}

} // namespace
} // namespace havrel
