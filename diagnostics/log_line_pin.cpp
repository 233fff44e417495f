// SPDX-License-Identifier: MIT
#include "diagnostics/log_line_pin.h"

namespace havrel {

LogLinePin::LogLinePin(const LogLineIdent& identifier)
    : LogLineIdent(identifier.parent(), identifier.sequence())
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
