// SPDX-License-Identifier: MIT
#include "diagnostics/nslog_logr.h"
#include "diagnostics/null_logr.h"
#include "tests/support/replaced_journal.h"

#include <QByteArrayList>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <vector>

#include <sys/uio.h>

namespace havrel {
namespace {

using platform::JournalPriority;

struct Message
{
    JournalPriority priority;
    QString text;
    friend bool operator==(const Message&, const Message&) = default;
};

class ConsoleLoggers : public testing::Test
{
protected:
    ConsoleSink sink()
    {
        return [this](JournalPriority priority, const QString& text) { m_messages.push_back({priority, text}); };
    }

    std::vector<Message> m_messages;
    LogLineIdentPtr m_line = std::make_shared<LogLineIdent>(nullptr, 6);
};

TEST_F(ConsoleLoggers, WriteTheBareMessageAtThePriorityOfItsClassification)
{
    NSLogLogr logger(sink());
    const std::vector<JournalPriority> expected{JournalPriority::Notice,
                                                JournalPriority::Notice,
                                                JournalPriority::Notice,
                                                JournalPriority::Notice,
                                                JournalPriority::Error,
                                                JournalPriority::Error,
                                                JournalPriority::Info,
                                                JournalPriority::Info,
                                                JournalPriority::Notice, // not written
                                                JournalPriority::Debug};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        m_messages.clear();
        logger.writeLine(static_cast<LogClassification>(i), nullptr, QStringLiteral("%s \u00e9"));
        if (static_cast<LogClassification>(i) == LogClassification::Subrosa)
            EXPECT_TRUE(m_messages.empty());
        else
            EXPECT_EQ(m_messages, (std::vector<Message>{{expected.at(i), QStringLiteral("%s \u00e9")}})) << i;
    }
}

TEST_F(ConsoleLoggers, AnswerTheInLineAsItWasAndTouchNothingInIt)
{
    NSLogLogr logger(sink());
    EXPECT_EQ(logger.writeLine(LogClassification::Failure, m_line, QStringLiteral("a")), m_line);
    EXPECT_EQ(logger.writeLine(LogClassification::Subrosa, m_line, QStringLiteral("a")), m_line);
    EXPECT_EQ(logger.writeLine(LogClassification::Failure, nullptr, QStringLiteral("a")), nullptr);
    EXPECT_EQ(m_line->count(), 0U);
    EXPECT_EQ(m_line->classifications(), 0U);
    logger.close();
}

TEST_F(ConsoleLoggers, WriteNoDetailsOfAnExceptionUnderTheRoot)
{
    NSLogLogr logger(sink());
    const auto exception = HVException(QStringLiteral("IO"), QStringLiteral("r")).setPOSIXErr(13);
    const auto& map = HVException::userInfoLogClassifications();
    EXPECT_EQ(logger.writeException(LogClassification::Failure, map, nullptr, exception), nullptr);
    EXPECT_EQ(m_messages, (std::vector<Message>{{JournalPriority::Error, QStringLiteral("r")}}));
    m_messages.clear();
    EXPECT_EQ(logger.writeException(LogClassification::Failure, map, m_line, exception), m_line);
    EXPECT_EQ(m_messages,
              (std::vector<Message>{{JournalPriority::Error, QStringLiteral("r")},
                                    {JournalPriority::Info, QStringLiteral("ErrDescription: Permission denied")},
                                    {JournalPriority::Info, QStringLiteral("POSIXErr: 13")}}));
}

TEST_F(ConsoleLoggers, SayOnceThatLinesAreDiscardedHoweverManyLoggersDoIt)
{
    std::atomic_flag said;
    NullLogr first(sink(), said);
    NullLogr second(sink(), said);
    EXPECT_TRUE(m_messages.empty());
    first.writeLine(LogClassification::Failure, nullptr, QStringLiteral("a"));
    first.writeLine(LogClassification::Failure, nullptr, QStringLiteral("b"));
    second.writeLine(LogClassification::Failure, nullptr, QStringLiteral("c"));
    EXPECT_EQ(m_messages,
              (std::vector<Message>{{JournalPriority::Notice, QStringLiteral("log output is being discarded")}}));
}

/// Two null loggers in a process that has made none before, on the console of a system without a journal.
[[noreturn]] void discardLinesAndExit()
{
    const tests::ReplacedJournal none([](const iovec*, int) { return -ENOENT; });
    for (int i = 0; i < 2; ++i) {
        NullLogr logger;
        logger.writeLine(LogClassification::Failure, nullptr, QStringLiteral("a"));
        logger.writeLine(LogClassification::Failure, nullptr, QStringLiteral("b"));
    }
    std::exit(0);
}

TEST_F(ConsoleLoggers, SayOnceInAProcessOnTheRealConsoleThatLinesAreDiscarded)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // the child is a new process, not a copy of this one
    EXPECT_EXIT(
        discardLinesAndExit(), testing::ExitedWithCode(0), testing::Eq(std::string("log output is being discarded\n")));
}

TEST_F(ConsoleLoggers, WriteToTheRealConsole)
{
    QByteArrayList sent;
    const tests::ReplacedJournal journal([&sent](const iovec* fields, int count) {
        for (int i = 0; i < count; ++i)
            sent << QByteArray(static_cast<const char*>(fields[i].iov_base), qsizetype(fields[i].iov_len));
        return 0;
    });
    NSLogLogr().writeLine(LogClassification::Failure, nullptr, QStringLiteral("a"));
    EXPECT_EQ(sent.first(2), (QByteArrayList{"MESSAGE=a", "PRIORITY=3"}));
}

TEST_F(ConsoleLoggers, AnswerTheNextLineThatIsNotWritten)
{
    std::atomic_flag said;
    NullLogr logger(sink(), said);
    EXPECT_EQ(logger.writeLine(LogClassification::Failure, nullptr, QStringLiteral("a")), nullptr);
    EXPECT_EQ(logger.writeLine(LogClassification::Failure, m_line, QStringLiteral("a"))->description(),
              QStringLiteral("6.1"));
    EXPECT_EQ(logger.writeLine(LogClassification::Failure, m_line, QStringLiteral("a"))->description(),
              QStringLiteral("6.2"));
    logger.close();
}

} // namespace
} // namespace havrel
