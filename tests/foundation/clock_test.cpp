// SPDX-License-Identifier: MIT
#include "foundation/clock.h"

#include "tests/support/stopped_clock.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

TEST(Clock, ShowsTheSystemsTimeInUTC)
{
    const QDateTime before = QDateTime::currentDateTimeUtc();
    const QDateTime shown = now();

    EXPECT_LE(before, shown);
    EXPECT_LE(shown, QDateTime::currentDateTimeUtc());
    EXPECT_EQ(shown.timeSpec(), Qt::UTC);
}

TEST(Clock, IsReplacedUntilTheReplacementEnds)
{
    {
        StoppedClock clock(QStringLiteral("2001-01-01T00:00:00.000Z"));
        EXPECT_EQ(now().toSecsSinceEpoch(), 978307200);
        clock.set(now().addSecs(1));
        EXPECT_EQ(now().toSecsSinceEpoch(), 978307201);
    }
    EXPECT_GT(now().toSecsSinceEpoch(), 978307201);
}

} // namespace
} // namespace havrel
