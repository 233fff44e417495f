// SPDX-License-Identifier: MIT
#include "diagnostics/log_line_pin.h"

#include <utility>

namespace havrel {

LogLinePin::LogLinePin(const LogLineIdent& identifier)
    : LogLineIdent(identifier.parent(), identifier.sequence())
{
}

LogLinePin::LogLinePin(LogLineIdentPtr parent, std::uint64_t sequence)
    : LogLineIdent(std::move(parent), sequence)
{
}

LogLineIdentPtr LogLinePin::next()
{
    return shared_from_this();
}

LogLineIdentPtr LogLinePin::pinned()
{
    return shared_from_this();
}

} // namespace havrel
