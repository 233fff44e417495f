// SPDX-License-Identifier: MIT
#include "messaging/switchboard_connection.h"

#include "messaging/switchboard_subscriber.h"
#include "tests/messaging/scripted_xpc_connection.h"
#include "tests/messaging/switchboard_fixture.h"

#include <unistd.h>

namespace havrel {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace havrel::tests;

class HVSwitchboardConnectionFixture : public SwitchboardFixture
{
};

TEST_F(HVSwitchboardConnectionFixture, IsForTheSwitchboardOfTheUser)
{
    EXPECT_EQ(m_connection->identifier(), QStringLiteral("com.havrel.switchboard.%1").arg(::geteuid()));
    EXPECT_EQ(m_connection->machServiceName(), m_connection->identifier());
    EXPECT_EQ(&m_connection->serviceInterface()->protocol(), &protocols::switchboardingPrivate());
}

struct NameRow
{
    uid_t effective;
    uid_t captured;
    const char* name;
};

class SwitchboardNames : public ::testing::TestWithParam<NameRow>
{
};

TEST_P(SwitchboardNames, AreThoseOfTheEffectiveUserOrOfTheCapturedOneForRoot)
{
    EXPECT_EQ(switchboard_names::perUserServiceFor(GetParam().effective, GetParam().captured),
              QLatin1StringView(GetParam().name));
}

INSTANTIATE_TEST_SUITE_P(Table,
                         SwitchboardNames,
                         ::testing::Values(NameRow{1000, 1000, "com.havrel.switchboard.1000"},
                                           NameRow{1000, 0, "com.havrel.switchboard.1000"},
                                           NameRow{1000, 33, "com.havrel.switchboard.1000"},
                                           NameRow{0, 1000, "com.havrel.switchboard.1000"},
                                           NameRow{0, 0, "com.havrel.switchboard.0"},
                                           NameRow{4294967294, 0, "com.havrel.switchboard.4294967294"}));

TEST_F(HVSwitchboardConnectionFixture, PrefersTheSwitchboardOfTheUser)
{
    const auto user = serveUser();
    const auto machine = serveMachine();

    EXPECT_TRUE(m_connection->ping());

    EXPECT_EQ(m_connection->machServiceName(), m_userService);
    EXPECT_EQ(m_transport.connectionsMade(kSystemWidePlace), 0);
}

TEST_F(HVSwitchboardConnectionFixture, FallsBackToTheSwitchboardOfTheMachine)
{
    const auto machine = serveMachine();

    EXPECT_TRUE(m_connection->ping());

    EXPECT_EQ(m_connection->machServiceName(), u"com.havrel.switchboard"_s);
    EXPECT_EQ(m_connection->identifier(), m_userService);
    EXPECT_EQ(logged("failed to verify"), 0);
}

TEST_F(HVSwitchboardConnectionFixture, IsNotSatisfiedWithAnOrdinaryServiceOfTheMachinesName)
{
    const auto impostor = TestSwitchboard::serving(
        m_transport.listenerForService(switchboard_names::kSystemWideService, xpc_options::kNone));

    EXPECT_FALSE(m_connection->ping());
}

TEST_F(HVSwitchboardConnectionFixture, VerifiesEvenWhenToldNotTo)
{
    const auto user = serveUser();
    const auto machine = serveMachine();
    m_transport.atNextMessage(m_userService, "barrierWithCompletion:", Fault::Error);
    m_connection->setVerifyConnection(false);

    EXPECT_TRUE(m_connection->ping());

    EXPECT_EQ(m_connection->machServiceName(), u"com.havrel.switchboard"_s);
}

TEST_F(HVSwitchboardConnectionFixture, LogsBothWhenNeitherCanBeReached)
{
    EXPECT_FALSE(m_connection->switchboardProxy());

    EXPECT_EQ(logged("failed to verify connection com.havrel.switchboard."), 2);
}

TEST_F(HVSwitchboardConnectionFixture, TellsWhoseSwitchboardItIsToBeAndThenOfItsObservers)
{
    m_connection->addObserver(QStringLiteral("b"), QStringLiteral("Second"), QStringLiteral("Clock"), {});
    m_connection->addObserver(QStringLiteral("a"), QStringLiteral("First"), {});
    const auto user = serveUser();

    EXPECT_EQ(told(*user),
              (QStringList{setUser(),
                           u"addProxyObserver:forName:source: (a, First, ())"_s,
                           u"addProxyObserver:forName:source: (b, Second, (Clock))"_s}));
    EXPECT_EQ(posted(), QStringList{u"HVConnectionDidConnect"_s});
}

TEST_F(HVSwitchboardConnectionFixture, TellsEverySwitchboardAnew)
{
    auto user = serveUser();
    m_connection->addObserver(QStringLiteral("a"), QStringLiteral("First"), {});
    (void)told(*user);
    lose(*m_connection, m_userService);
    EXPECT_EQ(posted(), (QStringList{u"HVConnectionDidConnect"_s, u"HVConnectionWasDisconnected"_s}));

    EXPECT_EQ(told(*user), (QStringList{setUser(), u"addProxyObserver:forName:source: (a, First, ())"_s}));
}

TEST_F(HVSwitchboardConnectionFixture, HearsNothingMoreFromAConnectionThatItHasDropped)
{
    const auto user = serveUser();
    int heard = 0;
    m_connection->addObserver(QStringLiteral("a"), QStringLiteral("First"), [&heard](auto&&...) { ++heard; });
    (void)told(*user);
    const XPCConnectionPtr theirs = user->latest();

    m_connection->disconnect();
    theirs->remoteObjectProxyWithErrorHandler({})->send("forwardToObserver:notification:fromSource:withInfo:",
                                                        {u"a"_s, u"First"_s, QStringList(), QVariantMap()});
    (void)told(*user);

    EXPECT_EQ(heard, 0);
}

TEST_F(HVSwitchboardConnectionFixture, GoesUnderItsNameAndOnce)
{
    m_connection.reset();

    EXPECT_EQ(logged("-[HVConnection disconnect_Internal] invalidating connection (com.havrel.switchboard."), 1);
}

// ---- candidates

/// Whose connections write down what happens to them.
class RecordingTransport final : public XPCTransport
{
public:
    explicit RecordingTransport(SerialQueue& replies)
        : m_replies(replies)
    {
    }

