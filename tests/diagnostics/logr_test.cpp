// SPDX-License-Identifier: MIT
#include "diagnostics/logr.h"

#include "foundation/dispatch.h"
#include "tests/support/recording_logr.h"
#include "tests/support/time_zone_of_the_user.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include <unistd.h>

namespace havrel {
namespace {

using tests::RecordingLogr;
using tests::SharedLoggerScope;

LogDate dateAt(std::int64_t seconds, int milliseconds)
{
    return LogDate(std::chrono::seconds(seconds) + std::chrono::milliseconds(milliseconds));
}

TEST(LogClassification, HasATagOfSevenCharactersEach)
{
    const std::vector<const char*> tags{
        "       ", "-------", "Curious", "Caution", "Warning", "Failure", "Minutia", "Details", "Subrosa", "#debug#"};
    for (std::size_t i = 0; i < tags.size(); ++i) {
        const QString tag = QString::fromLatin1(tags.at(i));
        EXPECT_EQ(Logr::nameOfClassification(static_cast<LogClassification>(i)), tag);
        EXPECT_EQ(static_cast<std::size_t>(Logr::classificationFromName(tag)), i);
    }
    EXPECT_EQ(Logr::nameOfClassification(LogClassification::Preferred), QStringLiteral("       "));
}

TEST(LogClassification, IsAllBitsForANameThatIsNone)
{
    for (const QString& name : {QStringLiteral("failure"), QString(), QStringLiteral("Failure "), QStringLiteral("5")})
        EXPECT_EQ(static_cast<std::uint32_t>(Logr::classificationFromName(name)), 0xFFFFFFFFU);
}

TEST(Logr, WritesDateTagMessageAndIdentity)
{
    const TimeZoneOfTheUser zone("CEST-2");
    RecordingLogr logger;
    const auto line = LogLineIdent::logLineIdentifierFromString(QStringLiteral("6.73946252.4312.17"));
    const QString text =
        logger.formatMessage({.message = QStringLiteral("Cannot cr\u00e9ate \u201cx\u201d \\ \U0001F600"),
                              .date = dateAt(1753871696, 789),
                              .inLine = line,
                              .classification = LogClassification::Failure,
                              .classString = QStringLiteral("Failure")});
    logger.logMessage(text);
    EXPECT_EQ(logger.lines(),
              QStringList{QStringLiteral("2025-07-30 12:34:56.789 +0200 Failure Cannot cr\\351ate \\u201cx\\u201d "
                                         "\\\\ \\ud83d\\ude00 [6.73946252.4312.17]")});
}

TEST(Logr, StampsALineWithTheMomentOfTheCall)
{
    const TimeZoneOfTheUser zone("UTC0");
    std::atomic<std::int64_t> seconds = 0;
    RecordingLogr logger({.now = [&seconds] { return dateAt(seconds++, 5); }, .symbolAt = {}});
    logger.writeLine(LogClassification::Plain, nullptr, QStringLiteral("a"));
    logger.writeLine(LogClassification::Plain, nullptr, QStringLiteral("b"));
    const QStringList lines = logger.lines();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].startsWith(QStringLiteral("1970-01-01 00:00:00.005 +0000         a [")))
        << lines[0].toStdString();
    EXPECT_TRUE(lines[1].startsWith(QStringLiteral("1970-01-01 00:00:01.005 +0000         b [")));
}

TEST(Logr, NestsALineUnderAnotherAndUnderTheRoot)
{
    RecordingLogr logger;
    const auto first = logger.writeLine(LogClassification::Failure, nullptr, QStringLiteral("a"));
    const auto second = logger.writeLine(LogClassification::Details, first, QStringLiteral("b"));
    EXPECT_EQ(first->parent(), Logr::rootLogLine());
    EXPECT_EQ(second->description(), first->description() + QStringLiteral(".1"));
    EXPECT_EQ(first->classifications(), 1U << 7);
    EXPECT_EQ(logger.shortLines(first),
              (QStringList{QStringLiteral("Failure a []"), QStringLiteral("Details b [.1]")}));
}

TEST(Logr, WritesALineWithoutClassificationButNotesNone)
{
    RecordingLogr logger;
    const auto top = std::make_shared<LogLineIdent>(nullptr, 1);
    logger.writeLine(LogClassification::Preferred, top, QStringLiteral("a"));
    EXPECT_EQ(top->classifications(), 0U);
    EXPECT_EQ(logger.shortLines(top), QStringList{QStringLiteral("        a [.1]")});
}

