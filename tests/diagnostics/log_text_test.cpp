// SPDX-License-Identifier: MIT
// What becomes of texts on their way into the log: formats, reasons, dumps, ASCII.
#include "diagnostics/data_dump.h"
#include "diagnostics/exception_reason.h"
#include "diagnostics/log_message.h"
#include "diagnostics/non_lossy_ascii.h"

#include <gtest/gtest.h>

#include <vector>

namespace havrel {
namespace {

template<class... Arguments>
QString formatted(fmt::format_string<Arguments...> format, Arguments&&... arguments)
{
    return LogMessage::formatted(format, fmt::make_format_args(arguments...)).text();
}

struct ASCIIRow
{
    QString text;
    const char* ascii;
};

TEST(NonLossyASCII, EscapesWhatIsNotASCII)
{
    const std::vector<ASCIIRow> rows{
        {QString(), ""},
        {QStringLiteral("plain"), "plain"},
        {QStringLiteral("a\\b"), "a\\\\b"},
        {QStringLiteral("Cannot cr\u00e9ate \u201cx\u201d"), "Cannot cr\\351ate \\u201cx\\u201d"},
        {QStringLiteral("\u0080\u00ff\u0100"), "\\200\\377\\u0100"},
        {QStringLiteral("\U0001F600"), "\\ud83d\\ude00"},
        {QString(QChar(0xDC80)), "\\udc80"},
        {QString(QChar(0xFFFF)), "\\uffff"},
        {QStringLiteral("tab\tline\nbell\aDEL\x7f"), "tab\tline\nbell\aDEL\x7f"},
        {QString(QChar(u'\0')), "\\000"},
    };
    for (const ASCIIRow& row : rows)
        EXPECT_EQ(nonLossyASCII(row.text), QByteArray(row.ascii));
}

/// What nonLossyASCII came from.
QString readBack(const QByteArray& ascii)
{
    QString text;
    for (qsizetype i = 0; i < ascii.size(); ++i) {
        if (ascii[i] != '\\') {
            text += QLatin1Char(ascii[i]);
        } else if (ascii[i + 1] == '\\') {
            text += u'\\';
            i += 1;
        } else if (ascii[i + 1] == 'u') {
            text += QChar(ascii.mid(i + 2, 4).toUShort(nullptr, 16));
            i += 5;
        } else {
            text += QChar(ascii.mid(i + 1, 3).toUShort(nullptr, 8));
            i += 3;
        }
    }
    return text;
}

TEST(NonLossyASCII, CanBeReadBackWhateverTheText)
{
    QString every;
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit)
        every += QChar(static_cast<char16_t>(unit));
    const QByteArray ascii = nonLossyASCII(every);
    EXPECT_EQ(readBack(ascii), every);
    for (const char byte : ascii)
        ASSERT_GT(byte, 0);
}

struct ReasonRow
{
    QString reason;
    QString cleaned;
};

TEST(ExceptionReason, StandsInOneLine)
{
    const std::vector<ReasonRow> rows{
        {QString(), QString()},
        {QStringLiteral("plain text"), QStringLiteral("plain text")},
        {QStringLiteral("a\nb"), QStringLiteral("a | b")},
        {QStringLiteral("a\r\nb"), QStringLiteral("a |  | b")},
        {QStringLiteral("a\vb\fc"), QStringLiteral("a | b | c")},
        {QStringLiteral("a\u0085b\u2028c\u2029d"), QStringLiteral("a | b | c | d")},
        {QStringLiteral("a\tb\x1b[1m\x7f"), QStringLiteral("a?b?[1m?")},
        {QString(QChar(u'\0')), QStringLiteral("?")},
        {QStringLiteral("a\u200Db\u00ADc\uFEFF"), QStringLiteral("a?b?c?")}, // Cf: joiner, soft hyphen, mark
        {QStringLiteral("\u0378"), QStringLiteral("?")},                     // unassigned
        {QString(QChar(0xFFFE)), QStringLiteral("?")},                       // noncharacters, one beyond 16 bits
        {QStringLiteral("\uFDD0"), QStringLiteral("?")},
        {QStringLiteral("x\U0001FFFFy"), QStringLiteral("x?y")},
        {QStringLiteral("\U000E0001"), QStringLiteral("?")}, // Cf beyond 16 bits
        {QStringLiteral("\U0001F600 \u00e9"), QStringLiteral("\U0001F600 \u00e9")},
        {QString(QChar(0xDC80)), QString(QChar(0xDC80))}, // a file-name byte
        {QString(QChar(0xE000)), QString(QChar(0xE000))}, // private use
    };
    for (const ReasonRow& row : rows)
        EXPECT_EQ(cleanedReason(row.reason), row.cleaned) << row.reason.toStdString();
}

TEST(LogMessage, TakesArgumentsOfEveryKind)
{
    EXPECT_EQ(formatted("plain"), QStringLiteral("plain"));
    EXPECT_EQ(formatted("{} {:x} {:.2f} {}", 1, 255, 1.5, "bytes"), QStringLiteral("1 ff 1.50 bytes"));
    EXPECT_EQ(formatted("<{}> <{:>6}>", QStringLiteral("text"), QStringLiteral("r")),
              QStringLiteral("<text> <     r>"));
    EXPECT_EQ(formatted("{} {}", QVariant(), QVariant(QVariantList{1, QStringLiteral("b")})),
              QStringLiteral("(null) (1, b)"));
    EXPECT_EQ(formatted("{{{}}}", QString()), QStringLiteral("{}"));
}

TEST(LogMessage, LosesNothingOfAText)
{
    QString every;
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit)
        every += QChar(static_cast<char16_t>(unit));
    EXPECT_EQ(formatted("{}", every), every);
    for (unsigned unit = 0xD800; unit <= 0xDFFF; ++unit) {
        const QString lone = QChar(static_cast<char16_t>(unit)) + QStringLiteral("x");
        EXPECT_EQ(formatted("{}", lone), lone);
    }
    const QString nameOfSurrogate = QString(QChar(0xDCED)) + QChar(0xDCB2) + QChar(0xDC80);
    EXPECT_EQ(formatted("{}{}", nameOfSurrogate, nameOfSurrogate), nameOfSurrogate + nameOfSurrogate);
    EXPECT_EQ(formatted("{}", QStringLiteral("\U0001F600\u00e9")), QStringLiteral("\U0001F600\u00e9"));
}

