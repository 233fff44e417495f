// SPDX-License-Identifier: MIT
#include "messaging/xpc_connection.h"

namespace havrel {

XPCExportedObject::~XPCExportedObject() = default;
XPCConnection::~XPCConnection() = default;
XPCListener::~XPCListener() = default;
XPCTransport::~XPCTransport() = default;

} // namespace havrel
