// SPDX-License-Identifier: MIT
// What a switchboard and its observers do to each other across processes and users.
#include "components/switchboard.h"
#include "messaging/bus_router.h"
#include "messaging/shared_connections.h"
#include "messaging/switchboard_connection.h"
#include "messaging/switchboard_names.h"
#include "tests/components/switchboard_peer.h"
#include "tests/messaging/bus_world.h"
#include "tests/support/bus_peer.h"
#include "tests/support/environment_value.h"
#include "tests/support/handled_events.h"
#include "tests/support/recording_logr.h"
#include "tests/support/temporary_tree.h"

#include <QCoreApplication>

#include <array>
#include <csignal>
#include <filesystem>
#include <iterator>

#include <unistd.h>

namespace havrel {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::BusKind;
using tests::Awaited;
using tests::BusPeer;
using tests::BusWorld;
using tests::EnvironmentValue;
using tests::handleEventsUntil;
using tests::kSwitchboardName;
using tests::PrivateBus;
using tests::SwitchboardPeer;

const QString kScheduler = u"com.havrel.scheduler"_s;

BusRouter& routerOf(BusTransport& transport)
{
    int error = 0;
    return *transport.buses().router(BusKind::Session, error);
}

// ---- observers

class ObserversInProcesses : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(m_switchboard.start(), 0);
        m_peer.observe(u"gone"_s, switchboard_names::kEndpointRedacted);
    }
    [[nodiscard]] std::unique_ptr<BusPeer> process()
    {
        return std::make_unique<BusPeer>(m_world.bus().address(), "session", kSwitchboardName.toLatin1());
    }

    static constexpr int kMore = 3'000; // than may be under way

    BusWorld m_world;
    Switchboard m_switchboard{m_world.server(), {.serviceName = kSwitchboardName}};
    SwitchboardPeer m_peer{m_world.caller()};
};

TEST_F(ObserversInProcesses, HoldNobodyUpWhileTheyAreStoppedAndHearAllOfItLater)
{
    const auto stopped = process();
    const auto poster = process();
    ASSERT_EQ(stopped->answerTo("observe N"), "done");
    m_peer.observe(u"p"_s, u"N"_s);

    stopped->stop();
    EXPECT_EQ(poster->answerTo("post N 3000"), "done");
    EXPECT_EQ(m_peer.heard(kMore).size(), kMore);
    EXPECT_EQ(m_peer.query(kScheduler), std::nullopt) << "it still answers";
    stopped->resume();

    EXPECT_EQ(stopped->answerTo("hears 3000"), "3000 2999");
}

TEST_F(ObserversInProcesses, AreForgottenWhenTheyAreKilled)
{
    const auto component = process();
    ASSERT_EQ(component->answerTo("publish com.havrel.scheduler"), "done");
    ASSERT_EQ(component->answerTo("observe N"), "done");
    ASSERT_TRUE(m_peer.query(kScheduler));

    component->kill();

    EXPECT_EQ(m_peer.heard(1),
              QStringList{u"gone: SwitchboardEndpointRedacted from (Switchboard) {id = com.havrel.scheduler}"_s});
    EXPECT_EQ(m_peer.query(kScheduler), std::nullopt);
    m_peer.post(u"N"_s);
    EXPECT_EQ(routerOf(m_world.serversBus()).routeCount(), 1U) << "that of the one who asks";
}

TEST_F(ObserversInProcesses, AreForgottenWhenTheyAreKilledWithMessagesOnTheirWay)
{
    const auto component = process();
    const auto poster = process();
    ASSERT_EQ(component->answerTo("publish com.havrel.scheduler"), "done");
    ASSERT_EQ(component->answerTo("observe N"), "done");

    component->stop();
    EXPECT_EQ(poster->answerTo("post N 3000"), "done");
    component->kill();

    EXPECT_EQ(m_peer.heard(1).size(), 1);
    EXPECT_EQ(m_peer.query(kScheduler), std::nullopt);
    EXPECT_EQ(poster->answerTo("post N 3000"), "done");
}

