// SPDX-License-Identifier: MIT
#include "messaging/connection.h"
#include "tests/messaging/connection_fixture.h"

#include <QThreadPool>

#include <thread>

namespace havrel {
namespace {

using namespace havrel::tests;

constexpr const char* kInvalidating =
    "#debug# -[HVConnection disconnect_Internal] invalidating connection (com.havrel.scripted) [";

class HVConnectionDisconnecting : public ConnectionFixture
{
protected:
    /// Connected through \p live, with another candidate for the next time.
    void connectThrough(const ScriptedXPCConnectionPtr& live)
    {
        offer({live});
        offer({candidate(QStringLiteral("next"))});
        (void)m_connection->serviceProxy();
        (void)posted();
    }
    void lose(const ScriptedXPCConnectionPtr& live)
    {
        live->lose();
        runReplies();
    }
};

TEST_F(HVConnectionDisconnecting, DropsTheLiveConnectionAndPostsLater)
{
    const auto live = candidate();
    connectThrough(live);

    EXPECT_TRUE(m_connection->disconnect());

    EXPECT_FALSE(m_connection->connected());
    EXPECT_EQ(live->journal().mid(live->journal().size() - 2), (QByteArrayList{"no handler", "invalidate"}));
    EXPECT_EQ(m_posted, QStringList());
    EXPECT_EQ(posted(), QStringList{kWasDisconnected});
    EXPECT_EQ(m_posters.back(), m_connection.get());
    EXPECT_EQ(logged(kInvalidating), 1);
}

TEST_F(HVConnectionDisconnecting, AnswersNoAndPostsNothingWithoutALiveConnection)
{
    EXPECT_FALSE(m_connection->disconnect());
    EXPECT_FALSE(m_connection->disconnect(nullptr));
    EXPECT_FALSE(m_connection->disconnect(candidate()));

    EXPECT_EQ(posted(), QStringList());
    EXPECT_EQ(m_logr->lines(), QStringList());
}

TEST_F(HVConnectionDisconnecting, DropsTheConnectionThatIsNamed)
{
    const auto live = candidate();
    connectThrough(live);

    EXPECT_TRUE(m_connection->disconnect(live));
    EXPECT_FALSE(m_connection->disconnect(live));

    EXPECT_EQ(posted(), QStringList{kWasDisconnected});
}

TEST_F(HVConnectionDisconnecting, LeavesTheLiveConnectionAndItsProxyAloneForAnotherOne)
{
    const auto live = candidate();
    connectThrough(live);
    const XPCProxyPtr proxy = m_connection->serviceProxy();

    EXPECT_FALSE(m_connection->disconnect(candidate()));

    EXPECT_TRUE(m_connection->connected());
    EXPECT_EQ(m_connection->serviceProxy(), proxy);
    EXPECT_EQ(posted(), QStringList());
    EXPECT_FALSE(live->journal().contains("invalidate"));
}

TEST_F(HVConnectionDisconnecting, ConnectsAnewWhenItIsUsedAgain)
{
    connectThrough(candidate());
    m_connection->disconnect();

    EXPECT_TRUE(m_connection->serviceProxy());

    EXPECT_EQ(posted(), (QStringList{kWasDisconnected, kDidConnect}));
}

TEST_F(HVConnectionDisconnecting, DropsALostConnectionAndCallsTheHandlerOnTheMainQueue)
{
    const auto live = candidate();
    connectThrough(live);
    std::vector<std::thread::id> calls;
    m_connection->setInvalidationHandler([&calls] { calls.push_back(std::this_thread::get_id()); });

    lose(live);
    EXPECT_TRUE(calls.empty()) << "never on the reply queue";
    EXPECT_TRUE(m_connection->connected());
    runMainQueue();

    EXPECT_FALSE(m_connection->connected());
    EXPECT_EQ(calls, std::vector{std::this_thread::get_id()});
    EXPECT_EQ(posted(), QStringList{kWasDisconnected});
    EXPECT_EQ(logged(kInvalidating), 1);
}

TEST_F(HVConnectionDisconnecting, TellsOfALossOnTheSerialQueueOnWhichItConnected)
{
    SerialQueue queue(QStringLiteral("home"));
    const auto live = candidate();
    queue.sync([&] { connectThrough(live); });
    Awaited<bool> calls;
    m_connection->setInvalidationHandler([&] { calls.tell(queue.isCurrent()); });

    lose(live);

    EXPECT_EQ(calls.one(), true);
    EXPECT_FALSE(m_connection->connected());
}

TEST_F(HVConnectionDisconnecting, TellsOfALossOnTheMainQueueWhenTheQueueOfItsMakingHasEnded)
{
    auto queue = std::make_unique<SerialQueue>(QStringLiteral("home"));
    const auto live = candidate();
    queue->sync([&] { connectThrough(live); });
    queue.reset();

    lose(live);
    runMainQueue();

    EXPECT_FALSE(m_connection->connected());
}

TEST_F(HVConnectionDisconnecting, TellsOfALossOnTheMainQueueWhenAThreadWithoutAQueueConnected)
{
    const auto live = candidate();
    std::thread([&] { connectThrough(live); }).join();

    lose(live);
    EXPECT_TRUE(m_connection->connected());
    runMainQueue();

    EXPECT_FALSE(m_connection->connected());
}

TEST_F(HVConnectionDisconnecting, DoesNotCallTheHandlerForItsOwnDisconnection)
{
    connectThrough(candidate());
    bool called = false;
    m_connection->setInvalidationHandler([&called] { called = true; });

    m_connection->disconnect();
    runReplies();
    runMainQueue();

    EXPECT_FALSE(called);
}

TEST_F(HVConnectionDisconnecting, LeavesTheNextConnectionAloneWhenTheLossOfTheOneBeforeIsToldLate)
{
    const auto live = candidate();
    connectThrough(live);
    bool called = false;
    m_connection->setInvalidationHandler([&called] { called = true; });
    lose(live); // the main queue has it
    m_connection->disconnect();
    (void)m_connection->serviceProxy();
    (void)posted();

    EXPECT_TRUE(m_connection->connected());
    EXPECT_FALSE(called);
}

TEST_F(HVConnectionDisconnecting, LeavesTheNextConnectionAloneWhenTheLostOneHasGone)
{
    auto live = candidate();
    connectThrough(live);
    lose(live);
    m_connection->disconnect();
    live.reset();
    (void)m_connection->serviceProxy();

    runMainQueue();

    EXPECT_TRUE(m_connection->connected());
}

TEST_F(HVConnectionDisconnecting, HearsOfALossBeforeItIsAccepted)
{
    const auto live = candidate();
    live->lose();
    offer({live});
    m_connection->setVerifyConnection(false);

    m_connection->connect();
    runReplies();
    runMainQueue();

    EXPECT_FALSE(m_connection->connected());
}

TEST_F(HVConnectionDisconnecting, ForgetsAHandler)
{
    const auto live = candidate();
    connectThrough(live);
    bool called = false;
    m_connection->setInvalidationHandler([&called] { called = true; });
    EXPECT_TRUE(m_connection->invalidationHandler());
    m_connection->setInvalidationHandler({});
    EXPECT_FALSE(m_connection->invalidationHandler());

    lose(live);
    runMainQueue();

    EXPECT_FALSE(called);
    EXPECT_FALSE(m_connection->connected());
}

TEST_F(HVConnectionDisconnecting, LetsTheHandlerConnectAgain)
{
    const auto live = candidate();
    connectThrough(live);
    m_connection->setInvalidationHandler([this] { (void)m_connection->serviceProxy(); });

    lose(live);
    runMainQueue();

    EXPECT_TRUE(m_connection->connected());
}

TEST_F(HVConnectionDisconnecting, InvalidatesWithoutANotificationWhenItGoes)
{
    const auto live = candidate();
    connectThrough(live);

    m_connection.reset();

    EXPECT_EQ(live->journal().mid(live->journal().size() - 2), (QByteArrayList{"no handler", "invalidate"}));
    EXPECT_EQ(logged(kInvalidating), 1);
    EXPECT_EQ(posted(), QStringList());
}

TEST_F(HVConnectionDisconnecting, SaysSoWhenItGoesEvenIfItNeverConnected)
{
    m_connection.reset();
    EXPECT_EQ(logged(kInvalidating), 1);

    std::make_shared<HVConnection>(0, protocols::componentServing()).reset();
    EXPECT_EQ(logged("-[HVConnection disconnect_Internal] invalidating connection ((null)) ["), 1);
}

TEST_F(HVConnectionDisconnecting, IsNotKeptByItsConnectionNorByALossOnItsWay)
{
    const auto live = candidate();
    connectThrough(live);
    lose(live);
    const std::weak_ptr<HVConnection> weak = m_connection;

    m_connection.reset();

    EXPECT_TRUE(weak.expired());
    runMainQueue();
}

TEST_F(HVConnectionDisconnecting, LetsGoOfItsConnection)
{
    std::weak_ptr<XPCConnection> weak;
    {
        const auto live = candidate();
        weak = live;
        connectThrough(live);
    }
    EXPECT_FALSE(weak.expired());

    m_connection->disconnect();

    EXPECT_TRUE(weak.expired());
}

TEST(HVConnectionWithoutMainQueue, HearsOfALoss)
{
    const auto logr = std::make_shared<RecordingLogr>();
    const SharedLoggerScope sharedLogger(logr);
    SerialQueue replies(QStringLiteral("replies"));
    const auto connection = std::make_shared<ScriptedConnection>();
    const auto live = std::make_shared<ScriptedXPCConnection>(QStringLiteral("live"), replies);
    connection->attempts.push_back({live});
    Awaited<bool> calls;
    connection->setInvalidationHandler([&calls] { calls.tell(true); });
    connection->connect();

    live->lose();

    EXPECT_EQ(calls.one(), true);
    globalQueuePool().waitForDone(); // it holds the connection, which must not outlive what it is made of
    EXPECT_FALSE(connection->connected());
}

} // namespace
} // namespace havrel
