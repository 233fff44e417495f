// SPDX-License-Identifier: MIT
#include "messaging/connection.h"

#include "tests/messaging/connection_fixture.h"

#include <thread>

namespace havrel {
namespace {

using namespace havrel::tests;

class HVConnectionConnecting : public ConnectionFixture
{
};

const QByteArray kBarrier = "barrierWithCompletion:";

TEST_F(HVConnectionConnecting, BeginsDisconnectedAndVerifying)
{
    EXPECT_FALSE(m_connection->connected());
    EXPECT_TRUE(m_connection->verifyConnection());
    EXPECT_EQ(m_connection->madeConnections, 0);
    EXPECT_FALSE(m_connection->invalidationHandler());
}

TEST_F(HVConnectionConnecting, PreparesResumesVerifiesAndThenAcceptsACandidate)
{
    const auto first = candidate();
    offer({first});

    m_connection->connect();

    EXPECT_TRUE(m_connection->connected());
    EXPECT_EQ(first->journal(), (QByteArrayList{"interface", "resume", "barrierWithCompletion:", "handler"}));
    EXPECT_EQ(first->remoteInterface(), m_connection->serviceInterface());
    EXPECT_EQ(posted(), QStringList()) << "that it has connected belongs to a new proxy";
}

TEST_F(HVConnectionConnecting, LeavesALiveConnectionAlone)
{
    offer({candidate()});
    offer({candidate()});

    m_connection->connect();
    m_connection->connect();

    EXPECT_EQ(m_connection->madeConnections, 1);
}

TEST_F(HVConnectionConnecting, AcceptsASingleCandidateUnverifiedWhenToldTo)
{
    const auto first = candidate(QStringLiteral("first"), {Answer::Fail});
    offer({first});
    m_connection->setVerifyConnection(false);

    m_connection->connect();

    EXPECT_FALSE(m_connection->verifyConnection());
    EXPECT_TRUE(m_connection->connected());
    EXPECT_EQ(first->barriers(), 0);
}

TEST_F(HVConnectionConnecting, AlwaysVerifiesOneOfTwoCandidates)
{
    const auto first = candidate();
    const auto second = candidate(QStringLiteral("second"));
    offer({first, second});
    m_connection->setVerifyConnection(false);

    m_connection->connect();

    EXPECT_EQ(first->barriers(), 1);
    EXPECT_EQ(second->journal(), QByteArrayList()) << "the first one has been accepted";
}

TEST_F(HVConnectionConnecting, FallsBackToTheSecondCandidateAndLogsNothing)
{
    const auto first = candidate(QStringLiteral("first"), {Answer::Fail});
    const auto second = candidate(QStringLiteral("second"));
    offer({first, second});

    const XPCProxyPtr proxy = m_connection->serviceProxy();

    ASSERT_TRUE(proxy);
    EXPECT_EQ(first->journal().constLast(), "invalidate");
    proxy->send("didInstallComponent");
    EXPECT_EQ(second->sent(), (QByteArrayList{kBarrier, "didInstallComponent"}));
    EXPECT_EQ(logged("failed to verify"), 0);
}

TEST_F(HVConnectionConnecting, TriesNoFurtherCandidateBeforeTheFirstHasFailed)
{
    const auto first = candidate(QStringLiteral("first"), {Answer::Hold});
    const auto second = candidate(QStringLiteral("second"));
    offer({first, second});
    std::thread connecting([this] { m_connection->connect(); });
    EXPECT_TRUE(first->hasHeld());
    EXPECT_EQ(second->journal(), QByteArrayList());

    first->failHeld();
    connecting.join();

    EXPECT_EQ(second->barriers(), 1);
    EXPECT_TRUE(m_connection->connected());
}

TEST_F(HVConnectionConnecting, IgnoresAnErrorAfterTheReplyThatVerifiedIt)
{
    const auto first = candidate(QStringLiteral("first"), {Answer::ReplyThenFail});
    offer({first});

    m_connection->connect();
    runReplies();

    EXPECT_TRUE(m_connection->connected());
}

TEST_F(HVConnectionConnecting, RejectsACandidateThatRepliesAfterAnError)
{
    offer({candidate(QStringLiteral("first"), {Answer::FailThenReply})});

    EXPECT_FALSE(m_connection->serviceProxy());
    runReplies();

    EXPECT_FALSE(m_connection->connected());
}

TEST_F(HVConnectionConnecting, RejectsACandidateThatIsLostWhileItIsVerified)
{
    const auto first = candidate(QStringLiteral("first"), {Answer::Hold});
    offer({first});
    std::thread connecting([this] { m_connection->connect(); });
    EXPECT_TRUE(first->hasHeld());

    first->lose();
    connecting.join();

    EXPECT_FALSE(m_connection->connected());
    EXPECT_EQ(logged("failed to verify connection com.havrel.scripted with <first>"), 1);
}

TEST_F(HVConnectionConnecting, RejectsACandidateThatHasNoProxy)
{
    const auto first = candidate();
    first->refusesProxies = true;
    offer({first});

    m_connection->connect();

    EXPECT_FALSE(m_connection->connected());
    EXPECT_EQ(logged("failed to verify"), 1);
}

TEST_F(HVConnectionConnecting, LogsEveryFailedCandidateWithItsErrorOnceUntilOneIsVerified)
{
    const auto failing = [this] {
        return std::vector<XPCConnectionPtr>{candidate(QStringLiteral("first"), {Answer::Fail}),
                                             candidate(QStringLiteral("second"), {Answer::Fail})};
    };
    for (int i = 0; i < 2; ++i) {
        offer(failing());
        EXPECT_FALSE(m_connection->serviceProxy());
    }
    const QStringList told = linesWith("failed to verify connection");
    ASSERT_EQ(told.size(), 2);
    EXPECT_TRUE(
        told[0].contains(QLatin1StringView("#debug# failed to verify connection com.havrel.scripted with <first> [")))
        << told[0].toStdString();
    EXPECT_TRUE(
        told[1].contains(QLatin1StringView("#debug# failed to verify connection com.havrel.scripted with <second> [")));
    EXPECT_GE(logged("the script says so"), 2);

    offer({candidate()});
    EXPECT_TRUE(m_connection->serviceProxy());
    m_connection->disconnect();
    offer(failing());
    EXPECT_FALSE(m_connection->serviceProxy());

    EXPECT_EQ(logged("failed to verify connection"), 4);
}

TEST_F(HVConnectionConnecting, DoesNotForgetThatItHasLoggedForAnUnverifiedCandidate)
{
    offer({candidate(QStringLiteral("first"), {Answer::Fail})});
    m_connection->connect();
    m_connection->setVerifyConnection(false);
    offer({candidate()});
    m_connection->connect();
    m_connection->disconnect();
    m_connection->setVerifyConnection(true);
    offer({candidate(QStringLiteral("first"), {Answer::Fail})});

    m_connection->connect();

    EXPECT_EQ(logged("failed to verify connection"), 1);
}

TEST_F(HVConnectionConnecting, LogsNothingWithoutCandidates)
{
    EXPECT_FALSE(m_connection->serviceProxy());

    EXPECT_EQ(m_connection->madeConnections, 1);
    EXPECT_EQ(m_logr->lines(), QStringList());
    EXPECT_EQ(posted(), QStringList());
}

TEST_F(HVConnectionConnecting, HandsOutOneProxyForEachConnection)
{
    const auto first = candidate();
    offer({first});
    offer({candidate(QStringLiteral("second"))});

    const XPCProxyPtr proxy = m_connection->serviceProxy();
    EXPECT_TRUE(proxy);
    EXPECT_EQ(m_connection->serviceProxy(), proxy);
    EXPECT_EQ(m_connection->proxies, 1);
    m_connection->disconnect();

    EXPECT_NE(m_connection->serviceProxy(), proxy);
    EXPECT_EQ(m_connection->proxies, 2);
}

TEST_F(HVConnectionConnecting, SetsNoProxyUpWhereTheConnectionHasNone)
{
    const auto first = candidate();
    first->refusesProxies = true;
    offer({first});
    m_connection->setVerifyConnection(false);

    EXPECT_FALSE(m_connection->serviceProxy());

    EXPECT_TRUE(m_connection->connected());
    EXPECT_EQ(m_connection->proxies, 0);
    EXPECT_EQ(posted(), QStringList());
}

TEST_F(HVConnectionConnecting, PostsThatItHasConnectedForEachNewProxyOnTheMainQueueLater)
{
    offer({candidate()});
    offer({candidate()});

    (void)m_connection->serviceProxy();
    (void)m_connection->serviceProxy();
    EXPECT_EQ(m_posted, QStringList()) << "not at once, although this is the main thread";
    EXPECT_EQ(posted(), QStringList{kDidConnect});
    EXPECT_EQ(m_posters, std::vector<HVConnection*>{m_connection.get()});

    m_connection->disconnect();
    (void)m_connection->serviceProxy();
    EXPECT_EQ(posted(), (QStringList{kWasDisconnected, kDidConnect}));
}

TEST_F(HVConnectionConnecting, PostsOnTheMainThreadWhicheverThreadConnects)
{
    offer({candidate()});
    std::thread::id heard;
    const auto registration = NotificationCenter::defaultCenter().addObserver(
        kDidConnect, m_connection->asNotificationObject(), {}, [&heard](const Notification& /*posted*/) {
            heard = std::this_thread::get_id();
        });

    std::thread([this] { (void)m_connection->serviceProxy(); }).join();
    runMainQueue();

    EXPECT_EQ(heard, std::this_thread::get_id());
}

TEST_F(HVConnectionConnecting, TellsOnlyThoseWhoAskedAboutIt)
{
    const auto other = std::make_shared<ScriptedConnection>();
    int heard = 0;
    const auto registration = NotificationCenter::defaultCenter().addObserver(
        kDidConnect, m_connection->asNotificationObject(), {}, [&heard](const Notification& /*posted*/) { ++heard; });
    other->attempts.push_back({candidate()});
    (void)other->serviceProxy();
    runMainQueue();
    EXPECT_EQ(heard, 0);

    offer({candidate()});
    (void)m_connection->serviceProxy();
    runMainQueue();

    EXPECT_EQ(heard, 1);
}

TEST_F(HVConnectionConnecting, KeepsOtherThreadsWaitingUntilItIsVerified)
{
    const auto first = candidate(QStringLiteral("first"), {Answer::Hold});
    offer({first});
    std::thread connecting([this] { (void)m_connection->serviceProxy(); });
    EXPECT_TRUE(first->hasHeld());
    XPCProxyPtr seen;
    std::thread asking([this, &seen] { seen = m_connection->serviceProxy(); });

    first->replyToHeld();
    connecting.join();
    asking.join();

    EXPECT_TRUE(seen);
    EXPECT_EQ(m_connection->madeConnections, 1);
    EXPECT_EQ(first->barriers(), 1);
}

TEST_F(HVConnectionConnecting, AppliesANewInterfaceToTheLiveConnectionAndToLaterOnes)
{
    const auto first = candidate();
    const auto second = candidate(QStringLiteral("second"));
    offer({first});
    offer({second});
    m_connection->connect();
    const auto interface = std::make_shared<const XPCInterface>(protocols::monitoring());

    m_connection->setServiceInterface(interface);
    EXPECT_EQ(m_connection->serviceInterface(), interface);
    EXPECT_EQ(first->remoteInterface(), interface);
    m_connection->disconnect();
    m_connection->connect();

    EXPECT_EQ(second->remoteInterface(), interface);
}

TEST_F(HVConnectionConnecting, TakesAnInterfaceWhileDisconnected)
{
    const auto first = candidate();
    offer({first});
    const auto interface = std::make_shared<const XPCInterface>(protocols::scheduling());
    m_connection->setServiceInterface(interface);

    m_connection->connect();

    EXPECT_EQ(first->remoteInterface(), interface);
}

/// The base itself, whose operations are for subclasses to override.
class BareConnection : public HVConnection
{
public:
    using HVConnection::connectionOptions;
    using HVConnection::HVConnection;
    using HVConnection::makeConnection;
    using HVConnection::makeConnections;
};

TEST_F(HVConnectionConnecting, HasNoCandidateInTheBase)
{
    const auto bare = std::make_shared<BareConnection>(3, protocols::componentServing());

    EXPECT_FALSE(bare->makeConnection());
    EXPECT_TRUE(bare->makeConnections().empty());
    EXPECT_FALSE(bare->serviceProxy());
    EXPECT_TRUE(bare->identifier().isNull());
    EXPECT_EQ(bare->connectionOptions(), 3U);
    EXPECT_EQ(&bare->serviceInterface()->protocol(), &protocols::componentServing());
}

class OneCandidateConnection : public BareConnection
{
public:
    using BareConnection::BareConnection;

    XPCConnectionPtr made;

protected:
    XPCConnectionPtr makeConnection() override { return made; }
};

TEST_F(HVConnectionConnecting, WrapsTheOneCandidate)
{
    const auto one = std::make_shared<OneCandidateConnection>(0, protocols::componentServing());
    one->made = candidate();

    EXPECT_EQ(one->makeConnections(), std::vector<XPCConnectionPtr>{one->made});
    EXPECT_TRUE(one->serviceProxy());
}

TEST_F(HVConnectionConnecting, TakesAnInterfaceAsItIs)
{
    const auto interface = std::make_shared<const XPCInterface>(protocols::monitoring());

    EXPECT_EQ(std::make_shared<BareConnection>(0, interface)->serviceInterface(), interface);
}

} // namespace
} // namespace havrel
