// SPDX-License-Identifier: MIT
#include "components/switchboard.h"

#include "components/component.h"
#include "components/switchboard_board.h"
#include "components/switchboard_client.h"
#include "messaging/protocol.h"
#include "messaging/switchboard_names.h"
#include "tests/components/switchboard_peer.h"
#include "tests/messaging/bus_world.h"
#include "tests/messaging/in_process_world.h"
#include "tests/support/recording_logr.h"

#include <QCoreApplication>

#include <cerrno>

#include <unistd.h>

namespace havrel {
namespace {

using tests::Awaited;
using tests::BusWorld;
using tests::InProcessWorld;
using tests::kSwitchboardName;
using tests::OneProcessBusWorld;
using tests::SwitchboardPeer;
using namespace Qt::StringLiterals;

const QString kScheduler = u"com.havrel.scheduler"_s;
const QString kMonitor = u"com.havrel.monitor"_s;
const XPCEndpoint kHere{":1.7", "/com/havrel/endpoint/7"};
const XPCEndpoint kThere{":1.8", "/com/havrel/endpoint/8"};

QString published(const QString& observer, const QString& identifier)
{
    return observer + u": SwitchboardEndpointPublished from (Switchboard) {id = "_s + identifier + u'}';
}
QString redacted(const QString& observer, const QString& identifier)
{
    return observer + u": SwitchboardEndpointRedacted from (Switchboard) {id = "_s + identifier + u'}';
}

/// What a switchboard has to do on each transport.
template<class World>
class SwitchboardOn : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(m_switchboard.start(), 0); }

    static void watchEndpoints(SwitchboardPeer& peer)
    {
        peer.observe(u"p"_s, switchboard_names::kEndpointPublished, {u"Switchboard"_s});
        peer.observe(u"r"_s, switchboard_names::kEndpointRedacted, {u"Switchboard"_s});
    }

    World m_world;
    Switchboard m_switchboard{m_world.server(), {.serviceName = kSwitchboardName}};
    SwitchboardPeer m_component{m_world.caller()};
    SwitchboardPeer m_peer{m_world.caller()};
};

using Worlds = ::testing::Types<InProcessWorld, BusWorld, OneProcessBusWorld>;
TYPED_TEST_SUITE(SwitchboardOn, Worlds);

TYPED_TEST(SwitchboardOn, KnowsNobodyAtFirst)
{
    EXPECT_EQ(this->m_peer.query(kScheduler), std::nullopt);
}

TYPED_TEST(SwitchboardOn, TellsWherePublishedComponentsAre)
{
    this->m_component.publish(kScheduler, kHere);
    this->m_component.publish(kMonitor, kThere);
    EXPECT_TRUE(this->m_component.barrier());

    EXPECT_EQ(this->m_peer.query(kScheduler), kHere);
    EXPECT_EQ(this->m_peer.query(kMonitor), kThere);
}

TYPED_TEST(SwitchboardOn, AnnouncesWhatComesAndGoes)
{
    this->watchEndpoints(this->m_peer);

    this->m_component.publish(kScheduler, kHere);
    this->m_component.send("redactEndpointForIdentifier:", {kScheduler});
    this->m_component.publish(kScheduler, kThere);

    EXPECT_EQ(
        this->m_peer.heard(3),
        (QStringList{published(u"p"_s, kScheduler), redacted(u"r"_s, kScheduler), published(u"p"_s, kScheduler)}));
    EXPECT_EQ(this->m_peer.query(kScheduler), kThere);
}

TYPED_TEST(SwitchboardOn, ForgetsAComponentThatDies)
{
    this->watchEndpoints(this->m_peer);
    this->m_component.publish(kScheduler, kHere);
    this->m_component.publish(kMonitor, kThere);
    EXPECT_TRUE(this->m_component.barrier());

    this->m_component.end();

    EXPECT_EQ(this->m_peer.heard(4).mid(2), (QStringList{redacted(u"r"_s, kMonitor), redacted(u"r"_s, kScheduler)}));
    EXPECT_EQ(this->m_peer.query(kScheduler), std::nullopt);
}

