// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <optional>

#include <stdlib.h>
#include <time.h>

namespace havrel {

/// Puts the process into a time zone until the object goes.
class TimeZoneOfTheUser
{
public:
    explicit TimeZoneOfTheUser(const char* zone)
    {
        if (const char* before = ::getenv("TZ"))
            m_before = before;
        ::setenv("TZ", zone, 1);
        ::tzset();
    }
    ~TimeZoneOfTheUser()
    {
        if (m_before)
            ::setenv("TZ", m_before->constData(), 1);
        else
            ::unsetenv("TZ");
        ::tzset();
    }
    TimeZoneOfTheUser(const TimeZoneOfTheUser&) = delete;
    TimeZoneOfTheUser& operator=(const TimeZoneOfTheUser&) = delete;
    TimeZoneOfTheUser(TimeZoneOfTheUser&&) = delete;
    TimeZoneOfTheUser& operator=(TimeZoneOfTheUser&&) = delete;

private:
    std::optional<QByteArray> m_before;
};

} // namespace havrel
