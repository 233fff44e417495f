// SPDX-License-Identifier: MIT
#include "cli/time_options.h"

#include <gtest/gtest.h>

#include <array>

namespace havrel::cli {
namespace {

struct DurationRow
{
    const char* text;
    qint64 count; // 0: refused
    DurationScale scale = DurationScale::Minutes;
};

TEST(DurationOf, TakesACountAndAUnit)
{
    constexpr auto kRows = std::to_array<DurationRow>({
        {"23 hours", 23, DurationScale::Hours},
        {"1 hour", 1, DurationScale::Hours},
        {"23h", 23, DurationScale::Hours},
        {"31 days", 31, DurationScale::Days},
        {"31  DAYS ", 31, DurationScale::Days},
        {"5d", 5, DurationScale::Days},
        {"90 min", 90, DurationScale::Minutes},
        {"90 minutes", 90, DurationScale::Minutes},
        {"1 minute", 1, DurationScale::Minutes},
        {"2 weeks", 2, DurationScale::Weeks},
        {"1week", 1, DurationScale::Weeks},
        {"2w", 2, DurationScale::Weeks},
        {"3 months", 3, DurationScale::Months},
        {"1 month", 1, DurationScale::Months},
        {"1 year", 1, DurationScale::Years},
        {"10 years", 10, DurationScale::Years},
        {"10y", 10, DurationScale::Years},
        {"007 days", 7, DurationScale::Days},
        {"9223372036854775807 minutes", 9223372036854775807, DurationScale::Minutes},
        {"9223372036854775808 minutes", 0},
        {"23", 0},
        {"0 hours", 0},
        {"-1 hours", 0},
        {"+1 hours", 0},
        {"1.5 hours", 0},
        {"hours", 0},
        {"", 0},
        {" 5 days", 0},
        {"5 m", 0},
        {"5 daysx", 0},
        {"5 days 3 hours", 0},
    });
    for (const DurationRow& row : kRows) {
        const std::optional<Duration> duration = durationOf(row.text);
        EXPECT_EQ(duration.has_value(), row.count != 0) << row.text;
        EXPECT_EQ(duration.value_or(Duration{0, row.scale}).count, row.count) << row.text;
        EXPECT_EQ(duration.value_or(Duration{0, row.scale}).scale, row.scale) << row.text;
    }
}

TEST(DurationOf, RefusesACountWithANul)
{
    EXPECT_FALSE(durationOf(QByteArray("1\0 hour", 7)));
}

struct PartRow
{
    const char* text;
    bool valid;
    quint64 from = 0;
    quint64 to = 0;
};

TEST(PartOfDayOf, TakesTwoTimesOfDay)
{
    constexpr auto kRows = std::to_array<PartRow>({
        {"09:00-17:00", true, 540, 1020},
        {"9:00-17:00", true, 540, 1020},
        {"22:00-06:30", true, 1320, 390},
        {"00:00-23:59", true, 0, 1439},
        {"09:00-09:00", false},
        {"24:00-01:00", false},
        {"09:60-10:00", false},
        {"09:00", false},
        {"09:00-", false},
        {"-09:00", false},
        {"09:0-10:00", false},
        {"9-17", false},
        {"09:00 - 17:00", false},
        {"09:00-17:00-18:00", false},
        {"009:00-17:00", false},
        {"-1:00-17:00", false},
        {"09:-1-17:00", false},
        {":00-17:00", false},
        {"", false},
        {"-", false},
        {":-:", false},
    });
    for (const PartRow& row : kRows) {
        const std::optional<PartOfDay> part = partOfDayOf(row.text);
        EXPECT_EQ(part.has_value(), row.valid) << row.text;
        EXPECT_EQ(part.value_or(PartOfDay{}).fromMinute, row.from) << row.text;
        EXPECT_EQ(part.value_or(PartOfDay{}).toMinute, row.to) << row.text;
    }
}

} // namespace
} // namespace havrel::cli
