// SPDX-License-Identifier: MIT
#include "components/component_process.h"

#include "components/component.h"
#include "components/component_starter.h"
#include "components/monitor.h"
#include "components/published_component.h"
#include "components/scheduler.h"
#include "components/scheduler_notices.h"
#include "components/state_folder.h"
#include "diagnostics/logr.h"
#include "foundation/dispatch.h"
#include "foundation/error.h"
#include "foundation/main_queue_wall.h"
#include "foundation/process.h"
#include "messaging/protocols.h"
#include "messaging/reply_threads.h"
#include "messaging/shared_connections.h"
#include "messaging/switchboard_names.h"
#include "platform/bus_connection.h"
#include "platform/termination_signals.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace havrel {
namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

const char* nameOf(ComponentKind kind)
{
    switch (kind) {
    case ComponentKind::Switchboard:
        return "switchboard";
    case ComponentKind::Monitor:
        return "monitor";
    case ComponentKind::Scheduler:
        break;
    }
    return "scheduler";
}

PublicationSettings settingsOf(ComponentKind kind)
{
    const QString identifier = QStringLiteral("com.havrel.") + QLatin1StringView(nameOf(kind));
    return {.identifier = identifier,
            .serviceName = starterOf(identifier),
            .protocol = kind == ComponentKind::Monitor ? protocols::monitoring() : protocols::scheduling()};
}

PublishedComponent::Maker makerOfMonitor()
{
    return [monitor = std::make_shared<Monitor>(stateFolder(), ArchiveRegistry())] { return monitor; };
}

std::shared_ptr<Scheduler> newScheduler()
{
    const auto notices = std::make_shared<SchedulerNotices>();
    return std::make_shared<Scheduler>(
        stateFolder(), captureToArchive, [notices](QLatin1StringView notice, const QVariantMap& info) {
            notices->post(notice, info);
        });
}

int told(const char* program, const QString& what, int status)
{
    const QByteArray text = (QLatin1StringView(program) + QStringLiteral(": ") + what + u'\n').toLocal8Bit();
    static_cast<void>(std::fputs(text.constData(), stderr));
    return status;
}

/// The main queue ends with this status; on the main queue, so that it does when it has not begun yet, too.
void leave(int status)
{
    onMainQueue([status] { QCoreApplication::exit(status); });
}

QString whyItCannotServe(int error)
{
    if (error == EEXIST)
        return QStringLiteral("another process serves already");
    if (error == ENOMEDIUM)
        return QStringLiteral("there is no session bus (log in to a desktop session, or set DBUS_SESSION_BUS_ADDRESS)");
    return systemErrorText(error);
}

int startAll(ComponentProcess& process, const QList<ComponentKind>& kinds, const char* program)
{
    for (const ComponentKind each : kinds)
        if (const int error = process.start(each); error != 0)
            return told(
                program,
                QStringLiteral("cannot serve as %1: %2").arg(QLatin1StringView(nameOf(each)), whyItCannotServe(error)),
                kFailed);
    return kDone;
}

} // namespace

ComponentProcess::ComponentProcess() = default;

ComponentProcess::~ComponentProcess()
{
    if (m_scheduler)
        m_scheduler->schedule().stop(); // before another process can take the name, and the schedule with it
    m_published.clear();
    m_scheduler.reset();
    SharedConnections::all().forget();
    m_switchboard.reset();
}

int ComponentProcess::start(ComponentKind kind)
{
    if (kind == ComponentKind::Switchboard)
        return startSwitchboard();
    return publish(kind);
}

int ComponentProcess::publish(ComponentKind kind)
{
    PublishedComponent::Maker maker;
    if (kind == ComponentKind::Monitor) {
        maker = makerOfMonitor();
    } else {
        m_scheduler = newScheduler();
        maker = [scheduler = m_scheduler] { return std::make_shared<SchedulerClient>(scheduler); };
    }
    m_published.push_back(std::make_unique<PublishedComponent>(std::move(maker), settingsOf(kind)));
    return m_published.back()->start();
}

int ComponentProcess::startSwitchboard()
{
    XPCTransport& transport = XPCTransport::shared();
    m_switchboard =
        std::make_unique<Switchboard>(transport,
                                      SwitchboardSettings{.serviceName = switchboard_names::perUserService(),
                                                          .startComponent = [&transport](const QString& identifier) {
                                                              startComponent(transport, identifier);
                                                          }});
    return m_switchboard->start();
}

int runComponents(const QList<ComponentKind>& kinds, const char* program)
{
    platform::TerminationSignals signals; // before anything makes a thread
    Process::captureNow();
    QByteArray name(program);
    std::array<char*, 2> arguments{name.data(), nullptr};
    int count = 1;
    const CoreApplication application(count, arguments.data());
    const QSocketNotifier signalled(signals.descriptor(), QSocketNotifier::Read);
    QObject::connect(&signalled, &QSocketNotifier::activated, &application, [&signals] {
        if (signals.take() != 0)
            leave(kDone);
    });
    platform::BusConnection bus({.disconnected = [] { leave(kFailed); }}); // to hear of its end
    if (const int error = bus.open(); error != 0)
        return told(program, QStringLiteral("there is no message bus: %1").arg(systemErrorText(error)), kFailed);
    ComponentProcess process;
    const int status = startAll(process, kinds, program);
    return status == kDone ? QCoreApplication::exec() : status;
}

int componentMain(ComponentKind kind, const char* program, int argc, char** argv)
{
    if (argc > 1 && std::strcmp(argv[1], "--version") == 0)
        return std::printf("%s %s\n", program, componentVersion().toLatin1().constData()) > 0 ? kDone : kFailed;
    if (argc > 1 && std::strcmp(argv[1], "--help") == 0)
        return std::printf("Usage: %s\n\nServes as the %s of this user. The message bus or systemd starts it.\n",
                           program,
                           nameOf(kind)) > 0
                   ? kDone
                   : kFailed;
    if (argc > 1)
        return told(program, QStringLiteral("unknown argument; --help tells what there is"), kWrongUsage);
    int status = kFailed;
    runAtWall([&] { status = runComponents({kind}, program); });
    ReplyThreads::shared().leave();
    Logr::closeSharedLogger(); // lines may be held back
    return status;
}

} // namespace havrel