    XPCConnectionPtr connectionToService(const QString& name, quint32 options) override
    {
        made.push_back(std::make_shared<ScriptedXPCConnection>(name, m_replies));
        asked << QStringLiteral("%1 with options 0x%2").arg(name).arg(options, 0, 16);
        if (made.size() <= answers.size())
            made.back()->answer({answers[made.size() - 1]});
        return made.back();
    }
    XPCConnectionPtr connectionToEndpoint(const XPCEndpoint& /*endpoint*/) override { return nullptr; }
    std::unique_ptr<XPCListener> listenerForService(const QString&, quint32) override { return nullptr; }
    std::unique_ptr<XPCListener> anonymousListener() override { return nullptr; }
    void postDistributedNotification(const QString&, const QString&) override {}
    std::shared_ptr<void> addDistributedObserver(const QString&, std::function<void(const QString&)>) override
    {
        return nullptr;
    }

    QStringList asked;
    std::vector<ScriptedXPCConnectionPtr> made;
    std::vector<Answer> answers; ///< of each connection to its first barrier

private:
    SerialQueue& m_replies;
};

class CandidatesForTheSwitchboard : public SwitchboardFixture
{
protected:
    CandidatesForTheSwitchboard() { XPCTransport::setShared(&m_recording); }
    ~CandidatesForTheSwitchboard() override
    {
        m_connection.reset();
        runMainQueue(); // notifications that wait there keep it
    }
    Q_DISABLE_COPY_MOVE(CandidatesForTheSwitchboard)

