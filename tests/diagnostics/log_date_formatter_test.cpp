// SPDX-License-Identifier: MIT
#include "diagnostics/log_date_formatter.h"

#include "diagnostics/logr.h"
#include "tests/support/time_zone_of_the_user.h"

#include <gtest/gtest.h>

#include <vector>

namespace havrel {
namespace {

struct DateRow
{
    const char* zone; // in the form of POSIX: hours west
    std::int64_t seconds;
    std::int64_t nanoseconds;
    const char* text;
};

TEST(LogDateFormatter, WritesLocalTimeAndTheZonesOffset)
{
    const std::vector<DateRow> rows{
        {"UTC0", 0, 0, "1970-01-01 00:00:00.000 +0000"},
        {"CEST-2", 1753871696, 789000000, "2025-07-30 12:34:56.789 +0200"},
        {"EST5", 1753871696, 789000000, "2025-07-30 05:34:56.789 -0500"},
        {"NST3:30", 1753871696, 0, "2025-07-30 07:04:56.000 -0330"},
        {"NPT-5:45", 1753871696, 0, "2025-07-30 16:19:56.000 +0545"},
        {"UTC0", 1753871696, 999999999, "2025-07-30 10:34:56.999 +0000"}, // cut, not rounded
        {"UTC0", -1, 500000000, "1969-12-31 23:59:59.500 +0000"},
        {"UTC0", 951782400, 0, "2000-02-29 00:00:00.000 +0000"},
    };
    for (const DateRow& row : rows) {
        const TimeZoneOfTheUser zone(row.zone);
        const LogDate date(std::chrono::seconds(row.seconds) + std::chrono::nanoseconds(row.nanoseconds));
        EXPECT_EQ(LogDateFormatter().stringFromDate(date), QLatin1StringView(row.text));
    }
}

TEST(LogDateFormatter, IsMadeByTheLoggingFacadeForEveryoneWhoAsks)
{
    const TimeZoneOfTheUser zone("CEST-2");
    LogDateFormatter formatter = Logr::makeLogDateFormatter();
    EXPECT_EQ(formatter.stringFromDate(LogDate(std::chrono::milliseconds(1753871696789))),
              QStringLiteral("2025-07-30 12:34:56.789 +0200"));
}

TEST(LogDateFormatter, FollowsTheClockWhateverItSaidBefore)
{
    const TimeZoneOfTheUser zone("CET-1CEST,M3.5.0,M10.5.0/3");
    LogDateFormatter formatter;
    const auto text = [&formatter](std::int64_t milliseconds) {
        return formatter.stringFromDate(LogDate(std::chrono::milliseconds(milliseconds)));
    };
    EXPECT_EQ(text(1743296399999), QStringLiteral("2025-03-30 01:59:59.999 +0100"));
    EXPECT_EQ(text(1743296400000), QStringLiteral("2025-03-30 03:00:00.000 +0200"));
    EXPECT_EQ(text(1743296400001), QStringLiteral("2025-03-30 03:00:00.001 +0200"));
    EXPECT_EQ(text(1743296399000), QStringLiteral("2025-03-30 01:59:59.000 +0100"));
}

} // namespace
} // namespace havrel