TEST_F(ObserversInProcesses, AreReplacedByTheirSuccessorsNotMixedUpWithThem)
{
    auto component = process();
    ASSERT_EQ(component->answerTo("publish com.havrel.scheduler"), "done");
    const auto successor = process();
    ASSERT_EQ(successor->answerTo("publish com.havrel.scheduler"), "done");
    const auto published = m_peer.query(kScheduler);

    component->kill();
    ASSERT_TRUE(m_peer.barrier());
    while (routerOf(m_world.serversBus()).routeCount() > 2) // until the bus has told of it
        ASSERT_TRUE(m_peer.barrier());

    EXPECT_EQ(m_peer.query(kScheduler), published);
    EXPECT_EQ(m_peer.heard(), QStringList());
}

// ---- other users

TEST(SwitchboardOfTheMachine, TakesNothingThatAnotherUserPublishes)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root serves the machine's bus, and can be another user";
    const auto logr = std::make_shared<tests::RecordingLogr>();
    const tests::SharedLoggerScope sharedLogger(logr);
    const PrivateBus system;
    system.letOthersIn();
    BusTransport server({.session = "unix:path=/none", .system = system.address()});
    Switchboard switchboard(server, {.serviceName = kSwitchboardName, .options = xpc_options::kPrivileged});
    ASSERT_EQ(switchboard.start(), 0);
    BusPeer own(system.address(), "system", kSwitchboardName.toLatin1());
    BusPeer stranger(system.address(), "system", kSwitchboardName.toLatin1(), BusPeer::As::Nobody);
    ASSERT_EQ(own.answerTo("publish com.havrel.scheduler"), "done");

    EXPECT_EQ(stranger.answerTo("publish com.havrel.monitor"), "done") << "it is heard";
    EXPECT_EQ(stranger.answerTo("query com.havrel.monitor"), "none");
    EXPECT_EQ(own.answerTo("query com.havrel.monitor"), "none");
    EXPECT_EQ(stranger.answerTo("query com.havrel.scheduler"), "found") << "asking is for everybody";

    EXPECT_EQ(logr->lines().filter(u"user 65534 may not publish \"com.havrel.monitor\""_s).size(), 1);
}

/// The bus of a session normally keeps other users out; here it does not.
TEST(SwitchboardOfAUser, IsNotForOtherUsers)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can be another user";
    BusWorld world;
    world.bus().letOthersIn();
    Switchboard switchboard(world.server(), {.serviceName = kSwitchboardName});
    ASSERT_EQ(switchboard.start(), 0);
    SwitchboardPeer peer(world.caller());
    ASSERT_TRUE(peer.barrier());
    BusPeer stranger(world.bus().address(), "session", kSwitchboardName.toLatin1(), BusPeer::As::Nobody);

    EXPECT_EQ(stranger.answerTo("publish com.havrel.monitor"), "failed");

    EXPECT_EQ(peer.query(u"com.havrel.monitor"_s), std::nullopt);
}

// ---- the connection of a process, and what becomes of its observers

class ObserversOfThisProcess : public ::testing::Test
{
protected:
    static constexpr int kObservers = 200;

    ObserversOfThisProcess() { XPCTransport::setShared(&m_transport); }
    ~ObserversOfThisProcess() override
    {
        m_connection.reset();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        SharedConnections::all().forget();
        XPCTransport::setShared(nullptr);
    }
    Q_DISABLE_COPY_MOVE(ObserversOfThisProcess)

    void addObservers()
    {
        m_connection = HVConnection::switchboardConnection();
        for (int i = 0; i < kObservers; ++i)
            m_connection->addObserver(QString::number(i), u"N"_s, [this, i](auto&&...) { m_heard.tell(i); });
        ASSERT_TRUE(m_connection->ping());
    }
    /// Somebody posts what they observe; each of them has heard it so many times when this returns.
    void expectOnceMoreEach(std::size_t times)
    {
        BusPeer poster(m_bus.address(), "session", switchboard_names::perUserService().toLatin1());
        ASSERT_EQ(poster.answerTo("post N 1"), "done");
        ASSERT_TRUE(m_connection->ping()) << "after what was forwarded before";
        std::array<std::size_t, kObservers> counts{};
        for (const int each : m_heard.first(0))
            ++counts[static_cast<std::size_t>(each)];
        for (const std::size_t each : counts)
            ASSERT_EQ(each, times);
    }
    static auto openFiles()
    {
        const std::filesystem::directory_iterator open("/proc/self/fd");
        return std::distance(begin(open), end(open));
    }

