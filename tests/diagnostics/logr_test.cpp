// SPDX-License-Identifier: MIT
#include "diagnostics/logr.h"

#include "foundation/dispatch.h"
#include "tests/support/recording_logr.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <ctime>
#include <stdexcept>
#include <thread>
#include <vector>

namespace havrel {
namespace {

using tests::RecordingLogr;
using tests::SharedLoggerScope;

LogDate dateAt(std::int64_t seconds, int milliseconds)
{
    return LogDate(std::chrono::seconds(seconds) + std::chrono::milliseconds(milliseconds));
}

/// Sets the process's time zone.
class TimeZoneScope
{
public:
    explicit TimeZoneScope(const char* zone)
        : m_former(qEnvironmentVariable("TZ"))
    {
        set(zone);
    }
    ~TimeZoneScope() { set(m_former.isNull() ? nullptr : m_former.toLocal8Bit().constData()); }
    Q_DISABLE_COPY_MOVE(TimeZoneScope)

private:
    static void set(const char* zone)
    {
        if (zone)
            qputenv("TZ", zone);
        else
            qunsetenv("TZ");
        ::tzset();
    }

    QString m_former;
};

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
    const TimeZoneScope zone("CEST-2");
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
    const TimeZoneScope zone("UTC0");
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
        writeLine(LogClassification classification, const LogLineIdentPtr& inLine, const QString& message) override
        {
            if (message == QStringLiteral("at once"))
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

} // namespace
} // namespace havrel
