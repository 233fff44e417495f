// SPDX-License-Identifier: MIT
#include "foundation/dispatch.h"

#include "diagnostics/exception.h"
#include "foundation/main_queue_wall.h"
#include "tests/support/recording_logr.h"

#include <QThread>
#include <QThreadPool>
#include <QTimer>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <future>
#include <latch>
#include <stdexcept>
#include <thread>
#include <vector>

#include <pthread.h>

namespace havrel {
namespace {

/// An application of the kind that the programs of this house make, on a log that can be read.
template<class Application>
class OnApplication : public ::testing::Test
{
protected:
    QString log() { return m_logger->lines().join(u'\n'); }
    qsizetype timesInLog(const QString& text) { return log().count(text); }
    /// Runs what is queued on the main queue at this moment.
    static void runMainQueue() { QCoreApplication::sendPostedEvents(); }

private:
    int m_argumentCount = 1;
    std::array<char, 5> m_name{"test"};
    std::array<char*, 2> m_arguments{m_name.data(), nullptr};
    std::shared_ptr<tests::RecordingLogr> m_logger = std::make_shared<tests::RecordingLogr>();
    tests::SharedLoggerScope m_scope{m_logger};
    Application m_application{m_argumentCount, m_arguments.data()};
};

/// Keeps the exceptions that reach the event loop.
class KeepingApplication : public QCoreApplication
{
public:
    using QCoreApplication::QCoreApplication;
    bool notify(QObject* receiver, QEvent* event) override
    {
        try {
            return QCoreApplication::notify(receiver, event);
        } catch (...) {
            thrown = std::current_exception();
            return false;
        }
    }

    inline static std::exception_ptr thrown;
};

using MainQueue = OnApplication<KeepingApplication>;
using MainQueueWall = OnApplication<CoreApplication>;

TEST_F(MainQueue, RunsNothingAtOnceEvenOnTheMainThread)
{
    bool ran = false;
    onMainQueue([&] { ran = true; });

    EXPECT_FALSE(ran);
    runMainQueue();
    EXPECT_TRUE(ran);
}

TEST_F(MainQueue, KeepsTheOrder)
{
    QString order;
    for (const char* block : {"a", "b", "c"})
        onMainQueue([&order, block] { order += QLatin1StringView(block); });
    runMainQueue();

    EXPECT_EQ(order, QStringLiteral("abc"));
}

TEST_F(MainQueue, RunsABlockFromABlockLater)
{
    QString order;
    onMainQueue([&] {
        onMainQueue([&] { order += u'2'; });
        order += u'1';
    });
    runMainQueue();
    runMainQueue();

    EXPECT_EQ(order, QStringLiteral("12"));
}

TEST_F(MainQueue, RunsBlocksOfOtherThreadsOnTheMainThread)
{
    QThread* ranOn = nullptr;
    std::thread([&] { onMainQueue([&] { ranOn = QThread::currentThread(); }); }).join();
    runMainQueue();

    EXPECT_EQ(ranOn, QThread::currentThread());
}

TEST_F(MainQueue, LogsWhatLeavesABlockAndThrowsItOn)
{
    KeepingApplication::thrown = nullptr;
    onMainQueue([] { HVException::exceptionWithName(QStringLiteral("IO"), QStringLiteral("disk on fire")).raise(); });
    runMainQueue();

    ASSERT_TRUE(KeepingApplication::thrown);
    EXPECT_THROW(std::rethrow_exception(KeepingApplication::thrown), HVException);
    EXPECT_EQ(timesInLog(QStringLiteral("#debug# disk on fire [")), 1) << log().toStdString();
}

TEST_F(MainQueue, ThrowsAForeignExceptionOnAsItIs)
{
    KeepingApplication::thrown = nullptr;
    onMainQueue([] { throw std::out_of_range("too far"); });
    runMainQueue();

    ASSERT_TRUE(KeepingApplication::thrown);
    EXPECT_THROW(std::rethrow_exception(KeepingApplication::thrown), std::out_of_range);
    EXPECT_EQ(timesInLog(QStringLiteral("too far")), 1) << log().toStdString();
}

TEST_F(MainQueueWall, LogsWhatLeavesABlockOnceAndGoesOn)
{
    bool wentOn = false;
    onMainQueue([] { HVException::exceptionWithName(QStringLiteral("IO"), QStringLiteral("disk on fire")).raise(); });
    onMainQueue([] { throw std::runtime_error("foreign fire"); });
    onMainQueue([] { throw 7; });
    onMainQueue([&] { wentOn = true; });
    runMainQueue();

    EXPECT_TRUE(wentOn);
    EXPECT_EQ(timesInLog(QStringLiteral("#debug# disk on fire [")), 1) << log().toStdString();
    EXPECT_EQ(timesInLog(QStringLiteral("#debug# foreign fire [")), 1) << log().toStdString();
    EXPECT_EQ(timesInLog(QStringLiteral(".Exception: ")), 3) << log().toStdString();
}

TEST_F(MainQueueWall, LogsWhatLeavesAnEventHandlerToo)
{
    onMainQueue([] { throw std::runtime_error("from a block"); });
    runMainQueue();
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [] { throw std::runtime_error("from a handler"); }, Qt::QueuedConnection);
    runMainQueue();

