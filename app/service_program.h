// SPDX-License-Identifier: MIT
#pragma once

#include "app/component_connections.h"
#include "app/display_loss_watch.h"
#include "app/endable_alerts.h"
#include "app/endable_timers.h"
#include "app/translations.h"
#include "platform/connected_applications.h"

#include <QSocketNotifier>

#include <chrono>
#include <memory>

namespace havrel {

class OpeningBus;
class ServiceApplicationDelegate;
class ServiceFace;
namespace platform {
class TerminationSignals;
} // namespace platform

/// The service application, put together from its parts; the application object exists before and after it.
///
/// However the process ends (idle, by a signal, with the bus, the session or the display), what windows have not
/// written yet is written first. Then nobody can answer any more, so what fails is logged. Requests that come meanwhile
/// are for the next process.
///
/// Threads: the main thread only.
class ServiceProgram
{
public:
    /// \param terminations,bus must live longer.
    ServiceProgram(std::chrono::milliseconds idleInterval,
                   platform::TerminationSignals& terminations,
                   OpeningBus& bus,
                   ComponentConnections components);
    ~ServiceProgram();
    ServiceProgram(const ServiceProgram&) = delete;
    ServiceProgram& operator=(const ServiceProgram&) = delete;
    ServiceProgram(ServiceProgram&&) = delete;
    ServiceProgram& operator=(ServiceProgram&&) = delete;

    /// Serves until it ends.
    ///
    /// \return the exit status of the process: 0, also when another process serves already; 1 without a bus. Both are
    ///         told on standard error.
    [[nodiscard]] int run();

private:
    void appear();
    void listenToTheSession();
    void terminate();
    void endNow();
    void finish();
    void displayHasGone();

    InstalledTranslations m_translations;
    WidgetAlertPresenter m_presenter;
    EndableAlerts m_alerts{m_presenter};
    EndableTimers m_timers{Timers::ofEventLoop()};
    QSocketNotifier m_signalled;
    OpeningBus& m_bus; // tells m_signalled of its loss
    platform::ConnectedApplications m_busApplications;
    platform::DesktopApplications m_applications{m_busApplications};
    std::shared_ptr<ServiceApplicationDelegate> m_delegate;
    std::unique_ptr<ServiceFace> m_face; // once there is a bus
    int m_appearError = 0;               // errno value
    bool m_ending = false;
    DisplayLossWatch m_displayLoss;
};

} // namespace havrel
