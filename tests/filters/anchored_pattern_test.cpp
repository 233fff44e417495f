// SPDX-License-Identifier: MIT
#include "filters/anchored_pattern.h"

#include <gtest/gtest.h>

#include <array>

namespace havrel {
namespace {

struct AnchorRow
{
    const char* anchor;
    const char* fault; // null: none
};

constexpr auto kAnchors = std::to_array<AnchorRow>({
    {"", nullptr},
    {"a", nullptr},
    {"a/b/c", nullptr},
    {"/a", nullptr},
    {"/a/b", nullptr},
    {" ", nullptr},
    {"/", "Too many leading /"},
    {"//", "Too many leading /"},
    {"//a", "Too many leading /"},
    {"///a/", "Too many leading /"},
    {"a/", "Trailing / is not allowed here"},
    {"/a/", "Trailing / is not allowed here"},
    {"a/b/", "Trailing / is not allowed here"},
    {"a//", "Successive // is not allowed here"},
    {"a///", "Successive // is not allowed here"},
    {"a//b", "Successive // is not allowed here"},
    {"a///b", "Successive // is not allowed here"},
    {"/a//b", "Successive // is not allowed here"},
    {"a/b//c/", "Successive // is not allowed here"},
});

TEST(AnchoredPattern, TellsTheFirstFaultOfItsAnchor)
{
    for (const AnchorRow& row : kAnchors) {
        SCOPED_TRACE(row.anchor);
        EXPECT_EQ(patternFaultText(faultOfAnchor(QString::fromUtf8(row.anchor))), QString::fromUtf8(row.fault));
    }
}

TEST(AnchoredPattern, AcceptsAMissingAnchorLikeAnEmptyOne)
{
    EXPECT_EQ(faultOfAnchor(QString()), PatternFault::None);
}

TEST(AnchoredPattern, TellsTheFaultOfAMillionSlashes)
{
    EXPECT_EQ(faultOfAnchor(QString(1 << 20, u'/')), PatternFault::TooManyLeadingSlashes);
    EXPECT_EQ(faultOfAnchor(QStringLiteral("a/").repeated(1 << 20)), PatternFault::TrailingSlash);
}

TEST(AnchoredPattern, WantsAPatternWithoutSlashes)
{
    EXPECT_EQ(faultOfSinglePattern(QString()), PatternFault::Incomplete);
    EXPECT_EQ(faultOfSinglePattern(u""), PatternFault::Incomplete);
    EXPECT_EQ(faultOfSinglePattern(u"a/b"), PatternFault::SlashInPattern);
    EXPECT_EQ(faultOfSinglePattern(u"/"), PatternFault::SlashInPattern);
    EXPECT_EQ(faultOfSinglePattern(u"*.tmp"), PatternFault::None);
}

struct CompleteRow
{
    const char* anchor;
    const char* pattern;
    PatternOptions options;
    const char* complete;
};

constexpr auto kCompletes = std::to_array<CompleteRow>({
    {"Users/work", "*.tmp", {0, PatternType::Glob}, "Users/work//*.tmp/0:glob"},
    {"Users/work", "*.tmp", {kIndefiniteDepth, PatternType::Glob}, "Users/work//*.tmp/+:glob"},
    {"", "^x$", {0, PatternType::RegularExpression}, "//^x$/0:re"},
    {nullptr, "x", {0, PatternType::Glob}, "//x/0:glob"},
    {"/a", "x", {kIndefiniteDepth, PatternType::RegularExpression}, "/a//x/+:re"},
    {"a", "x", {3, PatternType::Glob}, "a//x/0:glob"},
    {"a", "x", {0, static_cast<PatternType>(7)}, "a//x/0:glob"},
});

TEST(AnchoredPattern, HasACompleteText)
{
    for (const CompleteRow& row : kCompletes)
        EXPECT_EQ(completeTextOf({QString::fromUtf8(row.anchor), QString::fromUtf8(row.pattern), row.options}),
                  QString::fromUtf8(row.complete));
}

} // namespace
} // namespace havrel
