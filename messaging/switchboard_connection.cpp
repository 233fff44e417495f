// SPDX-License-Identifier: MIT
#include "messaging/switchboard_connection.h"

#include "diagnostics/logr.h"
#include "foundation/description.h"
#include "foundation/process.h"
#include "messaging/protocols.h"
#include "messaging/switchboard_names.h"
#include "messaging/switchboard_subscriber.h"

#include <atomic>
#include <utility>

namespace havrel {
namespace {

const QLatin1StringView kDidPublish{".didPublish"};
const QLatin1StringView kWasRedacted{".wasRedacted"};

QString nextAnonymousIdentifier()
{
    static std::atomic<quint64> s_count{0};
    return QStringLiteral(".anon.%1").arg(++s_count);
}

/// Without the ending that says what it waits for.
QString endpointObserver(const std::optional<QString>& identifier, const QString& endpoint)
{
    return QStringLiteral("%1->%2").arg(descriptionOf(identifier ? QVariant(*identifier) : QVariant()), endpoint);
}

/// The switchboard tells of every endpoint.
LocalObserver::Block callingFor(const QString& endpoint, const std::function<void()>& handler)
{
    return [endpoint, handler](const std::optional<QString>& /*source*/, const QVariantMap& info) {
        if (info.value(switchboard_names::kID) == endpoint)
            handler();
    };
}

} // namespace

HVSwitchboardConnection::HVSwitchboardConnection()
    : HVMachServiceConnection(
          switchboard_names::perUserService(), xpc_options::kNone, protocols::switchboardingPrivate())
    , m_subscriber(std::make_shared<SwitchboardSubscriber>())
{
}

HVSwitchboardConnection::~HVSwitchboardConnection()
{
    dealloc();
}

// ---- the connection

SwitchboardProxy HVSwitchboardConnection::switchboardProxy()
{
    return SwitchboardProxy(serviceProxy());
}

std::vector<XPCConnectionPtr> HVSwitchboardConnection::makeConnections()
{
    const quint32 privileged = connectionOptions() | xpc_options::kPrivileged;
    std::vector<XPCConnectionPtr> candidates{
        makeConnection(),
        XPCTransport::shared().connectionToService(switchboard_names::kSystemWideService, privileged)};
    const auto subscribing = std::make_shared<const XPCInterface>(protocols::switchboardSubscribing());
    for (const XPCConnectionPtr& each : candidates) {
        each->setExportedObject(m_subscriber);
        each->setExportedInterface(subscribing);
    }
    return candidates;
}

void HVSwitchboardConnection::setupProxy(const XPCProxyPtr& proxy)
{
    HVMachServiceConnection::setupProxy(proxy);
    const SwitchboardProxy switchboard(proxy);
    switchboard.setUser(Process::userID());
    m_subscriber->reregisterObserversWithSwitchboard(switchboard);
}

void HVSwitchboardConnection::disconnect_Internal()
{
    if (liveConnection())
        liveConnection()->setExportedObject(nullptr);
    HVMachServiceConnection::disconnect_Internal();
}

/// A connection that the ping makes is to the right switchboard: only one from before may have to go.
void HVSwitchboardConnection::switchboardDidStartNotification(const QString& startedService)
{
    const bool wasConnected = connected();
    const bool answers = ping();
    const bool isOurs = startedService == switchboard_names::perUserService();
    if (!answers || (wasConnected && isOurs && machServiceName() != startedService))
        disconnect();
    (void)serviceProxy();
    if (!connected())
        Logr::log(LogClassification::Warning, QStringLiteral("cannot connect with switchboard"));
}

// ---- observers

void HVSwitchboardConnection::addObserver(const std::optional<QString>& identifier,
                                          const QString& name,
                                          const std::optional<QString>& source,
                                          LocalObserver::Block block)
{
    const QString observer = identifier ? *identifier : nextAnonymousIdentifier();
    m_subscriber->addObserver(observer, std::make_shared<const LocalObserver>(name, source, std::move(block)));
    switchboardProxy().addProxyObserver(observer, name, source);
}

void HVSwitchboardConnection::addObserver(const std::optional<QString>& identifier,
                                          const QString& name,
                                          LocalObserver::Block block)
{
    addObserver(identifier, name, std::nullopt, std::move(block));
}

void HVSwitchboardConnection::removeObserver(const QString& identifier)
{
    m_subscriber->removeLocalObserver(identifier);
    switchboardProxy().removeObserver(identifier);
}

void HVSwitchboardConnection::removeObserversWithPrefix(const QString& prefix)
{
    for (const QString& each : m_subscriber->registeredObserverIDs())
        if (each.startsWith(prefix))
            removeObserver(each);
}

void HVSwitchboardConnection::removeAllObservers()
{
    m_subscriber->removeAllLocalObservers();
    switchboardProxy().removeAllObservers();
}

// ---- endpoints

void HVSwitchboardConnection::addObserverWhenName(const std::optional<QString>& identifier,
                                                  const QString& endpoint,
                                                  const EndpointHandlers& handlers)
{
    const QString observer = endpointObserver(identifier, endpoint);
    const auto observe = [&](QLatin1StringView ending, QLatin1StringView name, const std::function<void()>& handler) {
        addObserver(observer + ending, name, switchboard_names::kSwitchboard.toString(), callingFor(endpoint, handler));
    };
    if (handlers.isRedacted)
        observe(kWasRedacted, switchboard_names::kEndpointRedacted, handlers.isRedacted);
    if (!handlers.isPublished)
        return;
    observe(kDidPublish, switchboard_names::kEndpointPublished, handlers.isPublished);
    const auto callIfPublished = [isPublished = handlers.isPublished](const std::optional<XPCEndpoint>& found) {
        if (found)
            isPublished();
    };
    switchboardProxy().queryEndpoint(endpoint, callIfPublished);
}

void HVSwitchboardConnection::removePublishedObserver(const std::optional<QString>& identifier, const QString& endpoint)
{
    const QString observer = endpointObserver(identifier, endpoint);
    const SwitchboardProxy switchboard = switchboardProxy();
    switchboard.removeObserver(observer + kWasRedacted);
    switchboard.removeObserver(observer + kDidPublish);
}

} // namespace havrel
