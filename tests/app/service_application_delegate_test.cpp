// SPDX-License-Identifier: MIT
#include "app/service_application_delegate.h"

#include "capture_prefs_ui/capture_preferences_controller.h"
#include "capture_prefs_ui/capture_preferences_window.h"
#include "filters/file_capture_preferences.h"
#include "fs/path.h"
#include "tests/app/service_fixture.h"
#include "tests/support/shown_window.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <cerrno>

namespace havrel::tests {
namespace {

using namespace std::chrono_literals;
using Buttons = QList<std::optional<QString>>;

class ServiceApplicationDelegate : public WithService
{
protected:
    [[nodiscard]] std::shared_ptr<CapturePreferencesController> openedFor(std::string_view entry)
    {
        auto controller = m_delegate->makeCapturePreferencesController();
        EXPECT_TRUE(controller->prepareWithItems({JNPath::withCPath(m_tree.bytes(entry))->url()}));
        return controller;
    }
    static void exclude(CapturePreferencesController& controller)
    {
        controller.window().findChild<QAbstractButton*>(QStringLiteral("optionExcludeButton"))->click();
    }
    [[nodiscard]] CaptureOption optionOf(std::string_view entry) const
    {
        const auto stored = FileCapturePreferences::capturePreferencesForPath(*JNPath::withCPath(m_tree.bytes(entry)));
        return stored ? stored->option : CaptureOption::Normal;
    }
};

TEST_F(ServiceApplicationDelegate, MakesTheApplicationAnAccessory)
{
    QGuiApplication::setQuitOnLastWindowClosed(true);
    havrel::ServiceApplicationDelegate::applicationWillFinishLaunching();
    EXPECT_FALSE(QGuiApplication::quitOnLastWindowClosed());
    EXPECT_FALSE(QCoreApplication::isQuitLockEnabled());
    EXPECT_TRUE(QCoreApplication::testAttribute(Qt::AA_DontUseNativeMenuBar));
}

TEST_F(ServiceApplicationDelegate, LogsTheStartAndOpensTheWayForRequests)
{
    m_delegate->applicationDidFinishLaunching();
    EXPECT_EQ(m_registered, 1);
    EXPECT_EQ(logged().value(0), QStringLiteral("#debug# started Service-3.0.6.4"));
}

TEST_F(ServiceApplicationDelegate, LogsTheStop)
{
    havrel::ServiceApplicationDelegate::applicationWillTerminate();
    EXPECT_EQ(logged(), QStringList{QStringLiteral("#debug# stopping Service-3.0.6.4")});
}

TEST_F(ServiceApplicationDelegate, TerminatesAtTheFirstFiringWithoutActivity)
{
    m_delegate->applicationDidFinishLaunching();
    m_timers.pass(599'999ms);
    EXPECT_EQ(m_terminated, 0);
    m_timers.pass(1ms);
    EXPECT_EQ(m_terminated, 1);
}

TEST_F(ServiceApplicationDelegate, StaysForAWholeIntervalAfterActivity)
{
    m_delegate->applicationDidFinishLaunching();
    m_delegate->busy();
    m_timers.pass(600s);
    EXPECT_EQ(m_terminated, 0);
    m_timers.pass(1s);
    m_delegate->busy(); // one second after the firing
    m_timers.pass(1198s);
    EXPECT_EQ(m_terminated, 0);
    m_timers.pass(1s);
    EXPECT_EQ(m_terminated, 1);
}

TEST_F(ServiceApplicationDelegate, ForgetsActivityAtEachFiring)
{
    m_delegate->busy();
    m_delegate->autoShutdownTime();
    EXPECT_EQ(m_terminated, 0);
    m_delegate->autoShutdownTime();
    EXPECT_EQ(m_terminated, 1);
    m_delegate->busy();
    m_delegate->autoShutdownTime();
    EXPECT_EQ(m_terminated, 1);
}

TEST_F(ServiceApplicationDelegate, ForgetsActivityThatTerminatingCaused)
{
    std::shared_ptr<havrel::ServiceApplicationDelegate> delegate;
    int terminated = 0;
    delegate = std::make_shared<havrel::ServiceApplicationDelegate>(
        havrel::ServiceApplicationDelegate::Surroundings{.alerts = m_alerts,
                                                         .applications = m_applications,
                                                         .timers = m_timers,
                                                         .registerServices = [] {},
                                                         .terminate =
                                                             [&] {
                                                                 ++terminated;
                                                                 delegate->busy();
                                                             }});
    delegate->autoShutdownTime();
    delegate->autoShutdownTime();
    EXPECT_EQ(terminated, 2);
}

TEST_F(ServiceApplicationDelegate, IsNotKeptByAnOpenWindow)
{
    m_delegate->applicationDidFinishLaunching();
    const auto controller = openedFor("file");
    controller->showWindow();
    m_timers.pass(600s);
    EXPECT_EQ(m_terminated, 1);
}

TEST_F(ServiceApplicationDelegate, IsKeptByAnEdit)
{
    m_delegate->applicationDidFinishLaunching();
    const auto controller = openedFor("file");
    m_timers.pass(599s);
    exclude(*controller);
    m_timers.pass(1s);
    EXPECT_EQ(m_terminated, 0);
    m_timers.pass(600s);
    EXPECT_EQ(m_terminated, 1);
}

struct AlertRow
{
    bool installed;
    int answer;
    Buttons buttons;
    QByteArrayList launched;
};

TEST_F(ServiceApplicationDelegate, OffersToLaunchTheClientWhereThereIsOne)
{
    const Buttons withClient{QStringLiteral("Launch Havrel"), QStringLiteral("Cancel")};
    const Buttons without{QStringLiteral("OK"), std::nullopt};
    const AlertRow rows[] = {
        {true, 1000, withClient, {"com.havrel.client"}},
        {true, 1001, withClient, {}},
        {false, 1000, without, {}},
        {false, 1001, without, {}},
    };
    for (const AlertRow& row : rows) {
        m_applications.installed = row.installed;
        m_applications.launched.clear();
        m_alerts.answer = row.answer;
        m_delegate->noSchedulerAlert();
        EXPECT_EQ(m_alerts.shown.last().buttons, row.buttons);
        EXPECT_EQ(m_applications.launched, row.launched);
    }
}

TEST_F(ServiceApplicationDelegate, NamesTheComponentThatCannotBeReached)
{
    m_delegate->noSchedulerAlert();
    m_delegate->noMonitorAlert();
    ASSERT_EQ(m_alerts.shown.size(), 2);
    EXPECT_EQ(m_alerts.shown[0].messageText, QStringLiteral("Cannot connnect with Havrel scheduler."));
    EXPECT_EQ(m_alerts.shown[1].messageText, QStringLiteral("Cannot connnect with Havrel monitor."));
    EXPECT_EQ(m_alerts.shown[0].informativeText,
              QStringLiteral("Service is unable to connect with a Havrel component. Launch Havrel to reinstall the "
                             "component and try again."));
    EXPECT_EQ(m_alerts.shown[0].style, AlertStyle::Warning);
}

TEST_F(ServiceApplicationDelegate, TerminatesHalfASecondAfterTheAnswer)
{
    for (const int answer : {1000, 1001}) {
        m_alerts.answer = answer;
        m_alerts.meanwhile = [this] { m_timers.pass(10s); }; // the user thinks
        const int before = m_terminated;
        m_delegate->noMonitorAlert();
        m_timers.pass(499ms);
        EXPECT_EQ(m_terminated, before);
        m_timers.pass(1ms);
        EXPECT_EQ(m_terminated, before + 1);
    }
}

TEST_F(ServiceApplicationDelegate, TerminatesOnceForTwoAlertsAtOnce)
{
    m_alerts.meanwhile = [this] { m_delegate->noMonitorAlert(); };
    m_delegate->noSchedulerAlert();
    EXPECT_EQ(m_alerts.shown.size(), 2);
    m_timers.pass(10s);
    EXPECT_EQ(m_terminated, 1);
}

TEST_F(ServiceApplicationDelegate, LogsAClientThatCannotBeLaunchedAndTerminates)
{
    m_applications.failure = ENOENT;
    m_delegate->noSchedulerAlert();
    EXPECT_EQ(logged().value(0), QStringLiteral("Failure cannot launch the client application"));
    m_timers.pass(500ms);
    EXPECT_EQ(m_terminated, 1);
}

TEST_F(ServiceApplicationDelegate, ShowsItsAlertOnTheScreen)
{
    WidgetAlertPresenter presenter;
    havrel::ServiceApplicationDelegate delegate({.alerts = presenter,
                                                 .applications = m_applications,
                                                 .timers = m_timers,
                                                 .registerServices = [] {},
                                                 .terminate = [this] { ++m_terminated; }});
    QTimer::singleShot(0, [] {
        auto* box = shownWindow<QMessageBox>();
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->text(), QStringLiteral("Cannot connnect with Havrel scheduler."));
        ASSERT_EQ(box->buttons().size(), 2);
        box->defaultButton()->click();
    });
    delegate.noSchedulerAlert();
    EXPECT_EQ(m_applications.launched, QByteArrayList{"com.havrel.client"});
    m_timers.pass(500ms);
    EXPECT_EQ(m_terminated, 1);
}

TEST_F(ServiceApplicationDelegate, KeepsEveryControllerWithALoadedWindow)
{
    const std::weak_ptr<CapturePreferencesController> first = m_delegate->makeCapturePreferencesController();
    const std::weak_ptr<CapturePreferencesController> second = m_delegate->makeCapturePreferencesController();
    ASSERT_FALSE(first.expired());
    ASSERT_FALSE(second.expired());
    EXPECT_NE(first.lock(), second.lock());
    EXPECT_FALSE(first.lock()->window().isVisible());
    first.lock()->showWindow();
    first.lock()->window().close();
    EXPECT_FALSE(first.expired());
}

TEST_F(ServiceApplicationDelegate, KeepsOneFrameForAllWindowsUnderItsName)
{
    const auto first = m_delegate->makeCapturePreferencesController();
    first->showWindow();
    first->window().resize(701, 703);
    first->window().close();
    EXPECT_EQ(m_delegate->makeCapturePreferencesController()->window().size(), QSize(701, 703));
    const auto named = std::make_shared<CapturePreferencesController>(
        m_alerts, [] {}, m_timers);
    named->setWindowFrameAutosaveName(QStringLiteral("CapturePreferences"));
    EXPECT_EQ(named->window().size(), QSize(701, 703));
}

TEST_F(ServiceApplicationDelegate, WritesTheChangesOfEveryWindow)
{
    exclude(*openedFor("file"));
    exclude(*openedFor("folder"));
    EXPECT_EQ(optionOf("file"), CaptureOption::Normal);
    m_delegate->writePendingChanges();
    EXPECT_EQ(optionOf("file"), CaptureOption::Exclude);
    EXPECT_EQ(optionOf("folder"), CaptureOption::Exclude);
}

TEST_F(ServiceApplicationDelegate, WritesTheOtherWindowsWhenOneCannotBeWritten)
{
    exclude(*openedFor("file"));
    exclude(*openedFor("folder"));
    ASSERT_TRUE(std::filesystem::remove(m_tree.path("file")));
    m_delegate->writePendingChanges();
    EXPECT_EQ(m_alerts.shown.size(), 1);
    EXPECT_EQ(optionOf("folder"), CaptureOption::Exclude);
}

} // namespace
} // namespace havrel::tests
