// SPDX-License-Identifier: MIT
#include "components/published_component.h"

#include "foundation/dispatch.h"
#include "foundation/thread_annotations.h"
#include "messaging/switchboard_connection.h"
#include "messaging/xpc_endpoint.h"
#include "platform/identity.h"

#include <utility>

namespace havrel {
namespace {

bool isOurs(const XPCConnection& connection)
{
    return connection.effectiveUserIdentifier() == platform::identity().effectiveUser();
}

XPCListener::Acceptor accepting(PublishedComponent::Maker maker, const Protocol& protocol)
{
    return [maker = std::move(maker), &protocol](const XPCConnectionPtr& connection) {
        if (!isOurs(*connection))
            return false;
        connection->setExportedInterface(std::make_shared<const XPCInterface>(protocol));
        connection->setExportedObject(maker());
        return true;
    };
}

} // namespace

/// What is published, and where it was last.
///
/// Threads: any thread.
class PublishedComponent::Publication
{
public:
    explicit Publication(QString identifier)
        : m_identifier(std::move(identifier))
    {
    }

    [[nodiscard]] HVSwitchboardConnection& switchboard() const noexcept { return *m_switchboard; }
    void setEndpoint(const XPCEndpoint& endpoint)
    {
        const MutexLock guard(m_lock);
        m_endpoint = endpoint;
    }
    /// Once at each switchboard that there is a connection to.
    void publish()
    {
        const XPCProxyPtr proxy = m_switchboard->serviceProxy();
        const MutexLock guard(m_lock);
        if (!proxy || proxy == m_publishedAt.lock())
            return;
        m_publishedAt = proxy;
        proxy->send("publishEndpoint:forIdentifier:", {m_endpoint.asValue(), m_identifier});
    }
    /// Waits until the switchboard has handled it: another one than before, if that has just died.
    void publishAndWait()
    {
        publish();
        if (m_switchboard->ping())
            return;
        m_switchboard->disconnect();
        publish();
        (void)m_switchboard->ping();
    }

private:
    const QString m_identifier;
    const std::shared_ptr<HVSwitchboardConnection> m_switchboard = HVConnection::switchboardConnection();
    Mutex m_lock;
    XPCEndpoint m_endpoint HAVREL_GUARDED_BY(m_lock);
    std::weak_ptr<XPCProxy> m_publishedAt HAVREL_GUARDED_BY(m_lock);
};

PublishedComponent::PublishedComponent(Maker maker, const PublicationSettings& settings)
    : m_endpoint(XPCTransport::shared().anonymousListener())
    , m_service(XPCTransport::shared().listenerForService(settings.serviceName, xpc_options::kNone))
    , m_publication(std::make_shared<Publication>(settings.identifier))
{
    const XPCListener::Acceptor accept = accepting(std::move(maker), settings.protocol);
    m_endpoint->setAcceptor(accept);
    m_service->setAcceptor([accept, publication = m_publication](const XPCConnectionPtr& connection) {
        if (isOurs(*connection))
            publication->publishAndWait();
        return accept(connection);
    });
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
    m_publication->setEndpoint(m_endpoint->endpoint());
    m_connected = NotificationCenter::defaultCenter().addObserver(
        connection_notification::kDidConnect,
        m_publication->switchboard().asNotificationObject(),
        {},
        [publication = m_publication](const Notification&) { publication->publish(); });
    m_publication->publish();
    (void)m_publication->switchboard().ping(); // until it has handled that
    return m_service->resume();
}

} // namespace havrel
