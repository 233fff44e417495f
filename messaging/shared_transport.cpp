// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"
#include "messaging/xpc_connection.h"

#include <atomic>

namespace havrel {
namespace {

std::atomic<XPCTransport*> s_replaced = nullptr;

} // namespace

XPCTransport& XPCTransport::shared()
{
    if (XPCTransport* const replaced = s_replaced)
        return *replaced;
    HVException::exceptionWithName(exception_name::kBug, QStringLiteral("there is no transport")).raise();
}

void XPCTransport::setShared(XPCTransport* transport)
{
    s_replaced = transport;
}

} // namespace havrel
