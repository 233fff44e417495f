// SPDX-License-Identifier: MIT
#include "foundation/wall_clock.h"

#include <algorithm>

namespace havrel {
namespace {

constexpr qint64 kDay = 24LL * 60 * 60 * 1000; // milliseconds; no zone is further from UTC, nor changes by more at once

QDateTime utcAt(qint64 msecs)
{
    return QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC);
}

qint64 offsetAt(qint64 msecs)
{
    return 1000LL * utcAt(msecs).toLocalTime().offsetFromUtc();
}

/// How one reading of the clock maps to moments: through the offset that holds before it, and the one after.
struct Candidates
{
    explicit Candidates(qint64 wall)
        : before(wall - offsetAt(wall - kDay))
        , after(wall - offsetAt(wall + kDay))
        , beforeShowsIt(before + offsetAt(before) == wall)
        , afterShowsIt(after + offsetAt(after) == wall)
    {
    }

    [[nodiscard]] bool leftOut() const { return !beforeShowsIt && !afterShowsIt; }
    [[nodiscard]] qint64 first() const
    {
        if (beforeShowsIt && afterShowsIt)
            return std::min(before, after);
        return afterShowsIt ? after : before;
    }

    qint64 before;
    qint64 after;
    bool beforeShowsIt;
    bool afterShowsIt;
};

std::optional<qint64> milliseconds(QDate date, QTime time)
{
    // A margin of two days keeps the arithmetic on offsets within the range.
    const QDateTime wall(date, time, Qt::UTC);
    const QDateTime earliest = utcAt(std::numeric_limits<qint64>::min() + 2 * kDay);
    const QDateTime latest = utcAt(std::numeric_limits<qint64>::max() - 2 * kDay);
    if (!wall.isValid() || date <= earliest.date() || date >= latest.date())
        return std::nullopt;
    return wall.toMSecsSinceEpoch();
}

/// The moment at which the clocks jump over \p wall: the first that shows a later reading.
qint64 jumpOver(qint64 wall, const Candidates& around)
{
    qint64 earlier = around.after; // shows less than wall
    qint64 later = around.before;  // shows more than wall
    while (later - earlier > 1) {
        const qint64 middle = earlier + (later - earlier) / 2;
        (middle + offsetAt(middle) < wall ? earlier : later) = middle;
    }
    return later;
}

} // namespace

WallClock::WallClock(const QDateTime& moment)
    : m_date(moment.toLocalTime().date())
    , m_time(moment.toLocalTime().time())
{
}

QDateTime WallClock::moment() const
{
    const std::optional<qint64> wall = milliseconds(m_date, m_time);
    return wall ? utcAt(Candidates(*wall).first()) : QDateTime();
}

QDateTime WallClock::firstMomentOf(QDate date)
{
    const std::optional<qint64> wall = milliseconds(date, QTime(0, 0));
    if (!wall)
        return {};
    const Candidates around(*wall);
    return utcAt(around.leftOut() ? jumpOver(*wall, around) : around.first());
}

} // namespace havrel
