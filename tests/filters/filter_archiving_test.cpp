// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"
#include "filters/exclude_patterns_filter_def.h"
#include "filters/placeholder_pattern_filter_def.h"
#include "foundation/archiving.h"

#include <gtest/gtest.h>

#include <typeinfo>

namespace havrel {
namespace {

using FilterDefinitionPtr = std::shared_ptr<FilterDefinition>;

const QString kPattern = QStringLiteral("PatternFilterDef");

QByteArray archived(const FilterDefinitionPtr& definition)
{
    return dataForRootObject(QVariant::fromValue(definition), SecureCoding::Yes);
}

template<class Definition>
std::shared_ptr<Definition> backFrom(const QByteArray& data, const QString& className)
{
    return std::dynamic_pointer_cast<Definition>(
        archivedObjectOfClass(data, className).template value<FilterDefinitionPtr>());
}

PatternFilterDefPtr pattern(const QString& line)
{
    return std::make_shared<PatternFilterDef>(line);
}

TEST(FilterArchiving, BringsBackACompletePattern)
{
    const PatternFilterDefPtr definition = pattern(u"/a//\u00E9*/3:re"_qs);
    definition->setRooted(true);

    const auto back = backFrom<PatternFilterDef>(archived(definition), kPattern);

    ASSERT_TRUE(back);
    EXPECT_TRUE(back->isEqual(*definition));
    EXPECT_TRUE(back->rooted());
}

TEST(FilterArchiving, BringsBackASimplePatternWithAnIndefiniteDepth)
{
    const PatternFilterDefPtr definition = pattern(u"a//b/+"_qs);
    ASSERT_TRUE(definition->simplify());

    const auto back = backFrom<PatternFilterDef>(archived(definition), kPattern);

    ASSERT_TRUE(back);
    EXPECT_TRUE(back->isEqual(*definition));
    EXPECT_TRUE(back->propagateIndefinitely());
    EXPECT_FALSE(back->compiled());
}

TEST(FilterArchiving, TellsNoTextFromAnEmptyOne)
{
    const auto definition = std::make_shared<PatternFilterDef>();
    definition->setSinglePattern(u""_qs);

    const auto back = backFrom<PatternFilterDef>(archived(definition), kPattern);

    ASSERT_TRUE(back);
    EXPECT_TRUE(back->anchorPath().isNull());
    EXPECT_FALSE(back->singlePattern().isNull());
    EXPECT_FALSE(backFrom<PatternFilterDef>(archived(pattern(u""_qs)), kPattern)->simple());
}

TEST(FilterArchiving, KeepsNULsAndBytesOutsideUTF8)
{
    const PatternFilterDefPtr definition = pattern(u"a\0b//"_qs + QChar(0xDCFF));

    EXPECT_TRUE(backFrom<PatternFilterDef>(archived(definition), kPattern)->isEqual(*definition));
}

TEST(FilterArchiving, BringsBackAListOfPatterns)
{
    const auto definition = std::make_shared<ExcludePatternsFilterDef>();
    const PatternFilterDefPtr shared = pattern(u"//a"_qs);
    definition->setPatterns(PatternFilterDefs{shared, pattern(u"b"_qs), shared});

    const auto back = backFrom<ExcludePatternsFilterDef>(archived(definition), u"ExcludePatternsFilterDef"_qs);

    ASSERT_TRUE(back && back->patterns());
    EXPECT_TRUE(back->isEqual(*definition));
    EXPECT_EQ(back->patterns()->first(), back->patterns()->last()); // written once
}

TEST(FilterArchiving, TellsNoListFromAnEmptyOne)
{
    const QString name = u"ExcludePatternsFilterDef"_qs;
    const auto definition = std::make_shared<ExcludePatternsFilterDef>();
    EXPECT_FALSE(backFrom<ExcludePatternsFilterDef>(archived(definition), name)->patterns());

    definition->setPatterns(PatternFilterDefs{});

    EXPECT_TRUE(backFrom<ExcludePatternsFilterDef>(archived(definition), name)->patterns());
}

TEST(FilterArchiving, KeepsTheClassOfEachDefinition)
{
    const std::initializer_list<FilterDefinitionPtr> definitions{std::make_shared<FilterDefinition>(),
                                                                 std::make_shared<ExcludeMultipleItemsFilterDef>(),
                                                                 std::make_shared<ExcludePatternsFilterDef>(),
                                                                 std::make_shared<PatternFilterDef>(),
                                                                 std::make_shared<PlaceholderPatternFilterDef>()};
    for (const FilterDefinitionPtr& definition : definitions) {
        const auto back = backFrom<FilterDefinition>(archived(definition), u"FilterDefinition"_qs);
        ASSERT_TRUE(back);
        const FilterDefinition& one = *definition;
        const FilterDefinition& other = *back;
        EXPECT_EQ(typeid(other), typeid(one));
    }
}

TEST(FilterArchiving, RefusesAnotherDefinitionThanAskedFor)
{
    EXPECT_THROW((void)archivedObjectOfClass(archived(std::make_shared<FilterDefinition>()), kPattern), HVException);
}

TEST(FilterArchiving, RefusesForeignDefinitionsAmongPatterns)
{
    const QByteArray good = archived([] {
        const auto definition = std::make_shared<ExcludePatternsFilterDef>();
        definition->setPatterns(PatternFilterDefs{pattern(u"//a"_qs)});
        return definition;
    }());
    QByteArray forged = good;
    forged.replace("PatternFilterDef", "FilterDefinition"); // of the same length
    ASSERT_NE(forged, good);

    EXPECT_THROW((void)archivedObjectOfClass(forged, u"ExcludePatternsFilterDef"_qs), HVException);
}

} // namespace
} // namespace havrel
