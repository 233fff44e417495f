// SPDX-License-Identifier: MIT
#include "filters/pattern_filter_def.h"

#include "tests/support/glob_matcher_that_answers.h"

#include <gtest/gtest.h>

#include <array>

namespace havrel {
namespace {

enum class Rooted { No, Yes };

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8); // null for a null pointer
}

PatternFilterDefPtr complete(const QString& line, Rooted rooted = Rooted::No)
{
    auto definition = std::make_shared<PatternFilterDef>(line);
    definition->setRooted(rooted == Rooted::Yes);
    return definition;
}

PatternFilterDefPtr simple(const QString& anchor, const QString& pattern, PatternType type = PatternType::Glob)
{
    auto definition = std::make_shared<PatternFilterDef>(type);
    definition->setAnchorPath(anchor);
    definition->setSinglePattern(pattern);
    return definition;
}

struct LineRow
{
    const char* line;
    Rooted rooted;
    const char* components; // joined by blanks
    IndexSet patterns;
    quint64 depth;
    quint64 effectiveDepth;
    PatternType type;
    const char* canonical;
};

constexpr auto kNo = Rooted::No;
constexpr auto kYes = Rooted::Yes;
constexpr auto kGlob = PatternType::Glob;
constexpr auto kRegex = PatternType::RegularExpression;

const std::array kLines = {
    LineRow{"x", kNo, "x", {}, 0, 0, kGlob, "x"},
    LineRow{"Library//Caches", kNo, "Library Caches", {1}, 0, 1, kGlob, "Library//Caches"},
    LineRow{"//x", kNo, "x", {0}, 0, 0, kGlob, "//x"},
    LineRow{"/x", kYes, "x", {}, 0, 0, kGlob, "/x"},
    LineRow{"///x", kYes, "x", {0}, 0, 0, kGlob, "///x"},
    LineRow{"a//b//c", kNo, "a b c", {1}, 0, 2, kGlob, "a//b//c"},
    LineRow{"x//5", kNo, "x", {}, 5, 5, kGlob, "x//5:glob"},
    LineRow{"//a/7:regex", kNo, "a", {0}, 7, 7, kRegex, "//a/7:re"},
    LineRow{"//a/7:perl", kNo, "a 7:perl", {0, 1}, 0, 1, kGlob, "//a/7:perl"},
    LineRow{"//^x$/:re", kNo, "^x$", {0}, 0, 0, kRegex, "//^x$/:re"},
    // Indefinite depths wrap around.
    LineRow{"//a/+", kNo, "a", {0}, kIndefiniteDepth, kIndefiniteDepth, kGlob, "//a/+:glob"},
    LineRow{"//a/b/+", kNo, "a b", {0, 1}, kIndefiniteDepth, 0, kGlob, "//a/b/+:glob"},
    LineRow{"x//a/b/+", kNo, "x a b", {1, 2}, kIndefiniteDepth, 1, kGlob, "x//a/b/+:glob"},
    LineRow{"x//+", kNo, "x", {}, kIndefiniteDepth, kIndefiniteDepth, kGlob, "x//+:glob"},
};

TEST(PatternFilterDef, CompilesALine)
{
    for (const LineRow& row : kLines) {
        SCOPED_TRACE(row.line);
        const PatternFilterDefPtr definition = complete(text(row.line), row.rooted);

        EXPECT_FALSE(definition->compiled());
        EXPECT_TRUE(definition->compile());

        EXPECT_TRUE(definition->compiled());
        EXPECT_EQ(definition->components(), text(row.components).split(u' '));
        EXPECT_EQ(definition->patternComponents(), row.patterns);
        EXPECT_EQ(definition->depth(), row.depth);
        EXPECT_EQ(definition->effectiveDepth(), row.effectiveDepth);
        EXPECT_EQ(definition->type(), row.type);
        EXPECT_EQ(definition->absolute(), row.rooted == Rooted::Yes);
        EXPECT_EQ(definition->canonicalPattern(), text(row.canonical));
        EXPECT_FALSE(definition->compilationError());
        EXPECT_FALSE(definition->errorInPattern());
    }
}

struct FaultRow
{
    const char* line;
    Rooted rooted;
    const char* fault;
    bool inPattern;
};

