// SPDX-License-Identifier: MIT
#include "app/service_program.h"

#include "app/archive_picker_pane_controller.h"
#include "app/opening_bus.h"
#include "capture_prefs_ui/capture_preferences_window.h"
#include "filters/file_capture_preferences.h"
#include "foundation/pasteboard.h"
#include "foundation/service_address.h"
#include "fs/path.h"
#include "platform/bus_connection.h"
#include "platform/termination_signals.h"
#include "tests/app/scripted_components.h"
#include "tests/support/attribute_folder.h"
#include "tests/support/environment_value.h"
#include "tests/support/private_bus.h"
#include "tests/support/recording_logr.h"
#include "tests/support/shown_window.h"

#include <QAbstractButton>
#include <QLabel>
#include <QMessageBox>
#include <QProcess>
#include <QTimer>

#include <algorithm>
#include <csignal>

namespace havrel::tests {
namespace {

using namespace std::chrono_literals;

constexpr int kTooLate = 99; // exit status of a service that does not end

QList<CapturePreferencesWindow*> shownWindows()
{
    QList<CapturePreferencesWindow*> found;
    for (QWidget* each : QApplication::topLevelWidgets())
        if (auto* window = qobject_cast<CapturePreferencesWindow*>(each); window != nullptr && window->isVisible())
            found << window;
    return found;
}

void exclude(CapturePreferencesWindow& window)
{
    window.findChild<QAbstractButton*>(QStringLiteral("optionExcludeButton"))->click();
}

CaptureOption optionOf(const QByteArray& path)
{
    const auto stored = FileCapturePreferences::capturePreferencesForPath(*JNPath::withCPath(path));
    return stored ? stored->option : CaptureOption::Normal;
}

/// The whole program in this process, on a bus of its own, with a client that calls it.
class ServiceProgram : public WithAttributes
{
protected:
    void SetUp() override
    {
        WithAttributes::SetUp();
        ASSERT_EQ(m_client.open(), 0);
    }

    /// Runs the program and does \p meanwhile when it serves. Answers the exit status.
    int run(const std::function<void()>& meanwhile = {}, std::chrono::milliseconds idleInterval = 600s)
    {
        platform::TerminationSignals signals;
        OpeningBus bus;
        havrel::ServiceProgram program(idleInterval, signals, bus, m_components.connections());
        QObject context;
        if (meanwhile)
            QTimer::singleShot(0, &context, meanwhile);
        QTimer::singleShot(60s, &context, [] { QCoreApplication::exit(kTooLate); });
        return program.run();
    }
    /// Calls a service without waiting for it.
    void call(const char* service, const QByteArrayList& paths)
    {
        QByteArray list;
        for (const QByteArray& each : paths)
            list += JNPath::withCPath(each)->url().toEncoded() + "\r\n";
        m_client.call(requestOf(service, {{pasteboard::kUriList, list}}),
                      [](const platform::BusReply& reply) { EXPECT_EQ(reply.error, 0); });
    }
    static platform::BusCall requestOf(const char* service, const Pasteboard& board)
    {
        platform::BusCall request{.destination = service_address::kBusName,
                                  .path = service_address::kObjectPath,
                                  .interface = service_address::kInterface,
                                  .member = service};
        request.body.signature = "a{say}";
        request.body.values.append(QVariant(dictionaryOf(board)));
        return request;
    }
    /// Opens the preferences of the file, excludes it in the window, and does \p act before anything is written.
    std::function<void()> editedAnd(std::function<void()> act)
    {
        return [this, act = std::move(act)] {
            call(service_address::kPreferences, {m_tree.bytes("file")});
            auto* window = shownWindow<CapturePreferencesWindow>();
            ASSERT_NE(window, nullptr);
            exclude(*window);
            EXPECT_EQ(optionOf(m_tree.bytes("file")), CaptureOption::Normal);
            act();
        };
    }
    [[nodiscard]] bool isLogged(const char* text) const
    {
        const QStringList lines = m_log->lines();
        return std::ranges::any_of(lines,
                                   [text](const QString& each) { return each.contains(QLatin1StringView(text)); });
    }

