// SPDX-License-Identifier: MIT
#include "platform/items.h"

#include "tests/support/item_facts.h"
#include "tests/support/replaced_item_calls.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace havrel::platform {
namespace {

using namespace havrel::tests;

const QByteArray kWithNul("/tmp\0/x", 7);

TEST(Items, RenameReplacesWhatHasTheName)
{
    const TemporaryTree tree;
    write(tree.path("a"), "new");
    write(tree.path("b"), "old");
    EXPECT_EQ(renameItem(tree.bytes("a"), tree.bytes("b")), 0);
    EXPECT_EQ(contentsOf(tree.path("b")), "new");
    EXPECT_FALSE(nameExists(tree.path("a")));
    EXPECT_EQ(renameItem(tree.bytes("a"), tree.bytes("c")), ENOENT);
}

TEST(Items, RenameKeepsNamesThatAreNotUTF8)
{
    const TemporaryTree tree({"a"});
    EXPECT_EQ(renameItem(tree.bytes("a"), tree.bytes("\xFF\xC3(")), 0);
    EXPECT_TRUE(nameExists(tree.path("\xFF\xC3(")));
}

class ExclusiveRename : public ::testing::TestWithParam<int>
{
protected:
    void SetUp() override
    {
        if (GetParam() != 0)
            m_calls->renameat2 = failing(GetParam());
    }

private:
    ReplacedItemCalls m_calls;
};

TEST_P(ExclusiveRename, TakesAFreeName)
{
    const TemporaryTree tree({"a"});
    EXPECT_EQ(renameItemExclusively(tree.bytes("a"), tree.bytes("b")), 0);
    EXPECT_TRUE(nameExists(tree.path("b")));
    EXPECT_FALSE(nameExists(tree.path("a")));
}

TEST_P(ExclusiveRename, RefusesATakenNameAndADanglingLink)
{
    const TemporaryTree tree({"a", "b", "folder/"});
    tree.addLink("dangling", "nowhere");
    for (const char* taken : {"a", "b", "folder", "dangling"})
        EXPECT_EQ(renameItemExclusively(tree.bytes("a"), tree.bytes(taken)), EEXIST) << taken;
    EXPECT_TRUE(nameExists(tree.path("a")));
}

INSTANTIATE_TEST_SUITE_P(WithTheFlagAndWithout, ExclusiveRename, ::testing::Values(0, EINVAL, ENOSYS));

TEST(Items, ExchangeGivesEachTheOthersName)
{
    const TemporaryTree tree({"folder/x"});
    write(tree.path("file"), "text");
    if (exchangeItems(tree.bytes("folder"), tree.bytes("file")) == EINVAL)
        GTEST_SKIP() << "the file system of $TMPDIR does not exchange items";
    EXPECT_EQ(contentsOf(tree.path("folder")), "text");
    EXPECT_TRUE(nameExists(tree.path("file/x")));
    EXPECT_EQ(exchangeItems(tree.bytes("file"), tree.bytes("nothing")), ENOENT);
}

TEST(Items, TellExistingItemsFromTakenNames)
{
    const TemporaryTree tree({"file"});
    tree.addLink("dangling", "nowhere");
    tree.addLink("link", "file");
    EXPECT_TRUE(itemExists(tree.bytes("file")));
    EXPECT_TRUE(itemExists(tree.bytes("link")));
    EXPECT_FALSE(itemExists(tree.bytes("dangling")));
    EXPECT_FALSE(itemExists(tree.bytes("nothing")));
    EXPECT_EQ(findName(tree.bytes("dangling")), 0);
    EXPECT_EQ(findName(tree.bytes("nothing")), ENOENT);
    EXPECT_EQ(findName(tree.bytes("file/below")), ENOTDIR);
}

TEST(Items, HaveARealPath)
{
    const TemporaryTree tree({"folder/file"});
    tree.addLink("link", "folder");
    const auto folder = realPath(tree.bytes("folder"));
    EXPECT_EQ(realPath(tree.bytes("link/../link/./file")), *folder + "/file");
    EXPECT_EQ(realPath(tree.bytes("nothing")), std::nullopt);
    EXPECT_EQ(realPath(""), std::nullopt);
}

TEST(Items, HaveACanonicalPathThatOpensNothing)
{
    const TemporaryTree tree({"folder/file", "folder/odd (deleted)"});
    tree.addLink("link", "folder");
    ASSERT_EQ(::mkfifo(tree.path("folder/pipe").c_str(), 0600), 0);
    const auto folder = realPath(tree.bytes("folder"));
    EXPECT_EQ(canonicalPath(tree.bytes("link/file")), *folder + "/file");
    EXPECT_EQ(canonicalPath(tree.bytes("link/pipe")), *folder + "/pipe");
    EXPECT_EQ(canonicalPath(tree.bytes("link/odd (deleted)")), *folder + "/odd (deleted)");
    EXPECT_EQ(canonicalPath(tree.bytes("nothing")), std::nullopt);
}

TEST(Items, HaveNoCanonicalPathOnceTheyAreRemoved)
{
    const TemporaryTree tree({"file"});
    ReplacedItemCalls calls;
    calls->openat = [&tree](int folder, const char* name, int flags, mode_t mode) {
        const int opened = systemItemCalls().openat(folder, name, flags, mode);
        ::unlink(tree.path("file").c_str());
        return opened;
    };
    EXPECT_EQ(canonicalPath(tree.bytes("file")), std::nullopt);
}

TEST(Items, HaveACanonicalPathOfAnyLength)
{
    const TemporaryTree tree;
    const std::string longName(200, 'n');
    const std::string folder = longName + '/' + longName + '/' + longName;
    tree.add(folder + '/');
    EXPECT_EQ(canonicalPath(tree.bytes(folder)), realPath(tree.bytes(folder)));
}

TEST(Items, LieOnTheDeviceOfTheItemItself)
{
    const TemporaryTree tree({"file"});
    tree.addLink("dangling", "nowhere");
    EXPECT_EQ(deviceId(tree.bytes("file")), statusOf(tree.path("file")).st_dev);
    EXPECT_EQ(deviceId(tree.bytes("dangling")), statusOf(tree.path("file")).st_dev);
    EXPECT_EQ(deviceId(tree.bytes("nothing")), std::nullopt);
}

TEST(Items, TellTheLimitsThatTheSystemNames)
{
    const TemporaryTree tree({"file"});
    EXPECT_EQ(pathLimit(tree.bytes("file"), PathLimit::MinTransferSize),
              ::pathconf(tree.path("file").c_str(), _PC_REC_MIN_XFER_SIZE));
    EXPECT_EQ(pathLimit(tree.bytes("file"), PathLimit::MaxTransferSize),
              ::pathconf(tree.path("file").c_str(), _PC_REC_MAX_XFER_SIZE));
    EXPECT_EQ(pathLimit(tree.bytes("file"), PathLimit::FileSizeBits),
              ::pathconf(tree.path("file").c_str(), _PC_FILESIZEBITS));
    EXPECT_EQ(pathLimit(tree.bytes("nothing"), PathLimit::MinTransferSize), -1);
}

TEST(Items, TouchSetsBothTimesToNowThroughLinks)
{
    const TemporaryTree tree({"file"});
    tree.addLink("link", "file");
    const struct timespec old[2] = {{1, 2}, {3, 4}};
    ASSERT_EQ(::utimensat(AT_FDCWD, tree.path("file").c_str(), old, 0), 0);
    EXPECT_EQ(touchItem(tree.bytes("link")), 0);
    EXPECT_GT(statusOf(tree.path("file")).st_atim.tv_sec, 1);
    EXPECT_GT(statusOf(tree.path("file")).st_mtim.tv_sec, 3);
    EXPECT_EQ(touchItem(tree.bytes("nothing")), ENOENT);
}

TEST(Items, AreMountPointsWhereSomethingIsMounted)
{
    const TemporaryTree tree({"folder/"});
    EXPECT_TRUE(isMountPoint("/proc")); // the root itself is none in a changed root
    EXPECT_FALSE(isMountPoint(tree.bytes("folder")));
    EXPECT_FALSE(isMountPoint(tree.bytes("nothing")));
}

TEST(Items, AreNotNamedByPathsWithANul)
{
    const TemporaryTree tree({"file"});
    EXPECT_EQ(renameItem(kWithNul, tree.bytes("x")), EINVAL);
    EXPECT_EQ(renameItem(tree.bytes("file"), kWithNul), EINVAL);
    EXPECT_EQ(renameItemExclusively(kWithNul, tree.bytes("x")), EINVAL);
    EXPECT_EQ(exchangeItems(tree.bytes("file"), kWithNul), EINVAL);
    EXPECT_EQ(findName(kWithNul), EINVAL);
    EXPECT_EQ(touchItem(kWithNul), EINVAL);
    EXPECT_EQ(pathLimit(kWithNul, PathLimit::FileSizeBits), -1);
    EXPECT_FALSE(itemExists(kWithNul));
    EXPECT_FALSE(isMountPoint(QByteArray("/\0", 2)));
    EXPECT_EQ(realPath(kWithNul), std::nullopt);
    EXPECT_EQ(canonicalPath(kWithNul), std::nullopt);
    EXPECT_EQ(deviceId(kWithNul), std::nullopt);
}

} // namespace
} // namespace havrel::platform