TEST(Logr, WritesEveryLineOfAPinUnderItsOwnIdentity)
{
    RecordingLogr logger;
    const auto pin = std::make_shared<LogLineIdent>(nullptr, 9)->pinned();
    EXPECT_EQ(logger.writeLine(LogClassification::Plain, pin, QStringLiteral("a")), pin);
    logger.writeLine(LogClassification::Plain, pin, QStringLiteral("b"));
    EXPECT_EQ(logger.shortLines(pin), (QStringList{QStringLiteral("        a []"), QStringLiteral("        b []")}));
}

TEST(Logr, KeepsTheOrderOfTheLinesOfAThread)
{
    RecordingLogr logger;
    const auto top = std::make_shared<LogLineIdent>(nullptr, 1);
    QStringList expected;
    for (int i = 0; i < 3000; ++i) {
        logger.writeLine(LogClassification::Plain, top, QString::number(i));
        expected << QStringLiteral("        %1 [.%2]").arg(i).arg(i + 1);
    }
    EXPECT_EQ(logger.shortLines(top), expected);
}

TEST(Logr, TakesLinesFromManyThreads)
{
    RecordingLogr logger;
    const auto top = std::make_shared<LogLineIdent>(nullptr, 1);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int n = 0; n < 500; ++n)
                logger.writeLine(LogClassification::Plain, top, QStringLiteral("x"));
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(logger.lines().size(), 2000);
    EXPECT_EQ(top->count(), 2000U);
}

TEST(Logr, ForwardsItsClassOperationsToTheSharedLogger)
{
    const auto logger = std::make_shared<RecordingLogr>();
    const SharedLoggerScope scope(logger);
    EXPECT_EQ(Logr::shared(), logger);
    const auto top = Logr::log(LogClassification::Warning, QStringLiteral("heading"));
    Logr::log(LogClassification::Plain, top, QStringLiteral("message"));
    Logr::logFormat(LogClassification::Curious, top, "{} of {}", 1, QStringLiteral("zwei"));
    Logr::logKey(LogClassification::Details, top, QStringLiteral("key"), 7);
    EXPECT_EQ(logger->shortLines(top),
              (QStringList{QStringLiteral("Warning heading []"),
                           QStringLiteral("        message [.1]"),
                           QStringLiteral("Curious 1 of zwei [.2]"),
                           QStringLiteral("Details key: 7 [.3]")}));
}

TEST(Logr, SurvivesALoggerThatRaises)
{
    class RaisingLogr : public Logr
    {
    public:
        ~RaisingLogr() override { Logr::close(); }
        LogLineIdentPtr
        writeLine(LogClassification classification, const LogLineIdentPtr& inLine, const LogMessage& message) override
        {
            if (message.text() == QStringLiteral("at once"))
                throw std::runtime_error("no");
            return Logr::writeLine(classification, inLine, message);
        }
        void logCString(const QByteArray&) override
        {
            ++m_count;
            throw std::runtime_error("no");
        }
        std::atomic<int> m_count = 0;
    };
    const auto logger = std::make_shared<RaisingLogr>();
    const SharedLoggerScope scope(logger);
    EXPECT_EQ(Logr::log(LogClassification::Plain, QStringLiteral("at once")), nullptr);
    EXPECT_NE(Logr::log(LogClassification::Plain, QStringLiteral("a")), nullptr);
    EXPECT_NE(Logr::log(LogClassification::Plain, QStringLiteral("b")), nullptr);
    EXPECT_NO_THROW(logger->flush());
    EXPECT_EQ(logger->m_count, 2);
}

/// Writes 10,000 lines in ten seconds, twice, and two more.
void flood(Logr& logger, std::atomic<std::int64_t>& milliseconds, const LogLineIdentPtr& top)
{
    for (int window = 0; window < 2; ++window) {
        for (int i = 0; i < 10000; ++i) {
            ++milliseconds;
            logger.writeLine(LogClassification::Plain, top, QString::number(window * 10000 + i));
        }
    }
    logger.writeLine(LogClassification::Plain, top, QStringLiteral("20000"));
    logger.writeLine(LogClassification::Debug, top, QStringLiteral("stopping"));
}

class FloodedLogr : public testing::Test
{
protected:
    class KeepingLogr : public Logr
    {
    public:
        using Logr::Logr;
        ~KeepingLogr() override { Logr::close(); }
        void logCString(const QByteArray& line) override { m_lines << QString::fromLatin1(line); }
        void waitForWriter() { loggerQueue().barrier(); }
        QStringList m_lines; // changes on the writer queue
    };

    std::atomic<std::int64_t> m_milliseconds = 0;
    LogLineIdentPtr m_top = std::make_shared<LogLineIdent>(nullptr, 1);
    KeepingLogr m_logger{
        {.now = [this] { return LogDate(std::chrono::milliseconds(m_milliseconds.load())); }, .symbolAt = {}}};
};

