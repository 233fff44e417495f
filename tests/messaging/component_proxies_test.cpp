// SPDX-License-Identifier: MIT
#include "foundation/description.h"
#include "messaging/carried_value.h"
#include "messaging/monitor_proxy.h"
#include "messaging/protocol.h"
#include "messaging/protocols.h"
#include "messaging/scheduler_proxy.h"
#include "messaging/switchboard_proxy.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

using namespace Qt::Literals::StringLiterals;

/// Takes what its protocol takes.
class CheckingProxy final : public XPCProxy
{
public:
    explicit CheckingProxy(const Protocol& protocol)
        : m_protocol(protocol)
    {
    }

    void send(const QByteArray& keywordName, const QVariantList& values, XPCReply reply) override
    {
        const ProtocolMessage* message = m_protocol.messageNamed(keywordName);
        ASSERT_TRUE(message) << keywordName.constData();
        EXPECT_TRUE(carriedValues(message->takes, values)) << keywordName.constData();
        EXPECT_EQ(message->answers.has_value(), reply != nullptr) << keywordName.constData();
        sent << QString::fromLatin1(keywordName) + u' ' + descriptionOf(values);
        if (!reply)
            return;
        EXPECT_TRUE(carriedValues(message->answers.value_or(QByteArrayList()), answer));
        reply(answer);
    }

    QVariantList answer;
    QStringList sent;

private:
    const Protocol& m_protocol;
};

template<class Front>
struct Checked
{
    explicit Checked(const Protocol& protocol)
        : proxy(std::make_shared<CheckingProxy>(protocol))
        , front(proxy)
    {
    }
    std::shared_ptr<CheckingProxy> proxy;
    Front front;
};

TEST(ComponentProxy, SendsABarrier)
{
    const Checked<ComponentProxy> component(protocols::componentMessaging());
    bool completed = false;

    component.front.barrier([&completed] { completed = true; });

    EXPECT_TRUE(completed);
    EXPECT_EQ(component.front.proxy(), component.proxy);
    EXPECT_TRUE(component.front);
}

TEST(ComponentProxy, SaysNothingToNobody)
{
    const SwitchboardProxy nobody(nullptr);

    nobody.barrier([] { ADD_FAILURE(); });
    nobody.queryEndpoint(u"a"_s, [](const auto&) { ADD_FAILURE(); });
    nobody.removeAllObservers();

    EXPECT_FALSE(nobody);
}

TEST(SwitchboardProxy, SendsWhatTheProtocolTakes)
{
    const Checked<SwitchboardProxy> switchboard(protocols::switchboardingPrivate());

    switchboard.front.setUser(4294967294);
    switchboard.front.addProxyObserver(u"a"_s, u"DidBegin"_s, std::nullopt);
    switchboard.front.addProxyObserver(u"a"_s, u"DidBegin"_s, u"Clock"_s);
    switchboard.front.removeObserver(u"a"_s);
    switchboard.front.removeAllObservers();

    EXPECT_EQ(switchboard.proxy->sent,
              (QStringList{u"setUser: (4294967294)"_s,
                           u"addProxyObserver:forName:source: (a, DidBegin, ())"_s,
                           u"addProxyObserver:forName:source: (a, DidBegin, (Clock))"_s,
                           u"removeObserver: (a)"_s,
                           u"removeAllObservers ()"_s}));
}

TEST(SwitchboardProxy, AsksForAnEndpointThatMayBeMissing)
{
    const Checked<SwitchboardProxy> switchboard(protocols::switchboardingPrivate());
    const XPCEndpoint endpoint{":1.42", "/com/havrel/scheduler"};
    std::vector<std::optional<XPCEndpoint>> answers;
    const auto keep = [&answers](const std::optional<XPCEndpoint>& answer) { answers.push_back(answer); };

    switchboard.proxy->answer = {QVariant(QVariantList{endpoint.asValue()})};
    switchboard.front.queryEndpoint(u"com.havrel.scheduler"_s, keep);
    switchboard.proxy->answer = {QVariant(QVariantList())};
    switchboard.front.queryEndpoint(u"com.havrel.scheduler"_s, keep);

    EXPECT_EQ(answers, (std::vector<std::optional<XPCEndpoint>>{endpoint, std::nullopt}));
    EXPECT_EQ(switchboard.proxy->sent[0], u"queryEndpointForIdentifier:withReply: (com.havrel.scheduler)"_s);
}

TEST(SchedulerProxy, AsksForACaptureOfPathsOfAnyBytes)
{
    const Checked<SchedulerProxy> scheduler(protocols::scheduling());

    scheduler.front.quickCapture({"/a", QByteArray("/\xff\xfe")}, "/b");
    scheduler.front.quickCapture({}, "/b");

    EXPECT_EQ(scheduler.proxy->sent.size(), 2);
    EXPECT_TRUE(scheduler.proxy->sent[0].startsWith(u"quickCapture:toRepository: (({length = 2, bytes = 0x2f61}, "_s));
}

TEST(MonitorProxy, AsksForArchives)
{
    const Checked<MonitorProxy> monitor(protocols::monitoring());
    const QVariantMap archive{{u"path"_s, QByteArray("/a.zephra")}};
    QList<QVariantMap> archives;
    const auto keep = [&archives](const QList<QVariantMap>& answer) { archives << answer; };
    monitor.proxy->answer = {QVariant(QVariantList{archive, QVariantMap()})};

    monitor.front.refreshRecentRepositoryCache();
    monitor.front.queryRepositoriesForItems({"/item"}, keep);
    monitor.front.queryRecentlyCapturedRepositories(keep);

    EXPECT_EQ(archives, (QList<QVariantMap>{archive, {}, archive, {}}));
    EXPECT_EQ(monitor.proxy->sent,
              (QStringList{u"refreshRecentRepositoryCache ()"_s,
                           u"queryRepositoriesForItems:withReply: (({length = 5, bytes = 0x2f6974656d}))"_s,
                           u"queryRecentlyCapturedRepositoriesWithReply: ()"_s}));
}

} // namespace
} // namespace havrel
