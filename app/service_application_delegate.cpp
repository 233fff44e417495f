// SPDX-License-Identifier: MIT
#include "app/service_application_delegate.h"

#include "capture_prefs_ui/alert.h"
#include "capture_prefs_ui/capture_preferences_controller.h"
#include "capture_prefs_ui/timers.h"
#include "diagnostics/logr.h"
#include "foundation/dispatch.h"
#include "foundation/error.h"
#include "platform/applications.h"

#include <QGuiApplication>

namespace havrel {
namespace {

constexpr std::chrono::milliseconds kTerminateDelay(500);

/// As the log knows this program.
QString processIdentity()
{
    return QStringLiteral("Service-3.0.6.4");
}

std::shared_ptr<ServiceApplicationDelegate>& delegateOfApplication()
{
    static std::shared_ptr<ServiceApplicationDelegate> delegate;
    return delegate;
}

} // namespace

ServiceApplicationDelegate::ServiceApplicationDelegate(Surroundings surroundings)
    : m_surroundings(std::move(surroundings))
{
}

ServiceApplicationDelegate::~ServiceApplicationDelegate() = default;

std::shared_ptr<ServiceApplicationDelegate> ServiceApplicationDelegate::ofApplication()
{
    return delegateOfApplication();
}

void ServiceApplicationDelegate::setOfApplication(const std::shared_ptr<ServiceApplicationDelegate>& delegate)
{
    delegateOfApplication() = delegate;
}

void ServiceApplicationDelegate::applicationWillFinishLaunching()
{
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QCoreApplication::setQuitLockEnabled(false); // jobs of the toolkit end nothing either
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeMenuBar);
}

void ServiceApplicationDelegate::applicationDidFinishLaunching()
{
    Logr::logStartProcess(processIdentity());
    m_surroundings.registerServices();
    m_idleTimer = m_surroundings.timers.makeTimer([this] {
        m_idleTimer->start(m_surroundings.idleInterval);
        autoShutdownTime();
    });
    m_idleTimer->start(m_surroundings.idleInterval);
}

void ServiceApplicationDelegate::applicationWillTerminate(int exitStatus)
{
    Logr::logStopProcess(processIdentity(), exitStatus);
}

void ServiceApplicationDelegate::autoShutdownTime()
{
    if (!m_beenBusy)
        m_surroundings.terminate();
    m_beenBusy = false;
}

void ServiceApplicationDelegate::connectionAlertForService(const QString& service)
{
    const bool clientFound = m_surroundings.applications.isInstalled(kClientApplication);
    Alert alert{.style = AlertStyle::Warning,
                .messageText = tr("Cannot connnect with Havrel %1.").arg(service),
                .informativeText = tr("Service is unable to connect with a Havrel component. "
                                      "Launch Havrel to reinstall the component and try again.")};
    if (clientFound)
        alert.buttons = {tr("Launch Havrel"), tr("Cancel")};
    else
        alert.buttons = {tr("OK"), std::nullopt};
    const int answer = m_surroundings.alerts.runModal(alert);
    if (answer == kAlertFirstButtonReturn && clientFound)
        if (const int failure = m_surroundings.applications.launch(kClientApplication))
            Logr::logError(LogClassification::Failure,
                           QStringLiteral("cannot launch the client application"),
                           Error::posix(failure));
    terminateSoon();
}

void ServiceApplicationDelegate::terminateSoon()
{
    if (!m_quitTimer)
        m_quitTimer = m_surroundings.timers.makeTimer(m_surroundings.terminate);
    if (!m_quitTimer->isPending()) // else another alert was answered before: its time counts
        m_quitTimer->start(kTerminateDelay);
}

void ServiceApplicationDelegate::noSchedulerAlert()
{
    connectionAlertForService(QStringLiteral("scheduler"));
}

void ServiceApplicationDelegate::noMonitorAlert()
{
    connectionAlertForService(QStringLiteral("monitor"));
}

std::shared_ptr<HVConnection> ServiceApplicationDelegate::monitorConnection() const
{
    return m_surroundings.components.monitor ? m_surroundings.components.monitor() : nullptr;
}

std::shared_ptr<HVConnection> ServiceApplicationDelegate::schedulerConnection() const
{
    return m_surroundings.components.scheduler ? m_surroundings.components.scheduler() : nullptr;
}

std::shared_ptr<CapturePreferencesController> ServiceApplicationDelegate::makeCapturePreferencesController()
{
    const auto controller = std::make_shared<CapturePreferencesController>(
        m_surroundings.alerts, [this] { busy(); }, m_surroundings.timers);
    controller->setWindowFrameAutosaveName(QStringLiteral("CapturePreferences"));
    static_cast<void>(controller->window()); // loads it
    m_preferenceControllers.push_back(controller);
    return controller;
}

void ServiceApplicationDelegate::writePendingChanges()
{
    // Writing may run an event loop, in which a request makes another window.
    for (std::size_t place = 0; place < m_preferenceControllers.size(); ++place)
        runAtWall([controller = m_preferenceControllers[place]] { controller->commitEditingAndWrite(); });
}

} // namespace havrel
