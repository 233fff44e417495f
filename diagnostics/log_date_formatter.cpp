// SPDX-License-Identifier: MIT
#include "diagnostics/log_date_formatter.h"

#include "platform/local_time.h"

#include <cstdlib>

namespace havrel {
namespace {

QString padded(int number, int digits)
{
    return QString::number(number).rightJustified(digits, u'0');
}

QString zoneText(int secondsEastOfUTC)
{
    const int minutes = std::abs(secondsEastOfUTC) / 60;
    const QChar sign = secondsEastOfUTC < 0 ? u'-' : u'+';
    return sign + padded(minutes / 60, 2) + padded(minutes % 60, 2);
}

} // namespace

void LogDateFormatter::rememberSecond(std::chrono::sys_seconds second)
{
    const platform::LocalTime local = platform::localTimeAt(second.time_since_epoch().count());
    m_untilSeconds = padded(local.year, 4) + u'-' + padded(local.month, 2) + u'-' + padded(local.day, 2) + u' ' +
                     padded(local.hour, 2) + u':' + padded(local.minute, 2) + u':' + padded(local.second, 2) + u'.';
    m_zone = u' ' + zoneText(local.secondsEastOfUTC);
    m_second = second;
}

QString LogDateFormatter::stringFromDate(LogDate date)
{
    const auto second = std::chrono::floor<std::chrono::seconds>(date);
    if (m_second != second)
        rememberSecond(second);
    const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(date - second);
    return m_untilSeconds + padded(static_cast<int>(milliseconds.count()), 3) + m_zone;
}

} // namespace havrel
