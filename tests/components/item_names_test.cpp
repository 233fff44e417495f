// SPDX-License-Identifier: MIT
#include "components/item_names.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

TEST(ItemNames, ArePlain)
{
    const std::pair<const char*, const char*> rows[] = {
        {"/", "/"},
        {"//", "/"},
        {"/a", "/a"},
        {"/a/", "/a"},
        {"//a//b/./c", "/a/b/c"},
        {"a", "/work/a"},
        {".", "/work"},
        {"..", "/"},
        {"../..", "/"},
        {"../x", "/x"},
        {"/..", "/"},
        {"/a/../b", "/b"},
        {"./a/../b", "/work/b"},
        {"/...", "/..."},
        {"/a\n/\xff", "/a\n/\xff"},
    };
    for (const auto& [path, plain] : rows) {
        EXPECT_EQ(plainPath(path, "/work"), plain) << path;
        EXPECT_EQ(plainPath(plain, "/elsewhere"), plain) << "it stays as it is";
    }
}

TEST(ItemNames, TellWhatLiesBelowWhat)
{
    EXPECT_TRUE(isAtOrBelow("/a", "/a"));
    EXPECT_TRUE(isAtOrBelow("/a/b", "/a"));
    EXPECT_TRUE(isAtOrBelow("/a/b", "/"));
    EXPECT_TRUE(isAtOrBelow("/", "/"));
    EXPECT_FALSE(isAtOrBelow("/ab", "/a"));
    EXPECT_FALSE(isAtOrBelow("/a", "/a/b"));
    EXPECT_FALSE(isAtOrBelow("/", "/a"));
}

TEST(ItemNames, AreLeftOutWhenAnotherCoversThem)
{
    EXPECT_EQ(withoutCovered({"/b/c", "/b", "/a", "/a", "/b/c/d", "/bc"}), QByteArrayList({"/b", "/a", "/bc"}));
    EXPECT_EQ(withoutCovered({"/a", "/", "/b"}), QByteArrayList{"/"});
    EXPECT_EQ(withoutCovered({}), QByteArrayList());
}

} // namespace
} // namespace havrel
