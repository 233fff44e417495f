// SPDX-License-Identifier: MIT
// Threads that use one connection object at once, over a real message bus. HAVREL_STRESS_SECONDS says for how long;
// without it, for some rounds.
#include "messaging/bus_router.h"
#include "messaging/mach_service_connection.h"
#include "tests/messaging/bus_world.h"
#include "tests/messaging/library_object.h"
#include "tests/support/recording_logr.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <thread>

namespace havrel {
namespace {

using namespace havrel::tests;
using Clock = std::chrono::steady_clock;

const QString kService = QStringLiteral("com.havrel.library.1000");
constexpr int kRounds = 200;

/// Counts what it gets, and answers.
class Counter final : public XPCExportedObject
{
public:
    void received(const XPCMessage& message) override
    {
        ++count;
        if (message.reply)
            message.reply(message.values);
    }
    std::atomic<quint64> count = 0;
};

/// Whether there is another round.
class Rounds
{
public:
    [[nodiscard]] bool isAnother() { return m_isTimed ? Clock::now() < m_end : m_done++ < kRounds; }

private:
    const int m_seconds = qEnvironmentVariableIntValue("HAVREL_STRESS_SECONDS");
    const bool m_isTimed = m_seconds > 0;
    const Clock::time_point m_end = Clock::now() + std::chrono::seconds(m_seconds);
    int m_done = 0;
};

class ConnectionStress : public ::testing::Test
{
protected:
    ConnectionStress()
    {
        XPCTransport::setShared(&m_world.caller());
        m_listener->setAcceptor([this](const XPCConnectionPtr& connection) {
            connection->setExportedInterface(libraryInterface());
            connection->setExportedObject(m_counter);
            return true;
        });
        EXPECT_EQ(m_listener->resume(), 0);
        m_component = std::make_shared<HVMachServiceConnection>(kService, xpc_options::kNone, libraryProtocol());
    }
    ~ConnectionStress() override
    {
        m_component.reset();
        QCoreApplication::sendPostedEvents();
        XPCTransport::setShared(nullptr);
    }
    Q_DISABLE_COPY_MOVE(ConnectionStress)

    /// Connects, calls and disconnects until the rounds are over.
    void use()
    {
        for (Rounds rounds; rounds.isAnother();) {
            m_component->connect();
            const SyncOutcome outcome = m_component->performSynchronousBlock([this](const XPCProxyPtr& proxy) {
                for (int i = 0; i < 10; ++i)
                    proxy->send("note:", {i});
                proxy->send("echo:withReply:", {1}, [replies = m_replies](const QVariantList&) { ++*replies; });
            });
            m_successes += outcome.succeeded ? 1 : 0;
            m_component->disconnect();
        }
        ++m_finished;
    }
    /// Handles the main queue's events while others work.
    void handleEvents(int threads)
    {
        while (m_finished < threads)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QCoreApplication::sendPostedEvents();
    }

    int m_argumentCount = 1;
    std::array<char, 5> m_program{"test"};
    std::array<char*, 2> m_arguments{m_program.data(), nullptr};
    QCoreApplication m_application{m_argumentCount, m_arguments.data()};
    SharedLoggerScope m_sharedLogger{std::make_shared<RecordingLogr>()};
    BusWorld m_world;
    const std::shared_ptr<Counter> m_counter = std::make_shared<Counter>();
    std::unique_ptr<XPCListener> m_listener = m_world.server().listenerForService(kService, xpc_options::kNone);
    std::shared_ptr<HVMachServiceConnection> m_component;
    std::atomic<int> m_successes = 0;
    const std::shared_ptr<std::atomic<int>> m_replies = std::make_shared<std::atomic<int>>(0); // may come late
    std::atomic<int> m_finished = 0;
};

TEST_F(ConnectionStress, IsSurvivedByThreadsThatConnectCallAndDisconnectAtOnce)
{
    constexpr int kThreads = 2;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([this] { use(); });
    handleEvents(kThreads);
    for (std::thread& each : threads)
        each.join();

    EXPECT_GT(m_successes.load(), 0);
    EXPECT_GT(m_replies->load(), 0);
    EXPECT_TRUE(m_component->ping());
    int error = 0;
    const auto router = m_world.callersBus().buses().router(platform::BusKind::Session, error);
    EXPECT_EQ(router->routeCount(), 1U) << "nothing is left over";
}

} // namespace
} // namespace havrel
