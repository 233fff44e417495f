// SPDX-License-Identifier: MIT
#include "messaging/component_proxy.h"
#include "tests/messaging/switchboard_fixture.h"

#include <atomic>
#include <ostream>
#include <thread>
#include <vector>

namespace havrel {

using namespace Qt::Literals::StringLiterals;

namespace tests {

std::ostream& operator<<(std::ostream& stream, Fault fault)
{
    constexpr std::array kNames{"Error", "LostReply", "DeathBefore", "DeathAfterwards"};
    return stream << kNames.at(std::size_t(fault));
}

} // namespace tests

namespace {

using namespace havrel::tests;

const QString kService = u"com.havrel.component"_s;
const QByteArray kBarrier = "barrierWithCompletion:";

/// A connection to a component that can break.
class ConnectionFaults : public SwitchboardFixture
{
protected:
    void breakNextBarrier(Fault fault) { m_transport.atNextMessage(kService, kBarrier, fault); }
    /// Waits until the connection has been dropped.
    void awaitLoss() { lose(*m_component, kService); }

    const std::shared_ptr<TestComponent> m_server = TestComponent::serving(
        m_transport.listenerForService(kService, xpc_options::kNone), protocols::componentServing());
    std::shared_ptr<HVMachServiceConnection> m_component =
        std::make_shared<HVMachServiceConnection>(kService, xpc_options::kNone, protocols::componentServing());
};

TEST_F(ConnectionFaults, LeaveACandidateThatIsRefusedBehind)
{
    m_transport.setRefusing(kService, true);
    EXPECT_FALSE(m_component->serviceProxy());
    EXPECT_EQ(logged("failed to verify connection com.havrel.component with "), 1);

    m_transport.setRefusing(kService, false);
    EXPECT_TRUE(m_component->ping());
}

class FatalFaults : public ConnectionFaults, public ::testing::WithParamInterface<Fault>
{
};

TEST_P(FatalFaults, EndAVerification)
{
    breakNextBarrier(GetParam());

    EXPECT_FALSE(m_component->serviceProxy());
    EXPECT_EQ(logged("failed to verify"), 1);
    EXPECT_FALSE(m_component->connected());

    EXPECT_TRUE(m_component->ping()) << "the next attempt is a new one";
    EXPECT_EQ(m_transport.connectionsOpen(kService), 1) << "the candidate is not left over";
}

TEST_P(FatalFaults, EndARoundTripWithAnError)
{
    EXPECT_TRUE(m_component->ping());
    breakNextBarrier(GetParam());

    const SyncOutcome outcome = m_component->syncReturningError();

    EXPECT_FALSE(outcome.succeeded);
    EXPECT_TRUE(outcome.error.has_value());
    EXPECT_EQ(logged("message from (null) to com.havrel.component failed"), 1);
    if (GetParam() != Fault::Error)
        awaitLoss();
    EXPECT_TRUE(m_component->ping());
}

TEST_P(FatalFaults, FailABlockOfMessages)
{
    EXPECT_TRUE(m_component->ping());
    breakNextBarrier(GetParam());

    EXPECT_FALSE(
        m_component->performSynchronousBlock([](const XPCProxyPtr& proxy) { proxy->send("didInstallComponent"); }));
}

INSTANTIATE_TEST_SUITE_P(AtABarrier,
                         FatalFaults,
                         ::testing::Values(Fault::Error, Fault::DeathBefore, Fault::DeathAfterwards),
                         ::testing::PrintToStringParamName());

TEST_F(ConnectionFaults, WithAnEarlierMessageOfABlockFailIt)
{
    EXPECT_TRUE(m_component->ping());
    m_transport.atNextMessage(kService, "queryBuildNumberWithReply:", Fault::DeathBefore);

    const SyncOutcome outcome = m_component->performSynchronousBlock([](const XPCProxyPtr& proxy) {
        proxy->send("queryBuildNumberWithReply:", {}, [](const QVariantList&) { ADD_FAILURE(); });
    });

    EXPECT_FALSE(outcome.succeeded);
}

/// A reply that never comes is waited for, until the connection ends.
TEST_F(ConnectionFaults, ThatLoseAReplyKeepARoundTripWaitingUntilTheEnd)
{
    EXPECT_TRUE(m_component->ping());
    breakNextBarrier(Fault::LostReply);
    std::atomic<bool> isBack{false};
    SyncOutcome outcome{true};
    std::thread waiting([&] {
        outcome = m_component->syncReturningError();
        isBack = true;
    });
    EXPECT_TRUE(m_server->hasHandledBarriers(3)) << "of the verification, of the ping, and the one without a reply";
    Awaited<bool> later; // a reply behind it must not end its wait
    ComponentProxy(m_component->serviceProxy()).barrier([&later] { later.tell(true); });
    EXPECT_TRUE(later.one());
    EXPECT_FALSE(isBack);
    m_transport.invalidateFromFarSide(kService);
    waiting.join();

    EXPECT_FALSE(outcome.succeeded);
}

TEST_F(ConnectionFaults, ThatLoseAReplyKeepAVerificationWaitingUntilTheEnd)
{
    breakNextBarrier(Fault::LostReply);
    std::thread connecting([this] { EXPECT_FALSE(m_component->serviceProxy()); });
    EXPECT_TRUE(m_server->hasHandledBarriers(1));

    m_transport.invalidateFromFarSide(kService);
    connecting.join();

    EXPECT_FALSE(m_component->connected());
}

TEST_F(ConnectionFaults, DoNotIncludeAComponentThatIsStoppedForAWhile)
{
    EXPECT_TRUE(m_component->ping());
    m_transport.setStopped(kService, true);
    SyncOutcome outcome;
    std::thread waiting([&] { outcome = m_component->syncReturningError(); });
    EXPECT_TRUE(m_component->connected());

    m_transport.setStopped(kService, false);
    waiting.join();

    EXPECT_TRUE(outcome.succeeded);
}

TEST_F(ConnectionFaults, DoNotReachACallerThatHasGoneMeanwhile)
{
    EXPECT_TRUE(m_component->ping());
    m_transport.setStopped(kService, true);
    ComponentProxy(m_component->serviceProxy()).barrier([] { ADD_FAILURE() << "nobody waits any more"; });

    runMainQueue(); // the news that it has connected hold it
    m_component.reset();
    m_transport.setStopped(kService, false);

    EXPECT_EQ(m_transport.connectionsOpen(kService), 0);
}

TEST_F(ConnectionFaults, AtAnyMomentLeaveThreadsThatCallAndDropAlive)
{
    constexpr int kRounds = 300;
    std::atomic<int> succeeded{0};
    const auto call = [&] {
        for (int i = 0; i < kRounds; ++i)
            succeeded += m_component->performSynchronousBlock(
                             [](const XPCProxyPtr& proxy) { proxy->send("didInstallComponent"); })
                             ? 1
                             : 0;
    };
    std::vector<std::thread> threads;
    threads.emplace_back(call);
    threads.emplace_back(call);
    threads.emplace_back([&] {
        for (int i = 0; i < kRounds; ++i)
            m_component->disconnect();
    });
    threads.emplace_back([&] {
        for (int i = 0; i < kRounds; ++i)
            m_transport.invalidateFromFarSide(kService);
    });
    threads.emplace_back([&] {
        constexpr std::array kFaults{Fault::Error, Fault::DeathBefore, Fault::DeathAfterwards};
        for (int i = 0; i < kRounds; ++i)
            breakNextBarrier(kFaults.at(std::size_t(i) % kFaults.size()));
    });
    for (std::thread& each : threads)
        each.join();
    runMainQueue();

    int attempts = 0;
    while (!m_component->ping() && attempts++ < 2 * kRounds) // uses up the faults that are left
        m_component->disconnect();
    EXPECT_TRUE(m_component->ping());
    EXPECT_EQ(m_transport.connectionsOpen(kService), 1) << "nothing is left over";
}

} // namespace
} // namespace havrel
