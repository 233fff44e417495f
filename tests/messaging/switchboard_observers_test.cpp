// SPDX-License-Identifier: MIT
#include "messaging/switchboard_connection.h"
#include "tests/messaging/switchboard_fixture.h"

#include <thread>
#include <vector>

#include <unistd.h>

namespace havrel {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace havrel::tests;

const QString kAdd = QStringLiteral("addProxyObserver:forName:source: ");
const QString kRemove = QStringLiteral("removeObserver: ");

class SwitchboardObservers : public SwitchboardFixture
{
protected:
    /// A connection to m_user that has said what it says at first.
    void connect()
    {
        m_user = serveUser();
        (void)told(*m_user);
    }
    [[nodiscard]] static QVariantMap infoOf(const QString& endpoint) { return {{QStringLiteral("id"), endpoint}}; }
    [[nodiscard]] LocalObserver::Block telling(Awaited<QString>& heard)
    {
        return [&heard](const std::optional<QString>& source, const QVariantMap& info) {
            heard.tell(source.value_or(u"nobody"_s) + u' ' + descriptionOf(info));
        };
    }

    std::shared_ptr<TestSwitchboard> m_user;
};

TEST_F(SwitchboardObservers, AreRegisteredAndHearWhatIsForwarded)
{
    connect();
    Awaited<QString> heard;

    m_connection->addObserver(u"log"_s, u"DidBegin"_s, u"LogRotator"_s, telling(heard));
    EXPECT_EQ(told(*m_user), QStringList{kAdd + u"(log, DidBegin, (LogRotator))"_s});
    m_user->forward(u"log"_s, u"DidBegin"_s, {u"LogRotator"_s}, {{u"size"_s, 7}});
    m_user->forward(u"log"_s, u"whatever it is called"_s, {}, {});

    EXPECT_EQ(heard.first(2), (std::vector{u"LogRotator {size = 7}"_s, u"nobody {}"_s}));
}

TEST_F(SwitchboardObservers, HearFromWhoeverPosts)
{
    connect();
    Awaited<QString> heard;

    m_connection->addObserver(u"log"_s, u"DidBegin"_s, telling(heard));
    EXPECT_EQ(told(*m_user), QStringList{kAdd + u"(log, DidBegin, ())"_s});
    m_user->forward(u"log"_s, u"DidBegin"_s, {u"somebody"_s}, {});

    EXPECT_EQ(heard.one(), u"somebody {}"_s);
}

TEST_F(SwitchboardObservers, AreReplacedByIdentifier)
{
    connect();
    Awaited<QString> first;
    Awaited<QString> second;
    m_connection->addObserver(u"log"_s, u"DidBegin"_s, telling(first));
    m_connection->addObserver(u"log"_s, u"DidFinish"_s, telling(second));

    m_user->forward(u"log"_s, u"DidFinish"_s, {}, {});

    EXPECT_TRUE(second.one());
    EXPECT_EQ(first.count(), 0U);
}

TEST_F(SwitchboardObservers, AreRegisteredTwiceWhenTheyMakeTheConnection)
{
    m_user = serveUser();

    m_connection->addObserver(u"log"_s, u"DidBegin"_s, {});

    EXPECT_EQ(told(*m_user),
              (QStringList{setUser(), kAdd + u"(log, DidBegin, ())"_s, kAdd + u"(log, DidBegin, ())"_s}));
}

TEST_F(SwitchboardObservers, TakeEffectWhenTheSwitchboardIsThere)
{
    Awaited<QString> heard;
    m_connection->addObserver(u"log"_s, u"DidBegin"_s, telling(heard));
    connect();

    m_user->forward(u"log"_s, u"DidBegin"_s, {}, {});

    EXPECT_TRUE(heard.one());
}

TEST_F(SwitchboardObservers, GetNumberedIdentifiersWithoutOneOfTheirOwn)
{
    m_connection->addObserver(std::nullopt, u"First"_s, {}); // counted also while there is no switchboard
    m_user = serveUser();
    const QString first = told(*m_user).constLast();
    m_connection->addObserver(std::nullopt, u"Second"_s, {});
    const QString second = told(*m_user).constLast();

    ASSERT_TRUE(first.startsWith(kAdd + u"(.anon."_s));
    const int number = first.mid(kAdd.size() + 7, first.indexOf(u',') - kAdd.size() - 7).toInt();
    EXPECT_GT(number, 0);
    EXPECT_EQ(first, kAdd + QStringLiteral("(.anon.%1, First, ())").arg(number));
    EXPECT_EQ(second, kAdd + QStringLiteral("(.anon.%1, Second, ())").arg(number + 1));
}

using SwitchboardObserversDeathTest = SwitchboardObservers;

TEST_F(SwitchboardObserversDeathTest, GetTheNumbersOneAndTwoFirstInAProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a process of its own, which begins anew
    const auto addTwo = [this] {
        connect();
        m_connection->addObserver(std::nullopt, u"First"_s, {});
        std::make_shared<HVSwitchboardConnection>()->addObserver(std::nullopt, u"Second"_s, {});
        m_connection->addObserver(std::nullopt, u"Third"_s, {});
        const QStringList messages = told(*m_user);
        const bool right = messages.contains(kAdd + u"(.anon.1, First, ())"_s) &&
                           messages.contains(kAdd + u"(.anon.2, Second, ())"_s) &&
                           messages.contains(kAdd + u"(.anon.3, Third, ())"_s);
        ::_exit(right ? 0 : 1);
    };

    EXPECT_EXIT(addTwo(), ::testing::ExitedWithCode(0), "");
}

TEST_F(SwitchboardObservers, AreRemovedHereThenThere)
{
    connect();
    Awaited<QString> heard;
    Awaited<QString> other;
    m_connection->addObserver(u"log"_s, u"DidBegin"_s, telling(heard));
    m_connection->addObserver(u"other"_s, u"DidBegin"_s, telling(other));
    (void)told(*m_user);

    m_connection->removeObserver(u"log"_s);
    EXPECT_EQ(told(*m_user), QStringList{kRemove + u"(log)"_s});
    m_user->forward(u"log"_s, u"DidBegin"_s, {}, {});
    m_user->forward(u"other"_s, u"DidBegin"_s, {}, {});
    EXPECT_TRUE(other.one());
    EXPECT_EQ(heard.count(), 0U);

    lose(*m_connection, m_userService);
    EXPECT_EQ(told(*m_user), (QStringList{setUser(), kAdd + u"(other, DidBegin, ())"_s}));
}

TEST_F(SwitchboardObservers, AreRemovedThereEvenIfNobodyKnowsThemHere)
{
    connect();

    m_connection->removeObserver(u"unknown"_s);

    EXPECT_EQ(told(*m_user), QStringList{kRemove + u"(unknown)"_s});
}

TEST_F(SwitchboardObservers, AreRemovedByTheBeginningOfTheirIdentifier)
{
    connect();
    for (const QString& each : {u"log.rotation.begin"_s, u"log.rotation.finish"_s, u"log"_s, u"a.log.rotation"_s})
        m_connection->addObserver(each, u"DidBegin"_s, {});
    m_connection->addObserver(std::nullopt, u"DidBegin"_s, {});
    (void)told(*m_user);

    m_connection->removeObserversWithPrefix(u"log.rotation"_s);
    EXPECT_EQ(told(*m_user), (QStringList{kRemove + u"(log.rotation.begin)"_s, kRemove + u"(log.rotation.finish)"_s}));
    m_connection->removeObserversWithPrefix(u"log.rotation"_s);
    EXPECT_EQ(told(*m_user), QStringList());
    m_connection->removeObserversWithPrefix(u".anon."_s);

    EXPECT_EQ(told(*m_user).size(), 1);
}

TEST_F(SwitchboardObservers, AreRemovedAllAtOnce)
{
    connect();
    m_connection->addObserver(u"a"_s, u"DidBegin"_s, {});
    m_connection->addObserver(u"b"_s, u"DidBegin"_s, {});
    (void)told(*m_user);

    m_connection->removeAllObservers();
    EXPECT_EQ(told(*m_user), QStringList{u"removeAllObservers ()"_s});
    lose(*m_connection, m_userService);

    EXPECT_EQ(told(*m_user), QStringList{setUser()});
}

TEST_F(SwitchboardObservers, MayBeRemovedByTheirOwnBlock)
{
    connect();
    Awaited<QString> heard;
    m_connection->addObserver(u"once"_s, u"DidBegin"_s, [&](const auto&, const QVariantMap&) {
        m_connection->removeObserver(u"once"_s);
        heard.tell(u"it"_s);
    });

    m_user->forward(u"once"_s, u"DidBegin"_s, {}, {});
    m_user->forward(u"once"_s, u"DidBegin"_s, {}, {});
    EXPECT_TRUE(heard.one());
    (void)told(*m_user);

    EXPECT_EQ(heard.count(), 1U);
}

TEST_F(SwitchboardObservers, DoNotHarmOthersByWhatTheyThrow)
{
    connect();
    Awaited<QString> heard;
    m_connection->addObserver(u"bad"_s, u"DidBegin"_s, [](auto&&...) { throw std::runtime_error("bad observer"); });
    m_connection->addObserver(u"good"_s, u"DidBegin"_s, telling(heard));

    m_user->forward(u"bad"_s, u"DidBegin"_s, {}, {});
    m_user->forward(u"good"_s, u"DidBegin"_s, {}, {});

    EXPECT_TRUE(heard.one());
    EXPECT_GE(logged("bad observer"), 1);
}

TEST_F(SwitchboardObservers, SurviveAHundredReconnectionsWithoutLossDoublingOrGrowth)
{
    constexpr int kObservers = 200;
    constexpr int kReconnections = 100;
    connect();
    Awaited<int> heard;
    QStringList expected{setUser()};
    for (int i = 0; i < kObservers; ++i) {
        const QString identifier = QStringLiteral("observer.%1").arg(i, 3, 10, QLatin1Char('0'));
        m_connection->addObserver(identifier, u"DidBegin"_s, [&heard, i](auto&&...) { heard.tell(i); });
        expected << kAdd + QStringLiteral("(%1, DidBegin, ())").arg(identifier);
    }
    (void)told(*m_user);

    for (int i = 0; i < kReconnections; ++i) {
        if (i % 2 == 0)
            lose(*m_connection, m_userService);
        else
            EXPECT_TRUE(m_connection->disconnect());
        ASSERT_EQ(told(*m_user), expected) << "reconnection " << i;
        ASSERT_EQ(m_transport.connectionsOpen(m_userService), 1);
    }
    for (const QString& each : expected.mid(1))
        m_user->forward(each.section(u'(', 1, 1).section(u',', 0, 0), u"DidBegin"_s, {}, {});
    const std::vector<int> all = heard.first(kObservers);
    EXPECT_TRUE(m_connection->ping());

    ASSERT_EQ(all.size(), std::size_t(kObservers));
    EXPECT_EQ(heard.count(), std::size_t(kObservers));
    for (int i = 0; i < kObservers; ++i)
        EXPECT_EQ(all[std::size_t(i)], i);
}

/// One-way messages wait for each other when 1,024 of them are under way, also while the observers are locked.
TEST_F(SwitchboardObservers, MayBeMoreThanMessagesMayBeUnderWay)
{
    constexpr int kObservers = 3'000;
    connect();
    for (int i = 0; i < kObservers; ++i)
        m_connection->addObserver(QString::number(i), u"DidBegin"_s, {});
    EXPECT_EQ(told(*m_user).size(), kObservers);

    lose(*m_connection, m_userService);

    EXPECT_EQ(told(*m_user).size(), 1 + kObservers);
}

TEST_F(SwitchboardObservers, AreAddedAndRemovedByManyThreadsWhileConnectionsComeAndGo)
{
    constexpr int kThreads = 4;
    constexpr int kEach = 100;
    connect();
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([this, t] {
            for (int i = 0; i < kEach; ++i) {
                const QString kept = QStringLiteral("kept.%1.%2").arg(t).arg(i, 3, 10, QLatin1Char('0'));
                m_connection->addObserver(kept, u"DidBegin"_s, {});
                m_connection->addObserver(u"gone."_s + kept, u"DidBegin"_s, {});
                m_connection->removeObserver(u"gone."_s + kept);
            }
        });
    for (int i = 0; i < kEach; ++i) {
        m_connection->disconnect();
        EXPECT_TRUE(m_connection->ping());
    }
    for (std::thread& each : threads)
        each.join();
    (void)told(*m_user);

    m_connection->disconnect();

    const QStringList registered = told(*m_user);
    EXPECT_EQ(registered.size(), 1 + kThreads * kEach);
    EXPECT_EQ(registered.filter(kAdd + u"(kept."_s).size(), kThreads * kEach);
}

TEST_F(SwitchboardObservers, HearTheSwitchboardOfTheMachineToo)
{
    const auto machine = serveMachine();
    Awaited<QString> heard;

    m_connection->addObserver(u"log"_s, u"DidBegin"_s, telling(heard));
    (void)told(*machine);
    machine->forward(u"log"_s, u"DidBegin"_s, {u"LogRotator"_s}, {});

    EXPECT_EQ(heard.one(), u"LogRotator {}"_s);
}

// ---- endpoints

const QString kPublished = QStringLiteral("SwitchboardEndpointPublished");
const QString kRedacted = QStringLiteral("SwitchboardEndpointRedacted");
const QString kQuery = QStringLiteral("queryEndpointForIdentifier:withReply: ");

TEST_F(SwitchboardObservers, WatchAnEndpoint)
{
    connect();
    Awaited<QString> heard;

    m_connection->addObserverWhenName(
        u"me"_s,
        kScheduler,
        {.isPublished = [&] { heard.tell(u"published"_s); }, .isRedacted = [&] { heard.tell(u"redacted"_s); }});
    EXPECT_EQ(
        told(*m_user),
        (QStringList{kAdd + u"(me->com.havrel.scheduler.wasRedacted, SwitchboardEndpointRedacted, (Switchboard))"_s,
                     kAdd + u"(me->com.havrel.scheduler.didPublish, SwitchboardEndpointPublished, (Switchboard))"_s,
                     kQuery + u"(com.havrel.scheduler)"_s}));
    EXPECT_EQ(heard.count(), 0U) << "it is not published";
    m_user->forward(u"me->com.havrel.scheduler.didPublish"_s, kPublished, {u"Switchboard"_s}, infoOf(kScheduler));
    m_user->forward(u"me->com.havrel.scheduler.wasRedacted"_s, kRedacted, {u"Switchboard"_s}, infoOf(kScheduler));
    m_user->forward(u"me->com.havrel.scheduler.didPublish"_s, kPublished, {u"Switchboard"_s}, infoOf(kScheduler));

    EXPECT_EQ(heard.first(3), (std::vector{u"published"_s, u"redacted"_s, u"published"_s}));
}

TEST_F(SwitchboardObservers, AreToldAtOnceOfAnEndpointThatIsPublishedAndAgainLater)
{
    connect();
    m_user->publish(kScheduler, {":1.1", "/there"});
    Awaited<QString> heard;

    m_connection->addObserverWhenName(u"me"_s, kScheduler, {.isPublished = [&] { heard.tell(u"published"_s); }});
    EXPECT_TRUE(m_connection->ping());
    EXPECT_EQ(heard.count(), 1U);
    m_user->forward(u"me->com.havrel.scheduler.didPublish"_s, kPublished, {u"Switchboard"_s}, infoOf(kScheduler));

    EXPECT_EQ(heard.first(2).size(), 2U);
}

TEST_F(SwitchboardObservers, DoNotHearOfOtherEndpoints)
{
    connect();
    Awaited<QString> heard;
    m_connection->addObserverWhenName(
        u"me"_s,
        kScheduler,
        {.isPublished = [&] { heard.tell(u"published"_s); }, .isRedacted = [&] { heard.tell(u"redacted"_s); }});

    for (const QVariantMap& each : {infoOf(u"com.havrel.monitor"_s), QVariantMap(), QVariantMap{{u"id"_s, 7}}}) {
        m_user->forward(u"me->com.havrel.scheduler.didPublish"_s, kPublished, {}, each);
        m_user->forward(u"me->com.havrel.scheduler.wasRedacted"_s, kRedacted, {}, each);
    }
    m_user->forward(u"me->com.havrel.scheduler.wasRedacted"_s, kRedacted, {}, infoOf(kScheduler));

    EXPECT_EQ(heard.one(), u"redacted"_s);
    EXPECT_EQ(heard.count(), 1U);
}

TEST_F(SwitchboardObservers, WatchOnlyWhatTheyHaveHandlersFor)
{
    connect();

    m_connection->addObserverWhenName(u"me"_s, kScheduler, {.isRedacted = [] {}});
    EXPECT_EQ(
        told(*m_user),
        QStringList{kAdd + u"(me->com.havrel.scheduler.wasRedacted, SwitchboardEndpointRedacted, (Switchboard))"_s});
    m_connection->addObserverWhenName(u"me"_s, kScheduler, {});

    EXPECT_EQ(told(*m_user), QStringList());
}

TEST_F(SwitchboardObservers, WatchAnEndpointWithoutAName)
{
    connect();

    m_connection->addObserverWhenName(std::nullopt, kScheduler, {.isRedacted = [] {}});

    EXPECT_TRUE(told(*m_user).constFirst().contains(u"((null)->com.havrel.scheduler.wasRedacted, "_s));
}

TEST_F(SwitchboardObservers, WatchWhileThereIsNoSwitchboard)
{
    m_connection->addObserverWhenName(u"me"_s, kScheduler, {.isPublished = [] {}, .isRedacted = [] {}});
    m_user = serveUser();

    EXPECT_EQ(told(*m_user).filter(kAdd).size(), 2);
}

TEST_F(SwitchboardObservers, ComeBackAtTheNextConnectionAfterTheyHaveGivenUpAnEndpoint)
{
    connect();
    m_connection->addObserverWhenName(u"me"_s, kScheduler, {.isPublished = [] {}, .isRedacted = [] {}});
    (void)told(*m_user);

    m_connection->removePublishedObserver(u"me"_s, kScheduler);
    EXPECT_EQ(told(*m_user),
              (QStringList{kRemove + u"(me->com.havrel.scheduler.wasRedacted)"_s,
                           kRemove + u"(me->com.havrel.scheduler.didPublish)"_s}));
    lose(*m_connection, m_userService);

    EXPECT_EQ(told(*m_user).filter(kAdd).size(), 2);
}

TEST_F(SwitchboardObservers, GiveUpAnEndpointWithoutAName)
{
    connect();

    m_connection->removePublishedObserver(std::nullopt, kScheduler);

    EXPECT_EQ(told(*m_user).constFirst(), kRemove + u"((null)->com.havrel.scheduler.wasRedacted)"_s);
}

} // namespace
} // namespace havrel