TYPED_TEST(SwitchboardOn, RelaysByNameAndSource)
{
    this->m_peer.observe(u"all"_s, u"Rotate"_s);
    this->m_peer.observe(u"hers"_s, u"Rotate"_s, {u"her"_s});
    this->m_peer.observe(u"his"_s, u"Rotate"_s, {u"his"_s});
    this->m_peer.observe(u"other"_s, u"Other"_s);

    this->m_component.post(u"Rotate"_s, {u"her"_s}, {{u"n"_s, 7}});
    this->m_component.post(u"Rotate"_s);
    this->m_component.post(u"Nothing"_s);
    this->m_component.post(u"Other"_s, {u"his"_s});

    EXPECT_EQ(this->m_peer.heard(4),
              (QStringList{u"all: Rotate from (her) {n = 7}"_s,
                           u"hers: Rotate from (her) {n = 7}"_s,
                           u"all: Rotate from () {}"_s,
                           u"other: Other from (his) {}"_s}));
    EXPECT_EQ(this->m_peer.heard().size(), 4);
}

TYPED_TEST(SwitchboardOn, ForwardsToWhoeverPostsToo)
{
    this->m_peer.observe(u"me"_s, u"Rotate"_s);

    this->m_peer.post(u"Rotate"_s);

    EXPECT_EQ(this->m_peer.heard(1), QStringList{u"me: Rotate from () {}"_s});
}

TYPED_TEST(SwitchboardOn, DropsTheObserversOfAComponentThatDies)
{
    {
        SwitchboardPeer another(this->m_world.caller());
        another.observe(u"me"_s, u"Rotate"_s);
    }
    this->m_peer.observe(u"me"_s, u"Rotate"_s);

    this->m_component.post(u"Rotate"_s);

    EXPECT_EQ(this->m_peer.heard(1), QStringList{u"me: Rotate from () {}"_s});
}

TYPED_TEST(SwitchboardOn, AnswersAsEveryComponentDoes)
{
    EXPECT_EQ(this->m_peer.ask("queryComponentVersionWithReply:"), QVariantList{componentVersion()});
    EXPECT_EQ(this->m_peer.ask("queryBuildNumberWithReply:"), QVariantList{qulonglong{componentBuildNumber()}});
    this->m_peer.send("didInstallComponent");
    this->m_peer.send("willUninstallComponent");
    EXPECT_TRUE(this->m_peer.barrier());
}

TYPED_TEST(SwitchboardOn, IsTheOnlyOneOfItsName)
{
    Switchboard second(this->m_world.caller(), {.serviceName = kSwitchboardName});

    EXPECT_EQ(second.start(), EEXIST);
}

/// What needs faults, within the process.
class SwitchboardWithin : public ::testing::Test
{
protected:
    using Within = tests::InProcessTransport;

    void start(SwitchboardSettings settings = {.serviceName = kSwitchboardName})
    {
        m_place = Within::placeOf(kSwitchboardName, settings.options);
        m_switchboard = std::make_unique<Switchboard>(m_transport, std::move(settings));
        ASSERT_EQ(m_switchboard->start(), 0);
    }

    Within m_transport;
    QString m_place;
    std::unique_ptr<Switchboard> m_switchboard;
    std::shared_ptr<tests::RecordingLogr> m_logr = std::make_shared<tests::RecordingLogr>();
    tests::SharedLoggerScope m_sharedLogger{m_logr};
};

TEST_F(SwitchboardWithin, ReplacesWhatIsPublishedOrObservedUnderTheSameIdentifier)
{
    start();
    SwitchboardPeer peer(m_transport);
    SwitchboardPeer older(m_transport);
    SwitchboardPeer newer(m_transport);
    peer.observe(u"p"_s, u"Old"_s);
    peer.observe(u"p"_s, u"New"_s);
    older.publish(kScheduler, kHere);
    EXPECT_TRUE(older.barrier());
    newer.publish(kScheduler, kThere);
    newer.post(u"Old"_s);
    newer.post(u"New"_s);

    older.send("redactEndpointForIdentifier:", {kScheduler}); // is not its own any more
    older.end();

    EXPECT_EQ(peer.heard(), QStringList{u"p: New from () {}"_s});
    EXPECT_EQ(peer.query(kScheduler), kThere);
}