TEST(LogMessage, KeepsBytesThatAreNotUTF8)
{
    EXPECT_EQ(formatted("{}", "a\xE9z"), QStringLiteral("a") + QChar(0xDCE9) + u'z');
}

TEST(LogMessage, GivesTheFormatItselfWhenItDoesNotFit)
{
    EXPECT_EQ(LogMessage::formatted("{} {}", fmt::make_format_args()).text(), QStringLiteral("{} {}"));
}

TEST(DataDump, ShowsBytesAndCharacters)
{
    const QStringList rows = dataDumpRows(QByteArray("A\0z", 3), 0);
    ASSERT_EQ(rows.size(), 1);
    EXPECT_EQ(rows[0].size(), 218);
    EXPECT_TRUE(rows[0].startsWith(QStringLiteral("000000: 41007a   ")));
    EXPECT_EQ(rows[0].mid(151), QStringLiteral(" |A_z") + QString(61, u' ') + u'|');
    EXPECT_EQ(rows[0].indexOf(u'A'), 153);
}

TEST(DataDump, PutsABlankBeforeEveryFourthByteTheFirstIncluded)
{
    QByteArray data;
    for (int i = 0; i < 128; ++i)
        data += static_cast<char>(i * 2);
    const QStringList rows = dataDumpRows(data, 0);
    ASSERT_EQ(rows.size(), 2);
    EXPECT_TRUE(rows[0].startsWith(QStringLiteral("000000: 00020406 080a0c0e 10121416 ")));
    EXPECT_TRUE(rows[1].startsWith(QStringLiteral("000040: 80828486 888a8c8e ")));
    EXPECT_EQ(rows[0].mid(152),
              u'|' + QString(16, u'_') + QStringLiteral(" \"$&(*,.02468:<>@BDFHJLNPRTVXZ\\^`bdfhjlnprtvxz|~|"));
    EXPECT_EQ(rows[1].mid(152), u'|' + QString(64, u'_') + u'|');
}

QStringList offsetsOf(const QStringList& rows)
{
    QStringList offsets;
    for (const QString& row : rows)
        offsets << (row.contains(u':') ? row.section(u':', 0, 0) : row);
    return offsets;
}

QStringList texts(std::initializer_list<const char*> list)
{
    QStringList result;
    for (const char* text : list)
        result << QString::fromLatin1(text);
    return result;
}

TEST(DataDump, LeavesTheMiddleOfLongDataOut)
{
    const auto offsets = [](qsizetype size, std::size_t tail) {
        return offsetsOf(dataDumpRows(QByteArray(size, 'x'), tail));
    };
    EXPECT_EQ(offsets(0, 0), QStringList());
    EXPECT_EQ(offsets(300, 0), texts({"000000", "000040", "000080", "0000c0", "000100"}));
    EXPECT_EQ(offsets(300, 16), texts({"000000", "... 172 more bytes ...", "0000ec"}));
    EXPECT_EQ(offsets(300, 64), texts({"000000", "... 172 more bytes ...", "0000ec"}));
    EXPECT_EQ(offsets(192, 16), texts({"000000", "000040", "000080"})); // not longer than 2 * 64 + 64
    EXPECT_EQ(offsets(193, 1), texts({"000000", "... 65 more bytes ...", "000081"}));
    EXPECT_EQ(offsets(320, 65), texts({"000000", "000040", "000080", "0000c0", "000100"}));
    EXPECT_EQ(offsets(321, 65), texts({"000000", "000040", "... 65 more bytes ...", "0000c1", "000101"}));
    EXPECT_EQ(offsets(64, SIZE_MAX), texts({"000000"}));
    EXPECT_EQ(dataDumpRows(QByteArray(300, 'x'), 16).last().count(u'x'), 64);
}

} // namespace
} // namespace havrel
