// SPDX-License-Identifier: MIT
#include "messaging/switchboard_proxy.h"

#include <QStringList>

#include <utility>

namespace havrel {

void SwitchboardProxy::queryEndpoint(const QString& identifier,
                                     std::function<void(const std::optional<XPCEndpoint>& endpoint)> reply) const
{
    send("queryEndpointForIdentifier:withReply:", {identifier}, [reply = std::move(reply)](const QVariantList& values) {
        const QVariantList endpoints = values.value(0).toList();
        reply(endpoints.isEmpty() ? std::nullopt : XPCEndpoint::fromValue(endpoints.constFirst()));
    });
}

void SwitchboardProxy::setUser(uid_t user) const
{
    send("setUser:", {QVariant::fromValue(quint32(user))});
}

void SwitchboardProxy::addProxyObserver(const QString& observer,
                                        const QString& name,
                                        const std::optional<QString>& source) const
{
    send("addProxyObserver:forName:source:", {observer, name, source ? QStringList{*source} : QStringList()});
}

void SwitchboardProxy::removeObserver(const QString& observer) const
{
    send("removeObserver:", {observer});
}

void SwitchboardProxy::removeAllObservers() const
{
    send("removeAllObservers");
}

} // namespace havrel
