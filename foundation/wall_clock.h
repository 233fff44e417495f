// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>

#include <optional>

namespace havrel {

/// A date and time of day as the user's calendar and clock show it, in no zone: the zone decides which moment it is.
///
/// The toolkit's own conversion answers nothing for times that a zone leaves out, and the second of times that it has
/// twice; this one always answers, and answers the first.
///
/// Threads: const members any thread, others one at a time.
class WallClock
{
public:
    WallClock(QDate date, QTime time)
        : m_date(date)
        , m_time(time)
    {
    }
    /// What the user's clock shows at \p moment.
    explicit WallClock(const QDateTime& moment);

    [[nodiscard]] QDate date() const noexcept { return m_date; }
    [[nodiscard]] QTime time() const noexcept { return m_time; }

    /// The moment in UTC at which the user's clock shows this. A time that the zone leaves out is moved forward by as
    /// much as was left out; of two moments it is the first. Null for an invalid date and beyond the range of dates.
    [[nodiscard]] QDateTime moment() const;

    /// The first moment of \p date in UTC, also where midnight or the whole day is left out.
    [[nodiscard]] static QDateTime firstMomentOf(QDate date);

private:
    QDate m_date;
    QTime m_time;
};

} // namespace havrel
