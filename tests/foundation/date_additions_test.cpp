// SPDX-License-Identifier: MIT
#include "foundation/date_additions.h"

#include "tests/support/stopped_clock.h"
#include "tests/support/time_zone_of_the_user.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>

namespace havrel {
namespace {

using std::chrono::hours;
using std::chrono::minutes;

QDateTime utc(const char* text)
{
    const QDateTime date = QDateTime::fromString(QString::fromLatin1(text), Qt::ISODateWithMs);
    EXPECT_TRUE(date.isValid()) << text;
    return date.toUTC();
}

std::string textOf(const QDateTime& date)
{
    return date.isValid() ? date.toUTC().toString(Qt::ISODateWithMs).toStdString() : "null";
}

/// A summer day, 12:34 in UTC.
constexpr auto kJuly30 = "2025-07-30T12:34:56.789Z";

struct StartCase
{
    const char* label;
    QDateTime (*operation)(const QDateTime&);
    const char* zone;
    const char* date;
    const char* expected;
};

class RelativeDateStart : public ::testing::TestWithParam<StartCase>
{
};

TEST_P(RelativeDateStart, IsTheFirstMomentOfThePeriodInTheUsersZone)
{
    const TimeZoneOfTheUser zone(GetParam().zone);

    const QDateTime start = GetParam().operation(utc(GetParam().date));

    EXPECT_EQ(textOf(start), GetParam().expected);
    EXPECT_EQ(start.timeSpec(), Qt::UTC);
}

constexpr auto kStartCases = std::to_array<StartCase>({
    {"day", startOfDay, "Europe/Berlin", kJuly30, "2025-07-29T22:00:00.000Z"},
    {"day_before_midnight_in_utc", startOfDay, "Europe/Berlin", "2025-07-29T23:30:00.000Z", "2025-07-29T22:00:00.000Z"},
    {"day_in_utc", startOfDay, "UTC", kJuly30, "2025-07-30T00:00:00.000Z"},
    {"day_before_the_epoch", startOfDay, "UTC", "1969-12-31T23:59:59.999Z", "1969-12-31T00:00:00.000Z"},
    {"day_when_clocks_go_forward", startOfDay, "Europe/Berlin", "2025-03-30T12:00:00.000Z", "2025-03-29T23:00:00.000Z"},
    {"day_when_clocks_go_back", startOfDay, "Europe/Berlin", "2025-10-26T12:00:00.000Z", "2025-10-25T22:00:00.000Z"},
    {"day_without_midnight", startOfDay, "America/Sao_Paulo", "2018-11-04T12:00:00.000Z", "2018-11-04T03:00:00.000Z"},
    {"day_that_begins_in_the_middle_of_a_jump",
     startOfDay,
     "America/Toronto",
     "1919-03-31T16:00:00.000Z",
     "1919-03-31T04:30:00.000Z"},
    {"day_with_two_midnights", startOfDay, "America/Havana", "2025-11-02T12:00:00.000Z", "2025-11-02T04:00:00.000Z"},
    {"day_after_a_day_left_out", startOfDay, "Pacific/Apia", "2011-12-30T20:00:00.000Z", "2011-12-30T10:00:00.000Z"},
    {"month", startOfMonth, "Europe/Berlin", kJuly30, "2025-06-30T22:00:00.000Z"},
    {"month_on_its_first_moment", startOfMonth, "UTC", "2025-07-01T00:00:00.000Z", "2025-07-01T00:00:00.000Z"},
    {"year", startOfYear, "Europe/Berlin", kJuly30, "2024-12-31T23:00:00.000Z"},
    {"year_of_the_users_zone", startOfYear, "Asia/Tokyo", "2024-12-31T15:00:00.000Z", "2024-12-31T15:00:00.000Z"},
    {"era", startOfEra, "UTC", kJuly30, "0001-01-01T00:00:00.000Z"},
});

INSTANTIATE_TEST_SUITE_P(Cases, RelativeDateStart, ::testing::ValuesIn(kStartCases), [](const auto& each) {
    return std::string(each.param.label);
});

struct HourCase
{
    const char* label;
    const char* zone;
    const char* date;
    long hour;
    long minute;
    const char* expected;
};

class RelativeDateWithHour : public ::testing::TestWithParam<HourCase>
{
};

TEST_P(RelativeDateWithHour, IsThatTimeOnTheUsersClock)
{
    const TimeZoneOfTheUser zone(GetParam().zone);

    const QDateTime date = dateWithHour(utc(GetParam().date), hours(GetParam().hour), minutes(GetParam().minute));

    EXPECT_EQ(textOf(date), GetParam().expected);
}

constexpr auto kHourCases = std::to_array<HourCase>({
    {"both", "Europe/Berlin", kJuly30, 9, 5, "2025-07-30T07:05:00.000Z"},
    {"own_hour", "Europe/Berlin", kJuly30, -1, 30, "2025-07-30T12:30:00.000Z"},
    {"own_minute", "Europe/Berlin", kJuly30, 9, -1, "2025-07-30T07:34:00.000Z"},
    {"own_both_lose_the_seconds", "Europe/Berlin", kJuly30, -1, -1, "2025-07-30T12:34:00.000Z"},
    {"day_of_the_users_zone", "Asia/Tokyo", "2025-07-30T20:00:00.000Z", 0, 0, "2025-07-30T15:00:00.000Z"},
    {"hour_beyond_the_day", "UTC", kJuly30, 24, 1, "2025-07-31T00:01:00.000Z"},
    {"minute_beyond_the_hour", "UTC", "2025-12-31T12:34:56.789Z", 23, 60, "2026-01-01T00:00:00.000Z"},
    {"before_the_day", "UTC", kJuly30, -2, 0, "2025-07-29T22:00:00.000Z"},
    {"left_out_moves_forward", "Europe/Berlin", "2025-03-30T12:00:00.000Z", 2, 30, "2025-03-30T01:30:00.000Z"},
    {"left_out_west_of_greenwich", "America/New_York", "2025-03-09T20:00:00.000Z", 2, 30, "2025-03-09T07:30:00.000Z"},
    {"left_out_half_an_hour", "Australia/Lord_Howe", "2025-10-05T02:00:00.000Z", 2, 10, "2025-10-04T15:40:00.000Z"},
    {"twice_takes_the_first", "Europe/Berlin", "2025-10-26T12:00:00.000Z", 2, 30, "2025-10-26T00:30:00.000Z"},
    {"twice_west_of_greenwich", "America/New_York", "2025-11-02T20:00:00.000Z", 1, 30, "2025-11-02T05:30:00.000Z"},
    {"after_the_change_of_the_day", "Europe/Berlin", "2025-03-29T23:30:00.000Z", 12, 0, "2025-03-30T10:00:00.000Z"},
    {"largest_stored_minutes", "UTC", kJuly30, 307445734561825860L, 15, "null"},
    {"largest_numbers", "UTC", kJuly30, std::numeric_limits<long>::max(), std::numeric_limits<long>::max(), "null"},
    {"smallest_numbers", "UTC", kJuly30, std::numeric_limits<long>::min(), std::numeric_limits<long>::min(), "null"},
});

INSTANTIATE_TEST_SUITE_P(Cases, RelativeDateWithHour, ::testing::ValuesIn(kHourCases), [](const auto& each) {
    return std::string(each.param.label);
});

struct OffsetCase
{
    const char* label;
    const char* date;
    qint64 offset;
    ReverseDirection direction;
    std::uint32_t scale;
    const char* expected;
};

class RelativeDateOffset : public ::testing::TestWithParam<OffsetCase>
{
};

TEST_P(RelativeDateOffset, MovesByUnitsOfTheCalendar)
{
    const TimeZoneOfTheUser zone("Europe/Berlin");
    const auto& each = GetParam();

    EXPECT_EQ(textOf(dateOffsetBy(utc(each.date), each.offset, each.direction, DurationScale{each.scale})),
              each.expected);
}

constexpr auto kForwards = ReverseDirection::No;
constexpr auto kReverse = ReverseDirection::Yes;
constexpr qint64 kLargest = std::numeric_limits<qint64>::max();
constexpr qint64 kSmallest = std::numeric_limits<qint64>::min();
constexpr auto kOffsetCases = std::to_array<OffsetCase>({
    {"minutes", kJuly30, 90, kForwards, 0, "2025-07-30T14:04:56.789Z"},
    {"hours", kJuly30, 23, kForwards, 1, "2025-07-31T11:34:56.789Z"},
    {"days", kJuly30, 31, kForwards, 2, "2025-08-30T12:34:56.789Z"},
    {"weeks", kJuly30, 2, kForwards, 3, "2025-08-13T12:34:56.789Z"},
    {"months", kJuly30, 1, kForwards, 4, "2025-08-30T12:34:56.789Z"},
    {"years", kJuly30, 5, kForwards, 5, "2030-07-30T12:34:56.789Z"},
    {"unknown_scale", kJuly30, 5, kForwards, 6, kJuly30},
    {"largest_scale", kJuly30, 5, kReverse, 0xFFFFFFFF, kJuly30},
    {"two_months_reverse", kJuly30, 2, kReverse, 4, "2025-05-30T12:34:56.789Z"},
    {"negative_offset", kJuly30, -2, kForwards, 4, "2025-05-30T12:34:56.789Z"},
    {"negative_offset_reverse", kJuly30, -1, kReverse, 2, "2025-07-31T12:34:56.789Z"},
    {"month_end", "2025-01-31T12:00:00.000Z", 1, kForwards, 4, "2025-02-28T12:00:00.000Z"},
    {"month_end_of_a_leap_year", "2024-01-31T12:00:00.000Z", 1, kForwards, 4, "2024-02-29T12:00:00.000Z"},
    {"month_end_reverse", "2025-03-31T12:00:00.000Z", 1, kReverse, 4, "2025-02-28T13:00:00.000Z"},
    {"leap_day_and_a_year", "2024-02-29T12:00:00.000Z", 1, kForwards, 5, "2025-02-28T12:00:00.000Z"},
    {"months_over_the_year", "2025-11-30T12:00:00.000Z", 3, kForwards, 4, "2026-02-28T12:00:00.000Z"},
    {"day_over_the_change_keeps_the_time", "2025-03-29T12:00:00.000Z", 1, kForwards, 2, "2025-03-30T11:00:00.000Z"},
    {"week_back_over_the_change", "2025-10-29T12:00:00.000Z", 1, kReverse, 3, "2025-10-22T11:00:00.000Z"},
    {"hours_over_the_change_are_lengths", "2025-03-29T12:00:00.000Z", 24, kForwards, 1, "2025-03-30T12:00:00.000Z"},
    {"day_into_what_is_left_out", "2025-03-29T01:30:15.250Z", 1, kForwards, 2, "2025-03-30T01:30:15.250Z"},
    {"largest_minutes", kJuly30, kLargest, kForwards, 0, "null"},
    {"largest_days", kJuly30, kLargest, kForwards, 2, "null"},
    {"largest_weeks", kJuly30, kLargest, kReverse, 3, "null"},
    {"largest_months", kJuly30, kLargest, kForwards, 4, "null"},
    {"largest_years", kJuly30, std::numeric_limits<int>::max(), kForwards, 5, "null"},
    {"smallest_reverse", kJuly30, kSmallest, kReverse, 2, "null"},
    {"smallest_forwards", kJuly30, kSmallest, kForwards, 1, "null"},
});

INSTANTIATE_TEST_SUITE_P(Cases, RelativeDateOffset, ::testing::ValuesIn(kOffsetCases), [](const auto& each) {
    return std::string(each.param.label);
});

QDateTime utcMidnight(int year, int month, int day)
{
    return QDateTime(QDate(year, month, day), QTime(0, 0), Qt::UTC);
}

TEST(RelativeDate, CountsBackOverTheErasWithoutAYearZero)
{
    const TimeZoneOfTheUser zone("UTC");
    const QDateTime ides = utcMidnight(-44, 3, 15);

    EXPECT_EQ(startOfYear(ides), utcMidnight(-44, 1, 1));
    EXPECT_EQ(startOfEra(ides), utcMidnight(-1, 1, 1));
    EXPECT_EQ(dateOffsetBy(utcMidnight(1, 6, 15), 1, ReverseDirection::Yes, DurationScale::Years),
              utcMidnight(-1, 6, 15));
}

TEST(RelativeDate, ReachesAsFarAsDatesDo)
{
    const TimeZoneOfTheUser zone("UTC");
    const QDateTime date = utcMidnight(2025, 7, 30);
    constexpr int kMost = std::numeric_limits<int>::max();

    EXPECT_EQ(dateOffsetBy(date, kMost, DurationScale::Months), utcMidnight(178958996, 2, 29));
    EXPECT_EQ(dateOffsetBy(date, kMost, ReverseDirection::Yes, DurationScale::Months), utcMidnight(-178954947, 12, 30));
    EXPECT_EQ(dateOffsetBy(date, 292000000, DurationScale::Years), utcMidnight(292002025, 7, 30));
    EXPECT_FALSE(dateOffsetBy(date, 293000000, DurationScale::Years).isValid());
    EXPECT_FALSE(dateOffsetBy(date, -293000000, DurationScale::Years).isValid());
}

TEST(RelativeDate, AnswersTheVeryDateForAnOffsetOfNothing)
{
    const QDateTime local = QDateTime::fromMSecsSinceEpoch(1753878896789, Qt::OffsetFromUTC, 3600);

    const QDateTime same = dateOffsetBy(local, 0, DurationScale::Months);

    EXPECT_EQ(same, local);
    EXPECT_EQ(same.timeSpec(), Qt::OffsetFromUTC);
}

TEST(RelativeDate, OffsetsForwardsUnlessToldOtherwise)
{
    EXPECT_EQ(textOf(dateOffsetBy(utc(kJuly30), 1, DurationScale::Hours)), "2025-07-30T13:34:56.789Z");
}

TEST(RelativeDate, BeginsTodayWhereTheUserIs)
{
    const TimeZoneOfTheUser zone("Asia/Tokyo");
    const StoppedClock clock(QStringLiteral("2025-07-30T16:00:00.000Z"));

    EXPECT_EQ(textOf(startOfToday()), "2025-07-30T15:00:00.000Z");
    EXPECT_EQ(textOf(todayWithHour(hours(9), minutes(30))), "2025-07-31T00:30:00.000Z");
    EXPECT_EQ(textOf(todayWithHour(kOwnHour, minutes(30))), "2025-07-30T16:30:00.000Z");
}

TEST(RelativeDate, TakesTheNextHourThatIsInTheFuture)
{
    const TimeZoneOfTheUser zone("Europe/Berlin");
    const QDateTime noon = utc("2025-07-30T10:00:00.000Z");
    const StoppedClock clock(noon);

    EXPECT_EQ(textOf(nextHour(noon, hours(12), minutes(1))), "2025-07-30T10:01:00.000Z");
    EXPECT_EQ(textOf(nextHour(noon, hours(12), minutes(0))), "2025-07-31T10:00:00.000Z")
        << "exactly now is not in the future";
    EXPECT_EQ(textOf(nextHour(noon, hours(11), minutes(59))), "2025-07-31T09:59:00.000Z");
    EXPECT_EQ(textOf(nextHour(noon, kOwnHour, minutes(30))), "2025-07-30T10:30:00.000Z");
}

TEST(RelativeDate, MovesTheNextHourByOneDayOnlyEvenIfThatIsStillInThePast)
{
    const StoppedClock clock(QStringLiteral("2025-07-30T10:00:00.000Z"));
    const TimeZoneOfTheUser zone("UTC");

    EXPECT_EQ(textOf(nextHour(utc("2025-07-01T00:00:00.000Z"), hours(9), minutes(0))), "2025-07-02T09:00:00.000Z");
}

TEST(RelativeDate, KeepsTheWallTimeOfTheNextHourOverAChange)
{
    const TimeZoneOfTheUser zone("Europe/Berlin");
    const QDateTime evening = utc("2025-03-29T20:00:00.000Z");
    const StoppedClock clock(evening);

    EXPECT_EQ(textOf(nextHour(evening, hours(9), minutes(0))), "2025-03-30T07:00:00.000Z");
}

TEST(RelativeDate, AnswersNullForNull)
{
    const QDateTime null;

    EXPECT_FALSE(startOfEra(null).isValid());
    EXPECT_FALSE(startOfYear(null).isValid());
    EXPECT_FALSE(startOfMonth(null).isValid());
    EXPECT_FALSE(startOfDay(null).isValid());
    EXPECT_FALSE(dateWithHour(null, hours(1), minutes(1)).isValid());
    EXPECT_FALSE(nextHour(null, hours(1), minutes(1)).isValid());
    EXPECT_FALSE(dateOffsetBy(null, 1, DurationScale::Days).isValid());
    EXPECT_EQ(minuteOfDay(null), 0);
}

TEST(RelativeDate, CountsTheMinutesOfTheUsersDay)
{
    const TimeZoneOfTheUser zone("Europe/Berlin");

    EXPECT_EQ(minuteOfDay(utc("2025-07-29T22:00:59.999Z")), 0);
    EXPECT_EQ(minuteOfDay(utc("2025-07-30T07:05:00.000Z")), 545);
    EXPECT_EQ(minuteOfDay(utc("2025-07-30T21:59:59.999Z")), 1439);
}

TEST(RelativeDate, FindsItsOwnWallTimeAgainOnEveryHourOfAYear)
{
    const TimeZoneOfTheUser zone("America/New_York");
    const QDateTime first = utc("2025-01-01T00:17:00.000Z");
    for (qint64 hour = 0; hour < 365 * 24; ++hour) {
        const QDateTime date = dateOffsetBy(first, hour, DurationScale::Hours);
        const QDateTime again = dateWithHour(date, kOwnHour, kOwnMinute);
        const bool secondOfTwo = date == utc("2025-11-02T06:17:00.000Z"); // 01:17 was an hour before, too
        ASSERT_EQ(textOf(again), textOf(secondOfTwo ? date.addSecs(-3600) : date));
    }
}

} // namespace
} // namespace havrel
