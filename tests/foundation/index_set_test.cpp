// SPDX-License-Identifier: MIT
#include "foundation/index_set.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace havrel {
namespace {

struct DescriptionCase
{
    const char* label;
    IndexSet set;
    QString expected;
};

class IndexSetDescription : public ::testing::TestWithParam<DescriptionCase>
{
};

TEST_P(IndexSetDescription, JoinsRuns)
{
    EXPECT_EQ(GetParam().set.compactDescription(), GetParam().expected);
}

const std::array kDescriptionCases = {
    DescriptionCase{"empty", {}, u"{ }"_qs},
    DescriptionCase{"single", {7}, u"{ 7 }"_qs},
    DescriptionCase{"run_and_single", {0, 1, 2, 5}, u"{ 0-2, 5 }"_qs},
    DescriptionCase{"any_order", {5, 2, 0, 1}, u"{ 0-2, 5 }"_qs},
    DescriptionCase{"two_runs", {1, 2, 4, 5}, u"{ 1-2, 4-5 }"_qs},
};

INSTANTIATE_TEST_SUITE_P(Cases, IndexSetDescription, ::testing::ValuesIn(kDescriptionCases), [](const auto& each) {
    return std::string(each.param.label);
});

TEST(IndexSet, KeepsEachIndexOnceInOrder)
{
    const IndexSet set{3, 1, 3, 2, 1};
    EXPECT_EQ(std::vector<IndexSet::Index>(set.begin(), set.end()), (std::vector<IndexSet::Index>{1, 2, 3}));
    EXPECT_EQ(set.ranges(), (std::vector<IndexSet::Range>{{1, 3}}));
}

TEST(IndexSet, AddsAndRemoves)
{
    IndexSet set{1, 2, 3};
    set.removeIndex(2);
    set.removeIndex(9);
    EXPECT_FALSE(set.containsIndex(2));
    EXPECT_TRUE(set.containsIndex(3));
    EXPECT_EQ(set.count(), 2U);
    set.removeIndex(1);
    set.removeIndex(3);
    EXPECT_TRUE(set.isEmpty());
}

TEST(IndexSet, HoldsTheGreatestIndex)
{
    constexpr auto greatest = std::numeric_limits<IndexSet::Index>::max();
    const IndexSet set{greatest, 0};
    EXPECT_EQ(set.ranges().size(), 2U);
    EXPECT_TRUE(set.containsIndex(greatest));
}

TEST(IndexSet, HashesAlikeWhenEqual)
{
    EXPECT_EQ(qHash(IndexSet{2, 1}), qHash(IndexSet{1, 2}));
    EXPECT_NE(qHash(IndexSet{1, 2}), qHash(IndexSet{1, 3}));
}

} // namespace
} // namespace havrel