constexpr auto kFaults = std::to_array<FaultRow>({
    {"", kNo, "Incomplete pattern", false},
    {"/", kNo, "No pattern defined", true},
    {"//", kNo, "No pattern defined", true},
    {"////", kNo, "No pattern defined", true},
    {"//5", kNo, "No pattern defined", true},
    {"a/", kNo, "Trailing / with no options", false},
    {"a//", kNo, "Trailing / with no options", false},
    {"a///b", kNo, "Invalid /// encountered", false},
    {"////x", kYes, "Too many leading /", false},
    {"/x", kNo, "Absolute path not permitted here", false},
    {"/////x", kNo, "Absolute path not permitted here", false},
    {"/////x", kYes, "Too many leading /", false},
    {"//(/:re", kNo, "/(/ is not a valid regular expression", true},
    {"//a/)/b(/:re", kNo, "/)/ is not a valid regular expression", true}, // the first one
});

TEST(PatternFilterDef, TellsWhatIsWrongWithALine)
{
    for (const FaultRow& row : kFaults) {
        SCOPED_TRACE(row.line);
        const PatternFilterDefPtr definition = complete(text(row.line), row.rooted);

        EXPECT_FALSE(definition->valid());

        EXPECT_FALSE(definition->compiled());
        EXPECT_TRUE(definition->components().isEmpty());
        EXPECT_TRUE(definition->patternComponents().isEmpty());
        EXPECT_EQ(definition->errorInPattern(), row.inPattern);
        EXPECT_EQ(definition->compileFailureDescription(), text(row.fault));
        EXPECT_EQ(definition->canonicalPattern(), u"");
        EXPECT_FALSE(definition->canonicalPattern().isNull());
    }
}

TEST(PatternFilterDef, TellsAGlobThatTheMatcherRefuses)
{
    const GlobMatcherThatAnswers<2> matcher;
    const PatternFilterDefPtr definition = complete(u"a//[b"_qs);

    EXPECT_FALSE(definition->valid());

    EXPECT_EQ(definition->compileFailureDescription(), u"'[b' is not a valid glob pattern");
    EXPECT_TRUE(definition->errorInPattern());
    EXPECT_TRUE(complete(u"a/[b"_qs)->valid()); // a literal name is not judged
}

TEST(PatternFilterDef, MakesAnErrorOfItsFailure)
{
    const PatternFilterDefPtr definition = complete(u"a/"_qs);
    EXPECT_FALSE(definition->compilationError());

    ASSERT_FALSE(definition->valid());

    const auto error = definition->compilationError();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain(), u"FilterDef");
    EXPECT_EQ(error->code(), 1);
    EXPECT_EQ(error->localizedFailureReason(), u"Invalid pattern");
    EXPECT_EQ(error->localizedDescription(), u"Trailing / with no options");
}

struct SimpleRow
{
    const char* anchor;
    const char* pattern;
    const char* fault; // null: valid
    bool inPattern;
    const char* canonical;
};

constexpr auto kSimples = std::to_array<SimpleRow>({
    {"Users/work", "*.tmp", nullptr, false, "Users/work//*.tmp"},
    {"", "x", nullptr, false, "//x"},
    {nullptr, "x", nullptr, false, "//x"},
    {nullptr, "a:b", nullptr, false, "//a:b"},
    {nullptr, " ", nullptr, false, "// "},
    {nullptr, "5", nullptr, false, "//5"}, // what others will not read back
    {"/", "x", "Too many leading /", false, ""},
    {"a/", "x", "Trailing / is not allowed here", false, ""},
    {"a//b", "x", "Successive // is not allowed here", false, ""},
    {"a//", "x", "Successive // is not allowed here", false, ""},
    {"/a", "x", "Absolute path not permitted here", false, ""},
    {"a", "", "Incomplete pattern", true, ""},
    {"a", nullptr, "Incomplete pattern", true, ""},
    {"a", "a/b", "Pattern cannot contain /", true, ""},
    {"a/", "", "Trailing / is not allowed here", false, ""}, // the anchor comes first
    {nullptr, nullptr, "Incomplete pattern", true, ""},
});

TEST(PatternFilterDef, CompilesAnAnchorAndAPattern)
{
    for (const SimpleRow& row : kSimples) {
        SCOPED_TRACE(testing::Message() << (row.anchor ? row.anchor : "-") << ' ' << (row.pattern ? row.pattern : "-"));
        const PatternFilterDefPtr definition = simple(text(row.anchor), text(row.pattern));

        EXPECT_EQ(definition->valid(), row.fault == nullptr);

        EXPECT_EQ(definition->compileFailureDescription(), text(row.fault));
        EXPECT_EQ(definition->errorInPattern(), row.inPattern);
        EXPECT_EQ(definition->canonicalPattern(), text(row.canonical));
    }
}