    ScriptedComponents m_components;
    PrivateBus m_bus;
    EnvironmentValue m_address{"DBUS_SESSION_BUS_ADDRESS", m_bus.address()};
    EnvironmentValue m_state{"XDG_STATE_HOME", m_tree.bytes("state")};
    EnvironmentValue m_data{"XDG_DATA_HOME", m_tree.bytes("data")};
    EnvironmentValue m_dataDirs{"XDG_DATA_DIRS", m_tree.bytes("nowhere")};
    std::shared_ptr<RecordingLogr> m_log = std::make_shared<RecordingLogr>();
    SharedLoggerScope m_logScope{m_log};
    platform::BusConnection m_client{{.address = m_bus.address()}};
};

TEST_F(ServiceProgram, EndsWhenNothingHappens)
{
    EXPECT_EQ(run({}, 1ms), 0);
    EXPECT_TRUE(isLogged("started Service-3.0.6.4"));
    EXPECT_TRUE(isLogged("stopping Service-3.0.6.4 ["));
}

TEST_F(ServiceProgram, WritesWhatIsNotWrittenBeforeASignalEndsIt)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        FileCapturePreferences().setPreferencesAtPath(*JNPath::withCPath(m_tree.bytes("file")));
        EXPECT_EQ(run(editedAnd([signal] { ::raise(signal); })), 0);
        EXPECT_EQ(optionOf(m_tree.bytes("file")), CaptureOption::Exclude) << signal;
    }
    EXPECT_TRUE(isLogged("stopping Service-3.0.6.4 ["));
}

TEST_F(ServiceProgram, WritesWhatIsNotWrittenWhenTheBusGoes)
{
    EXPECT_EQ(run(editedAnd([this] { m_bus.end(); })), 0);
    EXPECT_EQ(optionOf(m_tree.bytes("file")), CaptureOption::Exclude);
}

TEST_F(ServiceProgram, WritesWhatIsNotWrittenWhenItIsToldToQuit)
{
    EXPECT_EQ(run(editedAnd([] { QCoreApplication::quit(); })), 0);
    EXPECT_EQ(optionOf(m_tree.bytes("file")), CaptureOption::Exclude);
}

TEST_F(ServiceProgram, WritesWhatIsNotWrittenWhenTheSessionIsSaved)
{
    // No session manager can be had here: its question is put as the toolkit puts it, with an object that the program
    // does not look at.
    EXPECT_EQ(run(editedAnd([this] {
                  QMetaObject::invokeMethod(
                      qGuiApp, "commitDataRequest", Qt::DirectConnection, QGenericArgument("QSessionManager&", this));
                  EXPECT_EQ(optionOf(m_tree.bytes("file")), CaptureOption::Exclude);
                  ::raise(SIGTERM);
              })),
              0);
}

TEST_F(ServiceProgram, LeavesToTheNextOneWhatHasNotBegunAtItsEnd)
{
    const TemporaryTree next;
    m_bus.addService(service_address::kBusName, HAVREL_LEAVING_SERVICE " " + next.path("lines"));
    EXPECT_EQ(run([this] {
                  platform::BusCall request = requestOf(service_address::kReveal, {{pasteboard::kPlainText, "line"}});
                  request.limit = 60s;
                  EXPECT_EQ(m_client.callAndWait(request).error, 0); // and stands on the main queue
                  QCoreApplication::exit(0);
              }),
              0);
    EXPECT_TRUE(QTest::qWaitFor([&next] { return std::filesystem::exists(next.path("lines")); }, 60'000));
    EXPECT_FALSE(isLogged("Unrecognized clipboard contents")); // it was not begun here
}

TEST_F(ServiceProgram, LogsWhatItCannotWriteAtItsEnd)
{
    EXPECT_EQ(run(editedAnd([this] {
                  ASSERT_TRUE(std::filesystem::remove(m_tree.path("file")));
                  ::raise(SIGTERM);
              })),
              0);
    EXPECT_TRUE(isLogged("Warning Unable to change the capture preferences for 'file'."));
}

TEST_F(ServiceProgram, EndsWhileAnAlertIsOpen)
{
    QTimer look; // the alert runs a loop of its own
    QString text;
    QObject::connect(&look, &QTimer::timeout, &look, [&] {
        if (const auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            look.stop();
            text = box->text();
            ::raise(SIGTERM);
        }
    });
    EXPECT_EQ(run([&] {
                  call(service_address::kCapture, {m_tree.bytes("file")});
                  look.start(0);
              }),
              0);
    EXPECT_EQ(text, QStringLiteral("Cannot connnect with Havrel monitor."));
}

TEST_F(ServiceProgram, ServesTwoRequestsAtOnce)
{
    EXPECT_EQ(run([this] {
                  call(service_address::kPreferences, {m_tree.bytes("file")});
                  call(service_address::kPreferences, {m_tree.bytes("file"), m_tree.bytes("folder")});
                  EXPECT_TRUE(QTest::qWaitFor([] { return shownWindows().size() == 2; }));
                  for (CapturePreferencesWindow* each : shownWindows())
                      each->close();
                  EXPECT_TRUE(shownWindows().isEmpty()); // and the service goes on
                  QTimer::singleShot(0, [] { ::raise(SIGTERM); });
              }),
              0);
}

TEST_F(ServiceProgram, ServesTheThreeServices)
{
    m_tree.write("bad\xff.txt", "");
    m_components.tell({});
    QStringList noted;
    EXPECT_EQ(run([&] {
                  call(service_address::kReveal, {m_tree.bytes("file")});
                  call(service_address::kCapture, {m_tree.bytes("file"), m_tree.bytes("folder")});
                  call(service_address::kReveal, {});
                  call(service_address::kPreferences, {m_tree.bytes("bad\xff.txt")});
                  auto* window = shownWindow<CapturePreferencesWindow>();
                  ASSERT_NE(window, nullptr);
                  exclude(*window);
                  for (const auto& each : ArchivePickerPaneController::runningPickers())
                      noted << each->titleField().text();
                  ::raise(SIGTERM);
              }),
              0);
    noted.sort();
    EXPECT_EQ(noted, (QStringList{QStringLiteral("Capture 2 items to:"), QStringLiteral("Reveal \"file\" in:")}));
    EXPECT_EQ(optionOf(m_tree.bytes("bad\xff.txt")), CaptureOption::Exclude);
    EXPECT_TRUE(isLogged("Unrecognized clipboard contents; service performed no action"));
}

TEST_F(ServiceProgram, TellsThatAnotherOneServes)
{
    ASSERT_EQ(m_client.requestName(service_address::kBusName), 0);
    testing::internal::CaptureStderr();
    EXPECT_EQ(run(), 0);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("havrel-service: another process serves already\n"),
              std::string::npos);
    EXPECT_TRUE(isLogged("stopping Service-3.0.6.4 ["));
}

TEST_F(ServiceProgram, TellsThatThereIsNoBus)
{
    m_bus.end();
    testing::internal::CaptureStderr();
    EXPECT_EQ(run(), 1);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("havrel-service: cannot serve on the session bus: "),
              std::string::npos);
    EXPECT_TRUE(isLogged("stopping Service-3.0.6.4, exiting with status 1"));
}

