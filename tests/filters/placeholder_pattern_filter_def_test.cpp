// SPDX-License-Identifier: MIT
#include "filters/placeholder_pattern_filter_def.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

class SubclassOfPlaceholder : public PlaceholderPatternFilterDef
{
};

TEST(PlaceholderPatternFilterDef, IsTheOnlyPlaceholder)
{
    const PatternFilterDefPtr placeholder = PatternFilterDef::filterDefPlaceholder();

    EXPECT_TRUE(placeholder->multiplePatternsPlaceholder());
    EXPECT_FALSE(std::make_shared<PatternFilterDef>()->multiplePatternsPlaceholder());
}

TEST(PlaceholderPatternFilterDef, EqualsAnyOtherOfExactlyItsClass)
{
    const PatternFilterDefPtr placeholder = PatternFilterDef::filterDefPlaceholder();
    const PatternFilterDefPtr changed = PatternFilterDef::filterDefPlaceholder();
    changed->setSinglePattern(QStringLiteral("a"));

    EXPECT_NE(placeholder, changed);
    EXPECT_TRUE(placeholder->isEqual(*changed));
    EXPECT_FALSE(placeholder->isEqual(*std::make_shared<PatternFilterDef>()));
    EXPECT_FALSE(placeholder->isEqual(*std::make_shared<SubclassOfPlaceholder>()));
    EXPECT_FALSE(std::make_shared<PatternFilterDef>()->isEqual(*placeholder));
}

TEST(PlaceholderPatternFilterDef, IsItsOwnCopy)
{
    const PatternFilterDefPtr placeholder = PatternFilterDef::filterDefPlaceholder();

    EXPECT_EQ(placeholder->copyWithZone(), placeholder);
}

TEST(PlaceholderPatternFilterDef, HasAnEmptyLineEvenWhenItHoldsAPattern)
{
    const PatternFilterDefPtr placeholder = PatternFilterDef::filterDefPlaceholder();
    placeholder->setCompletePattern(QStringLiteral("//a"));

    ASSERT_TRUE(placeholder->valid());
    EXPECT_EQ(placeholder->canonicalPattern(), u"");
    EXPECT_FALSE(placeholder->canonicalPattern().isNull());
}

TEST(PlaceholderPatternFilterDef, StaysUntouchedByValidations)
{
    const PatternFilterDefPtr placeholder = PatternFilterDef::filterDefPlaceholder();

    EXPECT_TRUE(placeholder->validateCompletePattern(QStringLiteral("//a")));

    EXPECT_TRUE(placeholder->simple());
}

} // namespace
} // namespace havrel
