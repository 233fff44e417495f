// SPDX-License-Identifier: MIT
#include "foundation/archivable_classes.h"
#include "messaging/connection.h"
#include "messaging/monitor_proxy.h"
#include "messaging/protocols.h"
#include "messaging/published_connection.h"
#include "messaging/scheduler_proxy.h"
#include "messaging/shared_connections.h"
#include "messaging/switchboard_connection.h"

#include <utility>

namespace havrel {
namespace {

/// That a component answers with a listener of a command, which is a remote object itself.
void addCommandListener(XPCInterface& interface)
{
    interface.setInterface(std::make_shared<const XPCInterface>(protocols::commandListenerMessaging()),
                           {"queryListenerForCommandIdentifier:withInfo:withReply:", 0});
}

/// The class of run summaries belongs to another program, which may have registered it here.
QSet<QByteArray> runSummaryClasses()
{
    QSet<QByteArray> classes{"NSDictionary", "NSString"};
    if (archivableClassNamed(QStringLiteral("ActionRunSummary")))
        classes << "ActionRunSummary";
    return classes;
}

} // namespace

std::shared_ptr<HVSwitchboardConnection> HVConnection::switchboardConnection()
{
    return SharedConnections::all().switchboard();
}

SwitchboardProxy HVConnection::switchboard()
{
    return switchboardConnection()->switchboardProxy();
}

std::shared_ptr<HVPublishedConnection> HVConnection::schedulerConnection()
{
    return SharedConnections::all().scheduler();
}

XPCInterfacePtr HVConnection::schedulerInterface()
{
    const auto interface = std::make_shared<XPCInterface>(protocols::scheduling());
    interface->setClasses(runSummaryClasses(), {"queryRunSummariesWithReply:", 0});
    addCommandListener(*interface);
    return interface;
}

SchedulerProxy HVConnection::scheduler()
{
    return SchedulerProxy(schedulerConnection()->serviceProxy());
}

std::shared_ptr<HVPublishedConnection> HVConnection::monitorConnection()
{
    return SharedConnections::all().monitor();
}

XPCInterfacePtr HVConnection::monitorInterface()
{
    const auto interface = std::make_shared<XPCInterface>(protocols::monitoring());
    addCommandListener(*interface);
    return interface;
}

MonitorProxy HVConnection::monitor()
{
    return MonitorProxy(monitorConnection()->serviceProxy());
}

std::shared_ptr<HVPublishedConnection>
HVConnection::connectionWithPublishedName(const QString& name, quint32 options, const Protocol& protocol)
{
    return std::make_shared<HVPublishedConnection>(name, options, protocol);
}

std::shared_ptr<HVPublishedConnection>
HVConnection::connectionWithPublishedName(const QString& name, quint32 options, XPCInterfacePtr interface)
{
    return std::make_shared<HVPublishedConnection>(name, options, std::move(interface));
}

} // namespace havrel
