// SPDX-License-Identifier: MIT
#include "cli/service_client.h"
#include "foundation/service_address.h"
#include "fs/item_path.h"
#include "platform/bus_connection.h"
#include "tests/support/awaited.h"
#include "tests/support/environment_value.h"
#include "tests/support/private_bus.h"
#include "tests/support/program_run.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

namespace havrel::cli {
namespace {

using platform::BusConnection;
using platform::BusMethod;
using platform::BusRegistration;
using platform::BusRequest;
using tests::Awaited;
using tests::PrivateBus;
using tests::run;
using tests::RunResult;
using tests::RunSettings;

struct Asked
{
    QByteArray member;
    QVariantMap pasteboard;
};

/// A service that keeps what it is asked, and answers as told.
class FakeService
{
public:
    using Answer = std::function<void(BusRequest request)>;

    explicit FakeService(const PrivateBus& bus)
        : m_bus({.address = bus.address()})
    {
        EXPECT_EQ(m_bus.open(), 0);
        EXPECT_EQ(m_bus.exportInterface(service_address::kObjectPath,
                                        {.name = service_address::kInterface,
                                         .methods = {method(service_address::kReveal),
                                                     method(service_address::kCapture),
                                                     method(service_address::kPreferences)}},
                                        m_export),
                  0);
        EXPECT_EQ(m_bus.requestName(service_address::kBusName), 0);
    }

    /// How requests are answered from here on; else with nothing.
    void answerWith(Answer answer)
    {
        const MutexLock lock(m_mutex);
        m_answer = std::move(answer);
    }

    Awaited<Asked> asked;

private:
    BusMethod method(const char* name)
    {
        return {.name = name, .takes = "a{say}", .call = [this](BusRequest request) {
                    asked.tell({request.origin().member, request.values().constFirst().toMap()});
                    const MutexLock lock(m_mutex);
                    m_answer(std::move(request));
                }};
    }

    Mutex m_mutex;
    Answer m_answer HAVREL_GUARDED_BY(m_mutex) = [](BusRequest request) { (void)request.reply(); };
    BusConnection m_bus;
    BusRegistration m_export;
};

QByteArrayList pathsIn(const Asked& asked)
{
    QByteArrayList paths;
    for (const QByteArray& line : asked.pasteboard.value(QStringLiteral("text/uri-list")).toByteArray().split('\n'))
        if (!line.isEmpty()) {
            EXPECT_TRUE(line.endsWith('\r'));
            paths.append(pathOfFileURI(line.chopped(1)).path);
        }
    return paths;
}

class ServiceRequestsOfTheTool : public ::testing::Test
{
protected:
    RunSettings settings(const QByteArray& input = {}) const
    {
        return {.input = input,
                .workingFolder = QByteArray::fromStdString(m_tree.root()),
                .environment = {
                    "DBUS_SESSION_BUS_ADDRESS=" + m_bus.address(), "XDG_ACTIVATION_TOKEN=", "DESKTOP_STARTUP_ID="}};
    }
    Asked onlyOneAsked()
    {
        const std::vector<Asked> all = m_service.asked.first(1);
        EXPECT_EQ(all.size(), 1U);
        return all.empty() ? Asked() : all.front();
    }

