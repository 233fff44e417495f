// SPDX-License-Identifier: MIT
#include "platform/random.h"

#include <cstdlib>

namespace havrel::platform {

std::function<std::uint32_t()>& randomSource()
{
    static std::function<std::uint32_t()> source = ::arc4random;
    return source;
}

std::uint32_t random32()
{
    return randomSource()();
}

} // namespace havrel::platform