    SerialQueue m_replies{QStringLiteral("replies")};
    RecordingTransport m_recording{m_replies};
};

TEST_F(CandidatesForTheSwitchboard, AreThatOfTheUserThenThatOfTheMachine)
{
    m_recording.answers = {Answer::Fail, Answer::Reply};

    EXPECT_TRUE(m_connection->ping());

    EXPECT_EQ(m_recording.asked,
              (QStringList{m_userService + u" with options 0x0"_s, u"com.havrel.switchboard with options 0x1000"_s}));
    EXPECT_EQ(m_recording.made[0]->journal(),
              (QByteArrayList{"export", "interface", "resume", "barrierWithCompletion:", "invalidate"}));
    EXPECT_EQ(m_recording.made[1]->journal().first(5),
              (QByteArrayList{"export", "interface", "resume", "barrierWithCompletion:", "handler"}));
}

TEST_F(CandidatesForTheSwitchboard, GetTheSubscriberAsExportedObject)
{
    EXPECT_TRUE(m_connection->ping());

    ASSERT_EQ(m_recording.made.size(), 2U);
    const auto subscriber = std::dynamic_pointer_cast<SwitchboardSubscriber>(m_recording.made[0]->exportedObject());
    ASSERT_TRUE(subscriber);
    EXPECT_EQ(m_recording.made[1]->exportedObject(), subscriber);
    for (const auto& each : m_recording.made) {
        EXPECT_EQ(&each->exportedInterface()->protocol(), &protocols::switchboardSubscribing());
    }
    m_connection->addObserver(u"log"_s, u"DidBegin"_s, {});
    EXPECT_EQ(subscriber->registeredObserverIDs(), QStringList{u"log"_s});
}

TEST_F(CandidatesForTheSwitchboard, LoseTheSubscriberBeforeTheyEnd)
{
    EXPECT_TRUE(m_connection->ping());

    EXPECT_TRUE(m_connection->disconnect());

    EXPECT_EQ(m_recording.made[0]->journal().last(3), (QByteArrayList{"export nothing", "no handler", "invalidate"}));
    EXPECT_FALSE(m_recording.made[0]->exportedObject());
}

// ---- a switchboard has started

TEST_F(HVSwitchboardConnectionFixture, ConnectsWhenASwitchboardStarts)
{
    const auto user = serveUser();

    m_connection->switchboardDidStartNotification(m_userService);

    EXPECT_TRUE(m_connection->connected());
    EXPECT_EQ(m_transport.connectionsMade(m_userService), 1);
    EXPECT_EQ(logged("cannot connect"), 0);
}

TEST_F(HVSwitchboardConnectionFixture, ReturnsToTheSwitchboardOfTheUserWhenThatStarts)
{
    const auto machine = serveMachine();
    EXPECT_TRUE(m_connection->ping());
    const auto user = serveUser();

    m_connection->switchboardDidStartNotification(m_userService);

    EXPECT_EQ(m_connection->machServiceName(), m_userService);
    EXPECT_EQ(
        posted(),
        (QStringList{u"HVConnectionDidConnect"_s, u"HVConnectionWasDisconnected"_s, u"HVConnectionDidConnect"_s}));
}

TEST_F(HVSwitchboardConnectionFixture, StaysWhereItIsWhenTheSwitchboardOfTheMachineStarts)
{
    const auto machine = serveMachine();
    EXPECT_TRUE(m_connection->ping());

    m_connection->switchboardDidStartNotification(QStringLiteral("com.havrel.switchboard"));

    EXPECT_EQ(m_transport.connectionsMade(kSystemWidePlace), 1);
    EXPECT_TRUE(m_connection->connected());
}

TEST_F(HVSwitchboardConnectionFixture, StaysWhereItIsWhenTheSwitchboardOfAnotherUserStarts)
{
    const auto machine = serveMachine();
    EXPECT_TRUE(m_connection->ping());
    const auto user = serveUser();

    m_connection->switchboardDidStartNotification(QStringLiteral("com.havrel.switchboard.12345"));

    EXPECT_EQ(m_connection->machServiceName(), u"com.havrel.switchboard"_s);
}

TEST_F(HVSwitchboardConnectionFixture, KeepsAConnectionToTheUsersSwitchboardWhenThatStarts)
{
    const auto user = serveUser();
    EXPECT_TRUE(m_connection->ping());

    m_connection->switchboardDidStartNotification(m_userService);

    EXPECT_EQ(m_transport.connectionsMade(m_userService), 1);
}

TEST_F(HVSwitchboardConnectionFixture, KeepsAConnectionThatItsOwnPingHasMade)
{
    const auto machine = serveMachine();

    m_connection->switchboardDidStartNotification(m_userService);

    EXPECT_EQ(m_connection->machServiceName(), u"com.havrel.switchboard"_s);
    EXPECT_EQ(m_transport.connectionsMade(kSystemWidePlace), 1) << "there was none before, so none is dropped";
}

TEST_F(HVSwitchboardConnectionFixture, MakesAConnectionAnewThatDoesNotAnswer)
{
    const auto user = serveUser();
    EXPECT_TRUE(m_connection->ping());
    m_transport.atNextMessage(m_userService, "barrierWithCompletion:", Fault::Error);

    m_connection->switchboardDidStartNotification(m_userService);

    EXPECT_TRUE(m_connection->connected());
    EXPECT_EQ(m_transport.connectionsMade(m_userService), 2);
}

TEST_F(HVSwitchboardConnectionFixture, WarnsWhenItCannotConnectAfterAStart)
{
    m_connection->switchboardDidStartNotification(m_userService);

    EXPECT_EQ(logged("Warning cannot connect with switchboard"), 1);
}

} // namespace
} // namespace havrel
