// SPDX-License-Identifier: MIT
#include "filters/exclude_patterns_filter_def.h"

#include "filters/pattern_filter_def.h"
#include "foundation/observing.h"
#include "tests/support/key_table_coder.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

class SubclassOfExcludePatterns : public ExcludePatternsFilterDef
{
};

PatternFilterDefs patterns(std::initializer_list<const char*> lines)
{
    PatternFilterDefs list;
    for (const char* line : lines)
        list << std::make_shared<PatternFilterDef>(QString::fromUtf8(line));
    return list;
}

std::shared_ptr<ExcludePatternsFilterDef> excluding(std::initializer_list<const char*> lines)
{
    auto definition = std::make_shared<ExcludePatternsFilterDef>();
    definition->setPatterns(patterns(lines));
    return definition;
}

std::shared_ptr<ExcludePatternsFilterDef> decoded(const QVariantMap& table)
{
    KeyTableDecoder decoder(table);
    return std::make_shared<ExcludePatternsFilterDef>(decoder);
}

QVariantMap encoded(const ExcludePatternsFilterDef& definition)
{
    KeyTableEncoder encoder;
    definition.encodeWithCoder(encoder);
    return encoder.table;
}

TEST(ExcludePatternsFilterDef, HasNoPatternsUntilTheyAreSet)
{
    const auto definition = std::make_shared<ExcludePatternsFilterDef>();

    EXPECT_FALSE(definition->patterns());
    EXPECT_EQ(definition->description(), u", 0 patterns");
}

TEST(ExcludePatternsFilterDef, TellsTheNumberOfItsPatterns)
{
    EXPECT_EQ(excluding({"a", "//b"})->description(), u", 2 patterns");
    EXPECT_EQ(excluding({"a"})->description(), u", 1 patterns");
}

TEST(ExcludePatternsFilterDef, KeepsItsOwnListWhenTheCallersChanges)
{
    PatternFilterDefs list = patterns({"a"});
    const auto definition = std::make_shared<ExcludePatternsFilterDef>();
    definition->setPatterns(list);

    list.clear();

    EXPECT_EQ(definition->patterns()->size(), 1);
}

TEST(ExcludePatternsFilterDef, TellsItsObserversOfAnotherList)
{
    const auto definition = std::make_shared<ExcludePatternsFilterDef>();
    const PatternFilterDefs list = patterns({"a"});
    QVariantList changes;
    observeProperty(
        *definition,
        "patterns",
        ObservationOptions::NoInitialCall,
        [&changes](QObject*, QObject*, const QVariant& before, const QVariant& now) { changes << before << now; });

    definition->setPatterns(list);
    definition->setPatterns(list);
    definition->setPatterns(std::nullopt);

    const QVariant value = QVariant::fromValue(list);
    EXPECT_EQ(changes, (QVariantList{QVariant(), value, value, QVariant()}));
    EXPECT_FALSE(definition->property("patterns").isValid());
    definition->setPatterns(list);
    EXPECT_EQ(definition->property("patterns"), value);
}

TEST(ExcludePatternsFilterDef, EqualsOneWithEqualPatternsInTheSameOrder)
{
    EXPECT_TRUE(excluding({"a", "b"})->isEqual(*excluding({"a", "b"})));
    EXPECT_FALSE(excluding({"a", "b"})->isEqual(*excluding({"b", "a"})));
    EXPECT_FALSE(excluding({"a", "b"})->isEqual(*excluding({"a"})));
    EXPECT_FALSE(excluding({"a"})->isEqual(*std::make_shared<PatternFilterDef>(QStringLiteral("a"))));
}

TEST(ExcludePatternsFilterDef, TellsNoListFromAnEmptyOne)
{
    const auto none = std::make_shared<ExcludePatternsFilterDef>();

    EXPECT_TRUE(none->isEqual(*std::make_shared<ExcludePatternsFilterDef>()));
    EXPECT_FALSE(none->isEqual(*excluding({})));
    EXPECT_FALSE(excluding({})->isEqual(*none));
}

TEST(ExcludePatternsFilterDef, EqualsOneOfASubclass)
{
    const auto special = std::make_shared<SubclassOfExcludePatterns>();
    special->setPatterns(patterns({"a"}));

    EXPECT_TRUE(excluding({"a"})->isEqual(*special));
}

TEST(ExcludePatternsFilterDef, CopiesToOneWithTheSamePatterns)
{
    const auto definition = excluding({"a", "b"});

    const auto copy = definition->copyWithZone();

    EXPECT_NE(copy, definition);
    EXPECT_EQ(copy->patterns(), definition->patterns()); // the very same definitions
    definition->setPatterns(patterns({}));
    EXPECT_EQ(copy->patterns()->size(), 2);
}

TEST(ExcludePatternsFilterDef, CopiesTheAbsenceOfPatterns)
{
    EXPECT_FALSE(std::make_shared<ExcludePatternsFilterDef>()->copyWithZone()->patterns());
}

TEST(ExcludePatternsFilterDef, ComesBackFromItsFields)
{
    const auto definition = excluding({"a", "//b/+:re"});

    const QVariantMap table = encoded(*definition);

    EXPECT_EQ(table.keys(), QStringList{QStringLiteral("patterns")});
    EXPECT_TRUE(decoded(table)->isEqual(*definition));
}

TEST(ExcludePatternsFilterDef, ComesBackWithoutPatterns)
{
    EXPECT_FALSE(decoded(encoded(*std::make_shared<ExcludePatternsFilterDef>()))->patterns());
    EXPECT_FALSE(decoded({})->patterns());
}

TEST(ExcludePatternsFilterDef, RefusesForeignObjectsAmongItsPatterns)
{
    const QString key = QStringLiteral("patterns");

    EXPECT_THROW((void)decoded({{key, QVariantList{QStringLiteral("a")}}}), HVException);
    EXPECT_THROW((void)decoded({{key, QStringLiteral("a")}}), HVException);
    EXPECT_THROW((void)decoded({{key, 5}}), HVException);
}

} // namespace
} // namespace havrel
