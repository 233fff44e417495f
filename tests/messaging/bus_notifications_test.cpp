// SPDX-License-Identifier: MIT
#include "messaging/bus_notifications.h"

#include "foundation/process.h"
#include "messaging/bus_router.h"
#include "messaging/bus_transport.h"
#include "tests/support/bus_peer.h"
#include "tests/support/fake_identity.h"
#include "tests/support/handled_events.h"
#include "tests/support/private_bus.h"

#include <QCoreApplication>
#include <QStringList>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <memory>

#include <unistd.h>

namespace havrel {
namespace {

using namespace Qt::Literals::StringLiterals;
using tests::BusPeer;
using tests::PrivateBus;

constexpr uid_t kSomebody = 4711;

/// One that is posted on the machine's bus, where everybody may speak, to a process without a session.
class NotificationsOfTheMachine : public ::testing::Test
{
protected:
    ~NotificationsOfTheMachine() override { Process::captureNow(); }

    /// A process posts \p object, and lives on.
    void post(BusPeer& process, const char* object) const
    {
        EXPECT_EQ(process.answerTo("distribute com.havrel.rotated " + QByteArray(object)), "done");
    }
    /// What has come until \p last has.
    QStringList heardUntil(const QString& last)
    {
        EXPECT_TRUE(tests::handleEventsUntil([&] { return m_heard.contains(last); }));
        return m_heard;
    }
    /// What is posted has arrived, and the bus has been asked about the process that posted it.
    void untilJudged()
    {
        int error = 0;
        const auto router = m_transport.buses().router(platform::BusKind::System, error);
        ASSERT_EQ(error, 0);
        for (int i = 0; i < 2; ++i)
            ASSERT_EQ(router->bus().barrier(std::chrono::minutes(1)), 0);
    }
    [[nodiscard]] std::unique_ptr<BusPeer> process(BusPeer::As user = BusPeer::As::Same) const
    {
        return std::make_unique<BusPeer>(m_bus.address(), "system", "com.havrel.switchboard", user);
    }
    std::shared_ptr<void> listen()
    {
        return m_transport.addDistributedObserver(u"com.havrel.rotated"_s,
                                                  [this](const QString& object) { m_heard << object; });
    }

    int m_argumentCount = 1;
    std::array<char, 5> m_program{"test"};
    std::array<char*, 2> m_arguments{m_program.data(), nullptr};
    QCoreApplication m_application{m_argumentCount, m_arguments.data()};
    PrivateBus m_bus;
    BusTransport m_transport{{.session = "unix:path=/none", .system = m_bus.address()}};
    QStringList m_heard;
};

TEST_F(NotificationsOfTheMachine, AreHeardFromProcessesOfThisUser)
{
    const auto observer = listen();
    const auto other = process();

    post(*other, "first");
    post(*other, "second");
    m_transport.postDistributedNotification(u"com.havrel.rotated"_s, u"own"_s);

    EXPECT_EQ(heardUntil(u"own"_s), (QStringList{u"first"_s, u"second"_s, u"own"_s}));
}

TEST_F(NotificationsOfTheMachine, AreNotHeardFromAnotherUser)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can be another user";
    m_bus.letOthersIn();
    const auto observer = listen();
    const auto stranger = process(BusPeer::As::Nobody);
    const auto own = process();

    post(*stranger, "theirs");
    post(*own, "ours");

    EXPECT_EQ(heardUntil(u"ours"_s), QStringList{u"ours"_s});
}

TEST_F(NotificationsOfTheMachine, AreHeardFromRootAndNotFromOrdinaryUsersBySomebodyElse)
{
    const auto observer = listen();
    const auto other = process();
    {
        const FakeIdentity somebody({kSomebody, kSomebody, kSomebody}, {kSomebody, kSomebody, kSomebody});
        Process::captureNow();
        post(*other, "first");
        untilJudged();
    }
    Process::captureNow();
    post(*other, "last");

    EXPECT_EQ(heardUntil(u"last"_s).contains(u"first"_s), ::geteuid() == 0);
}

TEST_F(NotificationsOfTheMachine, AreHeardFromTheUserForWhomTheProcessWorks)
{
    Process::captureNow();
    const auto observer = listen();
    const auto other = process();
    {
        const FakeIdentity somebody({kSomebody, kSomebody, kSomebody}, {kSomebody, kSomebody, kSomebody});
        post(*other, "first");
        untilJudged();
    }

    EXPECT_EQ(heardUntil(u"first"_s), QStringList{u"first"_s});
}

} // namespace
} // namespace havrel
