// SPDX-License-Identifier: MIT
#include "diagnostics/nslog_logr.h"
#include "diagnostics/null_logr.h"

#include <gtest/gtest.h>

#include <vector>

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
