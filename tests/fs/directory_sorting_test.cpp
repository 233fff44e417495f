// SPDX-License-Identifier: MIT
#include "tests/fs/directory_fixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <utility>

namespace havrel {
namespace {

using namespace havrel::tests;

TEST(JNDirectory, SortsByNameOnce)
{
    const TemporaryTree tree({"file 10", "File 2", "a", "B", "\xff"});
    const auto directory = directoryIn(tree);
    directory->sort();
    const QStringList sorted = namesIn(*directory);
    EXPECT_EQ(sorted.indexOf(QStringLiteral("B")), sorted.indexOf(QStringLiteral("a")) + 1);
    EXPECT_EQ(sorted.indexOf(QStringLiteral("file 10")), sorted.indexOf(QStringLiteral("File 2")) + 1);
    for (auto each = directory->firstObject(); each->nextObj(); each = each->nextObj())
        EXPECT_TRUE(each->compareNames(*each->nextObj()) < 0);
    const auto first = directory->firstObject();
    directory->sort();
    EXPECT_EQ(directory->firstObject(), first);
    EXPECT_EQ(directory->count(), 5U);

    int compared = 0;
    directory->resortUsing([&compared](const JNFileInfo& one, const JNFileInfo& other) {
        ++compared;
        return other.compareNames(one);
    });
    EXPECT_GT(compared, 0);
    QStringList reversed = sorted;
    std::reverse(reversed.begin(), reversed.end());
    EXPECT_EQ(namesIn(*directory), reversed);
    directory->sort();
    EXPECT_EQ(namesIn(*directory), sorted) << "another order is no order by name";
}

TEST(JNDirectory, KeepsTheOrderOfEntriesThatCompareEqual)
{
    const TemporaryTree tree;
    for (int i = 0; i < 300; ++i)
        tree.add(std::to_string(i));
    const auto directory = directoryIn(tree);
    const QStringList before = namesIn(*directory);
    directory->resortUsing([](const JNFileInfo&, const JNFileInfo&) { return std::strong_ordering::equal; });
    EXPECT_EQ(namesIn(*directory), before);
    directory->resortUsing(
        [](const JNFileInfo& one, const JNFileInfo& other) { return one.cName().size() <=> other.cName().size(); });
    QStringList expected = before;
    std::stable_sort(expected.begin(), expected.end(), [](const QString& one, const QString& other) {
        return one.size() < other.size();
    });
    EXPECT_EQ(namesIn(*directory), expected);
}

TEST(JNDirectory, StaysAsItWasWhenComparingThrows)
{
    const TemporaryTree tree({"a", "b", "c"});
    const auto directory = directoryIn(tree);
    const QStringList before = namesIn(*directory);
    EXPECT_THROW(directory->resortUsing([](const JNFileInfo&, const JNFileInfo&) -> std::strong_ordering {
        throw std::runtime_error("no order");
    }),
                 std::runtime_error);
    EXPECT_EQ(namesIn(*directory), before);
}

TEST(JNDirectory, MayBeUsedWhileItIsSorted)
{
    const TemporaryTree tree({"a", "b", "c"});
    const auto directory = directoryIn(tree);
    bool flushed = false;
    directory->resortUsing([&](const JNFileInfo& one, const JNFileInfo& other) {
        if (!std::exchange(flushed, true))
            directory->flushDirectoryContents();
        return other.compareNames(one);
    });
    EXPECT_EQ(namesIn(*directory), QStringList({QStringLiteral("c"), QStringLiteral("b"), QStringLiteral("a")}))
        << "what was read anew is sorted as well";
}

TEST(JNDirectory, SortsNothingAndOneThing)
{
    const TemporaryTree tree({"empty/", "one/", "one/file"});
    for (const char* name : {"empty", "one"}) {
        const auto directory = directoryIn(tree, name);
        directory->sort();
        directory->resortUsing([](const JNFileInfo&, const JNFileInfo&) { return std::strong_ordering::equal; });
        EXPECT_EQ(namesIn(*directory).size(), directory->count());
    }
}

TEST(JNDirectory, IsNotSortedByHavingBeenUnreadable)
{
    const TemporaryTree tree({"folder/"});
    const auto directory = directoryIn(tree, "folder");
    ASSERT_TRUE(std::filesystem::remove(tree.path("folder")));
    directory->sort();
    tree.add("folder/");
    for (int i = 0; i < 50; ++i)
        tree.add("folder/" + std::to_string(i));
    directory->lazyDirectoryRead();
    directory->sort();
    for (auto each = directory->firstObject(); each->nextObj(); each = each->nextObj())
        EXPECT_TRUE(each->compareNames(*each->nextObj()) < 0);
}

} // namespace
} // namespace havrel
