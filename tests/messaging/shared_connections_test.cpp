// SPDX-License-Identifier: MIT
#include "messaging/shared_connections.h"

#include "foundation/coder.h"
#include "messaging/monitor_proxy.h"
#include "messaging/scheduler_proxy.h"
#include "tests/messaging/switchboard_fixture.h"

#include <thread>

#include <unistd.h>

namespace havrel {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace havrel::tests;

constexpr XPCInterface::ReplyArgument::second_type kFirst = 0;
const QByteArray kCommandListener = "queryListenerForCommandIdentifier:withInfo:withReply:";
const QByteArray kRunSummaries = "queryRunSummariesWithReply:";

class SharedConnectionsFixture : public SwitchboardFixture
{
};

TEST_F(SharedConnectionsFixture, AreMadeOnce)
{
    EXPECT_EQ(HVConnection::switchboardConnection(), HVConnection::switchboardConnection());
    EXPECT_EQ(HVConnection::schedulerConnection(), HVConnection::schedulerConnection());
    EXPECT_EQ(HVConnection::monitorConnection(), HVConnection::monitorConnection());
    EXPECT_NE(HVConnection::schedulerConnection(), HVConnection::monitorConnection());
}

TEST_F(SharedConnectionsFixture, IncludeOneSwitchboardWhicheverThreadAsksFirst)
{
    std::array<std::shared_ptr<HVSwitchboardConnection>, 8> seen;
    std::vector<std::thread> threads;
    for (auto& each : seen)
        threads.emplace_back([&each] { each = HVConnection::switchboardConnection(); });
    for (std::thread& each : threads)
        each.join();

    for (const auto& each : seen)
        EXPECT_EQ(each, HVConnection::switchboardConnection());
}

TEST_F(SharedConnectionsFixture, AreForTheProductsComponents)
{
    EXPECT_EQ(HVConnection::schedulerConnection()->publishedName(), u"com.havrel.scheduler"_s);
    EXPECT_EQ(&HVConnection::schedulerConnection()->serviceInterface()->protocol(), &protocols::scheduling());
    EXPECT_EQ(HVConnection::monitorConnection()->publishedName(), u"com.havrel.monitor"_s);
    EXPECT_EQ(&HVConnection::monitorConnection()->serviceInterface()->protocol(), &protocols::monitoring());
    EXPECT_TRUE(HVConnection::schedulerConnection()->verifyConnection());
}

TEST_F(SharedConnectionsFixture, AnswerWithNobodyWhenTheProductIsNotThere)
{
    EXPECT_FALSE(HVConnection::switchboard());
    EXPECT_FALSE(HVConnection::scheduler());
    EXPECT_FALSE(HVConnection::monitor());
    HVConnection::scheduler().quickCapture({"/item"}, "/archive"); // a message to nobody
}

TEST_F(SharedConnectionsFixture, ReachTheComponents)
{
    const auto switchboard = serveUser();
    const auto scheduler = TestComponent::serving(m_transport.anonymousListener(), protocols::scheduling());
    const auto monitor = TestComponent::serving(m_transport.anonymousListener(), protocols::monitoring());
    switchboard->publish(u"com.havrel.scheduler"_s, scheduler->endpoint());
    switchboard->publish(u"com.havrel.monitor"_s, monitor->endpoint());

    EXPECT_TRUE(HVConnection::switchboard());
    EXPECT_TRUE(HVConnection::scheduler());
    EXPECT_TRUE(HVConnection::monitor());
    EXPECT_TRUE(HVConnection::schedulerConnection()->performSynchronousBlock([](const XPCProxyPtr& proxy) {
        SchedulerProxy(proxy).quickCapture({"/a", "/b\xff"}, "/c");
    }));
    EXPECT_EQ(scheduler->told().size(), 1);
}

TEST_F(SharedConnectionsFixture, HearOfTheStartOfASwitchboard)
{
    const auto machine = serveMachine();
    EXPECT_TRUE(HVConnection::switchboardConnection()->ping());
    const auto user = serveUser();

    m_transport.postDistributedNotification(u"com.havrel.switchboard.started"_s, m_userService);
    runMainQueue();

    EXPECT_EQ(HVConnection::switchboardConnection()->machServiceName(), m_userService);
}

TEST_F(SharedConnectionsFixture, HearNothingMoreOnceForgotten)
{
    const std::weak_ptr<HVSwitchboardConnection> weak = HVConnection::switchboardConnection();
    const auto user = serveUser();

    SharedConnections::all().forget();
    m_transport.postDistributedNotification(u"com.havrel.switchboard.started"_s, m_userService);
    runMainQueue();

    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(m_transport.connectionsMade(m_userService), 0);
}

TEST_F(SharedConnectionsFixture, AreNotTheOnlyPublishedOnes)
{
    const auto interface = HVConnection::monitorInterface();
    const auto first = HVConnection::connectionWithPublishedName(u"com.havrel.other"_s, 0, protocols::scheduling());
    const auto second = HVConnection::connectionWithPublishedName(u"com.havrel.other"_s, 0, interface);

    EXPECT_NE(first, second);
    EXPECT_EQ(first->publishedName(), u"com.havrel.other"_s);
    EXPECT_EQ(&first->serviceInterface()->protocol(), &protocols::scheduling());
    EXPECT_EQ(second->serviceInterface(), interface);
}

TEST_F(SharedConnectionsFixture, TakeListenersOfCommandsForRemoteObjects)
{
    for (const auto& each : {HVConnection::schedulerInterface(), HVConnection::monitorInterface()}) {
        const auto listener = each->interfaceFor({kCommandListener, kFirst});
        ASSERT_TRUE(listener);
        EXPECT_EQ(&listener->protocol(), &protocols::commandListenerMessaging());
    }
}

TEST_F(SharedConnectionsFixture, TakeRunSummariesOfAClassThatMayBeMissing)
{
    const QSet<QByteArray> plain{"NSDictionary", "NSString"};
    EXPECT_EQ(HVConnection::schedulerInterface()->classesFor({kRunSummaries, kFirst}), plain);
    EXPECT_TRUE(HVConnection::monitorInterface()->classesFor({kRunSummaries, kFirst}).isEmpty());
}

using SharedConnectionsDeathTest = SharedConnectionsFixture;

TEST_F(SharedConnectionsDeathTest, TakeRunSummariesOfTheirClassWhereThatIsKnown)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // in a process of its own, because a class is known for good
    const auto registerClass = [] {
        registerArchivableClass({.name = u"ActionRunSummary"_s,
                                 .superclasses = {u"NSObject"_s},
                                 .isInstance = [](const QVariant&) { return false; }});
        const QSet<QByteArray> all{"NSDictionary", "NSString", "ActionRunSummary"};
        ::_exit(HVConnection::schedulerInterface()->classesFor({kRunSummaries, kFirst}) == all ? 0 : 1);
    };

    EXPECT_EXIT(registerClass(), ::testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace havrel
