// SPDX-License-Identifier: MIT
#include "messaging/remote_objects.h"

#include "messaging/xpc_endpoint.h"

#include <utility>

namespace havrel {
namespace {

/// \param given a list of one endpoint or none
/// \return none when that leads nowhere
std::optional<XPCProxyPtr>
objectAt(const QVariantList& given, const XPCInterfacePtr& interface, const RemoteObjectMaker& make)
{
    if (given.isEmpty())
        return XPCProxyPtr();
    const std::optional<XPCEndpoint> endpoint = XPCEndpoint::fromValue(given.constFirst());
    XPCProxyPtr object = endpoint ? make(*endpoint, interface) : nullptr;
    return object ? std::optional(std::move(object)) : std::nullopt;
}

} // namespace

std::optional<QVariantList> withRemoteObjects(const XPCInterface& interface,
                                              const QByteArray& keywordName,
                                              QVariantList values,
                                              const RemoteObjectMaker& make)
{
    for (int i = 0; i < values.size(); ++i) {
        const XPCInterfacePtr remote = interface.interfaceFor({keywordName, i});
        if (!remote)
            continue;
        const std::optional<XPCProxyPtr> object = objectAt(values[i].toList(), remote, make);
        if (!object)
            return std::nullopt;
        values[i] = QVariant::fromValue(*object);
    }
    return values;
}

} // namespace havrel
