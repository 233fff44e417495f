// SPDX-License-Identifier: MIT
#include "messaging/published_connection.h"

#include "messaging/switchboard_connection.h"
#include "messaging/xpc_endpoint.h"

#include <utility>

namespace havrel {
namespace {

/// What the switchboard has answered. When an error ends the wait for it, the answer may still come later.
class EndpointAnswer
{
public:
    void keep(const std::optional<XPCEndpoint>& endpoint)
    {
        const MutexLock guard(m_lock);
        m_endpoint = endpoint;
    }
    [[nodiscard]] std::optional<XPCEndpoint> endpoint()
    {
        const MutexLock guard(m_lock);
        return m_endpoint;
    }

private:
    Mutex m_lock;
    std::optional<XPCEndpoint> m_endpoint HAVREL_GUARDED_BY(m_lock);
};

std::optional<XPCEndpoint> publishedEndpoint(const QString& name)
{
    const auto answer = std::make_shared<EndpointAnswer>();
    const auto ask = [&](const XPCProxyPtr& switchboard) {
        SwitchboardProxy(switchboard).queryEndpoint(name, [answer](const auto& endpoint) { answer->keep(endpoint); });
    };
    return HVConnection::switchboardConnection()->performSynchronousBlock(ask) ? answer->endpoint() : std::nullopt;
}

} // namespace

HVPublishedConnection::HVPublishedConnection(const QString& name, quint32 options, const Protocol& protocol)
    : HVPublishedConnection(name, options, std::make_shared<const XPCInterface>(protocol))
{
}

HVPublishedConnection::HVPublishedConnection(const QString& name, quint32 options, XPCInterfacePtr interface)
    : HVConnection(options, std::move(interface))
    , m_publishedName(name)
{
}

HVPublishedConnection::~HVPublishedConnection()
{
    dealloc();
}

QString HVPublishedConnection::identifier() const
{
    return m_publishedName;
}

XPCConnectionPtr HVPublishedConnection::makeConnection()
{
    const std::optional<XPCEndpoint> endpoint = publishedEndpoint(m_publishedName);
    return endpoint ? XPCTransport::shared().connectionToEndpoint(*endpoint) : nullptr;
}

} // namespace havrel