    PrivateBus m_bus;
    FakeService m_service{m_bus};
    TemporaryTree m_tree;
};

TEST_F(ServiceRequestsOfTheTool, AskForTheServiceOfTheirName)
{
    m_tree.add("item");
    const std::pair<QByteArrayList, const char*> rows[] = {
        {{"capture", "item"}, "captureToArchive"},
        {{"reveal", "item"}, "revealInArchive"},
        {{"captureprefs", "edit", "item"}, "setCapturePreferences"},
    };
    std::size_t count = 0;
    for (const auto& [arguments, member] : rows) {
        const RunResult result = run(arguments, settings());
        EXPECT_EQ(result.status, 0) << result.errors.constData();
        EXPECT_EQ(result.output + result.errors, "");
        const auto all = m_service.asked.first(++count);
        ASSERT_EQ(all.size(), count);
        EXPECT_EQ(all.back().member, member);
        EXPECT_EQ(pathsIn(all.back()), QByteArrayList{m_tree.bytes("item")});
        EXPECT_EQ(all.back().pasteboard.size(), 1);
    }
}

TEST_F(ServiceRequestsOfTheTool, HandOverHardNamesExactly)
{
    const QByteArrayList names{"a dir",
                               "--dash.txt",
                               "bad\xff.txt",
                               "dollar$HOME.txt",
                               "link",
                               "new\nline.txt",
                               "per%cent.txt",
                               "plain.txt",
                               "quo'te\".txt",
                               "sp ace.txt",
                               "#?&;.txt",
                               "car\rriage"};
    QByteArrayList expected;
    for (const QByteArray& each : names) {
        if (each == "link")
            m_tree.addLink("link", "nowhere");
        else
            m_tree.add(each.toStdString());
        expected.append(m_tree.bytes(each.toStdString()));
    }
    ASSERT_EQ(run(QByteArrayList{"reveal", "--"} + names, settings()).status, 0);
    EXPECT_EQ(pathsIn(onlyOneAsked()), expected);
}

TEST_F(ServiceRequestsOfTheTool, MakePathsAbsoluteWithoutResolvingThem)
{
    m_tree.add("folder/item");
    m_tree.addLink("way", "folder");
    const QByteArray root = QByteArray::fromStdString(m_tree.root());
    const QByteArrayList given{
        "way/item", "./folder", "folder/../way", ".", "way/", "file://" + root + "/folder%2Fitem", root + "/way"};
    const QByteArrayList expected{root + "/way/item",
                                  root + "/folder",
                                  root + "/folder/../way",
                                  root,
                                  root + "/way",
                                  root + "/folder/item",
                                  root + "/way"};
    ASSERT_EQ(run(QByteArrayList{"capture"} + given, settings()).status, 0);
    EXPECT_EQ(pathsIn(onlyOneAsked()), expected);
}

TEST_F(ServiceRequestsOfTheTool, HandOverTwentyThousandItems)
{
    QByteArrayList names;
    for (int i = 0; i < 20'000; ++i) {
        names.append(QByteArray::number(i).rightJustified(120, 'n'));
        m_tree.add(names.last().toStdString());
    }
    const RunResult result = run({"captureprefs", "edit", "--items-from", "-"}, settings(names.join('\0')));
    ASSERT_EQ(result.status, 0) << result.errors.constData();
    const QByteArrayList paths = pathsIn(onlyOneAsked());
    ASSERT_EQ(paths.size(), names.size());
    for (qsizetype i = 0; i < names.size(); ++i)
        ASSERT_EQ(paths[i], m_tree.bytes(names[i].toStdString()));
}

TEST_F(ServiceRequestsOfTheTool, PassTheTokenOfTheClickAlong)
{
    m_tree.add("item");
    const std::pair<QByteArrayList, const char*> rows[] = {
        {{"XDG_ACTIVATION_TOKEN=token", "DESKTOP_STARTUP_ID=id"}, "token"},
        {{"DESKTOP_STARTUP_ID=id"}, "id"},
    };
    std::size_t count = 0;
    for (const auto& [environment, token] : rows) {
        RunSettings with = settings();
        with.environment += environment;
        ASSERT_EQ(run({"reveal", "item"}, with).status, 0);
        const auto all = m_service.asked.first(++count);
        ASSERT_EQ(all.size(), count);
        EXPECT_EQ(all.back().pasteboard.value(QStringLiteral("application/x-activation-token")).toByteArray(), token);
    }
}

TEST_F(ServiceRequestsOfTheTool, TellOfItemsThatAreMissingAndHandOverTheRest)
{
    m_tree.add("here");
    const RunResult result = run({"capture", "gone", "here", "file://elsewhere.example/x"}, settings());
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.contains("havrel: gone: No such file or directory\n")) << result.errors.constData();
    EXPECT_TRUE(result.errors.contains("elsewhere.example")) << result.errors.constData();
    EXPECT_EQ(pathsIn(onlyOneAsked()), QByteArrayList{m_tree.bytes("here")});
}

TEST_F(ServiceRequestsOfTheTool, AskForNothingWithoutItems)
{
    EXPECT_EQ(run({"capture"}, settings()).status, 2);
    EXPECT_EQ(run({"capture", "--items-from", "-"}, settings()).status, 2);
    EXPECT_EQ(run({"capture", "gone"}, settings()).status, 1);
    EXPECT_EQ(m_service.asked.count(), 0U);
}

TEST_F(ServiceRequestsOfTheTool, AskOnceMoreWhenTheServiceEndsInThatMoment)
{
    m_tree.add("item");
    int times = 0;
    m_service.answerWith([&](BusRequest request) {
        if (++times == 1)
            (void)request.fail("org.freedesktop.DBus.Error.UnknownObject", QStringLiteral("gone"));
        else
            (void)request.reply();
    });
    EXPECT_EQ(run({"capture", "item"}, settings()).status, 0);
    EXPECT_EQ(m_service.asked.count(), 2U);
}

TEST_F(ServiceRequestsOfTheTool, AskNoMoreThanTwice)
{
    m_tree.add("item");
    m_service.answerWith([](BusRequest request) {
        (void)request.fail("org.freedesktop.DBus.Error.NoReply", QStringLiteral("gone again"));
    });
    const RunResult result = run({"capture", "item"}, settings());
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.contains("gone again")) << result.errors.constData();
    EXPECT_EQ(m_service.asked.count(), 2U);
}

