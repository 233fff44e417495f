// SPDX-License-Identifier: MIT
#include "filters/pattern_component.h"

#include "tests/support/glob_matcher_that_answers.h"

#include <gtest/gtest.h>

#include <array>

namespace havrel {
namespace {

void expectError(const Validity& validity, const char* domain, const char* reason, const QString& description)
{
    ASSERT_FALSE(validity);
    EXPECT_EQ(validity.error->domain(), QLatin1StringView{domain});
    EXPECT_EQ(validity.error->code(), 1);
    EXPECT_EQ(validity.error->localizedFailureReason(), QLatin1StringView{reason});
    EXPECT_EQ(validity.error->localizedDescription(), description);
}

constexpr auto kGlobs = std::to_array<const char*>(
    {"*", "*.tmp", "[a-z]", "[", "[[:foo:]]", "\\", "[[.x.", "]", "", " ", "a\nb", "!(a)", "name.ext"});

TEST(PatternComponent, AcceptsEveryGlobThatTheCLibraryAccepts)
{
    for (const char* glob : kGlobs)
        EXPECT_TRUE(validatePatternComponent(QString::fromUtf8(glob), PatternType::Glob)) << glob;
}

TEST(PatternComponent, AcceptsGlobsWithNULsAndBytesOutsideUTF8)
{
    EXPECT_TRUE(validatePatternComponent(u"a\0["_qs, PatternType::Glob));
    EXPECT_TRUE(validatePatternComponent(QString(QChar(0xDCFF)) + u'*', PatternType::Glob));
}

TEST(PatternComponent, RefusesAGlobForWhichTheMatcherAnswersMoreThanNoMatch)
{
    const GlobMatcherThatAnswers<2> matcher;

    expectError(validatePatternComponent(u"[x"_qs, PatternType::Glob),
                "FilterDef",
                "Invalid glob pattern",
                u"'[x' is not a valid glob pattern"_qs);
}

TEST(PatternComponent, RefusesAGlobWhoseMatcherFails)
{
    const GlobMatcherThatAnswers<-1> matcher; // as without memory

    EXPECT_FALSE(validatePatternComponent(u"*"_qs, PatternType::Glob));
}

TEST(PatternComponent, TakesMatchAndNoMatchAlike)
{
    {
        const GlobMatcherThatAnswers<0> matcher;
        EXPECT_TRUE(validatePatternComponent(u"["_qs, PatternType::Glob));
    }
    const GlobMatcherThatAnswers<1> matcher;
    EXPECT_TRUE(validatePatternComponent(u"["_qs, PatternType::Glob));
}

TEST(PatternComponent, KeepsTheGlobWordingForRegularExpressions)
{
    expectError(validatePatternComponent(u"a("_qs, PatternType::RegularExpression),
                "FilterDef",
                "Invalid glob pattern",
                u"/a(/ is not a valid regular expression"_qs);
    EXPECT_TRUE(validatePatternComponent(u"^a.*$"_qs, PatternType::RegularExpression));
}

TEST(PatternComponent, RefusesTheEmptyRegularExpression)
{
    expectError(validatePatternComponent(QString(), PatternType::RegularExpression),
                "FilterDef",
                "Invalid glob pattern",
                u"// is not a valid regular expression"_qs);
}

TEST(PatternComponent, RefusesTypesThatAreNone)
{
    for (const qint32 type : {-1, 2, 7})
        expectError(validatePatternComponent(u"*"_qs, static_cast<PatternType>(type)),
                    "Internal",
                    "Internal error",
                    u"invalid pattern type"_qs);
}

} // namespace
} // namespace havrel