    EXPECT_EQ(timesInLog(QStringLiteral("from a block")), 1) << log().toStdString();
    EXPECT_EQ(timesInLog(QStringLiteral("from a handler")), 1) << log().toStdString();
}

TEST_F(MainQueueWall, KeepsItsEventLoopRunning)
{
    QTimer::singleShot(0, [] { throw std::runtime_error("first"); });
    QTimer::singleShot(0, [] { onMainQueue([] { QCoreApplication::exit(5); }); });

    EXPECT_EQ(QCoreApplication::exec(), 5);
    EXPECT_EQ(timesInLog(QStringLiteral("first")), 1) << log().toStdString();
}

TEST(MainQueueWithoutAnApplication, DropsBlocks)
{
    auto held = std::make_shared<int>(1);
    bool ran = false;
    onMainQueue([&ran, held] { ran = true; });

    EXPECT_FALSE(ran);
    EXPECT_EQ(held.use_count(), 1) << "what the block holds goes with it";
}

using GlobalQueue = OnApplication<CoreApplication>;

TEST_F(GlobalQueue, RunsBlocksOnOtherThreads)
{
    std::promise<QThread*> ranOn;
    onGlobalQueue([&] { ranOn.set_value(QThread::currentThread()); });

    EXPECT_NE(ranOn.get_future().get(), QThread::currentThread());
    globalQueuePool().waitForDone();
}

TEST_F(GlobalQueue, LogsWhatLeavesABlockAndGoesOn)
{
    onGlobalQueue([] { HVException::exceptionWithName(QStringLiteral("IO"), QStringLiteral("disk on fire")).raise(); });
    onGlobalQueue([] { throw std::runtime_error("foreign fire"); });
    std::promise<bool> wentOn;
    onGlobalQueue([&] { wentOn.set_value(true); });

    EXPECT_TRUE(wentOn.get_future().get());
    globalQueuePool().waitForDone();
    EXPECT_EQ(timesInLog(QStringLiteral("#debug# disk on fire [")), 1) << log().toStdString();
    EXPECT_EQ(timesInLog(QStringLiteral("#debug# foreign fire [")), 1) << log().toStdString();
}

TEST(GlobalQueueAfterTheApplication, StillRunsBlocks)
{
    {
        int argumentCount = 1;
        std::array<char, 5> name{"test"};
        std::array<char*, 2> arguments{name.data(), nullptr};
        const CoreApplication application(argumentCount, arguments.data());
    }
    std::promise<void> ran;
    onGlobalQueue([&ran] { ran.set_value(); });

    EXPECT_EQ(ran.get_future().wait_for(std::chrono::minutes(1)), std::future_status::ready);
    globalQueuePool().waitForDone();
}

using SerialQueueOnALog = OnApplication<CoreApplication>;

TEST(SerialQueue, RunsBlocksInTheirOrder)
{
    std::vector<int> order;
    {
        SerialQueue queue(QStringLiteral("test"));
        for (int block = 0; block < 1000; ++block)
            queue.async([&order, block] { order.push_back(block); });
        queue.barrier();
        EXPECT_EQ(order.size(), 1000U);
    }
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(SerialQueue, RunsOneBlockAtATimeAndEachThreadsInItsOrder)
{
    constexpr int kThreads = 4;
    constexpr int kBlocks = 500;
    std::array<int, kThreads> last{};
    std::atomic<int> running = 0;
    bool alone = true;
    bool inOrder = true;
    {
        SerialQueue queue(QStringLiteral("test"));
        std::latch together(kThreads);
        std::vector<std::thread> threads;
        for (std::size_t thread = 0; thread < kThreads; ++thread)
            threads.emplace_back([&, thread] {
                together.arrive_and_wait();
                for (int block = 1; block <= kBlocks; ++block)
                    queue.async([&, thread, block] {
                        alone = running.fetch_add(1) == 0 && alone;
                        inOrder = std::exchange(last[thread], block) == block - 1 && inOrder;
                        running.fetch_sub(1);
                    });
            });
        for (std::thread& thread : threads)
            thread.join();
    }
    EXPECT_TRUE(alone);
    EXPECT_TRUE(inOrder);
    EXPECT_EQ(last, (std::array<int, kThreads>{kBlocks, kBlocks, kBlocks, kBlocks}));
}

TEST(SerialQueue, RunsBlocksOnAThreadOfItsOwnThatBearsItsName)
{
    SerialQueue queue(QStringLiteral("a name of more than 15 bytes"));
    std::thread::id thread;
    std::array<char, 16> name{};
    bool current = false;
    queue.sync([&] {
        thread = std::this_thread::get_id();
        ::pthread_getname_np(::pthread_self(), name.data(), name.size());
        current = queue.isCurrent();
    });

    EXPECT_NE(thread, std::this_thread::get_id());
    EXPECT_STREQ(name.data(), "a name of more ");
    EXPECT_EQ(queue.name(), QStringLiteral("a name of more than 15 bytes"));
    EXPECT_TRUE(current);
    EXPECT_FALSE(queue.isCurrent());
}

TEST(SerialQueue, IsNotCurrentOnAnotherQueue)
{
    SerialQueue queue(QStringLiteral("one"));
    SerialQueue other(QStringLiteral("other"));
    bool current = true;
    other.sync([&] { current = queue.isCurrent(); });

    EXPECT_FALSE(current);
}

TEST(SerialQueue, WaitsForWhatWasQueuedBefore)
{
    SerialQueue queue(QStringLiteral("test"));
    std::promise<void> mayRun;
    int ran = 0;
    queue.async([&] {
        mayRun.get_future().wait();
        ran = 1;
    });
    EXPECT_EQ(ran, 0) << "async does not wait";
    mayRun.set_value();
    int seen = 0;
    queue.sync([&] { seen = ran; });

    EXPECT_EQ(seen, 1);
}

TEST(SerialQueue, RunsASyncBlockFromItselfAtOnce)
{
    SerialQueue queue(QStringLiteral("test"));
    QString order;
    queue.sync([&] {
        queue.async([&] { order += u'3'; });
        queue.sync([&] { order += u'1'; });
        queue.barrier();
        order += u'2';
    });
    queue.barrier();

    EXPECT_EQ(order, QStringLiteral("123"));
}

TEST(SerialQueue, ThrowsOutOfSyncWhatTheBlockThrows)
{
    SerialQueue queue(QStringLiteral("test"));

    EXPECT_THROW(queue.sync([] { throw std::out_of_range("far"); }), std::out_of_range);
    EXPECT_THROW(queue.sync([&] { queue.sync([] { throw std::out_of_range("inner"); }); }), std::out_of_range);
    bool wentOn = false;
    queue.sync([&] { wentOn = true; });
    EXPECT_TRUE(wentOn);
}

TEST_F(SerialQueueOnALog, LogsWhatLeavesABlockAndGoesOn)
{
    SerialQueue queue(QStringLiteral("test"));
    bool wentOn = false;
    queue.async([] { throw std::runtime_error("foreign fire"); });
    queue.async([&] { wentOn = true; });
    queue.barrier();

    EXPECT_TRUE(wentOn);
    EXPECT_EQ(timesInLog(QStringLiteral("#debug# foreign fire [")), 1) << log().toStdString();
}

TEST(SerialQueue, RunsWhatIsQueuedBeforeItGoes)
{
    std::promise<void> mayRun;
    int ran = 0;
    {
        SerialQueue queue(QStringLiteral("test"));
        queue.async([&] { mayRun.get_future().wait(); });
        for (int block = 0; block < 100; ++block)
            queue.async([&] { ++ran; });
        mayRun.set_value();
    }
    EXPECT_EQ(ran, 100);
}

TEST(SerialQueue, RunsWhatItsLastBlocksQueue)
{
    for (int round = 0; round < 200; ++round) {
        int ran = 0;
        std::promise<void> going;
        {
            SerialQueue queue(QStringLiteral("test"));
            queue.async([&] {
                going.get_future().wait();
                queue.async([&] {
                    ++ran;
                    queue.async([&] { ++ran; });
                });
            });
            going.set_value();
        }
        ASSERT_EQ(ran, 2);
    }
}

TEST(SerialQueue, LetsGoOfABlockBeforeTheNextRuns)
{
    SerialQueue queue(QStringLiteral("test"));
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> seen = held;
    bool gone = false;
    std::promise<void> both;
    queue.async([&both] { both.get_future().wait(); });
    queue.async([held = std::move(held)] { (void)*held; });
    queue.async([&] { gone = seen.expired(); });
    both.set_value();
    queue.barrier();

    EXPECT_TRUE(gone);
}

TEST(SerialQueue, MayGoWithoutEverHavingRun)
{
    const SerialQueue queue(QStringLiteral("test"));

    EXPECT_FALSE(queue.isCurrent());
}

} // namespace
} // namespace havrel