TEST(PatternFilterDef, CompilesTheTypeAndTheDepthOfASimplePattern)
{
    const PatternFilterDefPtr definition = simple(u"a"_qs, u"^x$"_qs, kRegex);
    EXPECT_EQ(definition->canonicalPattern(), u"a//^x$/:re");

    definition->setPropagateIndefinitely(true);

    EXPECT_EQ(definition->canonicalPattern(), u"a//^x$/+:re");
    EXPECT_EQ(definition->depth(), kIndefiniteDepth);
}

TEST(PatternFilterDef, CompilesASimplePatternOfAnUnknownTypeAsAGlob)
{
    const PatternFilterDefPtr definition = simple(u"a"_qs, u"*"_qs, static_cast<PatternType>(7));

    EXPECT_EQ(definition->canonicalPattern(), u"a//*");
    EXPECT_EQ(definition->type(), kGlob);
}

TEST(PatternFilterDef, LosesTheTypeOfASimplePatternWhoseAnchorMayNotBeAbsolute)
{
    const PatternFilterDefPtr definition = simple(u"/a"_qs, u"^x$"_qs, kRegex);

    ASSERT_FALSE(definition->valid());

    EXPECT_EQ(definition->type(), kGlob);
    EXPECT_TRUE(definition->absolute());
}

TEST(PatternFilterDef, KeepsTheTypeOfASimplePatternWithAFaultOfItsOwn)
{
    for (const char* anchor : {"a/", "/", "a//b"}) {
        const PatternFilterDefPtr definition = simple(text(anchor), u"^x$"_qs, kRegex);
        ASSERT_FALSE(definition->valid());
        EXPECT_EQ(definition->type(), kRegex) << anchor;
    }
}

TEST(PatternFilterDef, KeepsTypeAndDepthWhenTheLineIsEmpty)
{
    const PatternFilterDefPtr definition = complete(u"//a/7:re"_qs);
    ASSERT_TRUE(definition->valid());

    definition->setCompletePattern(u""_qs);

    EXPECT_FALSE(definition->valid());
    EXPECT_EQ(definition->type(), kRegex);
    EXPECT_EQ(definition->depth(), 7U);
}

TEST(PatternFilterDef, KeepsTheDepthButNotTheTypeWhenTheSlashesAreWrong)
{
    const PatternFilterDefPtr definition = complete(u"//a/7:re"_qs);
    ASSERT_TRUE(definition->valid());

    definition->setCompletePattern(u"a/"_qs);

    EXPECT_FALSE(definition->valid());
    EXPECT_EQ(definition->type(), kGlob);
    EXPECT_EQ(definition->depth(), 7U);
}

TEST(PatternFilterDef, TakesTheDepthOfALineWithoutAnyPattern)
{
    const PatternFilterDefPtr definition = complete(u"//7:re"_qs);

    EXPECT_FALSE(definition->valid());

    EXPECT_EQ(definition->depth(), 7U);
    EXPECT_EQ(definition->type(), kRegex);
    EXPECT_EQ(definition->effectiveDepth(), 0U);
}

TEST(PatternFilterDef, ClearsTheDepthOfALineThatEndsLiterally)
{
    const PatternFilterDefPtr definition = complete(u"x"_qs);
    definition->setPropagateIndefinitely(true);

    EXPECT_TRUE(definition->valid());

    EXPECT_EQ(definition->depth(), 0U);
}

TEST(PatternFilterDef, ForgetsAnEarlierFailureWhenItCompilesAgain)
{
    const PatternFilterDefPtr definition = complete(u"//(/:re"_qs);
    ASSERT_FALSE(definition->valid());

    definition->setCompletePattern(u"//a"_qs);

    EXPECT_FALSE(definition->compilationError());
    EXPECT_TRUE(definition->valid());
    EXPECT_FALSE(definition->errorInPattern());
    EXPECT_FALSE(definition->compilationError());
}

TEST(PatternFilterDef, ForgetsWhatItCompiled)
{
    const PatternFilterDefPtr definition = complete(u"a//b"_qs);
    ASSERT_TRUE(definition->valid());

    definition->uncompile();

    EXPECT_FALSE(definition->compiled());
    EXPECT_TRUE(definition->patternComponents().isEmpty());
}

