// SPDX-License-Identifier: MIT
#include "messaging/xpc_endpoint.h"

#include <QString>
#include <QVariantList>

namespace havrel {

QVariant XPCEndpoint::asValue() const
{
    return QVariantList{QString::fromLatin1(owner), QString::fromLatin1(pathPrefix)};
}

std::optional<XPCEndpoint> XPCEndpoint::fromValue(const QVariant& value)
{
    const QVariantList parts = value.toList();
    if (parts.size() != 2)
        return std::nullopt;
    XPCEndpoint endpoint{parts[0].toString().toLatin1(), parts[1].toString().toLatin1()};
    if (!endpoint.owner.startsWith(':') || !endpoint.pathPrefix.startsWith('/'))
        return std::nullopt;
    return endpoint;
}

} // namespace havrel
