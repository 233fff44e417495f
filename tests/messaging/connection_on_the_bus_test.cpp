// SPDX-License-Identifier: MIT
// What becomes of a connection object when the process at its other end, or the message bus, is killed or stopped.
#include "foundation/dispatch.h"
#include "foundation/notification_center.h"
#include "messaging/bus_router.h"
#include "messaging/bus_transport.h"
#include "messaging/mach_service_connection.h"
#include "tests/messaging/library_object.h"
#include "tests/messaging/library_process.h"
#include "tests/support/awaited.h"
#include "tests/support/private_bus.h"
#include "tests/support/recording_logr.h"

#include <QCoreApplication>
#include <QTimer>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <thread>

namespace havrel {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace havrel::tests;

const QString kService = u"com.havrel.library.1000"_s;

class ConnectionOnTheBus : public ::testing::Test
{
protected:
    ConnectionOnTheBus()
    {
        XPCTransport::setShared(&m_transport);
        m_component = std::make_shared<HVMachServiceConnection>(kService, xpc_options::kNone, libraryProtocol());
        m_component->setInvalidationHandler([this] { ++m_losses; });
        m_posts = NotificationCenter::defaultCenter().addObserver(
            {}, {}, {}, [this](const Notification& each) { m_posted << each.name; });
    }
    ~ConnectionOnTheBus() override
    {
        m_component.reset();
        runMainQueue();
        XPCTransport::setShared(nullptr);
    }
    Q_DISABLE_COPY_MOVE(ConnectionOnTheBus)

