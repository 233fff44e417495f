// SPDX-License-Identifier: MIT
#include "diagnostics/backtrace_frame.h"
#include "diagnostics/logr.h"
#include "foundation/error.h"
#include "tests/support/recording_logr.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <atomic>

namespace havrel {
namespace {

using tests::RecordingLogr;
using tests::SharedLoggerScope;

QStringList texts(std::initializer_list<const char*> list)
{
    QStringList result;
    for (const char* text : list)
        result << QString::fromUtf8(text);
    return result;
}

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

/// A shared logger whose clock stands at second `m_seconds` and whose symbols are made up.
class LogrExceptions : public testing::Test
{
protected:
    [[nodiscard]] Logr::Surroundings surroundings()
    {
        return {.now = [this] { return LogDate(std::chrono::seconds(m_seconds)); },
                .symbolAt = [](std::uintptr_t address) -> std::optional<platform::SymbolLocation> {
                    if (address % 2 == 1)
                        return std::nullopt;
                    return platform::SymbolLocation{.symbolAddress = address - 16,
                                                    .symbolName =
                                                        address % 4 == 0 ? QStringLiteral("_Zname") : QString(),
                                                    .imagePath = QStringLiteral("/usr/lib/libx.so"),
                                                    .imageBase = 0x1000};
                }};
    }

    QStringList linesBelow(const LogLineIdentPtr& line) { return m_logger->shortLines(line); }

    static LogLineIdentPtr top() { return std::make_shared<LogLineIdent>(nullptr, 1); }

    static Exception raised(const Exception& exception)
    {
        try {
            exception.raise();
        } catch (const Exception& caught) {
            return caught;
        }
    }

