// SPDX-License-Identifier: MIT
#include "foundation/timestamp.h"

#include "foundation/floored_division.h"

#include <ctime>
#include <limits>

namespace havrel {
namespace {

constexpr qint64 kNanosecondsASecond = 1000000000;
constexpr qint32 kNanosecondsAMillisecond = 1000000;
constexpr Timestamp kEarliest{std::numeric_limits<qint64>::min(), 0};
constexpr Timestamp kLatest{std::numeric_limits<qint64>::max(), kNanosecondsASecond - 1};

} // namespace

QDateTime Timestamp::dateTime() const
{
    qint64 milliseconds = 0;
    if (__builtin_mul_overflow(seconds, 1000, &milliseconds) ||
        __builtin_add_overflow(milliseconds, nanoseconds / kNanosecondsAMillisecond, &milliseconds))
        return {};
    return QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC);
}

Timestamp Timestamp::ofDateTime(const QDateTime& date)
{
    const FlooredQuotient split = flooredQuotient(date.isValid() ? date.toMSecsSinceEpoch() : 0, 1000);
    return {split.whole, static_cast<qint32>(split.rest) * kNanosecondsAMillisecond};
}

Timestamp newCFDateWithBSDTimeSpec(const timespec& time)
{
    const FlooredQuotient split = flooredQuotient(time.tv_nsec, kNanosecondsASecond);
    Timestamp date{0, static_cast<qint32>(split.rest)};
    if (__builtin_add_overflow(qint64{time.tv_sec}, split.whole, &date.seconds))
        return split.whole < 0 ? kEarliest : kLatest;
    return date;
}

} // namespace havrel
