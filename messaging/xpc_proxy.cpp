// SPDX-License-Identifier: MIT
#include "messaging/xpc_proxy.h"

namespace havrel {

XPCProxy::~XPCProxy() = default;

} // namespace havrel
