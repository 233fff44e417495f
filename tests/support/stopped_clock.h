// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/clock.h"

#include <QDateTime>
#include <QString>

#include <atomic>

namespace havrel {

/// Stops the clock of the whole process at a moment until the object goes; one at a time.
class StoppedClock
{
public:
    explicit StoppedClock(const QDateTime& moment)
    {
        set(moment);
        m_before = replaceClock([] { return QDateTime::fromMSecsSinceEpoch(s_moment.load(), Qt::UTC); });
    }
    /// \param moment as in "2025-07-30T12:34:56.789Z".
    explicit StoppedClock(const QString& moment)
        : StoppedClock(QDateTime::fromString(moment, Qt::ISODateWithMs))
    {
    }
    ~StoppedClock() { replaceClock(m_before); }
    StoppedClock(const StoppedClock&) = delete;
    StoppedClock& operator=(const StoppedClock&) = delete;
    StoppedClock(StoppedClock&&) = delete;
    StoppedClock& operator=(StoppedClock&&) = delete;

    void set(const QDateTime& moment) { s_moment = moment.toMSecsSinceEpoch(); }

private:
    inline static std::atomic<qint64> s_moment = 0; // milliseconds since 1970
    Clock m_before = nullptr;
};

} // namespace havrel
