// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <utility>

namespace havrel::tests {

/// Gives a variable of the environment another value until the object goes.
class EnvironmentValue
{
public:
    EnvironmentValue(const char* name, const QByteArray& value)
        : m_name(name)
        , m_wasSet(qEnvironmentVariableIsSet(name))
        , m_before(qgetenv(name))
    {
        qputenv(name, value);
    }
    ~EnvironmentValue()
    {
        if (m_wasSet)
            qputenv(m_name, m_before);
        else
            qunsetenv(m_name);
    }
    EnvironmentValue(const EnvironmentValue&) = delete;
    EnvironmentValue& operator=(const EnvironmentValue&) = delete;
    EnvironmentValue(EnvironmentValue&&) = delete;
    EnvironmentValue& operator=(EnvironmentValue&&) = delete;

private:
    const char* m_name;
    bool m_wasSet;
    QByteArray m_before;
};

} // namespace havrel::tests