TEST(PatternFilterDef, CompilesOnlyOnce)
{
    const PatternFilterDefPtr definition = complete(u"//a"_qs);
    ASSERT_TRUE(definition->valid());
    const GlobMatcherThatAnswers<2> matcher;

    EXPECT_TRUE(definition->compile());
    definition->uncompile();
    EXPECT_FALSE(definition->compile());
}

struct SimplifyRow
{
    const char* line;
    Rooted rooted;
    bool simplified;
    const char* anchor;
    const char* pattern;
    bool indefinitely;
};

constexpr auto kSimplifies = std::to_array<SimplifyRow>({
    {"Users//*.log", kNo, true, "Users", "*.log", false},
    {"a/b//*.log", kNo, true, "a/b", "*.log", false},
    {"//x", kNo, true, "", "x", false},
    {"//x/+", kNo, true, "", "x", true},
    {"//5/0", kNo, true, "", "5", false},
    {"/a//x", kYes, true, "/a", "x", false},
    {"///x", kYes, true, "/", "x", false},
    {"//^x$/+:re", kNo, true, "", "^x$", true},
    {"a//b/c", kNo, false, nullptr, nullptr, false},
    {"//a//b//c", kNo, false, nullptr, nullptr, false},
    {"//a//b", kNo, false, nullptr, nullptr, false},
    {"x", kNo, false, nullptr, nullptr, false},
    {"x//+", kNo, false, nullptr, nullptr, true},
    {"//x/3", kNo, false, nullptr, nullptr, false},
    {"a/", kNo, false, nullptr, nullptr, false},
    {"", kNo, false, nullptr, nullptr, false},
});

TEST(PatternFilterDef, BecomesSimpleWhereThatLosesNothing)
{
    for (const SimplifyRow& row : kSimplifies) {
        SCOPED_TRACE(row.line);
        const PatternFilterDefPtr definition = complete(text(row.line), row.rooted);
        const QString canonical = definition->canonicalPattern();

        EXPECT_EQ(definition->simplify(), row.simplified);

        EXPECT_EQ(definition->simple(), row.simplified);
        EXPECT_EQ(definition->anchorPath(), text(row.anchor));
        EXPECT_EQ(definition->anchorPath().isNull(), row.anchor == nullptr);
        EXPECT_EQ(definition->singlePattern(), text(row.pattern));
        EXPECT_EQ(definition->propagateIndefinitely(), row.indefinitely);
        EXPECT_EQ(definition->compiled(), !canonical.isEmpty());
        EXPECT_EQ(definition->canonicalPattern(), canonical);
    }
}

TEST(PatternFilterDef, IsSimpleAlreadyWhenItHasNoLine)
{
    EXPECT_TRUE(simple(u"a/"_qs, {})->simplify()); // valid or not
}

TEST(PatternFilterDef, CannotCompileTheSimpleFormOfAnAbsolutePatternAgain)
{
    const PatternFilterDefPtr definition = complete(u"///x"_qs, Rooted::Yes);
    ASSERT_TRUE(definition->simplify());
    EXPECT_EQ(definition->canonicalPattern(), u"///x");

    definition->setSinglePattern(u"y"_qs);

    EXPECT_FALSE(definition->valid());
    EXPECT_EQ(definition->compileFailureDescription(), u"Too many leading /");
}

TEST(PatternFilterDef, OfAMillionUnitsCompilesAndSimplifies)
{
    const QString name(1 << 20, u'a');
    const PatternFilterDefPtr definition = complete(name + u"//"_qs + name);

    EXPECT_TRUE(definition->simplify());

    EXPECT_EQ(definition->anchorPath(), name);
    EXPECT_EQ(definition->singlePattern(), name);
}

TEST(PatternFilterDef, KeepsNULsAndBytesOutsideUTF8)
{
    const QString line = u"a\0b//"_qs + QChar(0xDCFF) + u"\0["_qs;
    const PatternFilterDefPtr definition = complete(line);

    EXPECT_EQ(definition->canonicalPattern(), line);
    EXPECT_TRUE(definition->simplify());
    EXPECT_EQ(definition->anchorPath().size(), 3);
    EXPECT_EQ(definition->singlePattern().size(), 3);
}

} // namespace
} // namespace havrel
