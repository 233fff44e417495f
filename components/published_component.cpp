// SPDX-License-Identifier: MIT
#include "components/published_component.h"

#include "components/component.h"
#include "foundation/dispatch.h"
#include "messaging/switchboard_connection.h"
#include "messaging/xpc_endpoint.h"
#include "platform/identity.h"

#include <utility>

namespace havrel {
namespace {

XPCListener::Acceptor accepting(const std::shared_ptr<Component>& component, const Protocol& protocol)
{
    return [component, &protocol](const XPCConnectionPtr& connection) {
        if (connection->effectiveUserIdentifier() != platform::identity().effectiveUser())
            return false;
        connection->setExportedInterface(std::make_shared<const XPCInterface>(protocol));
        connection->setExportedObject(component);
        return true;
    };
}

} // namespace

PublishedComponent::PublishedComponent(std::shared_ptr<Component> component, const PublicationSettings& settings)
    : m_identifier(settings.identifier)
    , m_endpoint(XPCTransport::shared().anonymousListener())
    , m_service(XPCTransport::shared().listenerForService(settings.serviceName, xpc_options::kNone))
    , m_switchboard(HVConnection::switchboardConnection())
{
    m_endpoint->setAcceptor(accepting(component, settings.protocol));
    m_service->setAcceptor(accepting(component, settings.protocol));
}

PublishedComponent::~PublishedComponent()
{
    m_endpoint->invalidate();
    m_service->invalidate();
}

int PublishedComponent::start()
{
    if (const int error = m_endpoint->resume(); error != 0)
        return error;
    m_connected = NotificationCenter::defaultCenter().addObserver(connection_notification::kDidConnect,
                                                                  m_switchboard->asNotificationObject(),
                                                                  {},
                                                                  [this](const Notification&) { publish(); });
    publish();
    (void)m_switchboard->ping(); // until it has handled that
    return m_service->resume();
}

void PublishedComponent::publish()
{
    const XPCProxyPtr switchboard = m_switchboard->serviceProxy();
    if (!switchboard || switchboard == m_publishedAt.lock())
        return;
    m_publishedAt = switchboard;
    switchboard->send("publishEndpoint:forIdentifier:", {m_endpoint->endpoint().asValue(), m_identifier});
}

} // namespace havrel
