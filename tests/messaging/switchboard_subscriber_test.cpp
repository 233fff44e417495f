// SPDX-License-Identifier: MIT
#include "messaging/switchboard_subscriber.h"

#include "foundation/description.h"
#include "messaging/switchboard_proxy.h"

#include <gtest/gtest.h>

#include <thread>

namespace havrel {
namespace {

using namespace Qt::Literals::StringLiterals;

/// Writes down what is sent.
class RecordingProxy final : public XPCProxy
{
public:
    void send(const QByteArray& keywordName, const QVariantList& values, XPCReply /*reply*/) override
    {
        sent << QString::fromLatin1(keywordName) + u' ' + descriptionOf(values);
        if (whenSending)
            whenSending();
    }

    QStringList sent;
    std::function<void()> whenSending;
};

class SwitchboardSubscriberFixture : public ::testing::Test
{
protected:
    void observe(const QString& identifier,
                 const QString& name = QStringLiteral("DidBegin"),
                 const std::optional<QString>& source = std::nullopt)
    {
        const auto block = [this, identifier](const std::optional<QString>& from, const QVariantMap& info) {
            m_heard << identifier + u' ' + from.value_or(QStringLiteral("nobody")) + u' ' + descriptionOf(info);
        };
        m_subscriber.addObserver(identifier, std::make_shared<LocalObserver>(name, source, block));
    }
    void forward(const QString& identifier)
    {
        m_subscriber.forwardToObserver(identifier, QStringLiteral("DidBegin"), std::nullopt, {});
    }

    SwitchboardSubscriber m_subscriber;
    QStringList m_heard;
};

TEST_F(SwitchboardSubscriberFixture, HandsOnSourceAndInfoToTheObserverOfTheIdentifier)
{
    observe(u"a"_s);
    observe(u"b"_s);

    m_subscriber.forwardToObserver(u"b"_s, u"another name"_s, u"Clock"_s, {{u"size"_s, 7}});
    m_subscriber.forwardToObserver(u"unknown"_s, u"DidBegin"_s, u"Clock"_s, {});

    EXPECT_EQ(m_heard, QStringList{u"b Clock {size = 7}"_s});
}

TEST_F(SwitchboardSubscriberFixture, TakesTheSwitchboardsMessage)
{
    const QByteArray name = "forwardToObserver:notification:fromSource:withInfo:";
    observe(u"a"_s);

    m_subscriber.received({name, {u"a"_s, u"DidBegin"_s, QStringList{u"Clock"_s}, QVariantMap{{u"k"_s, u"v"_s}}}});
    m_subscriber.received({name, {u"a"_s, u"DidBegin"_s, QStringList(), QVariantMap()}});
    m_subscriber.received({"somethingElse:", {u"a"_s, u"DidBegin"_s, QStringList(), QVariantMap()}});
    m_subscriber.received({name, {u"a"_s}});

    EXPECT_EQ(m_heard, (QStringList{u"a Clock {k = v}"_s, u"a nobody {}"_s}));
}

TEST_F(SwitchboardSubscriberFixture, ReplacesAndRemovesObservers)
{
    observe(u"a"_s);
    observe(u"b"_s);
    observe(u"a"_s);
    EXPECT_EQ(m_subscriber.registeredObserverIDs(), (QStringList{u"a"_s, u"b"_s}));

    m_subscriber.removeLocalObserver(u"a"_s);
    m_subscriber.removeLocalObserver(u"a"_s);
    forward(u"a"_s);
    EXPECT_EQ(m_subscriber.registeredObserverIDs(), QStringList{u"b"_s});
    EXPECT_EQ(m_heard, QStringList());

    m_subscriber.removeAllLocalObservers();
    EXPECT_EQ(m_subscriber.registeredObserverIDs(), QStringList());
}

TEST_F(SwitchboardSubscriberFixture, RegistersEveryObserverAnewWithItsNameAndSource)
{
    const auto proxy = std::make_shared<RecordingProxy>();
    observe(u"b"_s, u"DidFinish"_s, u"LogRotator"_s);
    observe(u"a"_s);

    m_subscriber.reregisterObserversWithSwitchboard(SwitchboardProxy(proxy));
    m_subscriber.reregisterObserversWithSwitchboard(SwitchboardProxy(nullptr));

    EXPECT_EQ(proxy->sent,
              (QStringList{u"addProxyObserver:forName:source: (a, DidBegin, ())"_s,
                           u"addProxyObserver:forName:source: (b, DidFinish, (LogRotator))"_s}));
}

TEST_F(SwitchboardSubscriberFixture, MayBeAskedWhileItRegisters)
{
    const auto proxy = std::make_shared<RecordingProxy>();
    QStringList seen;
    proxy->whenSending = [&] { seen = m_subscriber.registeredObserverIDs(); };
    observe(u"a"_s);

    m_subscriber.reregisterObserversWithSwitchboard(SwitchboardProxy(proxy));

    EXPECT_EQ(seen, QStringList{u"a"_s});
}

TEST_F(SwitchboardSubscriberFixture, CallsBlocksWithoutItsLock)
{
    QStringList seen;
    const auto block = [&](auto&&...) {
        std::thread([&] { seen = m_subscriber.registeredObserverIDs(); }).join();
        m_subscriber.removeAllLocalObservers();
    };
    m_subscriber.addObserver(u"a"_s, std::make_shared<LocalObserver>(u"DidBegin"_s, std::nullopt, block));

    forward(u"a"_s);

    EXPECT_EQ(seen, QStringList{u"a"_s});
    EXPECT_EQ(m_subscriber.registeredObserverIDs(), QStringList());
}

TEST_F(SwitchboardSubscriberFixture, LetsObserversGoWithoutItsLock)
{
    QStringList seen;
    const auto addWatched = [&] {
        const std::shared_ptr<void> watched(nullptr, [&](void*) {
            std::thread([&] { seen << QString::number(m_subscriber.registeredObserverIDs().size()); }).join();
        });
        m_subscriber.addObserver(u"a"_s,
                                 std::make_shared<LocalObserver>(u"DidBegin"_s, std::nullopt, [watched](auto&&...) {}));
    };
    addWatched();
    addWatched();
    m_subscriber.removeLocalObserver(u"a"_s);
    addWatched();
    m_subscriber.removeAllLocalObservers();

    EXPECT_EQ(seen, (QStringList{u"1"_s, u"0"_s, u"0"_s}));
}

TEST(LocalObserver, KeepsWhatItIsAboutAndCallsItsBlock)
{
    int calls = 0;
    const LocalObserver observer(u"DidBegin"_s, u"Clock"_s, [&calls](auto&&...) { ++calls; });
    const LocalObserver blockless(u"DidBegin"_s, std::nullopt, {});

    observer.forwardNotificationFromSource(std::nullopt, {});
    blockless.forwardNotificationFromSource(u"Clock"_s, {});

    EXPECT_EQ(observer.notificationName(), u"DidBegin"_s);
    EXPECT_EQ(observer.sourceID(), u"Clock"_s);
    EXPECT_EQ(blockless.sourceID(), std::nullopt);
    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace havrel