    const TemporaryTree m_tree;
    const EnvironmentValue m_state{"XDG_STATE_HOME", m_tree.bytes("state")};
    const EnvironmentValue m_data{"XDG_DATA_HOME", m_tree.bytes("data")};
    const EnvironmentValue m_config{"XDG_CONFIG_HOME", m_tree.bytes("config")};
    int m_argumentCount = 1;
    std::array<char, 5> m_program{"test"};
    std::array<char*, 2> m_arguments{m_program.data(), nullptr};
    QCoreApplication m_application{m_argumentCount, m_arguments.data()};
    PrivateBus m_bus;
    BusTransport m_transport{{.session = m_bus.address(), .system = "unix:path=/none"}};
    Awaited<int> m_heard;
    std::shared_ptr<HVSwitchboardConnection> m_connection;
};

TEST_F(ObserversOfThisProcess, SurviveAHundredReconnectionsWithoutLossDoublingOrGrowth)
{
    constexpr int kReconnections = 100;
    BusTransport server({.session = m_bus.address(), .system = "unix:path=/none"});
    Switchboard switchboard(server, {.serviceName = switchboard_names::perUserService()});
    ASSERT_EQ(switchboard.start(), 0);
    addObservers();
    const auto before = openFiles();

    for (int i = 0; i < kReconnections; ++i) {
        ASSERT_TRUE(m_connection->disconnect());
        ASSERT_TRUE(m_connection->ping());
    }

    expectOnceMoreEach(1);
    EXPECT_EQ(openFiles(), before);
    EXPECT_EQ(routerOf(m_transport).routeCount(), 1U);
    EXPECT_EQ(routerOf(m_transport).peerCount(), 1U);
}

/// The program itself, which is killed and started by the bus. Nobody here asks for anything meanwhile: the observers
/// are registered anew because the connection hears of the start.
TEST_F(ObserversOfThisProcess, SurviveTheDeathOfTheSwitchboard)
{
    constexpr std::size_t kDeaths = 5;
    m_bus.addService("com.havrel.Switchboard", HAVREL_SWITCHBOARD);
    (void)HVConnection::switchboardConnection(); // hears of a start before the test does
    std::size_t starts = 0;
    const auto observer =
        m_transport.addDistributedObserver(switchboard_names::kDidStart, [&starts](const QString&) { ++starts; });
    addObservers();
    ASSERT_TRUE(handleEventsUntil([&] { return starts == 1; }));
    expectOnceMoreEach(1);
    for (std::size_t i = 1; i <= kDeaths; ++i) {
        const platform::BusReply process = routerOf(m_transport)
                                               .bus()
                                               .callAndWait({.destination = "org.freedesktop.DBus",
                                                             .path = "/org/freedesktop/DBus",
                                                             .interface = "org.freedesktop.DBus",
                                                             .member = "GetConnectionUnixProcessID",
                                                             .body = {"s", {u"com.havrel.Switchboard"_s}}});
        ASSERT_EQ(process.error, 0);
        ::kill(process.values.at(0).toInt(), SIGKILL);
        ASSERT_TRUE(handleEventsUntil([this] { return !m_connection->connected(); }));

        ASSERT_EQ(routerOf(m_transport).bus().startService("com.havrel.Switchboard"), 0);
        ASSERT_TRUE(handleEventsUntil([&] { return starts == 1 + i; }));
        EXPECT_TRUE(m_connection->connected());

        expectOnceMoreEach(1 + i);
    }
}

} // namespace
} // namespace havrel