    static void runMainQueue()
    {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
    /// Handles events until the loss of the connection has been told.
    void awaitLoss()
    {
        QTimer deadline;
        deadline.setSingleShot(true);
        deadline.start(std::chrono::minutes(1));
        while (m_component->connected() && deadline.isActive())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        EXPECT_FALSE(m_component->connected());
        runMainQueue();
    }
    [[nodiscard]] qsizetype logged(const char* text)
    {
        return m_logr->lines().filter(QLatin1StringView(text).toString()).size();
    }
    /// Has the component note a number, then ends when a barrier has come back or failed; on another thread.
    [[nodiscard]] std::thread noteOnAnotherThread(SyncOutcome& outcome)
    {
        Awaited<bool> sent;
        std::thread thread([this, &outcome, &sent] {
            outcome = m_component->performSynchronousBlock([&sent](const XPCProxyPtr& proxy) {
                proxy->send("note:", {1});
                sent.tell(true);
            });
        });
        EXPECT_TRUE(sent.one().has_value());
        return thread;
    }

    int m_argumentCount = 1;
    std::array<char, 5> m_program{"test"};
    std::array<char*, 2> m_arguments{m_program.data(), nullptr};
    QCoreApplication m_application{m_argumentCount, m_arguments.data()};
    std::shared_ptr<RecordingLogr> m_logr = std::make_shared<RecordingLogr>();
    SharedLoggerScope m_sharedLogger{m_logr};
    PrivateBus m_bus;
    BusTransport m_transport{{.session = m_bus.lastingAddress(), .system = "unix:path=/none"}};
    std::shared_ptr<HVMachServiceConnection> m_component;
    int m_losses = 0;
    QStringList m_posted;
    NotificationRegistration m_posts;
};

TEST_F(ConnectionOnTheBus, IsNobodysUntilTheComponentIsThere)
{
    EXPECT_EQ(m_component->syncReturningError().error, invalidConnectionError());
    EXPECT_EQ(logged("failed to verify connection com.havrel.library.1000 with "), 1);
    const LibraryProcess library(m_bus.address());
    EXPECT_TRUE(m_component->ping());
}

TEST_F(ConnectionOnTheBus, FailsARoundTripAfterTheDeathOfTheComponentThenFindsItsSuccessor)
{
    LibraryProcess library(m_bus.address());
    ASSERT_TRUE(m_component->ping());
    library.kill();
    const SyncOutcome outcome = m_component->syncReturningError();
    EXPECT_FALSE(outcome.succeeded);
    EXPECT_EQ(outcome.error.value_or(Error()).code(), 4099);
    EXPECT_EQ(m_losses, 0) << "that is told by the main queue";
    awaitLoss();
    EXPECT_EQ(m_losses, 1);
    EXPECT_EQ(m_posted, (QStringList{u"HVConnectionDidConnect"_s, u"HVConnectionWasDisconnected"_s}));
    const LibraryProcess successor(m_bus.address());
    EXPECT_TRUE(m_component->ping());
}

TEST_F(ConnectionOnTheBus, EndsARoundTripWithTheDeathOfTheComponent)
{
    LibraryProcess library(m_bus.address());
    ASSERT_TRUE(m_component->ping());
    library.stop();
    SyncOutcome outcome{true};
    std::thread waiting = noteOnAnotherThread(outcome);
    library.kill();
    waiting.join();
    EXPECT_FALSE(outcome.succeeded);
    EXPECT_EQ(outcome.error.value_or(Error()).code(), 4099);
    EXPECT_EQ(logged("message from (null) to com.havrel.library.1000 failed"), 1);
    awaitLoss();
}

TEST_F(ConnectionOnTheBus, EndsAVerificationWithTheDeathOfTheComponent)
{
    LibraryProcess library(m_bus.address());
    library.stop();
    Awaited<bool> begun;
    std::thread connecting([&] {
        begun.tell(true);
        EXPECT_FALSE(m_component->serviceProxy());
    });
    EXPECT_TRUE(begun.one().has_value());
    library.kill();
    connecting.join();
    EXPECT_FALSE(m_component->connected());
}

TEST_F(ConnectionOnTheBus, HearsOfTheDeathOfTheComponentAfterARoundTrip)
{
    LibraryProcess library(m_bus.address());
    ASSERT_TRUE(m_component->ping());
    library.kill();
    awaitLoss();
    EXPECT_EQ(m_losses, 1);
    EXPECT_EQ(logged("message from"), 0) << "nothing was under way";
    EXPECT_FALSE(m_component->ping());
}

TEST_F(ConnectionOnTheBus, FailsABlockBetweenWhoseMessagesTheComponentDies)
{
    LibraryProcess library(m_bus.address());
    ASSERT_TRUE(m_component->ping());
    const auto killBetween = [&library](const XPCProxyPtr& proxy) {
        proxy->send("note:", {1});
        library.kill();
        proxy->send("note:", {2});
    };
    const auto dieOfIt = [](const XPCProxyPtr& proxy) {
        proxy->send("note:", {1});
        proxy->send("burn");
        proxy->send("note:", {2});
    };
    EXPECT_FALSE(m_component->performSynchronousBlock(killBetween));
    awaitLoss();
    const LibraryProcess successor(m_bus.address());
    EXPECT_FALSE(m_component->performSynchronousBlock(dieOfIt));
    awaitLoss();
    EXPECT_EQ(m_losses, 2);
}

TEST_F(ConnectionOnTheBus, DropsTheReplyThatAComponentTakesIntoItsGrave)
{
    LibraryProcess library(m_bus.address());
    const auto lend = [](const XPCProxyPtr& proxy) {
        proxy->send("echo:withReply:", {u"keep"_s}, [](const QVariantList&) { ADD_FAILURE() << "it never answers"; });
    };
    EXPECT_TRUE(m_component->performSynchronousBlock(lend)) << "handled, if not answered";
    library.kill();
    awaitLoss();
    EXPECT_EQ(logged("message from (null) to com.havrel.library.1000 failed"), 1);
}

TEST_F(ConnectionOnTheBus, WaitsForAComponentThatIsStoppedAndGoesOn)
{
    LibraryProcess library(m_bus.address());
    library.stop();
    std::atomic<bool> isBack{false};
    std::thread connecting([&] {
        EXPECT_TRUE(m_component->serviceProxy());
        isBack = true;
    });
    EXPECT_FALSE(isBack) << "it cannot have been verified";
    library.resume();
    connecting.join();
    library.stop();
    SyncOutcome outcome;
    std::thread waiting = noteOnAnotherThread(outcome);
    EXPECT_TRUE(m_component->connected());
    library.resume();
    waiting.join();
    EXPECT_TRUE(outcome.succeeded);
    EXPECT_EQ(m_losses, 0);
}

TEST_F(ConnectionOnTheBus, EndsWithTheBusAndComesBackWithTheNextOne)
{
    LibraryProcess library(m_bus.address());
    ASSERT_TRUE(m_component->ping());
    library.stop();
    SyncOutcome outcome{true};
    std::thread waiting = noteOnAnotherThread(outcome);
    m_bus.end();
    waiting.join();
    EXPECT_FALSE(outcome.succeeded);
    awaitLoss();
    EXPECT_EQ(m_losses, 1);
    EXPECT_EQ(m_component->syncReturningError().error, invalidConnectionError()) << "there is no bus";
    m_bus.startAgain();
    const LibraryProcess successor(m_bus.address());
    EXPECT_TRUE(m_component->ping());
}

TEST_F(ConnectionOnTheBus, OutlivesABusThatIsStoppedForAWhile)
{
    const LibraryProcess library(m_bus.address());
    ASSERT_TRUE(m_component->ping());
    m_bus.stop();
    SyncOutcome outcome;
    std::thread waiting = noteOnAnotherThread(outcome);
    EXPECT_TRUE(m_component->connected());
    m_bus.resume();
    waiting.join();
    EXPECT_TRUE(outcome.succeeded);
    EXPECT_EQ(m_losses, 0);
}

TEST_F(ConnectionOnTheBus, LeavesNothingBehindAfterManyReconnections)
{
    const LibraryProcess library(m_bus.address());
    ASSERT_TRUE(m_component->ping());
    for (int i = 0; i < 1'000; ++i) {
        ASSERT_TRUE(m_component->disconnect());
        ASSERT_TRUE(m_component->ping()) << i;
        runMainQueue();
    }
    ASSERT_TRUE(m_component->ping());
    int error = 0;
    const auto router = m_transport.buses().router(platform::BusKind::Session, error);
    EXPECT_EQ(router->routeCount(), 1U);
    EXPECT_EQ(router->peerCount(), 1U);
    EXPECT_EQ(m_posted.size(), 2'001);
}

} // namespace
} // namespace havrel