TEST_F(FloodedLogr, HoldsItsLinesBackUntilItIsFlushed)
{
    flood(m_logger, m_milliseconds, m_top);
    m_logger.waitForWriter();
    EXPECT_EQ(m_logger.m_lines.size(), 19999);
    m_logger.flush();
    EXPECT_EQ(m_logger.m_lines.size(), 20002);
    EXPECT_TRUE(m_logger.m_lines.last().contains(QStringLiteral(" stopping [")));
}

TEST_F(FloodedLogr, WritesTheStopLineWhenItIsClosed)
{
    flood(m_logger, m_milliseconds, m_top);
    m_logger.close();
    EXPECT_EQ(m_logger.m_lines.size(), 20002);
    EXPECT_TRUE(m_logger.m_lines.last().contains(QStringLiteral(" stopping [")));
}

TEST_F(FloodedLogr, ReportsLostLinesUnderAFreshLineOfTheRootAsOfTheRelease)
{
    flood(m_logger, m_milliseconds, m_top);
    for (int i = 0; i < 4000; ++i)
        m_logger.writeLine(LogClassification::Plain, m_top, QStringLiteral("more"));
    m_logger.waitForWriter();
    const std::uint64_t next = Logr::rootLogLine()->count() + 1;
    m_milliseconds = 77000;
    const TimeZoneOfTheUser zone("UTC0");
    m_logger.flush();
    EXPECT_EQ(
        m_logger.m_lines.at(19999),
        QStringLiteral("1970-01-01 00:01:17.000 +0000 Warning Logging rate was too fast; 1999 lines discarded [%1.%2]")
            .arg(Logr::rootLogLine()->description())
            .arg(next));
}

TEST_F(FloodedLogr, CanBeClosedOnItsOwnQueue)
{
    class ClosingLogr : public KeepingLogr
    {
    public:
        using KeepingLogr::KeepingLogr;
        void logCString(const QByteArray& line) override
        {
            KeepingLogr::logCString(line);
            close();
        }
    };
    ClosingLogr logger;
    logger.writeLine(LogClassification::Plain, nullptr, QStringLiteral("a"));
    logger.writeLine(LogClassification::Plain, nullptr, QStringLiteral("b"));
    logger.waitForWriter();
    EXPECT_EQ(logger.m_lines.size(), 2);
}

TEST(Logr, FormatsUnderTheRootAndAtDebug)
{
    const auto logger = std::make_shared<RecordingLogr>();
    const SharedLoggerScope scope(logger);
    const auto formatted = Logr::logFormat(LogClassification::Caution, "{:03}", 7);
    const auto message = Logr::debugMessage(QStringLiteral("m"));
    const auto debug = Logr::debugFormat("{}", QStringLiteral("f"));
    for (const auto& line : {formatted, message, debug})
        EXPECT_EQ(line->parent(), Logr::rootLogLine());
    const QStringList lines = logger->shortLines(Logr::rootLogLine());
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines[0].startsWith(QStringLiteral("Caution 007 [")));
    EXPECT_TRUE(lines[1].startsWith(QStringLiteral("#debug# m [")));
    EXPECT_TRUE(lines[2].startsWith(QStringLiteral("#debug# f [")));
}

TEST(Logr, HasOneRootLineForTheProcess)
{
    const auto root = Logr::rootLogLine();
    EXPECT_EQ(root, Logr::rootLogLine());
    EXPECT_EQ(root->depth(), 2U);
    EXPECT_EQ(root->application(), 6U);
    EXPECT_EQ(root->sequence(), static_cast<std::uint64_t>(::getpid()));
}

TEST(Logr, ShowsNothingToTheUserByItself)
{
    RecordingLogr logger;
    logger.openUsingLaunchServices(QVariant());
    logger.openUsingLaunchServices(QVariantMap{{QStringLiteral("any"), 1}});
    EXPECT_EQ(logger.lines(), QStringList());
}

TEST(Logr, WritesEvenAnEmptyMessageAndOneOfAMegabyte)
{
    RecordingLogr logger;
    const auto top = std::make_shared<LogLineIdent>(nullptr, 1);
    logger.writeLine(LogClassification::Plain, top, QString());
    logger.writeLine(LogClassification::Plain, top, QString(1 << 20, u'x'));
    const QStringList lines = logger.shortLines(top);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0], QStringLiteral("         [.1]"));
    EXPECT_EQ(lines[1].size(), 8 + (1 << 20) + 5);
}

} // namespace
} // namespace havrel
