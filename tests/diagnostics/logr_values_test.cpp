// SPDX-License-Identifier: MIT
#include "diagnostics/logr.h"
#include "diagnostics/process_lines.h"
#include "tests/support/recording_logr.h"

#include <gtest/gtest.h>

#include <vector>

namespace havrel {
namespace {

using tests::RecordingLogr;
using tests::SharedLoggerScope;

QString text(const char* latin1)
{
    return QString::fromLatin1(latin1);
}

QStringList texts(std::initializer_list<const char*> list)
{
    QStringList result;
    for (const char* each : list)
        result << text(each);
    return result;
}

class LogrValues : public testing::Test
{
protected:
    RecordingLogr m_logger;
    LogLineIdentPtr m_top = std::make_shared<LogLineIdent>(nullptr, 1);
};

struct ValueRow
{
    QVariant value;
    const char* line;
};

TEST_F(LogrValues, StandBesideTheirKeys)
{
    const std::vector<ValueRow> rows{
        {QVariant(), "Curious k: (null) []"},
        {QVariant::fromValue(nullptr), "Curious k: <null> []"},
        {true, "Curious k: 1 []"},
        {-3, "Curious k: -3 []"},
        {2.5, "Curious k: 2.5 []"},
        {text("v"), "Curious k: v []"},
        {QByteArray("ab"), "Curious k: {length = 2, bytes = 0x6162} []"},
    };
    for (const ValueRow& row : rows) {
        m_logger.clear();
        const auto line = m_logger.writeKey(LogClassification::Curious, m_top, text("k"), row.value);
        EXPECT_EQ(m_logger.shortLines(line), texts({row.line}));
    }
}

TEST_F(LogrValues, NestTheEntriesOfDictionariesAndLists)
{
    const QVariantMap inner{{text("a"), 1}, {text(".p"), 2}};
    const auto line =
        m_logger.writeKey(LogClassification::Curious,
                          m_top,
                          text("k"),
                          QVariantMap{{text("d"), inner}, {text("l"), QVariantList{1, QVariantList{}, inner}}});
    EXPECT_EQ(m_logger.shortLines(line),
              texts({"Curious k: []",
                     "Curious d: [.1]",
                     "Subrosa .p: 2 [.1.1]",
                     "Curious a: 1 [.1.2]",
                     "Curious l: [.2]",
                     "Curious [0]: 1 [.2.1]",
                     "Curious [1]: [.2.2]",
                     "Curious [2]: [.2.3]",
                     "Subrosa .p: 2 [.2.3.1]",
                     "Curious a: 1 [.2.3.2]"}));
}

TEST_F(LogrValues, TakeStringListsAndHashesForWhatTheyAre)
{
    const auto list = m_logger.writeKey(LogClassification::Plain, m_top, text("l"), texts({"x"}));
    EXPECT_EQ(m_logger.shortLines(list), texts({"        l: []", "        [0]: x [.1]"}));
    m_logger.clear();
    const auto hash = m_logger.writeKey(LogClassification::Plain, m_top, text("h"), QVariantHash{{text("a"), 1}});
    EXPECT_EQ(m_logger.shortLines(hash), texts({"        h: []", "        a: 1 [.1]"}));
}

TEST_F(LogrValues, CutWhatIsNestedTooDeep)
{
    QVariant deep = text("bottom");
    for (int i = 0; i < 1000; ++i)
        deep = QVariantList{deep};
    m_logger.writeKey(LogClassification::Plain, m_top, text("k"), deep);
    const QStringList lines = m_logger.shortLines(m_top);
    EXPECT_EQ(lines.size(), 101);
    EXPECT_TRUE(lines.last().startsWith(text("        [0]: ... ["))) << lines.last().toStdString();
}

TEST_F(LogrValues, TakeTheClassificationOfTheirKeyInADictionary)
{
    const UserInfoLogClassifications map{{text("a"), LogClassification::Minutia},
                                         {text(".b"), LogClassification::Minutia}};
    const auto first = m_logger.writeDictionary(
        LogClassification::Details, map, m_top, {{text("a"), 1}, {text(".b"), 2}, {text("c"), 3}, {text(".Help"), 4}});
    EXPECT_EQ(first->description(), text("1.1"));
    EXPECT_EQ(m_logger.shortLines(m_top),
              texts({"Subrosa help: 4 [.1]", "Subrosa .b: 2 [.2]", "Minutia a: 1 [.3]", "Details c: 3 [.4]"}));
    EXPECT_EQ(m_logger.writeDictionary(LogClassification::Details, map, m_top, {}), nullptr);
}

TEST_F(LogrValues, DumpDataBelowItsLength)
{
    const auto line = m_logger.writeData({.classification = LogClassification::Curious,
                                          .inLine = m_top,
                                          .key = text("%1"), // a key is no format
                                          .data = QByteArray(300, 'x'),
                                          .tail = 16});
    const QStringList lines = m_logger.shortLines(line);
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines[0], text("Curious %1: 300 bytes []"));
    EXPECT_TRUE(lines[1].startsWith(text("Details 000000: 78787878 ")));
    EXPECT_EQ(lines[2], text("Details ... 172 more bytes ... [.2]"));
    EXPECT_TRUE(lines[3].startsWith(text("Details 0000ec: 78787878 ")));
    EXPECT_TRUE(lines[3].endsWith(u'|' + QString(64, u'x') + text("| [.3]")));
}

TEST_F(LogrValues, StopAfterTheFirstLineOfALoggerThatKeepsNone)
{
    class ForgetfulLogr : public Logr
    {
    public:
        LogLineIdentPtr writeLine(LogClassification, const LogLineIdentPtr&, const LogMessage&) override
        {
            ++m_count;
            return nullptr;
        }
        int m_count = 0;
    };
    ForgetfulLogr logger;
    logger.writeKey(LogClassification::Plain, nullptr, text("k"), QVariantList{1, 2});
    logger.writeData({.inLine = nullptr, .key = text("k"), .data = "abc"});
    logger.writeException(LogClassification::Plain, {}, nullptr, HVException(text("IO"), text("r")).setPOSIXErr(1));
    EXPECT_EQ(logger.m_count, 3);
}

TEST_F(LogrValues, FormatsAreWrittenUnderALine)
{
    const auto line = m_logger.writeFormat(LogClassification::Curious, m_top, "{}-{}", 1, text("b"));
    EXPECT_EQ(m_logger.shortLines(line), texts({"Curious 1-b []"}));
}

ProcessFacts someFacts()
{
    return {.processName = text("tool"),
            .operatingSystem = text("System 1"),
            .architecture = text("x86_64"),
            .parent = 11,
            .user = 501,
            .effectiveUser = 501,
            .uptime = 12.5,
            .arguments = texts({"tool", "-v"})};
}

TEST(LoggedProcess, TellsItsFactsWhenItStarts)
{
    RecordingLogr logger;
    const auto line = writeStartProcess(logger, text("Havrel"), someFacts());
    EXPECT_EQ(line->parent(), Logr::rootLogLine());
    EXPECT_EQ(logger.shortLines(line),
              texts({"#debug# started Havrel []",
                     "#debug# id: tool [.1]",
                     "#debug# os: System 1 [.2]",
                     "#debug# arch: x86_64 [.3]",
                     "#debug# ppid: 11 [.4]",
                     "#debug# uid: 501 [.5]",
                     "#debug# up: 12.5 [.6]",
                     "#debug# args: [.7]",
                     "#debug# [0]: tool [.7.1]",
                     "#debug# [1]: -v [.7.2]"}));
}

TEST(LoggedProcess, TellsItsEffectiveUserWhenThatIsAnother)
{
    RecordingLogr logger;
    ProcessFacts facts = someFacts();
    facts.effectiveUser = 0;
    const auto line = writeStartProcess(logger, text("Havrel"), facts);
    EXPECT_TRUE(logger.shortLines(line).contains(text("#debug# euid: 0 [.6]")));
}

TEST(LoggedProcess, TellsItsExitStatusUnlessAllIsWell)
{
    RecordingLogr logger;
    writeStopProcess(logger, text("Havrel"), 0);
    writeStopProcess(logger, text("Havrel"), -2);
    const QStringList lines = logger.shortLines(Logr::rootLogLine());
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].startsWith(text("#debug# stopping Havrel [")));
    EXPECT_TRUE(lines[1].startsWith(text("#debug# stopping Havrel, exiting with status -2 [")));
}

TEST(LoggedProcess, IsTheRunningOne)
{
    const auto logger = std::make_shared<RecordingLogr>();
    const SharedLoggerScope scope(logger);
    const auto line = Logr::logStartProcess(text("test"));
    Logr::logStopProcess(text("test"), 3);
    const QString all = logger->shortLines(line).join(u'\n');
    for (const char* part :
         {"#debug# started test []", "id: base_tests", "os: ", "Linux", "up: ", "[0]: ", "exiting with status 3"})
        EXPECT_TRUE(all.contains(text(part))) << part << "\n" << all.toStdString();
}

} // namespace
} // namespace havrel
