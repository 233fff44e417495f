// SPDX-License-Identifier: MIT
#include "filters/pattern_line.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

namespace havrel {
namespace {

constexpr auto kRefused = AbsolutePaths::Refused;
constexpr auto kPermitted = AbsolutePaths::Permitted;

/// One line: "/" when absolute, the components, patterns in brackets, then the options.
QString shown(const PatternLine& line)
{
    QStringList words;
    if (line.absolute)
        words << QStringLiteral("/");
    for (qsizetype i = 0; i < line.components.size(); ++i) {
        const bool isPattern = line.patternComponents.containsIndex(static_cast<quint64>(i));
        words << (isPattern ? u'[' + line.components[i] + u']' : line.components[i]);
    }
    return words.join(u' ') + u' ' + QString::number(line.options.depth) + u' ' + typeSuffixOf(line.options.type);
}

struct LineRow
{
    const char* text;
    AbsolutePaths absolutePaths;
    const char* shown;
    const char* canonical;
};

constexpr auto kLines = std::to_array<LineRow>({
    // text                      absolute     read                                 canonical
    {"x", kRefused, "x 0 glob", "x"},
    {"Library/Caches", kRefused, "Library Caches 0 glob", "Library/Caches"},
    {"Library//Caches", kRefused, "Library [Caches] 0 glob", "Library//Caches"},
    {"//x", kRefused, "[x] 0 glob", "//x"},
    {"//x/y", kRefused, "[x] [y] 0 glob", "//x/y"},
    {"a//b//c", kRefused, "a [b] c 0 glob", "a//b//c"},
    {"a//b/c", kRefused, "a [b] [c] 0 glob", "a//b/c"},
    {"//a//b//c//d", kRefused, "[a] b [c] d 0 glob", "//a//b//c//d"},
    {"/x", kPermitted, "/ x 0 glob", "/x"},
    {"/x//y", kPermitted, "/ x [y] 0 glob", "/x//y"},
    {"///x", kPermitted, "/ [x] 0 glob", "///x"},
    {"///x//y", kPermitted, "/ [x] y 0 glob", "///x//y"},
    {"//x", kPermitted, "[x] 0 glob", "//x"},
    // Options: only a last component that is a pattern holds them.
    {"//a/+", kRefused, "[a] 18446744073709551615 glob", "//a/+:glob"},
    {"//a/7:regex", kRefused, "[a] 7 re", "//a/7:re"},
    {"//a/7:re", kRefused, "[a] 7 re", "//a/7:re"},
    {"//a/7:shell", kRefused, "[a] 7 glob", "//a/7:glob"},
    {"//a/:re", kRefused, "[a] 0 re", "//a/:re"},
    {"//a/:glob", kRefused, "[a] 0 glob", "//a"},
    {"//a/0", kRefused, "[a] 0 glob", "//a"},
    {"//a/000", kRefused, "[a] 0 glob", "//a"},
    {"//a/5:re:glob", kRefused, "[a] 5 glob", "//a/5:glob"},
    {"//a/5:glob:re", kRefused, "[a] 5 re", "//a/5:re"},
    {"x//5", kRefused, "x 5 glob", "x//5:glob"},
    {"x//:re", kRefused, "x 0 re", "x//:re"},
    {"x//+:re", kRefused, "x 18446744073709551615 re", "x//+:re"},
    {"Users/work//*.tmp/0:glob", kRefused, "Users work [*.tmp] 0 glob", "Users/work//*.tmp"},
    {"//^x$/:re", kRefused, "[^x$] 0 re", "//^x$/:re"},
    {"//a/7:perl", kRefused, "[a] [7:perl] 0 glob", "//a/7:perl"},
    {"//a:b", kRefused, "[a:b] 0 glob", "//a:b"},
    {"//a/5:", kRefused, "[a] [5:] 0 glob", "//a/5:"},
    {"//a/:", kRefused, "[a] [:] 0 glob", "//a/:"},
    {"//a/5:RE", kRefused, "[a] [5:RE] 0 glob", "//a/5:RE"},
    {"//a/5:re:", kRefused, "[a] [5:re:] 0 glob", "//a/5:re:"},
    {"//a/-1", kRefused, "[a] [-1] 0 glob", "//a/-1"},
    {"//a/++", kRefused, "[a] [++] 0 glob", "//a/++"},
    {"//a/1 ", kRefused, "[a] [1 ] 0 glob", "//a/1 "},
    {"//a/\xD9\xA3", kRefused, "[a] [\xD9\xA3] 0 glob", "//a/\xD9\xA3"}, // a digit, but not an ASCII one
    {"//a//5", kRefused, "[a] 5 0 glob", "//a//5"},
    {"a/5", kRefused, "a 5 0 glob", "a/5"},
    {"5", kRefused, "5 0 glob", "5"},
    {"//a/9223372036854775807", kRefused, "[a] 9223372036854775807 glob", "//a/9223372036854775807:glob"},
    {"//a/9223372036854775808", kRefused, "[a] 9223372036854775807 glob", "//a/9223372036854775807:glob"},
    {"//a/18446744073709551615", kRefused, "[a] 9223372036854775807 glob", "//a/9223372036854775807:glob"},
    {"//a/99999999999999999999999999", kRefused, "[a] 9223372036854775807 glob", "//a/9223372036854775807:glob"},
    // Canonical texts that other programs would read differently: kept so.
    {"//5/0", kRefused, "[5] 0 glob", "//5"},
    {"//+/0", kRefused, "[+] 0 glob", "//+"},
    {"//:re/0", kRefused, "[:re] 0 glob", "//:re"},
    {"//a/5/0", kRefused, "[a] [5] 0 glob", "//a/5"},
    // Nothing is trimmed, and nothing but "/" is special.
    {" ", kRefused, "  0 glob", " "},
    {" a //  b", kRefused, " a  [  b] 0 glob", " a //  b"},
    {"..", kRefused, ".. 0 glob", ".."},
    {"a\nb//c\td", kRefused, "a\nb [c\td] 0 glob", "a\nb//c\td"},
    {"\xC3\xA9t\xC3\xA9//\xF0\x9F\x98\x80*",
     kRefused,
     "\xC3\xA9t\xC3\xA9 [\xF0\x9F\x98\x80*] 0 glob",
     "\xC3\xA9t\xC3\xA9//\xF0\x9F\x98\x80*"},
});

TEST(PatternLine, ReadsComponentsAndOptionsAndWritesThemBack)
{
    for (const LineRow& row : kLines) {
        SCOPED_TRACE(row.text);
        const PatternLineReading reading = readPatternLine(QString::fromUtf8(row.text), row.absolutePaths);

        EXPECT_EQ(reading.fault, PatternFault::None);
        EXPECT_TRUE(reading.reachedOptions);
        EXPECT_EQ(shown(reading.line), QString::fromUtf8(row.shown));
        EXPECT_EQ(canonicalTextOf(reading.line), QString::fromUtf8(row.canonical));
    }
}

struct FaultRow
{
    const char* text;
    AbsolutePaths absolutePaths;
    const char* fault;
    bool reachedOptions;
    bool absolute;
};

constexpr auto kFaults = std::to_array<FaultRow>({
    {"", kRefused, "Incomplete pattern", false, false},
    {"/", kRefused, "No pattern defined", true, false},
    {"/", kPermitted, "No pattern defined", true, false},
    {"//", kRefused, "No pattern defined", true, false},
    {"///", kRefused, "No pattern defined", true, false},
    {"////", kRefused, "No pattern defined", true, false},
    {"/////", kPermitted, "No pattern defined", true, false},
    {"//5", kRefused, "No pattern defined", true, false},
    {"//+", kRefused, "No pattern defined", true, false},
    {"//:re", kRefused, "No pattern defined", true, false},
    {"///5", kPermitted, "No pattern defined", true, true},
    {"a/", kRefused, "Trailing / with no options", false, false},
    {"a//", kRefused, "Trailing / with no options", false, false},
    {"//a/", kRefused, "Trailing / with no options", false, false},
    {"//a//", kRefused, "Trailing / with no options", false, false},
    {"/a/", kPermitted, "Trailing / with no options", false, true},
    {"a///", kRefused, "Invalid /// encountered", false, false},
    {"a////", kRefused, "Invalid /// encountered", false, false},
    {"a///b", kRefused, "Invalid /// encountered", false, false},
    {"a////b", kRefused, "Invalid /// encountered", false, false},
    {"a///b/", kRefused, "Invalid /// encountered", false, false},
    {"////x", kRefused, "Too many leading /", false, false},
    {"////x", kPermitted, "Too many leading /", false, false},
    {"//////x", kPermitted, "Too many leading /", false, false},
    {"/////x", kRefused, "Absolute path not permitted here", false, true},
    {"/////x", kPermitted, "Too many leading /", false, true},
    {"/x", kRefused, "Absolute path not permitted here", false, true},
    {"///x", kRefused, "Absolute path not permitted here", false, true},
    {"/x///", kRefused, "Absolute path not permitted here", false, true},
});

TEST(PatternLine, TellsItsFirstFault)
{
    for (const FaultRow& row : kFaults) {
        SCOPED_TRACE(row.text);
        const PatternLineReading reading = readPatternLine(QString::fromUtf8(row.text), row.absolutePaths);

        EXPECT_EQ(patternFaultText(reading.fault), QString::fromUtf8(row.fault));
        EXPECT_EQ(reading.reachedOptions, row.reachedOptions);
        EXPECT_EQ(reading.line.absolute, row.absolute);
    }
}

TEST(PatternLine, HasNoWordsForTheAbsenceOfAFault)
{
    EXPECT_TRUE(patternFaultText(PatternFault::None).isNull());
}

TEST(PatternLine, ReadsTheDepthOfALineThatHoldsOptionsOnly)
{
    EXPECT_EQ(readPatternLine(u"//7:re", kRefused).line.options, (PatternOptions{7, PatternType::RegularExpression}));
}

TEST(PatternLine, KeepsNULsAndBytesOutsideUTF8)
{
    const QString text = u"a\0b//"_qs + QChar(0xDCFF) + u"*\0["_qs;
    ASSERT_EQ(text.size(), 9);

    const PatternLineReading reading = readPatternLine(text, kRefused);

    EXPECT_EQ(reading.line.components, (QStringList{text.first(3), text.sliced(5)}));
    EXPECT_EQ(canonicalTextOf(reading.line), text);
}

struct LongRow
{
    const char* unit;
    PatternFault fault;
    qsizetype components;
};

constexpr qsizetype kLongRepeats = 1 << 20;

constexpr auto kLongLines = std::to_array<LongRow>({
    {"/", PatternFault::NothingDefined, 0},
    {":", PatternFault::None, 1},
    {"//a", PatternFault::None, kLongRepeats},
    {"a/", PatternFault::TrailingSlashWithoutOptions, kLongRepeats},
    {"a", PatternFault::None, 1},
    {"5", PatternFault::None, 1},
    {"[", PatternFault::None, 1},
});

TEST(PatternLine, ReadsLinesOfAMillionUnits)
{
    for (const LongRow& row : kLongLines) {
        SCOPED_TRACE(row.unit);
        const QString text = QString::fromLatin1(row.unit).repeated(kLongRepeats);
        const PatternLineReading reading = readPatternLine(text, kPermitted);

        EXPECT_EQ(reading.fault, row.fault);
        EXPECT_EQ(reading.line.components.size(), row.components);
        if (row.fault == PatternFault::None) {
            EXPECT_EQ(canonicalTextOf(reading.line), text);
        }
    }
}

/// Whether the line's own text ends in something that would be read as its options.
bool endsLikeOptions(const PatternLine& line)
{
    const auto last = static_cast<quint64>(line.components.size()) - 1;
    return line.options == PatternOptions{} && line.patternComponents.containsIndex(last) &&
           readPatternOptions(line.components.constLast());
}

TEST(PatternLine, ReadsBackFromItsCanonicalTextUnlessItEndsLikeOptions)
{
    std::mt19937 random(20260101); // NOLINT(cert-msc51-cpp): the same lines in every run
    constexpr std::u16string_view kUnits = u"///aab*5+:re";
    std::uniform_int_distribution<std::size_t> unit(0, kUnits.size() - 1);
    std::uniform_int_distribution<int> length(1, 12);
    int valid = 0;
    for (int round = 0; round < 100'000; ++round) {
        QString text;
        for (int left = length(random); left > 0; --left)
            text += QChar(kUnits[unit(random)]);
        const PatternLineReading reading = readPatternLine(text, kPermitted);
        if (reading.fault != PatternFault::None || endsLikeOptions(reading.line))
            continue;
        ++valid;
        const QString canonical = canonicalTextOf(reading.line);
        ASSERT_EQ(readPatternLine(canonical, kPermitted).line, reading.line) << qPrintable(text);
    }
    EXPECT_GT(valid, 20'000); // the law was put to the test
}

} // namespace
} // namespace havrel
