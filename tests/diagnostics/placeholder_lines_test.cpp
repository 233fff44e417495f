// SPDX-License-Identifier: MIT
#include "diagnostics/placeholder_lines.h"

#include "tests/support/recording_logr.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace havrel {
namespace {

using tests::RecordingLogr;
using tests::SharedLoggerScope;

LoggedOccurrence occurrenceOf(const char* reason, const LogLineIdentPtr& inLine)
{
    return {.classification = LogClassification::Warning,
            .inLine = inLine,
            .placeholder = QStringLiteral("heading"),
            .key = QStringLiteral("key"),
            .exception = HVException(QStringLiteral("IO"), QString::fromLatin1(reason))};
}

class PlaceholderLinesTest : public testing::Test
{
protected:
    PlaceholderLines m_lines;
    RecordingLogr m_logger;
    LogLineIdentPtr m_top = std::make_shared<LogLineIdent>(nullptr, 1);
};

TEST_F(PlaceholderLinesTest, WriteAHeadingOnce)
{
    const LoggedOccurrence plain{.classification = LogClassification::Warning,
                                 .inLine = m_top,
                                 .placeholder = QStringLiteral("heading"),
                                 .key = QStringLiteral("key")};
    const auto line = m_lines.log(m_logger, plain);
    EXPECT_EQ(m_lines.log(m_logger, plain), line);
    EXPECT_EQ(m_lines.line(QStringLiteral("key")), line);
    EXPECT_EQ(m_logger.shortLines(m_top), QStringList{QStringLiteral("Warning heading [.1]")});
}

TEST_F(PlaceholderLinesTest, WriteTheHeadingAgainOnceItsKeyIsRemoved)
{
    const LoggedOccurrence plain{
        .inLine = m_top, .placeholder = QStringLiteral("heading"), .key = QStringLiteral("key")};
    m_lines.log(m_logger, plain);
    m_lines.setLine(nullptr, QStringLiteral("key"));
    EXPECT_EQ(m_lines.line(QStringLiteral("key")), nullptr);
    m_lines.log(m_logger, plain);
    EXPECT_EQ(m_logger.lines().size(), 2);
}

TEST_F(PlaceholderLinesTest, UseALineThatWasStoredByHand)
{
    m_lines.setLine(m_top, QStringLiteral("key"));
    EXPECT_EQ(m_lines.log(m_logger, {.inLine = nullptr, .placeholder = {}, .key = QStringLiteral("key")}), m_top);
    EXPECT_TRUE(m_logger.lines().isEmpty());
}

TEST_F(PlaceholderLinesTest, WriteAnExceptionUnderItsReasonUnderTheHeading)
{
    const auto line = m_lines.log(m_logger, occurrenceOf("no\nspace", m_top));
    EXPECT_EQ(line->description(), QStringLiteral("1.1"));
    EXPECT_EQ(m_logger.shortLines(line),
              (QStringList{QStringLiteral("Warning heading []"),
                           QStringLiteral("        no\nspace [.1]"), // as it is, unlike the exception's own line
                           QStringLiteral("#debug# no | space [.1.1]"),
                           QStringLiteral("Subrosa .Exception: IO [.1.1.1]")}));
    EXPECT_EQ(m_lines.line(QStringLiteral("keyno\nspace"))->description(), QStringLiteral("1.1.1"));
}

TEST_F(PlaceholderLinesTest, WriteSixtyExceptionsOfAReasonAndNoMore)
{
    for (int i = 0; i < 75; ++i)
        m_lines.log(m_logger, occurrenceOf("first", m_top));
    m_lines.log(m_logger, occurrenceOf("second", m_top));
    EXPECT_EQ(m_logger.lines().filter(QStringLiteral("#debug# first")).size(), 60);
    EXPECT_EQ(m_logger.lines().filter(QStringLiteral("#debug# second")).size(), 1);
    EXPECT_EQ(m_logger.lines().filter(QStringLiteral("heading")).size(), 1);
}

TEST_F(PlaceholderLinesTest, GiveTheSameLineToEveryThread)
{
    std::vector<LogLineIdentPtr> answers(8);
    std::vector<std::thread> threads;
    for (LogLineIdentPtr& answer : answers)
        threads.emplace_back([this, &answer] { answer = m_lines.log(m_logger, occurrenceOf("r", m_top)); });
    for (std::thread& thread : threads)
        thread.join();
    for (const LogLineIdentPtr& answer : answers)
        EXPECT_EQ(answer, answers.front());
    EXPECT_EQ(m_logger.lines().filter(QStringLiteral("heading")).size(), 1);
    EXPECT_EQ(m_logger.lines().filter(QStringLiteral("#debug# r")).size(), 8);
}

TEST_F(PlaceholderLinesTest, StopAtALoggerThatKeepsNoLines)
{
    class ForgetfulLogr : public Logr
    {
    public:
        LogLineIdentPtr writeLine(LogClassification, const LogLineIdentPtr&, const LogMessage& message) override
        {
            m_messages << message.text();
            return nullptr;
        }
        QStringList m_messages;
    };
    ForgetfulLogr logger;
    EXPECT_EQ(m_lines.log(logger, occurrenceOf("r", nullptr)), nullptr);
    EXPECT_EQ(m_lines.log(logger, occurrenceOf("r", nullptr)), nullptr);
    EXPECT_EQ(logger.m_messages, (QStringList{QStringLiteral("heading"), QStringLiteral("heading")}));
}

TEST_F(PlaceholderLinesTest, MayBeUsedByALoggerWhileItIsWritingOne)
{
    class RecursiveLogr : public RecordingLogr
    {
    public:
        explicit RecursiveLogr(PlaceholderLines& lines)
            : m_lines(lines)
        {
        }
        LogLineIdentPtr
        writeLine(LogClassification classification, const LogLineIdentPtr& inLine, const LogMessage& message) override
        {
            if (message.text() == QStringLiteral("heading"))
                m_lines.log(
                    *this, {.inLine = nullptr, .placeholder = QStringLiteral("inner"), .key = QStringLiteral("inner")});
            return RecordingLogr::writeLine(classification, inLine, message);
        }
        PlaceholderLines& m_lines;
    };
    RecursiveLogr logger(m_lines);
    m_lines.log(logger, {.inLine = nullptr, .placeholder = QStringLiteral("heading"), .key = QStringLiteral("outer")});
    EXPECT_EQ(logger.lines().size(), 2);
}

TEST(LogrPlaceholders, AreThoseOfTheProcess)
{
    const auto logger = std::make_shared<RecordingLogr>();
    const SharedLoggerScope scope(logger);
    const QString key = QStringLiteral("LogrPlaceholders");
    Logr::setLogLine(nullptr, key);
    const auto line = Logr::logPlaceholder(LogClassification::Curious, QStringLiteral("heading"), key);
    EXPECT_EQ(Logr::logPlaceholder(LogClassification::Curious, nullptr, QStringLiteral("other"), key), line);
    EXPECT_EQ(Logr::logLineForKey(key), line);
    EXPECT_EQ(line->parent(), Logr::rootLogLine());
    Logr::logPlaceholder({.classification = LogClassification::Curious,
                          .inLine = nullptr,
                          .placeholder = QStringLiteral("heading"),
                          .key = key,
                          .exception = Exception(QStringLiteral("N"), QStringLiteral("r"))});
    EXPECT_EQ(logger->shortLines(line).size(), 4);
    Logr::setLogLine(nullptr, key);
    EXPECT_EQ(Logr::logLineForKey(key), nullptr);
}

} // namespace
} // namespace havrel
