// SPDX-License-Identifier: MIT
#include "app/service_program.h"

#include "app/archive_picker_pane_controller.h"
#include "app/havrel_services.h"
#include "app/opening_bus.h"
#include "app/service_application_delegate.h"
#include "app/service_face.h"
#include "diagnostics/logr.h"
#include "foundation/error.h"
#include "messaging/shared_connections.h"
#include "platform/termination_signals.h"

#include <QGuiApplication>
#include <QSessionManager>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace havrel {
namespace {

constexpr int kFailed = 1;

void tell(const QString& text)
{
    static_cast<void>(std::fprintf(stderr, "havrel-service: %s\n", text.toLocal8Bit().constData()));
}

/// Tells why the service cannot be seen on the bus. \return the exit status
int statusOf(int appearError)
{
    if (appearError == EEXIST) {
        tell(QStringLiteral("another process serves already"));
        return 0;
    }
    tell(QStringLiteral("cannot serve on the session bus: %1").arg(systemErrorText(appearError)));
    return kFailed;
}

} // namespace

ServiceProgram::ServiceProgram(std::chrono::milliseconds idleInterval,
                               platform::TerminationSignals& terminations,
                               OpeningBus& bus,
                               ComponentConnections components)
    : m_signalled(terminations.descriptor(), QSocketNotifier::Read)
    , m_bus(bus)
    , m_busApplications(bus.connection())
    , m_displayLoss([this] { displayHasGone(); })
{
    m_delegate = std::make_shared<ServiceApplicationDelegate>(
        ServiceApplicationDelegate::Surroundings{.alerts = m_alerts,
                                                 .applications = m_applications,
                                                 .timers = m_timers,
                                                 .registerServices = [this] { appear(); },
                                                 .terminate = [this] { terminate(); },
                                                 .idleInterval = idleInterval,
                                                 .components = std::move(components)});
    ServiceApplicationDelegate::setOfApplication(m_delegate);
    QObject::connect(&m_signalled, &QSocketNotifier::activated, &m_signalled, [this, &terminations] {
        if (terminations.take() != 0)
            endNow();
    });
    m_bus.whenLost([this] {
        QMetaObject::invokeMethod(
            &m_signalled, [this] { endNow(); }, Qt::QueuedConnection);
    });
    listenToTheSession();
}

ServiceProgram::~ServiceProgram()
{
    m_bus.whenLost({});
    m_face.reset();
    ArchivePickerPaneController::forgetRunningPickers();
    HavrelServices::forgetSharedServices();
    SharedConnections::all().forget();
    ServiceApplicationDelegate::setOfApplication(nullptr);
}

int ServiceProgram::run()
{
    ServiceApplicationDelegate::applicationWillFinishLaunching();
    m_delegate->applicationDidFinishLaunching();
    int status = 0;
    if (m_appearError != 0)
        status = statusOf(m_appearError);
    else
        status = QCoreApplication::exec();
    finish();
    if (m_face)
        m_face->end();
    ServiceApplicationDelegate::applicationWillTerminate(status);
    return status;
}

/// The desktop's session may end at any time, and must not start the service again: a request does.
void ServiceProgram::listenToTheSession()
{
    QObject::connect(
        qGuiApp,
        &QGuiApplication::commitDataRequest,
        &m_signalled,
        [this](QSessionManager&) { m_delegate->writePendingChanges(); },
        Qt::DirectConnection);
    QObject::connect(
        qGuiApp,
        &QGuiApplication::saveStateRequest,
        &m_signalled,
        [](QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); },
        Qt::DirectConnection);
}

void ServiceProgram::appear()
{
    m_appearError = m_bus.opened();
    if (m_appearError != 0)
        return;
    m_face = std::make_unique<ServiceFace>(HavrelServices::sharedServices(), m_bus.connection());
    m_appearError = m_face->appear();
}

void ServiceProgram::terminate()
{
    if (!m_ending && m_face->leave())
        endNow();
}

void ServiceProgram::endNow()
{
    if (m_ending)
        return;
    finish();
    QCoreApplication::exit(0);
}

/// A window that opened while the changes are written would go at once: so no request begins from here on.
void ServiceProgram::finish()
{
    m_ending = true;
    m_alerts.end();
    if (m_face)
        m_face->keepRequests();
    m_delegate->writePendingChanges();
}

void ServiceProgram::displayHasGone()
{
    m_alerts.end();
    m_timers.end();
    m_delegate->writePendingChanges();
    ServiceApplicationDelegate::applicationWillTerminate(kFailed);
    Logr::closeSharedLogger();
    std::_Exit(kFailed); // the toolkit's exit would take apart what still stands in the event loop
}

} // namespace havrel
