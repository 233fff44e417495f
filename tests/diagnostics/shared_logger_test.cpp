// SPDX-License-Identifier: MIT
#include "diagnostics/shared_logger.h"

#include "diagnostics/logger_registry.h"
#include "diagnostics/nslog_logr.h"
#include "diagnostics/null_logr.h"
#include "foundation/dispatch.h"
#include "tests/support/recording_logr.h"

#include <QThreadPool>

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <stdexcept>

namespace havrel {
namespace {

using tests::RecordingLogr;

const QString kConsole = QStringLiteral("NSLogLogr");
const QString kNowhere = QStringLiteral("NullLogr");
const QString kFile = QStringLiteral("FileLogr");

LoggerFactory raising()
{
    return []() -> LogrPtr { throw HVException(QStringLiteral("IO"), QStringLiteral("cannot open log file")); };
}

LoggerFactory making(const LogrPtr& logger)
{
    return [logger] { return logger; };
}

/// A logger that notes that it was closed.
class ClosableLogr : public RecordingLogr
{
public:
    void close() override
    {
        RecordingLogr::close();
        ++m_closed;
    }
    std::atomic<int> m_closed = 0;
};

class SharedLoggerTest : public testing::Test
{
protected:
    LogrPtr chosenBy(EffectiveUser user)
    {
        SharedLogger shared(m_registry, user);
        return shared.get();
    }

