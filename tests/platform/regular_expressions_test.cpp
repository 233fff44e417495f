// SPDX-License-Identifier: MIT
#include "platform/regular_expressions.h"

#include <QString>

#include <gtest/gtest.h>

#include <array>

#include <unicode/utypes.h>

namespace havrel::platform {
namespace {

/// Patterns that regular-expression engines judge differently: here the capture engine's judgement holds.
struct VerdictRow
{
    const char* pattern;
    bool accepted;
};

constexpr auto kVerdicts = std::to_array<VerdictRow>({
    {"^x$", true},
    {"a.*b", true},
    {"\\bword\\b", true},
    {"\\u0041", true},
    {"\\N{DIGIT ONE}", true},
    {"[:alpha:]", true},
    {"[[:alpha:]]", true},
    {"(?<=a{1,3})b", true},
    {"[a--b]", true},
    {"\\q", true},
    {"(?w)a", true},
    {"(?<name>a)", true},
    {"a{2,3}", true},
    {"\\p{Lu}", true},
    {"(?>a+)b", true},
    {" ", true},
    {"", false},
    {"a{", false},
    {"a{,3}", false},
    {"}", false},
    {"(?P<n>a)", false},
    {"(?<a_b>x)", false},
    {"\\0", false},
    {"\\xZ", false},
    {"(?R)", false},
    {"(?|a|b)", false},
    {"[a[b]", false},
    {"(", false},
    {")", false},
    {"*", false},
    {"*.tmp", false},
    {"[", false},
    {"\\", false},
    {"a{3,2}", false},
    {"(?<=a*)b", false},
    {"\\p{NoSuchProperty}", false},
});

TEST(RegularExpressions, AreJudgedAsTheCaptureEngineJudgesThem)
{
    for (const VerdictRow& row : kVerdicts)
        EXPECT_EQ(judgeRegularExpression(QString::fromUtf8(row.pattern)).isAccepted(), row.accepted) << row.pattern;
}

TEST(RegularExpressions, TellWhatIsWrongAndWhere)
{
    const RegularExpressionVerdict verdict = judgeRegularExpression(u"ab(c");

    EXPECT_EQ(verdict.code, U_REGEX_MISMATCHED_PAREN);
    EXPECT_EQ(verdict.line, 1);
    EXPECT_EQ(verdict.offset, 4);
}

TEST(RegularExpressions, OfTheEmptyPatternFailWithoutAPlace)
{
    const RegularExpressionVerdict verdict = judgeRegularExpression({});

    EXPECT_EQ(verdict.code, U_ILLEGAL_ARGUMENT_ERROR);
    EXPECT_EQ(verdict.offset, -1);
}

TEST(RegularExpressions, HoldNULsLoneSurrogatesAndCharactersBeyondTheBasicPlane)
{
    EXPECT_TRUE(judgeRegularExpression(u"a\0b"_qs).isAccepted());
    EXPECT_FALSE(judgeRegularExpression(u"a\0("_qs).isAccepted()); // what follows the NUL counts
    EXPECT_TRUE(judgeRegularExpression(QString(QChar(0xDCFF))).isAccepted());
    EXPECT_TRUE(judgeRegularExpression(u"\U0001F600+").isAccepted());
}

TEST(RegularExpressions, DeeplyNestedAreJudgedWithoutRunningOutOfStack)
{
    constexpr int kDepth = 100'000;
    for (const char16_t* unit : {u"(", u"[", u"(?=", u"(?:a|"})
        EXPECT_FALSE(judgeRegularExpression(QString::fromUtf16(unit).repeated(kDepth)).isAccepted());
}

} // namespace
} // namespace havrel::platform