TEST_F(SwitchboardWithin, RemovesObserversOneByOneAndAllAtOnce)
{
    start();
    SwitchboardPeer peer(m_transport);
    SwitchboardPeer other(m_transport);
    other.observe(u"b"_s, u"N"_s);
    for (const QString& each : {u"a"_s, u"b"_s, u"c"_s})
        peer.observe(each, u"N"_s);

    peer.send("removeObserver:", {u"b"_s});
    peer.send("removeObserver:", {u"never there"_s});
    peer.post(u"N"_s);
    peer.send("removeAllObservers");
    peer.post(u"N"_s);

    EXPECT_EQ(peer.heard(), (QStringList{u"a: N from () {}"_s, u"c: N from () {}"_s}));
    EXPECT_EQ(other.heard(), (QStringList{u"b: N from () {}"_s, u"b: N from () {}"_s}));
}

TEST_F(SwitchboardWithin, HandlesEveryMessageOfItsProtocol)
{
    const auto board = std::make_shared<SwitchboardBoard>(0, false, nullptr);
    start();
    SwitchboardPeer peer(m_transport);
    const XPCConnectionPtr connection = m_transport.connectionToService(kSwitchboardName, xpc_options::kNone);
    const SwitchboardClient client(board, connection, 0);

    for (const Protocol* each : {&protocols::switchboardingPrivate(),
                                 &protocols::switchboarding(),
                                 &protocols::componentMessaging(),
                                 &protocols::componentInstalling()})
        for (const ProtocolMessage& message : each->messages())
            EXPECT_TRUE(client.handles(message.keywordName)) << message.keywordName.constData();
}

TEST_F(SwitchboardWithin, AdmitsNobodyElseThanItsUser)
{
    start();
    m_transport.setUser(m_place, ::geteuid() + 1);
    SwitchboardPeer stranger(m_transport);

    EXPECT_FALSE(stranger.barrier());
}

TEST_F(SwitchboardWithin, OfTheMachineLetsOthersAskButNotPublish)
{
    start({.serviceName = kSwitchboardName, .options = xpc_options::kPrivileged});
    SwitchboardPeer own(m_transport, xpc_options::kPrivileged);
    own.publish(kScheduler, kHere);
    EXPECT_TRUE(own.barrier());
    m_transport.setUser(m_place, ::geteuid() + 1);
    SwitchboardPeer stranger(m_transport, xpc_options::kPrivileged);

    stranger.publish(kScheduler, kThere);
    stranger.publish(kMonitor, kThere);

    EXPECT_EQ(stranger.query(kScheduler), kHere);
    EXPECT_EQ(stranger.query(kMonitor), std::nullopt);
    EXPECT_EQ(m_logr->lines().filter(u"may not publish \"com.havrel.monitor\""_s).size(), 1);
}

TEST_F(SwitchboardWithin, OfTheMachineKeepsTheUsersApart)
{
    start({.serviceName = kSwitchboardName, .options = xpc_options::kPrivileged});
    SwitchboardPeer own(m_transport, xpc_options::kPrivileged);
    own.observe(u"own"_s, u"N"_s);
    m_transport.setUser(m_place, ::geteuid() + 1);
    SwitchboardPeer her(m_transport, xpc_options::kPrivileged);
    SwitchboardPeer hers(m_transport, xpc_options::kPrivileged);
    her.observe(u"her"_s, u"N"_s);
    EXPECT_TRUE(hers.barrier()); // connects
    m_transport.setUser(m_place, ::geteuid() + 2);
    SwitchboardPeer him(m_transport, xpc_options::kPrivileged);
    him.observe(u"him"_s, u"N"_s);
    him.send("setUser:", {::geteuid() + 1}); // says so, but is not root

    hers.post(u"N"_s, {u"hers"_s});
    own.post(u"N"_s, {u"own"_s});

    EXPECT_EQ(her.heard(), (QStringList{u"her: N from (hers) {}"_s, u"her: N from (own) {}"_s}));
    EXPECT_EQ(him.heard(), QStringList{u"him: N from (own) {}"_s});
    EXPECT_EQ(own.heard(), QStringList{u"own: N from (own) {}"_s});
}

TEST_F(SwitchboardWithin, DoesNotLetOthersSpeakInItsName)
{
    start();
    SwitchboardPeer peer(m_transport);
    peer.observe(u"p"_s, switchboard_names::kEndpointPublished);

    peer.post(switchboard_names::kEndpointPublished, {u"Switchboard"_s}, {{u"id"_s, kScheduler}});

    EXPECT_EQ(peer.heard(), QStringList());
    EXPECT_EQ(m_logr->lines().filter(u"as the switchboard"_s).size(), 1);
}

