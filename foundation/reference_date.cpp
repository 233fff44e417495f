// SPDX-License-Identifier: MIT
#include "foundation/reference_date.h"

#include <cmath>

namespace havrel {
namespace {

constexpr qint64 kReferenceMilliseconds = 978'307'200'000; // 2001-01-01 00:00:00 UTC since 1970-01-01
constexpr double kMostMilliseconds = 0x1p51; // beyond, a double of seconds no longer tells milliseconds apart

} // namespace

QDateTime dateFromReferenceInterval(double seconds)
{
    const double milliseconds = std::round(seconds * 1000);
    if (!(std::abs(milliseconds) <= kMostMilliseconds))
        return {};
    return QDateTime::fromMSecsSinceEpoch(kReferenceMilliseconds + static_cast<qint64>(milliseconds), Qt::UTC);
}

double intervalSinceReferenceDate(const QDateTime& date)
{
    return static_cast<double>(date.toMSecsSinceEpoch() - kReferenceMilliseconds) / 1000;
}

} // namespace havrel
