// SPDX-License-Identifier: MIT
#include "filters/filter_definition.h"

#include "filters/exclude_multiple_items_filter_def.h"
#include "tests/support/key_table_coder.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

template<class Definition>
class FilterDefinitions : public ::testing::Test
{
};

using PlainDefinitions = ::testing::Types<FilterDefinition, ExcludeMultipleItemsFilterDef>;
TYPED_TEST_SUITE(FilterDefinitions, PlainDefinitions);

TYPED_TEST(FilterDefinitions, SupportSecureCoding)
{
    EXPECT_TRUE(TypeParam::supportsSecureCoding());
}

TYPED_TEST(FilterDefinitions, HaveAnEmptyDescription)
{
    const auto definition = std::make_shared<TypeParam>();

    EXPECT_TRUE(definition->description().isEmpty());
    EXPECT_FALSE(definition->description().isNull());
}

TYPED_TEST(FilterDefinitions, WriteAndReadNothing)
{
    KeyTableEncoder encoder;
    std::make_shared<TypeParam>()->encodeWithCoder(encoder);
    EXPECT_TRUE(encoder.table.isEmpty());

    KeyTableDecoder decoder({{QStringLiteral("root"), true}});
    EXPECT_TRUE(std::make_shared<TypeParam>(decoder)->description().isEmpty());
}

TYPED_TEST(FilterDefinitions, CopyToAFreshObjectOfTheirOwnClass)
{
    const std::shared_ptr<FilterDefinition> definition = std::make_shared<TypeParam>();

    const auto copy = definition->copyWithZone();

    EXPECT_NE(copy, definition);
    const FilterDefinition& copied = *copy;
    EXPECT_EQ(typeid(copied), typeid(TypeParam));
}

TYPED_TEST(FilterDefinitions, EqualOnlyThemselves)
{
    const auto definition = std::make_shared<TypeParam>();

    EXPECT_TRUE(definition->isEqual(*definition));
    EXPECT_FALSE(definition->isEqual(*definition->copyWithZone()));
}

} // namespace
} // namespace havrel
