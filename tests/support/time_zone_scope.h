// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <ctime>

namespace havrel::tests {

/// Sets the process's time zone for as long as it lives.
class TimeZoneScope
{
public:
    /// \param zone in the form of POSIX or the zone database: "CET-1", "Europe/Berlin".
    explicit TimeZoneScope(const char* zone)
        : m_wasSet(qEnvironmentVariableIsSet("TZ"))
        , m_former(qgetenv("TZ"))
    {
        qputenv("TZ", zone);
        ::tzset();
    }
    ~TimeZoneScope()
    {
        if (m_wasSet)
            qputenv("TZ", m_former);
        else
            qunsetenv("TZ");
        ::tzset();
    }
    Q_DISABLE_COPY_MOVE(TimeZoneScope)

private:
    bool m_wasSet;
    QByteArray m_former;
};

} // namespace havrel::tests
