// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace havrel {

/// What is to be told of a write that succeeded, by the places of the items.
struct WrittenItems
{
    std::vector<std::size_t> overOthers; ///< another program had changed their preferences meanwhile
    std::vector<std::size_t> tooLong;    ///< their preferences take more than readers take
};

} // namespace havrel