TEST_F(ServiceRequestsOfTheTool, TellWhatTheServiceRefuses)
{
    m_tree.add("item");
    m_service.answerWith([](BusRequest request) { (void)request.fail("com.havrel.Error", QStringLiteral("not now")); });
    const RunResult result = run({"capture", "item"}, settings());
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.contains("not now")) << result.errors.constData();
    EXPECT_EQ(m_service.asked.count(), 1U);
}

TEST_F(ServiceRequestsOfTheTool, TellWhatToDoWithoutADisplay)
{
    m_tree.add("item");
    m_service.answerWith([](BusRequest request) { (void)request.fail(service_address::kNoDisplay, {}); });
    const RunResult result = run({"captureprefs", "edit", "item"}, settings());
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(
        result.errors.startsWith("havrel: service: there is no display to show windows on (use it in a desktop"))
        << result.errors.constData();
    EXPECT_EQ(m_service.asked.count(), 1U);
}

TEST_F(ServiceRequestsOfTheTool, TellThatThereIsNoSessionBus)
{
    m_tree.add("item");
    RunSettings with = settings();
    with.environment += {"DBUS_SESSION_BUS_ADDRESS=unix:path=" + m_tree.bytes("no-bus")};
    const RunResult result = run({"capture", "item"}, with);
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.startsWith("havrel: service: there is no session bus")) << result.errors.constData();
}

TEST(ServiceClient, TellsThatTheServiceIsNotInstalled)
{
    const PrivateBus bus;
    const tests::EnvironmentValue address("DBUS_SESSION_BUS_ADDRESS", bus.address());
    EXPECT_TRUE(ServiceClient().ask("revealInArchive", {}).contains(QStringLiteral("is not installed")));
}

TEST(ServiceClient, GivesUpAtItsDeadlineAndDoesNotAskAgain)
{
    const PrivateBus bus;
    const tests::EnvironmentValue address("DBUS_SESSION_BUS_ADDRESS", bus.address());
    FakeService service(bus);
    std::vector<std::shared_ptr<BusRequest>> kept;
    service.answerWith([&](BusRequest request) { kept.push_back(std::make_shared<BusRequest>(std::move(request))); });
    EXPECT_FALSE(ServiceClient(std::chrono::milliseconds(300)).ask("revealInArchive", {}).isNull());
    EXPECT_LE(service.asked.count(), 1U);
}

} // namespace
} // namespace havrel::cli
