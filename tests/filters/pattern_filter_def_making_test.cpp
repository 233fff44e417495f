// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"
#include "filters/pattern_filter_def.h"
#include "tests/support/temporary_tree.h"

#include <QUrl>

#include <gtest/gtest.h>

#include <fstream>

namespace havrel {
namespace {

const QVariantMap& itemEnvironment()
{
    return PatternFilterDef::itemEnvironment();
}

QStringList canonicalLines(const PatternFilterDefs& definitions)
{
    QStringList lines;
    for (const PatternFilterDefPtr& definition : definitions)
        lines << definition->canonicalPattern();
    return lines;
}

/// The canonical lines that are read from a file that holds \p bytes.
QStringList linesReadFrom(const QByteArray& bytes)
{
    const TemporaryTree tree;
    std::ofstream(tree.path("patterns"), std::ios::binary) << bytes.toStdString();
    const QUrl url = QUrl::fromLocalFile(QString::fromStdString(tree.path("patterns")));
    return canonicalLines(PatternFilterDef::filterDefsFromURL(url, itemEnvironment()));
}

TEST(PatternFilterDefMaking, OfAValidLineGivesItsSimpleForm)
{
    const PatternFilterDefPtr definition = PatternFilterDef::filterDefFromString(u"a//b"_qs, itemEnvironment());

    ASSERT_TRUE(definition);
    EXPECT_TRUE(definition->simple());
    EXPECT_TRUE(definition->compiled());
    EXPECT_EQ(definition->anchorPath(), u"a");
}

TEST(PatternFilterDefMaking, OfAValidLineThatCannotBeSimpleKeepsIt)
{
    const PatternFilterDefPtr definition = PatternFilterDef::filterDefFromString(u"a//b/3"_qs, itemEnvironment());

    ASSERT_TRUE(definition);
    EXPECT_EQ(definition->completePattern(), u"a//b/3");
}

TEST(PatternFilterDefMaking, OfAnInvalidLineGivesNone)
{
    EXPECT_FALSE(PatternFilterDef::filterDefFromString(u"a/"_qs, itemEnvironment()));
    EXPECT_FALSE(PatternFilterDef::filterDefFromString(u""_qs, itemEnvironment()));
    EXPECT_FALSE(PatternFilterDef::filterDefFromString({}, itemEnvironment()));
}

TEST(PatternFilterDefMaking, HeedsTheEnvironment)
{
    EXPECT_FALSE(PatternFilterDef::filterDefFromString(u"/a"_qs, itemEnvironment()));
    const auto definition = PatternFilterDef::filterDefFromString(u"/a"_qs, PatternFilterDef::repositoryEnvironment());

    ASSERT_TRUE(definition);
    EXPECT_TRUE(definition->absolute());
    EXPECT_TRUE(definition->rooted());
}

TEST(PatternFilterDefMaking, LeavesBlankAndInvalidLinesOut)
{
    const QStringList lines{u"//a"_qs, u""_qs, u"b/"_qs, u"/c"_qs, u" "_qs, u"d"_qs, u"//a"_qs};

    EXPECT_EQ(canonicalLines(PatternFilterDef::filterDefsFromStrings(lines, itemEnvironment())),
              (QStringList{u"//a"_qs, u" "_qs, u"d"_qs, u"//a"_qs}));
    EXPECT_TRUE(PatternFilterDef::filterDefsFromStrings({}, itemEnvironment()).isEmpty());
}

TEST(PatternFilterDefMaking, KnowsTwoEnvironments)
{
    EXPECT_EQ(PatternFilterDef::repositoryEnvironment(), (QVariantMap{{u"rooted"_qs, true}}));
    EXPECT_TRUE(PatternFilterDef::itemEnvironment().isEmpty());
}

TEST(PatternFilterDefMaking, ValidatesSingleComponents)
{
    EXPECT_TRUE(PatternFilterDef::validPattern(u"*"_qs, PatternType::Glob));
    EXPECT_FALSE(PatternFilterDef::validPattern(u"*"_qs, PatternType::RegularExpression));
    EXPECT_FALSE(PatternFilterDef::validPattern(u"*"_qs, static_cast<PatternType>(2)));
}

TEST(PatternFilterDefConfigure, SetsPropertiesByName)
{
    const auto definition = std::make_shared<PatternFilterDef>();

    definition->configure(
        {{u"rooted"_qs, true}, {u"type"_qs, 1}, {u"singlePattern"_qs, u"x"_qs}, {u"propagateIndefinitely"_qs, true}});

    EXPECT_TRUE(definition->rooted());
    EXPECT_EQ(definition->canonicalPattern(), u"//x/+:re");
}

TEST(PatternFilterDefConfigure, WithTheItemEnvironmentLeavesARootedDefinitionRooted)
{
    const auto definition = std::make_shared<PatternFilterDef>();
    definition->setRooted(true);

    definition->configure(PatternFilterDef::itemEnvironment());

    EXPECT_TRUE(definition->rooted());
}

TEST(PatternFilterDefConfigure, UncompilesLikeTheSetters)
{
    const auto definition = std::make_shared<PatternFilterDef>(u"//a"_qs);
    ASSERT_TRUE(definition->valid());

    definition->configure({{u"completePattern"_qs, u"//b"_qs}});

    EXPECT_FALSE(definition->compiled());
}

TEST(PatternFilterDefConfigure, RefusesKeysThatCannotBeSet)
{
    for (const QString& key : {u"colour"_qs, u"depth"_qs, u"absolute"_qs, u"rooted.type"_qs, u""_qs}) {
        const auto definition = std::make_shared<PatternFilterDef>();
        try {
            definition->configure({{key, true}});
            FAIL() << "took " << qPrintable(key);
        } catch (const HVException& exception) {
            EXPECT_EQ(exception.name(), u"Bug") << qPrintable(key);
        }
        EXPECT_TRUE(definition->dynamicPropertyNames().isEmpty());
    }
}

struct FileRow
{
    const char* label;
    QByteArray bytes;
    QStringList lines;
};

const std::array kFiles = {
    FileRow{"empty", "", {}},
    FileRow{"one line", "//a", {u"//a"_qs}},
    FileRow{"ended lines", "//a\n//b\n", {u"//a"_qs, u"//b"_qs}},
    FileRow{"blank and invalid lines", "\n\n//a\n\nb/\n/c\nd\n", {u"//a"_qs, u"d"_qs}},
    FileRow{"carriage returns", "//a\r\n//b\r//c\r\n", {u"//a"_qs, u"//b"_qs, u"//c"_qs}},
    FileRow{"vertical tab and form feed", "a\vb\fc", {u"a"_qs, u"b"_qs, u"c"_qs}},
    FileRow{"next line",
            "a\xC2\x85"
            "b",
            {u"a"_qs, u"b"_qs}},
    FileRow{"separators",
            "a\xE2\x80\xA8"
            "b\xE2\x80\xA9"
            "c",
            {u"a"_qs, u"b"_qs, u"c"_qs}},
    FileRow{"tabs and blanks stay", " a\t\n", {u" a\t"_qs}},
    FileRow{"file separator is no newline",
            "a\x1C"
            "b",
            {u"a\x1C"
             "b"_qs}},
    FileRow{"beyond ASCII", "\xC3\xA9//\xF0\x9F\x98\x80", {u"\u00E9//\U0001F600"_qs}},
    FileRow{"byte order mark", "\xEF\xBB\xBF//a\n", {u"//a"_qs}},
    FileRow{"one bad byte spoils all", "//a\n//\xFF\n//b\n", {}},
    FileRow{"truncated at the end", "//a\n//\xE2\x82", {}},
    FileRow{"NUL", QByteArray("a\0b\nc", 5), {u"a\0b"_qs, u"c"_qs}},
};

TEST(PatternFile, GivesTheDefinitionsOfItsValidLines)
{
    for (const FileRow& row : kFiles) {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(linesReadFrom(row.bytes), row.lines);
    }
}

TEST(PatternFile, ThatCannotBeReadGivesNoDefinitions)
{
    const TemporaryTree tree{"folder/"};
    const auto definitionsAt = [](const QString& url) {
        return PatternFilterDef::filterDefsFromURL(QUrl(url, QUrl::StrictMode), itemEnvironment());
    };

    EXPECT_TRUE(definitionsAt(u"file://"_qs + QString::fromStdString(tree.path("missing"))).isEmpty());
    EXPECT_TRUE(definitionsAt(u"file://"_qs + QString::fromStdString(tree.path("folder"))).isEmpty());
    EXPECT_TRUE(definitionsAt(u"https://example.org/patterns"_qs).isEmpty());
    EXPECT_TRUE(definitionsAt({}).isEmpty());
}

TEST(PatternFile, MayHaveANameThatIsNotUTF8)
{
    const TemporaryTree tree;
    std::ofstream(tree.path("n\xFF")) << "//a\n";
    const QUrl url = QUrl::fromEncoded("file://" + tree.bytes("n%FF"), QUrl::StrictMode);

    EXPECT_EQ(canonicalLines(PatternFilterDef::filterDefsFromURL(url, itemEnvironment())), QStringList{u"//a"_qs});
}

} // namespace
} // namespace havrel