    std::atomic<std::int64_t> m_seconds = 0;
    std::shared_ptr<RecordingLogr> m_logger = std::make_shared<RecordingLogr>(surroundings());
    SharedLoggerScope m_scope{m_logger};
};

TEST_F(LogrExceptions, WriteReasonNameAndFactsAtTheirClassifications)
{
    auto exception =
        HVException::ioErrno(13, text("cannot delete item")).setStrPath(text("/x/y")).setAPI(text("unlink"));
    exception.setSoft(true).setDetail(text("hp"), detail_key::kHelp).setDetail(QVariantList{1, 2}, text("List"));
    const auto line = Logr::logException(exception);
    EXPECT_EQ(linesBelow(line),
              texts({"Failure cannot delete item []",
                     "Subrosa .Exception: IO [.1]",
                     "Subrosa help: hp [.2]",
                     "Subrosa .SoftError: 1 [.3]",
                     "#debug# API: unlink [.4]",
                     "Details ErrDescription: Permission denied [.5]",
                     "Details List: [.6]",
                     "Details [0]: 1 [.6.1]",
                     "Details [1]: 2 [.6.2]",
                     "Minutia POSIXErr: 13 [.7]",
                     "Minutia Path: /x/y [.8]"}));
}

TEST_F(LogrExceptions, UseTheirOwnClassificationWhenNoneIsGiven)
{
    const auto at = top();
    Logr::logException(LogClassification::Preferred, at, HVException(text("Security"), text("a")));
    Logr::logException(LogClassification::Preferred, at, Exception(text("Security"), text("b")));
    Logr::logException(LogClassification::Curious, at, HVException(text("Security"), text("c")));
    EXPECT_EQ(linesBelow(at).filter(QRegularExpression(text("[abc] \\["))),
              texts({"Warning a [.1]", "Failure b [.2]", "Curious c [.3]"}));
}

TEST_F(LogrExceptions, StandInOneLineEach)
{
    const auto line = Logr::logException(Exception(text("N"), text("first\r\nsecond\tthird")));
    EXPECT_EQ(linesBelow(line), texts({"Failure first |  | second?third []", "Subrosa .Exception: N [.1]"}));
}

TEST_F(LogrExceptions, WriteErrorAndCauseBeforeTheOtherFacts)
{
    const Error error(text("Filter"),
                      4,
                      {{error_key::kLocalizedDescription, text("bad pattern")},
                       {error_key::kLocalizedFailureReason, text("too long")}});
    HVException cause(text("IO"), text("the cause"));
    cause.setDetail(1, text("Depth"));
    HVException outer(text("Bug"), text("outer"));
    outer.setDetail(QVariant::fromValue(error), detail_key::kWrappedError).setCause(cause).setDetail(2, text("Depth"));
    const auto line = Logr::logException(LogClassification::Warning, outer);
    EXPECT_EQ(linesBelow(line),
              texts({"Warning outer []",
                     "Subrosa .Exception: Bug [.1]",
                     "Failure bad pattern [.2]",
                     "Details reason: too long [.2.1]",
                     "Details NSLocalizedDescription: bad pattern [.2.2]",
                     "Details NSLocalizedFailureReason: too long [.2.3]",
                     "Details Cause [.3]",
                     "Warning the cause [.3.1]",
                     "Subrosa .Exception: IO [.3.1.1]",
                     "Details Depth: 1 [.3.1.2]",
                     "Details Depth: 2 [.4]"}));
}

TEST_F(LogrExceptions, WriteACauseThatIsNoExceptionLikeAnyFact)
{
    HVException exception(text("IO"), text("r"));
    exception.setCause(std::nullopt).setDetail(text("no error"), detail_key::kWrappedError);
    EXPECT_EQ(linesBelow(Logr::logException(exception)),
              texts({"Failure r []",
                     "Subrosa .Exception: IO [.1]",
                     "Subrosa .Error: no error [.2]",
                     "#debug# Cause: (nil) [.3]"}));
}

TEST_F(LogrExceptions, EndEvenWhenOneIsItsOwnCause)
{
    HVException exception(text("IO"), text("circle"));
    exception.setCause(exception);
    const auto line = Logr::logException(exception);
    EXPECT_EQ(linesBelow(line).filter(text("circle")).size(), 101);
    exception.details().clear(); // or it would keep itself alive
}

TEST_F(LogrExceptions, WriteTheFramesOfABacktraceOnceInSixHours)
{
    const Exception exception = raised(HVException(text("IO"), text("r")));
    const auto count = static_cast<qsizetype>(exception.callStackReturnAddresses().size());
    ASSERT_GT(count, 0);
    std::uintptr_t sum = 0;
    for (const std::uintptr_t address : exception.callStackReturnAddresses())
        sum += address;
    const QString heading = QStringLiteral("#debug# backtrace %1 [.2]").arg(QString::number(sum, 16));

    const auto linesAt = [&](std::int64_t seconds) {
        m_seconds = seconds;
        const auto at = top();
        return linesBelow(Logr::logException(LogClassification::Failure, at, exception))
            .filter(QRegularExpression(text("\\[\\.")));
    };
    const QStringList first = linesAt(100);
    EXPECT_EQ(first.size(), 2 + count);
    EXPECT_EQ(first[1], heading);
    EXPECT_TRUE(first.last().endsWith(QStringLiteral("[.2.%1]").arg(count)));
    m_logger->clear();
    EXPECT_EQ(linesAt(100 + 21600), (QStringList{text("Subrosa .Exception: IO [.1]"), heading}));
    m_logger->clear();
    EXPECT_EQ(linesAt(100 + 21601).size(), 2 + count);
}

TEST_F(LogrExceptions, NameTheSymbolAndImageOfEachFrame)
{
    EXPECT_EQ(backtraceFrameText(0x2000, surroundings().symbolAt(0x2000)),
              text("            0x2000:             0x1ff0 _Zname (/usr/lib/libx.so@            0x1000)"));
    EXPECT_EQ(backtraceFrameText(0x2002, surroundings().symbolAt(0x2002)),
              text("            0x2002:             0x1ff2 unknown (/usr/lib/libx.so@            0x1000)"));
    EXPECT_EQ(backtraceFrameText(0x7fffdeadbeef, std::nullopt), text("    0x7fffdeadbeef: (unknown image)"));
}

TEST_F(LogrExceptions, AreNewUntilTheyWereLoggedLast)
{
    const HVException first(text("IO"), text("first"));
    const HVException second(text("IO"), text("second"));
    EXPECT_NE(Logr::logNewException(first), nullptr);
    EXPECT_EQ(Logr::logNewException(first), nullptr);
    EXPECT_EQ(Logr::logNewException(LogClassification::Debug, Exception(first)), nullptr); // a copy is the same object
    EXPECT_NE(Logr::logNewException(LogClassification::Debug, second), nullptr);
    EXPECT_NE(Logr::logNewException(first), nullptr);
    Logr::logException(second);
    EXPECT_EQ(Logr::logNewException(second), nullptr);
    EXPECT_NE(Logr::logNewException(HVException(text("IO"), text("second"))), nullptr); // equal is not the same
}

TEST_F(LogrExceptions, StayTheLastOnesThoughTheirCausesAreLoggedToo)
{
    HVException outer(text("IO"), text("outer"));
    outer.setCause(HVException(text("IO"), text("inner")));
    EXPECT_NE(Logr::logNewException(outer), nullptr);
    EXPECT_EQ(Logr::logNewException(outer), nullptr);
}

TEST_F(LogrExceptions, HangBelowAMessageAsDetails)
{
    const auto at = top();
    const auto line =
        Logr::logExceptionDetails(LogClassification::Caution, at, text("message"), HVException(text("IO"), text("r")));
    Logr::logExceptionDetails(LogClassification::Caution, at, text("alone"), std::nullopt);
    EXPECT_EQ(line->description(), text("1.1"));
    EXPECT_EQ(
        linesBelow(at),
        texts({"Caution message [.1]", "Details r [.1.1]", "Subrosa .Exception: IO [.1.1.1]", "Caution alone [.2]"}));
}

TEST_F(LogrExceptions, RecordHowAStateWasReached)
{
    logStackTrace(text("odd"));
    const QStringList lines = m_logger->shortLines(Logr::rootLogLine());
    ASSERT_GT(lines.size(), 3);
    EXPECT_TRUE(lines[0].startsWith(text("#debug# stack trace: odd [")));
    EXPECT_TRUE(lines[1].startsWith(text("Subrosa .Exception: NSGenericException")));
    EXPECT_TRUE(lines[2].startsWith(text("#debug# backtrace ")));
}

TEST_F(LogrExceptions, IgnoredOnesStandUnderOneHeading)
{
    Logr::setLogLine(nullptr, text("ShePersisted"));
    Exception::setPersistFailures(true);
    HVException(text("IO"), text("one")).raiseOrPersist();
    HVException(text("IO"), text("two")).raiseOrPersist();
    Exception::setPersistFailures(false);
    const auto heading = Logr::logLineForKey(text("ShePersisted"));
    ASSERT_NE(heading, nullptr);
    EXPECT_EQ(linesBelow(heading).filter(QRegularExpression(text("^(Warning|Failure)"))),
              texts({"Warning Ignored failures []", "Failure one [.1]", "Failure two [.2]"}));
}

TEST_F(LogrExceptions, ErrorsWriteDescriptionReasonAndUserInfo)
{
    const Error error(text("FilterDef"),
                      1,
                      {{error_key::kLocalizedDescription, text("No pattern defined")},
                       {error_key::kLocalizedFailureReason, text("why")},
                       {error_key::kLocalizedRecoverySuggestion, text("how")},
                       {error_key::kFilePath, text("/x")},
                       {text(".private"), 1}});
    const auto at = top();
    const auto line = Logr::logError(LogClassification::Curious, at, error);
    EXPECT_EQ(line->description(), text("1.1"));
    EXPECT_EQ(linesBelow(at),
              texts({"Curious No pattern defined [.1]",
                     "Details reason: why [.1.1]",
                     "Subrosa .private: 1 [.1.2]",
                     "Details NSFilePath: /x [.1.3]",
                     "#debug# NSLocalizedDescription: No pattern defined [.1.4]",
                     "Details NSLocalizedFailureReason: why [.1.5]",
                     "#debug# NSLocalizedRecoverySuggestion: how [.1.6]"}));
}

TEST_F(LogrExceptions, EveryFactThatIsForProgramsIsAtDebugInErrors)
{
    const auto& map = Logr::errorInfoLogClassifications();
    EXPECT_EQ(map.size(), 5);
    for (const char* key : {"NSLocalizedDescription",
                            "NSLocalizedRecoveryOptions",
                            "NSLocalizedRecoverySuggestion",
                            "NSRecoveryAttempter",
                            "NSUnderlyingError"})
        EXPECT_EQ(map.value(text(key), LogClassification::Plain), LogClassification::Debug) << key;
}

TEST_F(LogrExceptions, ErrorsBelowAMessageAreWrapped)
{
    const Error error(text("D"), 7, {{error_key::kLocalizedDescription, text("described")}});
    const auto line = Logr::logError(LogClassification::Warning, text("cannot open"), error);
    EXPECT_EQ(linesBelow(line),
              texts({"Warning cannot open []",
                     "Details general problem [.1]",
                     "Subrosa .Exception: IO [.1.1]",
                     "Failure described [.1.2]",
                     "Details NSLocalizedDescription: described [.1.2.1]",
                     "Details Description: described [.1.3]"}));
}

TEST_F(LogrExceptions, ErrorsWithoutAMessageSpeakForThemselves)
{
    const Error error(text("D"), 1, {{error_key::kLocalizedDescription, text("described")}});
    EXPECT_EQ(linesBelow(Logr::logError(LogClassification::Warning, QString(), error)).first(),
              text("Warning described []"));
    EXPECT_EQ(linesBelow(Logr::logDebugError(error)).filter(text("described []")), texts({"#debug# described []"}));
    const auto line = Logr::logDebugError(std::nullopt);
    EXPECT_EQ(linesBelow(line).filter(text("Unexpected")), texts({"#debug# Unexpected error []"}));
    EXPECT_EQ(linesBelow(Logr::logError(LogClassification::Caution, QStringLiteral(""), error)).filter(text("Caution")),
              texts({"Caution  []"})); // empty is not missing
}

} // namespace
} // namespace havrel
