// SPDX-License-Identifier: MIT
#include "app/endable_timers.h"

#include <utility>

namespace havrel {

std::unique_ptr<Timer> EndableTimers::makeTimer(std::function<void()> fired)
{
    return m_timers.makeTimer(std::move(fired));
}

} // namespace havrel
