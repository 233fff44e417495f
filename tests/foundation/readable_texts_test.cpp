// SPDX-License-Identifier: MIT
#include "foundation/readable_texts.h"

#include "foundation/date_additions.h"
#include "tests/support/stopped_clock.h"
#include "tests/support/time_zone_of_the_user.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>

namespace havrel {
namespace {

struct DurationCase
{
    const char* label;
    qint64 duration;
    std::uint32_t scale;
    const char* expected;
};

class ReadableDuration : public ::testing::TestWithParam<DurationCase>
{
};

TEST_P(ReadableDuration, NamesItsUnit)
{
    EXPECT_EQ(stringWithReadableDuration(GetParam().duration, DurationScale{GetParam().scale}).toStdString(),
              GetParam().expected);
}

constexpr auto kDurationCases = std::to_array<DurationCase>({
    {"hours", 23, 1, "23 hours"},
    {"one_hour", 1, 1, "1 hour"},
    {"days", 31, 2, "31 days"},
    {"one_day", 1, 2, "1 day"},
    {"no_minutes", 0, 0, "0 minutes"},
    {"one_minute", 1, 0, "1 minute"},
    {"minutes", 2, 0, "2 minutes"},
    {"weeks", 3, 3, "3 weeks"},
    {"one_week", 1, 3, "1 week"},
    {"months", 4, 4, "4 months"},
    {"one_month", 1, 4, "1 month"},
    {"years", 5, 5, "5 years"},
    {"one_year", 1, 5, "1 year"},
    {"no_such_scale", 7, 6, "7"},
    {"one_of_no_scale", 1, 0xFFFFFFFF, "1"},
    {"negative", -1, 1, "-1 hours"},
    {"smallest", std::numeric_limits<qint64>::min(), 2, "-9223372036854775808 days"},
    {"largest", std::numeric_limits<qint64>::max(), 2, "9223372036854775807 days"},
});

INSTANTIATE_TEST_SUITE_P(Cases, ReadableDuration, ::testing::ValuesIn(kDurationCases), [](const auto& each) {
    return std::string(each.param.label);
});

QString shortTimeToday(int minuteOfTheDay)
{
    return stringWithReadableTime(
        todayWithHour(std::chrono::hours(minuteOfTheDay / 60), std::chrono::minutes(minuteOfTheDay % 60)),
        ReadableTimeStyle::Short);
}

TEST(ReadableTime, IsTheUsersClockInTwentyFourHours)
{
    const TimeZoneOfTheUser zone("Europe/Berlin");
    const StoppedClock clock(QStringLiteral("2025-07-30T12:34:56.789Z"));

    EXPECT_EQ(shortTimeToday(540).toStdString(), "09:00");
    EXPECT_EQ(shortTimeToday(1020).toStdString(), "17:00");
    EXPECT_EQ(shortTimeToday(0).toStdString(), "00:00");
    EXPECT_EQ(shortTimeToday(1439).toStdString(), "23:59");
    EXPECT_EQ(shortTimeToday(1441).toStdString(), "00:01") << "minutes beyond the day begin again";
}

TEST(ReadableTime, IsEmptyForNoDate)
{
    EXPECT_EQ(stringWithReadableTime({}, ReadableTimeStyle::Short), QString());
}

} // namespace
} // namespace havrel
