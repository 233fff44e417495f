// SPDX-License-Identifier: MIT
#include "platform/local_time.h"

#include <ctime>

namespace havrel::platform {

LocalTime localTimeAt(std::int64_t seconds)
{
    const std::time_t moment{seconds};
    std::tm local{};
    if (!::localtime_r(&moment, &local))
        return {};
    return LocalTime{.year = local.tm_year + 1900,
                     .month = local.tm_mon + 1,
                     .day = local.tm_mday,
                     .hour = local.tm_hour,
                     .minute = local.tm_min,
                     .second = local.tm_sec,
                     .secondsEastOfUTC = static_cast<int>(local.tm_gmtoff)};
}

} // namespace havrel::platform
