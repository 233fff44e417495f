// SPDX-License-Identifier: MIT
#include "messaging/published_connection.h"

#include "tests/messaging/switchboard_fixture.h"

namespace havrel {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace havrel::tests;

class HVPublishedConnectionFixture : public SwitchboardFixture
{
protected:
    [[nodiscard]] std::shared_ptr<TestComponent> serve() const
    {
        return TestComponent::serving(m_listeners->anonymousListener(), protocols::componentServing());
    }

    XPCTransport* const m_listeners = &m_transport;
    const std::shared_ptr<TestSwitchboard> m_switchboard = serveUser();
    std::shared_ptr<HVPublishedConnection> m_published =
        std::make_shared<HVPublishedConnection>(kScheduler, xpc_options::kNone, protocols::componentServing());
};

TEST_F(HVPublishedConnectionFixture, ConnectsToTheEndpointThatIsPublishedUnderItsName)
{
    const auto component = serve();
    m_switchboard->publish(kScheduler, component->endpoint());

    const XPCProxyPtr proxy = m_published->serviceProxy();

    ASSERT_TRUE(proxy);
    proxy->send("didInstallComponent");
    EXPECT_TRUE(m_published->ping());
    EXPECT_EQ(component->told(), QStringList{u"didInstallComponent ()"_s});
    EXPECT_EQ(m_published->identifier(), kScheduler);
    EXPECT_EQ(m_published->publishedName(), kScheduler);
    EXPECT_TRUE(m_switchboard->told().contains(u"queryEndpointForIdentifier:withReply: (com.havrel.scheduler)"_s));
}

TEST_F(HVPublishedConnectionFixture, IsVerifiedBeforeItIsUsed)
{
    const auto component = serve();
    m_switchboard->publish(kScheduler, component->endpoint());
    m_transport.atNextMessage(
        QString::fromLatin1(component->endpoint().pathPrefix), "barrierWithCompletion:", Fault::DeathBefore);

    EXPECT_FALSE(m_published->serviceProxy());
    EXPECT_EQ(logged("failed to verify connection com.havrel.scheduler with "), 1);

    EXPECT_TRUE(m_published->ping()) << "the next attempt is a new one";
}

TEST_F(HVPublishedConnectionFixture, HasNoCandidateWhenNobodyHasPublishedItsName)
{
    EXPECT_EQ(m_published->syncReturningError().error, invalidConnectionError());

    EXPECT_EQ(logged("failed to verify"), 0);
    EXPECT_FALSE(m_published->performSynchronousBlock([](const XPCProxyPtr&) { ADD_FAILURE(); }));
}

TEST_F(HVPublishedConnectionFixture, HasNoCandidateWithoutASwitchboard)
{
    const auto component = serve();
    m_switchboard->publish(kScheduler, component->endpoint());
    m_transport.setRefusing(m_userService, true);

    EXPECT_FALSE(m_published->serviceProxy());
    m_transport.setRefusing(m_userService, false);

    EXPECT_TRUE(m_published->serviceProxy());
}

TEST_F(HVPublishedConnectionFixture, HasNoCandidateWhenTheBarrierBehindItsQuestionFails)
{
    const auto component = serve();
    m_switchboard->publish(kScheduler, component->endpoint());
    EXPECT_TRUE(HVConnection::switchboardConnection()->ping());
    m_transport.atNextMessage(m_userService, "barrierWithCompletion:", Fault::Error);

    EXPECT_FALSE(m_published->serviceProxy());
}

TEST_F(HVPublishedConnectionFixture, HasNoCandidateWhenTheSwitchboardDiesOfItsQuestion)
{
    const auto component = serve();
    m_switchboard->publish(kScheduler, component->endpoint());
    for (const Fault each : {Fault::DeathBefore, Fault::DeathAfterwards}) {
        EXPECT_TRUE(HVConnection::switchboardConnection()->ping());
        m_transport.atNextMessage(m_userService, "queryEndpointForIdentifier:withReply:", each);
        EXPECT_FALSE(m_published->serviceProxy());
        HVConnection::switchboardConnection()->disconnect();
    }

    EXPECT_TRUE(m_published->serviceProxy());
}

TEST_F(HVPublishedConnectionFixture, FindsItsComponentAgainAfterThatHasStartedAnew)
{
    auto component = serve();
    const QString place = QString::fromLatin1(component->endpoint().pathPrefix);
    m_switchboard->publish(kScheduler, component->endpoint());
    EXPECT_TRUE(m_published->ping());
    const auto next = serve();
    m_switchboard->publish(kScheduler, next->endpoint());

    lose(*m_published, place);

    EXPECT_TRUE(m_published->ping());
    EXPECT_EQ(m_transport.connectionsMade(place), 1);
}

TEST_F(HVPublishedConnectionFixture, DoesNotNeedTheSwitchboardOnceItIsConnected)
{
    const auto component = serve();
    m_switchboard->publish(kScheduler, component->endpoint());
    EXPECT_TRUE(m_published->ping());
    m_transport.setRefusing(m_userService, true);
    m_transport.invalidateFromFarSide(m_userService);

    EXPECT_TRUE(m_published->ping());
}

TEST_F(HVPublishedConnectionFixture, TakesAnInterfaceAsItIs)
{
    const auto interface = std::make_shared<const XPCInterface>(protocols::monitoring());

    EXPECT_EQ(HVPublishedConnection(kScheduler, xpc_options::kNone, interface).serviceInterface(), interface);
}

TEST_F(HVPublishedConnectionFixture, GoesUnderItsName)
{
    m_published.reset();

    EXPECT_EQ(logged("invalidating connection (com.havrel.scheduler)"), 1);
}

} // namespace
} // namespace havrel
