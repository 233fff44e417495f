// SPDX-License-Identifier: MIT
#pragma once

#include "app/component_connections.h"

#include <QCoreApplication>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace havrel {

class AlertPresenter;
class CapturePreferencesController;
class Timer;
class Timers;
namespace platform {
class Applications;
} // namespace platform

/// The application that opens archives: the name of its desktop file and on the bus.
inline constexpr const char* kClientApplication = "com.havrel.client";

/// The life of the service application: launch, idle shutdown, the alert for a component that cannot be reached, and
/// the windows, which live as long as the process.
///
/// Threads: the main thread only.
class ServiceApplicationDelegate
{
    Q_DECLARE_TR_FUNCTIONS(havrel::ServiceApplicationDelegate)

public:
    /// What the delegate works with; all of it must live longer.
    struct Surroundings
    {
        AlertPresenter& alerts;
        platform::Applications& applications;
        Timers& timers;
        /// Opens the way for requests; called once, while launching.
        std::function<void()> registerServices;
        /// Begins the end of the process and answers at once.
        std::function<void()> terminate;
        std::chrono::milliseconds idleInterval = std::chrono::seconds(600);
        ComponentConnections components{};
    };

    explicit ServiceApplicationDelegate(Surroundings surroundings);
    ~ServiceApplicationDelegate();
    ServiceApplicationDelegate(const ServiceApplicationDelegate&) = delete;
    ServiceApplicationDelegate& operator=(const ServiceApplicationDelegate&) = delete;
    ServiceApplicationDelegate(ServiceApplicationDelegate&&) = delete;
    ServiceApplicationDelegate& operator=(ServiceApplicationDelegate&&) = delete;

    /// The application's delegate; null when it has none.
    [[nodiscard]] static std::shared_ptr<ServiceApplicationDelegate> ofApplication();
    static void setOfApplication(const std::shared_ptr<ServiceApplicationDelegate>& delegate);

    /// Makes the application an accessory: it ends with no window, and has no menu bar of its own.
    /// \selector applicationWillFinishLaunching:
    static void applicationWillFinishLaunching();
    /// Logs the start, opens the way for requests and starts the idle timer. \selector applicationDidFinishLaunching:
    void applicationDidFinishLaunching();
    /// Logs the stop. The line reaches the log when the shared logger is closed. \selector applicationWillTerminate:
    static void applicationWillTerminate(int exitStatus = 0);

    /// Something happened: the process stays for at least one more whole idle interval. \selector busy
    void busy() { m_beenBusy = true; }
    /// Asks the application to terminate unless something happened since the last call.
    /// \selector autoShutdownTime:
    void autoShutdownTime();

    /// Tells the user that the component \p service cannot be reached, offers to launch the client application if there
    /// is one, and terminates half a second after the answer. Blocks until it is answered; requests are served
    /// meanwhile.
    ///
    /// \selector connectionAlertForService:
    void connectionAlertForService(const QString& service);
    void noSchedulerAlert(); ///< \selector noSchedulerAlert
    void noMonitorAlert();   ///< \selector noMonitorAlert

    /// A new controller, whose window is loaded but not on screen, and which is kept.
    /// \selector makeCapturePreferencesController
    [[nodiscard]] std::shared_ptr<CapturePreferencesController> makeCapturePreferencesController();
    /// Writes what has changed in the windows and is not written yet. What keeps one from it is logged and does not
    /// keep the others.
    void writePendingChanges();

    [[nodiscard]] std::shared_ptr<HVConnection> monitorConnection() const;   ///< null: it cannot be reached
    [[nodiscard]] std::shared_ptr<HVConnection> schedulerConnection() const; ///< null: it cannot be reached
    [[nodiscard]] AlertPresenter& alerts() const { return m_surroundings.alerts; }
    [[nodiscard]] platform::Applications& applications() const { return m_surroundings.applications; }

private:
    void terminateSoon();

    const Surroundings m_surroundings;
    bool m_beenBusy = false;
    std::vector<std::shared_ptr<CapturePreferencesController>> m_preferenceControllers;
    std::unique_ptr<Timer> m_idleTimer;
    std::unique_ptr<Timer> m_quitTimer; // null until an alert was answered
};

} // namespace havrel
