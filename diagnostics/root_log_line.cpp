// SPDX-License-Identifier: MIT
#include "diagnostics/root_log_line.h"

#include <QDate>

#include <algorithm>

namespace havrel {
namespace {

constexpr std::uint64_t kApplication = 6;
constexpr qint64 kJulianDayBeforeEra = 1721425; // 0001-01-01 is Julian day 1721426
constexpr int kMinutesADay = 24 * 60;

} // namespace

std::uint64_t dayStampAt(const platform::LocalTime& local)
{
    const qint64 ordinal = QDate(local.year, local.month, local.day).toJulianDay() - kJulianDayBeforeEra;
    const int minute = local.hour * 60 + local.minute + 1; // the first one is 1
    const int percent = std::min(minute, kMinutesADay - 1) * 100 / kMinutesADay;
    return static_cast<std::uint64_t>(ordinal * 100 + percent);
}

LogLineIdentPtr rootLogLineFor(const platform::LocalTime& local, std::uint64_t processID)
{
    const auto application = std::make_shared<LogLineIdent>(nullptr, kApplication);
    const auto day = std::make_shared<LogLineIdent>(application, dayStampAt(local));
    return std::make_shared<LogLineIdent>(day, processID);
}

} // namespace havrel