    LoggerRegistry m_registry;
    QStringList m_messages;
    std::shared_ptr<NSLogLogr> m_console = std::make_shared<NSLogLogr>(
        [this](platform::JournalPriority, const QString& message) { m_messages << message; });
    LogrPtr m_nowhere = std::make_shared<RecordingLogr>();
};

TEST_F(SharedLoggerTest, FallsBackToTheConsoleForAnOrdinaryUserAndToNowhereForRoot)
{
    m_registry.add(kConsole, making(m_console));
    m_registry.add(kNowhere, making(m_nowhere));
    EXPECT_EQ(chosenBy(EffectiveUser::Ordinary), m_console);
    EXPECT_EQ(chosenBy(EffectiveUser::Root), m_nowhere);
    EXPECT_TRUE(m_messages.isEmpty()); // that there is no such class as the file logger is no failure
}

TEST_F(SharedLoggerTest, TakesTheSecondFallbackWhenTheFirstCannotBeMade)
{
    m_registry.add(kConsole, raising());
    m_registry.add(kNowhere, making(m_nowhere));
    EXPECT_EQ(chosenBy(EffectiveUser::Ordinary), m_nowhere);
    LoggerRegistry other;
    other.add(kConsole, making(m_console));
    other.add(kNowhere, making(nullptr));
    EXPECT_EQ(SharedLogger(other, EffectiveUser::Root).get(), m_console);
}

TEST_F(SharedLoggerTest, SaysWhatItTriedWhenNoFallbackCanBeMade)
{
    m_registry.add(kConsole, raising());
    const auto reasonFor = [this](EffectiveUser user) {
        try {
            chosenBy(user);
        } catch (const Exception& exception) {
            return exception.reason();
        }
        return QString();
    };
    EXPECT_EQ(reasonFor(EffectiveUser::Ordinary),
              QStringLiteral("could not create fallback Logger; tried NSLogLogr, NullLogr"));
    EXPECT_EQ(reasonFor(EffectiveUser::Root),
              QStringLiteral("could not create fallback Logger; tried NullLogr, NSLogLogr"));
}

TEST_F(SharedLoggerTest, ReplacesAndClosesTheFallbackWhenAFileLoggerCanBeMade)
{
    const auto fallback = std::make_shared<ClosableLogr>();
    const auto file = std::make_shared<ClosableLogr>();
    m_registry.add(kConsole, making(fallback));
    m_registry.add(kFile, making(file));
    SharedLogger shared(m_registry, EffectiveUser::Ordinary);
    EXPECT_EQ(shared.get(), file);
    EXPECT_EQ(shared.get(), file);
    EXPECT_EQ(fallback->m_closed, 1);
    EXPECT_EQ(file->m_closed, 0);
}

TEST_F(SharedLoggerTest, SaysOnTheConsoleThatTheFileLoggerCannotBeMade)
{
    m_registry.add(kConsole, making(m_console));
    m_registry.add(kFile, raising());
    EXPECT_EQ(chosenBy(EffectiveUser::Ordinary), m_console);
    EXPECT_EQ(m_messages,
              (QStringList{QStringLiteral("could not create standard logger; logging to console"),
                           QStringLiteral("cannot open log file")}));
}

TEST_F(SharedLoggerTest, SaysNothingElsewhereWhenTheFileLoggerCannotBeMade)
{
    const auto fallback = std::make_shared<RecordingLogr>();
    m_registry.add(kNowhere, making(fallback));
    m_registry.add(kFile, raising());
    EXPECT_EQ(chosenBy(EffectiveUser::Root), fallback);
    EXPECT_TRUE(fallback->lines().isEmpty());
}

TEST_F(SharedLoggerTest, GivesTheFallbackToWhoeverLogsWhileTheFileLoggerIsMade)
{
    m_registry.add(kConsole, making(m_console));
    const auto file = std::make_shared<RecordingLogr>();
    SharedLogger shared(m_registry, EffectiveUser::Ordinary);
    LogrPtr own;
    LogrPtr foreign;
    m_registry.add(kFile, [&] {
        own = shared.get();
        foreign = std::async(std::launch::async, [&shared] { return shared.get(); }).get();
        return file;
    });
    EXPECT_EQ(shared.get(), file);
    EXPECT_EQ(own, m_console);
    EXPECT_EQ(foreign, m_console);
}

TEST_F(SharedLoggerTest, GivesNothingToAFallbackThatLogsWhileItIsMade)
{
    SharedLogger shared(m_registry, EffectiveUser::Ordinary);
    LogrPtr own = m_nowhere;
    m_registry.add(kConsole, [&] {
        own = shared.get();
        return m_console;
    });
    EXPECT_EQ(shared.get(), m_console);
    EXPECT_EQ(own, nullptr);
}

TEST_F(SharedLoggerTest, ChoosesOnceForManyThreads)
{
    std::atomic<int> made = 0;
    m_registry.add(kConsole, [&] {
        ++made;
        return m_console;
    });
    SharedLogger shared(m_registry, EffectiveUser::Ordinary);
    std::vector<std::future<LogrPtr>> answers;
    for (int i = 0; i < 8; ++i)
        answers.push_back(std::async(std::launch::async, [&shared] { return shared.get(); }));
    for (auto& answer : answers)
        EXPECT_EQ(answer.get(), m_console);
    EXPECT_EQ(made, 1);
}

TEST_F(SharedLoggerTest, ChoosesAgainAfterClosing)
{
    int made = 0;
    std::shared_ptr<ClosableLogr> first = std::make_shared<ClosableLogr>();
    m_registry.add(kConsole, [&]() -> LogrPtr { return made++ == 0 ? LogrPtr(first) : m_console; });
    SharedLogger shared(m_registry, EffectiveUser::Ordinary);
    EXPECT_EQ(shared.get(), first);
    shared.close();
    EXPECT_EQ(first->m_closed, 1);
    shared.close();
    EXPECT_EQ(first->m_closed, 1);
    EXPECT_EQ(shared.get(), m_console);
}

TEST_F(SharedLoggerTest, DoesNotCloseALoggerThatIsSetAgain)
{
    const auto logger = std::make_shared<ClosableLogr>();
    SharedLogger shared(m_registry, EffectiveUser::Ordinary);
    shared.set(logger);
    shared.set(logger);
    EXPECT_EQ(logger->m_closed, 0);
    EXPECT_EQ(shared.get(), logger);
}

TEST_F(SharedLoggerTest, CanBeClosedOnTheWriterQueueEvenAsTheLastHolder)
{
    // As a file logger does whose write fails.
    class FailingLogr : public Logr
    {
    public:
        FailingLogr(SharedLogger& shared, std::promise<void>& gone)
            : m_shared(shared)
            , m_gone(gone)
        {
        }
        ~FailingLogr() override
        {
            Logr::close();
            m_gone.set_value();
        }
        void logCString(const QByteArray&) override { m_shared.close(); }

    private:
        SharedLogger& m_shared;
        std::promise<void>& m_gone;
    };
    SharedLogger shared(m_registry, EffectiveUser::Ordinary);
    std::promise<void> gone;
    shared.set(std::make_shared<FailingLogr>(shared, gone));
    shared.get()->writeLine(LogClassification::Plain, nullptr, QStringLiteral("line"));
    EXPECT_EQ(gone.get_future().wait_for(std::chrono::seconds(30)), std::future_status::ready);
    globalQueuePool().waitForDone();
}

TEST(LoggerRegistry, KnowsTheFallbacksOfTheProcess)
{
    EXPECT_NE(dynamic_cast<NSLogLogr*>(LoggerRegistry::shared().make(kConsole).get()), nullptr);
    EXPECT_NE(dynamic_cast<NullLogr*>(LoggerRegistry::shared().make(kNowhere).get()), nullptr);
    EXPECT_EQ(LoggerRegistry::shared().make(QStringLiteral("NoSuchLogr")), nullptr);
}

TEST(LoggerRegistry, ReplacesAClassOfTheSameName)
{
    LoggerRegistry registry;
    registry.add(kFile, raising());
    registry.add(kFile, making(nullptr));
    EXPECT_EQ(registry.make(kFile), nullptr);
}

TEST_F(SharedLoggerTest, KeepsALoggerThatIsInstalledWhileTheFileLoggerIsMade)
{
    const auto fallback = std::make_shared<ClosableLogr>();
    const auto file = std::make_shared<ClosableLogr>();
    const auto given = std::make_shared<ClosableLogr>();
    SharedLogger shared(m_registry, EffectiveUser::Ordinary);
    m_registry.add(kConsole, making(fallback));
    m_registry.add(kFile, [&]() -> LogrPtr {
        shared.set(given);
        return file;
    });
    EXPECT_EQ(shared.get(), given);
    EXPECT_EQ(given->m_closed, 0);
    EXPECT_EQ(file->m_closed, 1);
    EXPECT_EQ(fallback->m_closed, 1);
}

} // namespace
} // namespace havrel