TEST_F(SwitchboardWithin, TakesNoEndpointThatIsNone)
{
    start();
    SwitchboardPeer peer(m_transport);

    peer.send("publishEndpoint:forIdentifier:", {QVariantList{u"com.havrel.name"_s, u"/there"_s}, kScheduler});

    EXPECT_EQ(peer.query(kScheduler), std::nullopt);
    EXPECT_EQ(m_logr->lines().filter(u"publishes no endpoint"_s).size(), 1);
}

TEST_F(SwitchboardWithin, StartsAComponentThatIsAskedFor)
{
    std::unique_ptr<SwitchboardPeer> scheduler;
    QStringList started;
    start({.serviceName = kSwitchboardName, .startComponent = [&](const QString& identifier) {
               started << identifier;
               if (identifier != kScheduler)
                   return;
               scheduler = std::make_unique<SwitchboardPeer>(m_transport);
               scheduler->publish(identifier, kHere);
               EXPECT_TRUE(scheduler->barrier());
           }});
    SwitchboardPeer peer(m_transport);

    EXPECT_EQ(peer.query(kScheduler), kHere);
    EXPECT_EQ(peer.query(kScheduler), kHere);
    EXPECT_EQ(peer.query(kMonitor), std::nullopt);
    EXPECT_EQ(started, (QStringList{kScheduler, kMonitor}));
}

/// Nothing that is for it is handled, until its connection has had enough.
TEST_F(SwitchboardWithin, DropsAComponentThatHangsForGood)
{
    start();
    SwitchboardPeer peer(m_transport);
    SwitchboardPeer hanging(m_transport);
    peer.observe(u"r"_s, switchboard_names::kEndpointRedacted);
    hanging.publish(kScheduler, kHere);
    hanging.observe(u"h"_s, u"N"_s);
    ReplyQueue& queue = dynamic_cast<TransportConnection&>(hanging.connection()).replyQueue();
    queue.suspend();

    constexpr int kTooMany = 65'536;
    for (int i = 0; i < kTooMany; ++i)
        peer.send("postNotificationName:source:userInfo:", {u"N"_s, QStringList(), QVariantMap()});

    EXPECT_EQ(peer.heard(1), QStringList{redacted(u"r"_s, kScheduler)});
    EXPECT_EQ(peer.query(kScheduler), std::nullopt);
    queue.resume();
    EXPECT_FALSE(hanging.barrier());
}

TEST_F(SwitchboardWithin, DistributesThatItHasStarted)
{
    int count = 1;
    std::array<char, 5> program{"test"};
    std::array<char*, 2> arguments{program.data(), nullptr};
    const QCoreApplication application(count, arguments.data());
    QStringList started;
    const auto observer = m_transport.addDistributedObserver(switchboard_names::kDidStart, [&](const QString& object) {
        started << object;
        QCoreApplication::quit();
    });

    start();
    QCoreApplication::exec();

    EXPECT_EQ(started, QStringList{kSwitchboardName});
}

/// One that reads nothing while the others go on: as a process that was stopped.
TEST(Switchboard, GoesOnWhileAnObserverHangs)
{
    BusWorld world;
    Switchboard switchboard(world.server(), {.serviceName = kSwitchboardName});
    ASSERT_EQ(switchboard.start(), 0);
    SwitchboardPeer peer(world.caller());
    BusTransport third({.session = world.bus().address(), .system = "unix:path=/none"});
    SwitchboardPeer hanging(third);
    hanging.observe(u"h"_s, u"N"_s);
    peer.observe(u"p"_s, u"N"_s);
    ReplyQueue& queue = dynamic_cast<TransportConnection&>(hanging.connection()).replyQueue();
    queue.suspend();

    constexpr int kMore = 3'000; // than may be under way
    for (int i = 0; i < kMore; ++i)
        peer.send("postNotificationName:source:userInfo:", {u"N"_s, QStringList(), QVariantMap{{u"i"_s, i}}});

    EXPECT_EQ(peer.heard(kMore).constLast(), u"p: N from () {i = 2999}"_s);
    queue.resume();
    EXPECT_EQ(hanging.heard(kMore).constLast(), u"h: N from () {i = 2999}"_s);
}

} // namespace
} // namespace havrel
