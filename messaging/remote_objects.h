// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/xpc_interface.h"
#include "messaging/xpc_proxy.h"

#include <functional>
#include <optional>

namespace havrel {

struct XPCEndpoint;

/// Makes the proxy of the object that an endpoint leads to, with the interface that it is known by; null where there is
/// no way to it.
using RemoteObjectMaker = std::function<XPCProxyPtr(const XPCEndpoint& endpoint, const XPCInterfacePtr& interface)>;

/// The values of a reply, with a proxy (XPCProxyPtr) in each place that \p interface takes for a remote object: null
/// there when the other end gave none.
///
/// \param values of the types that the protocol says
/// \return none when an endpoint among them leads nowhere
///
/// Threads: any thread.
[[nodiscard]] std::optional<QVariantList> withRemoteObjects(const XPCInterface& interface,
                                                            const QByteArray& keywordName,
                                                            QVariantList values,
                                                            const RemoteObjectMaker& make);

} // namespace havrel