/// A display server of the test's own.
class OwnDisplay
{
public:
    OwnDisplay()
    {
        m_server.start(
            QStringLiteral("Xvfb"),
            {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-nolisten"), QStringLiteral("tcp")});
        while (m_server.waitForReadyRead(60'000) && !m_server.canReadLine()) {
        }
        m_name = ':' + m_server.readLine().trimmed();
    }
    ~OwnDisplay()
    {
        m_server.kill();
        m_server.waitForFinished();
    }
    Q_DISABLE_COPY_MOVE(OwnDisplay)

    [[nodiscard]] QByteArray name() const { return m_name; }
    [[nodiscard]] QByteArray process() const { return QByteArray::number(m_server.processId()); }

private:
    QProcess m_server;
    QByteArray m_name;
};

constexpr const char* kServer = "HAVREL_TEST_DISPLAY_SERVER"; // its process, for the second run
constexpr const char* kEdited = "HAVREL_TEST_EDITED_ITEM";

using ServiceProgramDeathTest = ServiceProgram;

/// The program runs in a second process of this test, which shows its windows on a display that goes.
TEST_F(ServiceProgramDeathTest, WritesWhatIsNotWrittenWhenTheDisplayGoes)
{
    std::optional<OwnDisplay> display;
    std::vector<std::unique_ptr<EnvironmentValue>> environment;
    if (!qEnvironmentVariableIsSet(kServer)) {
        display.emplace();
        ASSERT_GT(display->process().toInt(), 1);
        const std::pair<const char*, QByteArray> values[] = {{"QT_QPA_PLATFORM", "xcb"},
                                                             {"DISPLAY", display->name()},
                                                             {kServer, display->process()},
                                                             {kEdited, m_tree.bytes("file")}};
        for (const auto& [name, value] : values)
            environment.push_back(std::make_unique<EnvironmentValue>(name, value));
    }
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(run([this] {
                    call(service_address::kPreferences, {qgetenv(kEdited)});
                    auto* window = shownWindow<CapturePreferencesWindow>();
                    ASSERT_NE(window, nullptr);
                    exclude(*window);
                    ::kill(qgetenv(kServer).toInt(), SIGKILL);
                }),
                testing::ExitedWithCode(1),
                "");
    EXPECT_EQ(optionOf(m_tree.bytes("file")), CaptureOption::Exclude);
}

} // namespace
} // namespace havrel::tests
