// SPDX-License-Identifier: MIT
#pragma once

#include "app/archive_picker_pane_controller.h"
#include "app/havrel_services.h"
#include "app/service_application_delegate.h"
#include "tests/app/scripted_components.h"
#include "tests/support/attribute_folder.h"
#include "tests/support/environment_value.h"
#include "tests/support/fake_timers.h"
#include "tests/support/recording_alerts.h"
#include "tests/support/recording_applications.h"
#include "tests/support/recording_logr.h"

#include <QUrl>

#include <stdexcept>

namespace havrel::tests {

/// Answers alerts with what the test wants, and does something while they are open.
class AnsweringAlerts final : public AlertPresenter
{
public:
    [[nodiscard]] int runModal(const Alert& alert) override
    {
        shown << alert;
        if (meanwhile)
            std::exchange(meanwhile, nullptr)();
        return answer;
    }
    void beginSheet(const Alert& alert, QWidget& /*window*/, std::function<void(int)> ended) override
    {
        shown << alert;
        if (ended)
            ended(answer);
    }

    QList<Alert> shown;
    int answer = kAlertFirstButtonReturn;
    std::function<void()> meanwhile;
};

/// The application's delegate with a clock, alerts and applications of the test's, and the services that work with it.
class WithService : public WithAttributes
{
protected:
    WithService() { ServiceApplicationDelegate::setOfApplication(m_delegate); }
    ~WithService() override
    {
        ArchivePickerPaneController::forgetRunningPickers();
        HavrelServices::forgetSharedServices();
        ServiceApplicationDelegate::setOfApplication(nullptr);
    }
    Q_DISABLE_COPY_MOVE(WithService)

    /// The only one that runs.
    [[nodiscard]] static std::shared_ptr<ArchivePickerPaneController> picker()
    {
        const auto& running = ArchivePickerPaneController::runningPickers();
        if (running.size() != 1)
            throw std::runtime_error("there are " + std::to_string(running.size()) + " pickers");
        return *running.begin();
    }
    [[nodiscard]] HavrelServices& services() { return HavrelServices::sharedServices(); }
    [[nodiscard]] static Pasteboard listOf(const QByteArrayList& uris)
    {
        return {{pasteboard::kUriList, uris.join("\r\n") + "\r\n"}};
    }
    [[nodiscard]] QByteArray uriOf(std::string_view entry) const { return "file://" + m_tree.bytes(entry); }
    /// Lines of the log without their dates and identities.
    [[nodiscard]] QStringList logged() const
    {
        QStringList lines = m_log->shortLines(Logr::rootLogLine());
        for (QString& line : lines)
            line.truncate(line.lastIndexOf(QStringLiteral(" [")));
        return lines;
    }

    EnvironmentValue m_state{"XDG_STATE_HOME", m_tree.bytes("state")}; // frames of windows
    std::shared_ptr<RecordingLogr> m_log = std::make_shared<RecordingLogr>();
    SharedLoggerScope m_logScope{m_log};
    FakeTimers m_timers;
    AnsweringAlerts m_alerts;
    RecordingApplications m_applications;
    int m_terminated = 0;
    int m_registered = 0;
    ScriptedComponents m_components;
    std::shared_ptr<ServiceApplicationDelegate> m_delegate = std::make_shared<ServiceApplicationDelegate>(
        ServiceApplicationDelegate::Surroundings{.alerts = m_alerts,
                                                 .applications = m_applications,
                                                 .timers = m_timers,
                                                 .registerServices = [this] { ++m_registered; },
                                                 .terminate = [this] { ++m_terminated; },
                                                 .components = m_components.connections()});
};

} // namespace havrel::tests
