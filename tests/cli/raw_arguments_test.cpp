// SPDX-License-Identifier: MIT
#include "cli/raw_arguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace havrel::cli {
namespace {

using ::testing::ElementsAre;

TEST(RawArguments, LetOptionsAndOrdinaryNamesThrough)
{
    EXPECT_THAT(guardedArguments({"show", "--json", "-0", "--for=2 days", "a b", "", "-"}),
                ElementsAre("show", "--json", "-0", "--for=2 days", "a b", "", "-"));
}

TEST(RawArguments, HideWhatTheLibraryWouldTakeApart)
{
    for (const std::string name : {"[a,b]", "{}", "%%", "++", "\x1fmarked"}) {
        const std::vector<std::string> guarded = guardedArguments({name});
        EXPECT_NE(guarded.front(), name);
        EXPECT_EQ(unguarded(guarded.front()), name);
    }
}

TEST(RawArguments, HideTheValueThatFollowsAnEqualsSign)
{
    for (const std::string value : {"", "[a]", "\x1f", "a=b", "plain"}) {
        const std::string guarded = guardedArguments({"--pattern=" + value}).front();
        EXPECT_TRUE(guarded.starts_with("--pattern="));
        EXPECT_GT(guarded.size(), std::string("--pattern=").size());
        EXPECT_EQ(unguarded(guarded.substr(10)), value);
    }
}

TEST(RawArguments, MakeOperandsOfAllThatFollowsTheEndOfOptions)
{
    const std::vector<std::string> guarded = guardedArguments({"show", "a", "--", "--json", "--", "b"});

    ASSERT_EQ(guarded.size(), 5U);
    EXPECT_EQ(guarded[1], "a");
    for (const std::size_t i : {2U, 3U, 4U})
        EXPECT_FALSE(guarded[i].starts_with('-'));
    EXPECT_EQ(unguarded(guarded[2]), "--json");
    EXPECT_EQ(unguarded(guarded[3]), "--");
    EXPECT_EQ(unguarded(guarded[4]), "b");
}

} // namespace
} // namespace havrel::cli
