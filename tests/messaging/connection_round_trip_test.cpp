// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"
#include "messaging/component_proxy.h"
#include "messaging/connection.h"
#include "tests/messaging/connection_fixture.h"

#include <stdexcept>
#include <thread>

namespace havrel {
namespace {

using namespace havrel::tests;

class HVConnectionRoundTrip : public ConnectionFixture
{
protected:
    /// Connected: the next barrier is that of a round trip.
    void connectThrough(const ScriptedXPCConnectionPtr& live, const std::deque<Answer>& answers = {})
    {
        offer({live});
        (void)m_connection->serviceProxy();
        live->answer(answers);
    }
    /// Makes a round trip on another thread.
    [[nodiscard]] std::thread roundTrip(SyncOutcome& outcome)
    {
        return std::thread([this, &outcome] { outcome = m_connection->syncReturningError(); });
    }

    const ScriptedXPCConnectionPtr m_live = candidate(QStringLiteral("live"));
};

TEST_F(HVConnectionRoundTrip, SucceedsWhenTheBarrierIsAnswered)
{
    connectThrough(m_live);

    const SyncOutcome outcome = m_connection->syncReturningError();

    EXPECT_TRUE(outcome.succeeded);
    EXPECT_EQ(outcome.error, std::nullopt);
    EXPECT_TRUE(m_connection->ping());
    EXPECT_EQ(m_live->barriers(), 3) << "one to verify, two round trips";
}

TEST_F(HVConnectionRoundTrip, ConnectsFirst)
{
    offer({m_live});

    EXPECT_TRUE(m_connection->ping());

    EXPECT_TRUE(m_connection->connected());
}

TEST_F(HVConnectionRoundTrip, FailsAsAnInvalidConnectionWithoutAProxy)
{
    const SyncOutcome outcome = m_connection->syncReturningError();

    EXPECT_FALSE(outcome.succeeded);
    EXPECT_EQ(outcome.error, Error(QStringLiteral("NSCocoaErrorDomain"), 4099));
    EXPECT_FALSE(m_connection->ping()) << "and the next one is not hindered";
}

TEST_F(HVConnectionRoundTrip, FailsWithTheErrorOfTheProxyThenGoesOn)
{
    connectThrough(m_live, {Answer::Fail});

    const SyncOutcome outcome = m_connection->syncReturningError();

    EXPECT_FALSE(outcome.succeeded);
    EXPECT_EQ(outcome.error, scriptedError());
    EXPECT_TRUE(m_connection->ping());
}

TEST_F(HVConnectionRoundTrip, IsNotHinderedByAReplyAfterAnError)
{
    connectThrough(m_live, {Answer::FailThenReply, Answer::FailThenReply});

    EXPECT_FALSE(m_connection->ping());
    runReplies();
    EXPECT_FALSE(m_connection->ping());
    runReplies();

    EXPECT_TRUE(m_connection->ping());
}

TEST_F(HVConnectionRoundTrip, DoesNotTakeTheLateReplyOfTheOneBeforeForItsOwn)
{
    connectThrough(m_live, {Answer::Hold, Answer::Fail, Answer::Hold});
    SyncOutcome first;
    std::thread one = roundTrip(first);
    ASSERT_TRUE(m_live->hasHeld());
    ComponentProxy(m_connection->serviceProxy()).barrier([] {}); // its error ends the wait, whose barrier is still out
    one.join();
    EXPECT_EQ(first.error, scriptedError());
    SyncOutcome second;
    std::thread two = roundTrip(second);
    ASSERT_TRUE(m_live->hasHeld(2));

    m_live->replyToFirstHeld();
    runReplies();
    m_live->failHeld();
    two.join();

    EXPECT_EQ(second.error, scriptedError()) << "it has waited for its own";
    EXPECT_TRUE(m_connection->ping());
}

TEST_F(HVConnectionRoundTrip, IsNotHinderedByAnErrorWhileNobodyWaits)
{
    connectThrough(m_live, {Answer::ReplyThenFail});

    EXPECT_TRUE(m_connection->ping());
    runReplies();

    EXPECT_TRUE(m_connection->ping());
    EXPECT_TRUE(m_connection->ping());
}

TEST_F(HVConnectionRoundTrip, LogsAFailedMessageOnceUntilTheNextSuccess)
{
    connectThrough(m_live, {Answer::Fail, Answer::Fail, Answer::Reply, Answer::Fail});

    (void)m_connection->ping();
    (void)m_connection->ping();
    EXPECT_EQ(logged("#debug# message from (null) to live failed ["), 1);
    EXPECT_GE(logged("the script says so"), 1);
    (void)m_connection->ping();
    (void)m_connection->ping();

    EXPECT_EQ(logged("message from (null) to live failed"), 2);
}

TEST_F(HVConnectionRoundTrip, LogsAConnectionWithoutAServiceName)
{
    const auto nameless = candidate(QString());
    connectThrough(nameless, {Answer::Fail});

    (void)m_connection->ping();

    EXPECT_EQ(logged("message from (null) to (null) failed"), 1);
}

TEST_F(HVConnectionRoundTrip, LogsAFailureThatNobodyWaitsFor)
{
    connectThrough(m_live, {Answer::Fail});
    ComponentProxy(m_connection->serviceProxy()).barrier([] {});
    runReplies();

    EXPECT_EQ(logged("message from (null) to live failed"), 1);
    EXPECT_TRUE(m_connection->ping());
}

TEST_F(HVConnectionRoundTrip, EndsWithTheLossOfTheConnection)
{
    connectThrough(m_live, {Answer::Hold});
    SyncOutcome outcome{true};
    std::thread waiting = roundTrip(outcome);
    ASSERT_TRUE(m_live->hasHeld());

    m_live->lose();
    waiting.join();

    EXPECT_FALSE(outcome.succeeded);
    EXPECT_EQ(outcome.error, endedError());
}

TEST_F(HVConnectionRoundTrip, EndsWithADisconnectionByAnotherThread)
{
    connectThrough(m_live, {Answer::Hold});
    SyncOutcome outcome{true};
    std::thread waiting = roundTrip(outcome);
    ASSERT_TRUE(m_live->hasHeld());

    EXPECT_TRUE(m_connection->disconnect());
    waiting.join();

    EXPECT_FALSE(outcome.succeeded);
}

TEST_F(HVConnectionRoundTrip, IsNotEndedByAnErrorOfTheConnectionBefore)
{
    connectThrough(m_live);
    const XPCProxyPtr old = m_connection->serviceProxy();
    m_connection->disconnect();
    const auto next = candidate(QStringLiteral("next"));
    connectThrough(next, {Answer::Hold});
    SyncOutcome outcome;
    std::thread waiting = roundTrip(outcome);
    ASSERT_TRUE(next->hasHeld());

    ComponentProxy(old).barrier([] {});
    runReplies();
    next->replyToHeld();
    waiting.join();

    EXPECT_TRUE(outcome.succeeded);
    EXPECT_EQ(logged("message from (null) to live failed"), 1);
}

TEST_F(HVConnectionRoundTrip, ComesOneAtATime)
{
    connectThrough(m_live, {Answer::Hold});
    SyncOutcome first;
    SyncOutcome second;
    std::thread one = roundTrip(first);
    ASSERT_TRUE(m_live->hasHeld());
    std::thread two = roundTrip(second);
    EXPECT_EQ(m_live->barriers(), 2) << "to verify, and the first one's";

    m_live->replyToHeld();
    one.join();
    two.join();

    EXPECT_TRUE(first.succeeded);
    EXPECT_TRUE(second.succeeded);
    EXPECT_EQ(m_live->barriers(), 3);
}

TEST_F(HVConnectionRoundTrip, GoesBehindWhatABlockSends)
{
    connectThrough(m_live);

    const SyncOutcome outcome = m_connection->performSynchronousBlock([](const XPCProxyPtr& proxy) {
        proxy->send("didInstallComponent");
        proxy->send("willUninstallComponent");
    });

    EXPECT_TRUE(outcome.succeeded);
    EXPECT_EQ(m_live->sent().mid(1),
              (QByteArrayList{"didInstallComponent", "willUninstallComponent", "barrierWithCompletion:"}));
}

TEST_F(HVConnectionRoundTrip, HasTakenOverTheRepliesOfABlockWhenItIsBack)
{
    connectThrough(m_live);
    m_live->reply("queryComponentVersionWithReply:", {QStringLiteral("2.0")});
    QVariantList values;

    EXPECT_TRUE(m_connection->performSynchronousBlock([&values](const XPCProxyPtr& proxy) {
        proxy->send("queryComponentVersionWithReply:", {}, [&values](const QVariantList& reply) { values = reply; });
    }));

    EXPECT_EQ(values, QVariantList{QStringLiteral("2.0")});
}

TEST_F(HVConnectionRoundTrip, DoesNotRunABlockWithoutAProxy)
{
    bool ran = false;

    const SyncOutcome outcome = m_connection->performSynchronousBlock([&ran](const XPCProxyPtr&) { ran = true; });

    EXPECT_FALSE(outcome.succeeded);
    EXPECT_EQ(outcome.error, std::nullopt);
    EXPECT_FALSE(ran);
}

TEST_F(HVConnectionRoundTrip, FailsWithTheErrorThatItsBarrierMeetsAfterABlock)
{
    connectThrough(m_live, {Answer::Fail});

    const SyncOutcome outcome = m_connection->performSynchronousBlock([](const XPCProxyPtr&) {});

    EXPECT_FALSE(outcome.succeeded);
    EXPECT_EQ(outcome.error, scriptedError());
}

TEST_F(HVConnectionRoundTrip, GoesThroughTheConnectionThatThereIsAfterTheBlock)
{
    connectThrough(m_live);
    const auto next = candidate(QStringLiteral("next"));
    offer({next});

    const SyncOutcome outcome = m_connection->performSynchronousBlock([this](const XPCProxyPtr& proxy) {
        proxy->send("didInstallComponent");
        m_connection->disconnect();
    });

    EXPECT_TRUE(outcome.succeeded);
    EXPECT_EQ(next->barriers(), 2) << "to verify it, and the round trip";
    EXPECT_EQ(m_live->sent().constLast(), "didInstallComponent");
}

TEST_F(HVConnectionRoundTrip, FailsAsAnInvalidConnectionWhenThereIsNoneAfterTheBlock)
{
    connectThrough(m_live);

    const SyncOutcome outcome =
        m_connection->performSynchronousBlock([this](const XPCProxyPtr&) { m_connection->disconnect(); });

    EXPECT_FALSE(outcome.succeeded);
    EXPECT_EQ(outcome.error, invalidConnectionError());
}

TEST_F(HVConnectionRoundTrip, FailsWithTheConnectionThatIsLostInsideOfABlock)
{
    connectThrough(m_live);
    const auto next = candidate(QStringLiteral("next"));
    offer({next});

    const SyncOutcome outcome = m_connection->performSynchronousBlock([this](const XPCProxyPtr& proxy) {
        proxy->send("didInstallComponent");
        m_live->lose();
        runReplies();
    });

    EXPECT_FALSE(outcome.succeeded) << "the main queue, which this blocks, has not heard of the loss yet";
    EXPECT_EQ(outcome.error, endedError());
    EXPECT_EQ(next->barriers(), 0);
    runMainQueue();
    EXPECT_TRUE(m_connection->ping());
}

TEST_F(HVConnectionRoundTrip, LogsNoFailureOnceItsConnectionObjectHasGone)
{
    connectThrough(m_live, {Answer::Hold});
    ComponentProxy(m_connection->serviceProxy()).barrier([] {});
    ASSERT_TRUE(m_live->hasHeld());
    runMainQueue(); // the news that it has connected hold it

    m_connection.reset();
    m_live->failHeld();
    runReplies();

    EXPECT_EQ(logged("message from"), 0);
}

TEST_F(HVConnectionRoundTrip, LetsOutWhatABlockThrowsAndGoesOn)
{
    connectThrough(m_live);

    EXPECT_THROW((void)m_connection->performSynchronousBlock([](const XPCProxyPtr&) { throw std::runtime_error("x"); }),
                 std::runtime_error);

    EXPECT_TRUE(m_connection->ping());
}

/// One that knows no message at all.
class SpeechlessProxy : public XPCProxy
{
public:
    void send(const QByteArray& /*keywordName*/, const QVariantList& /*values*/, XPCReply /*reply*/) override
    {
        throw std::runtime_error("no such message");
    }
};

TEST(BarrierRoundTrips, IsNotHinderedByAProxyThatKnowsNoBarrier)
{
    const auto trips = std::make_shared<BarrierRoundTrips>();

    for (int i = 0; i < 2; ++i)
        EXPECT_THROW((void)trips->perform(std::make_shared<SpeechlessProxy>(), 1), std::runtime_error);

    EXPECT_EQ(trips->perform(nullptr, 1).error, invalidConnectionError());
}

TEST_F(HVConnectionRoundTrip, SurvivesThreadsThatConnectDisconnectAndCallAtOnce)
{
    constexpr int kRounds = 200;
    for (int i = 0; i < 4 * kRounds; ++i)
        offer({candidate()});
    std::atomic<int> succeeded{0};
    const auto call = [this, &succeeded] {
        for (int i = 0; i < kRounds; ++i)
            succeeded += m_connection->ping() ? 1 : 0;
    };
    const auto drop = [this] {
        for (int i = 0; i < kRounds; ++i)
            m_connection->disconnect();
    };
    std::vector<std::thread> threads;
    threads.emplace_back(call);
    threads.emplace_back(call);
    threads.emplace_back(drop);
    threads.emplace_back([this] {
        for (int i = 0; i < kRounds; ++i)
            m_connection->connect();
    });

    for (std::thread& each : threads)
        each.join();

    EXPECT_GT(succeeded.load(), 0);
    EXPECT_TRUE(m_connection->ping());
}

} // namespace
} // namespace havrel
