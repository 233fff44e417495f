// SPDX-License-Identifier: MIT
#include "foundation/clock.h"

#include <atomic>

namespace havrel {
namespace {

QDateTime systemNow()
{
    return QDateTime::currentDateTimeUtc();
}

std::atomic<Clock> s_clock = systemNow;

} // namespace

QDateTime now()
{
    return s_clock.load()();
}

Clock replaceClock(Clock clock)
{
    return s_clock.exchange(clock ? clock : systemNow);
}

} // namespace havrel
