// SPDX-License-Identifier: MIT
#include "foundation/timestamp.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>

#include <time.h>

namespace havrel {
namespace {

constexpr qint64 kMost = std::numeric_limits<qint64>::max();
constexpr qint64 kLeast = std::numeric_limits<qint64>::min();

struct TimeCase
{
    const char* label;
    timespec time;
    Timestamp expected;
};

class TimestampOfTimeSpec : public ::testing::TestWithParam<TimeCase>
{
};

TEST_P(TimestampOfTimeSpec, KeepsNanoseconds)
{
    const Timestamp date = newCFDateWithBSDTimeSpec(GetParam().time);

    EXPECT_EQ(date.seconds, GetParam().expected.seconds);
    EXPECT_EQ(date.nanoseconds, GetParam().expected.nanoseconds);
}

constexpr auto kTimeCases = std::to_array<TimeCase>({
    {"present", {1753878896, 123456789}, {1753878896, 123456789}},
    {"epoch", {0, 0}, {0, 0}},
    {"before_the_epoch", {-1, 999999999}, {-1, 999999999}},
    {"beyond_the_year_2262", {10000000000, 1}, {10000000000, 1}},
    {"too_many_nanoseconds", {5, 2000000001}, {7, 1}},
    {"negative_nanoseconds", {5, -1}, {4, 999999999}},
    {"last", {kMost, 999999999}, {kMost, 999999999}},
    {"after_the_last", {kMost, 1000000000}, {kMost, 999999999}},
    {"first", {kLeast, 0}, {kLeast, 0}},
    {"before_the_first", {kLeast, -1}, {kLeast, 0}},
    {"largest_fields", {kMost, kMost}, {kMost, 999999999}},
    {"smallest_fields", {kLeast, kLeast}, {kLeast, 0}},
});

INSTANTIATE_TEST_SUITE_P(Cases, TimestampOfTimeSpec, ::testing::ValuesIn(kTimeCases), [](const auto& each) {
    return std::string(each.param.label);
});

TEST(Timestamp, OrdersByTimeAndTellsNanosecondsApart)
{
    EXPECT_LT((Timestamp{-1, 999999999}), (Timestamp{0, 0}));
    EXPECT_LT((Timestamp{0, 1}), (Timestamp{0, 2}));
    EXPECT_EQ((Timestamp{1, 2}), (Timestamp{1, 2}));
}

TEST(Timestamp, BecomesADateInMilliseconds)
{
    const QDateTime date = Timestamp{1753878896, 789999999}.dateTime();

    EXPECT_EQ(date, QDateTime(QDate(2025, 7, 30), QTime(12, 34, 56, 789), Qt::UTC));
    EXPECT_EQ(date.timeSpec(), Qt::UTC);
    EXPECT_EQ((Timestamp{-1, 999000000}).dateTime().toMSecsSinceEpoch(), -1);
}

TEST(Timestamp, IsNoDateBeyondTheRangeOfDates)
{
    EXPECT_FALSE((Timestamp{kMost, 0}).dateTime().isValid());
    EXPECT_FALSE((Timestamp{kLeast, 0}).dateTime().isValid());
    EXPECT_FALSE((Timestamp{kMost / 1000, 999000000}).dateTime().isValid());
}

TEST(Timestamp, ComesBackFromADate)
{
    for (const qint64 milliseconds : {0LL, 1LL, -1LL, 999LL, -1000LL, -1001LL, 1753878896789LL, -62135596800000LL}) {
        const QDateTime date = QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC);
        EXPECT_EQ(Timestamp::ofDateTime(date).dateTime(), date);
        EXPECT_EQ(Timestamp::ofDateTime(date.toOffsetFromUtc(3600)).dateTime(), date);
    }
    EXPECT_EQ(Timestamp::ofDateTime({}), Timestamp{});
}

} // namespace
} // namespace havrel
