// SPDX-License-Identifier: MIT
#include "platform/item_removal.h"

#include "platform/item_place.h"
#include "tests/support/item_facts.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/replaced_item_calls.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include <sys/mount.h>

namespace havrel::platform {
namespace {

using namespace havrel::tests;

TEST(ItemRemoval, RemovesAnItemOfAnyKind)
{
    const TemporaryTree tree({"file", "folder/", "\xFF\xFE"});
    tree.addLink("dangling", "nowhere");
    ASSERT_EQ(::mkfifo(tree.path("pipe").c_str(), 0600), 0);
    for (const char* name : {"file", "folder", "\xFF\xFE", "dangling", "pipe"}) {
        EXPECT_EQ(removeItem(tree.bytes(name)), 0) << name;
        EXPECT_FALSE(nameExists(tree.path(name))) << name;
    }
}

TEST(ItemRemoval, RemovesAFolderWithEverythingInIt)
{
    const TemporaryTree tree({"folder/a/b/c/file", "folder/a/x", "folder/empty/", "beside"});
    EXPECT_EQ(removeItem(tree.bytes("folder")), 0);
    EXPECT_EQ(namesBelow(tree.root()), std::vector<std::string>{"beside"});
}

TEST(ItemRemoval, RemovesLinksAndNotWhatTheyLeadTo)
{
    const TemporaryTree tree({"kept/file", "folder/"});
    tree.addLink("folder/inside", "../kept");
    tree.addLink("link", "kept");
    EXPECT_EQ(removeItem(tree.bytes("folder")), 0);
    EXPECT_EQ(removeItem(tree.bytes("link/")), 0) << "the link itself, also before a slash";
    EXPECT_FALSE(nameExists(tree.path("link")));
    EXPECT_TRUE(nameExists(tree.path("kept/file")));
}

TEST(ItemRemoval, SurvivesFoldersDeeperThanAnyPath)
{
    const TemporaryTree tree;
    makeDeepFolder(tree.path("deep"));
    EXPECT_EQ(removeItem(tree.bytes("deep")), 0);
    EXPECT_FALSE(nameExists(tree.path("deep")));
}

TEST(ItemRemoval, RefusesWhatNamesNoItemOfItsOwn)
{
    const TemporaryTree tree({"folder/file"});
    EXPECT_EQ(removeItem(tree.bytes("nothing")), ENOENT);
    EXPECT_EQ(removeItem(tree.bytes("folder/file/below")), ENOTDIR);
    EXPECT_EQ(removeItem(tree.bytes("folder/.")), EINVAL);
    EXPECT_EQ(removeItem(tree.bytes("folder/..")), EINVAL);
    EXPECT_EQ(removeItem(QByteArray("")), ENOENT);
    EXPECT_EQ(removeItem(QByteArray("/")), EBUSY);
    EXPECT_EQ(removeItem(QByteArray("//")), EBUSY);
    EXPECT_EQ(removeItem(tree.bytes("folder") + QByteArray("\0x", 2)), EINVAL);
    EXPECT_TRUE(nameExists(tree.path("folder/file")));
}

TEST(ItemRemoval, StopsAtTheFirstFailure)
{
    const TemporaryTree tree({"folder/a", "folder/b", "folder/c"});
    ReplacedItemCalls calls;
    // The first two calls find out that it is a folder with something in it.
    calls->unlinkat = failingAt(4, EIO, systemItemCalls().unlinkat);
    EXPECT_EQ(removeItem(tree.bytes("folder")), EIO);
    EXPECT_EQ(namesBelow(tree.path("folder")).size(), 2U);
}

TEST(ItemRemoval, GoesOnWhenEntriesVanishUnderIt)
{
    const TemporaryTree tree({"folder/a", "folder/inner/b"});
    ReplacedItemCalls calls;
    calls->unlinkat = [](int folder, const char* name, int flags) {
        const bool other = QByteArrayView(name) == "a" || QByteArrayView(name) == "b";
        const int result = systemItemCalls().unlinkat(folder, name, flags);
        return other ? FailingCall{ENOENT}() : result;
    };
    EXPECT_EQ(removeItem(tree.bytes("folder")), 0);
    EXPECT_FALSE(nameExists(tree.path("folder")));
}

TEST(ItemRemoval, RemovesAnEntryThatBecameAFolder)
{
    const TemporaryTree tree({"folder/a"});
    ReplacedItemCalls calls;
    calls->unlinkat = [&tree, changed = false](int folder, const char* name, int flags) mutable {
        if (QByteArrayView(name) == "a" && !changed) {
            changed = true;
            std::filesystem::remove(tree.path("folder/a"));
            tree.add("folder/a/file");
        }
        return systemItemCalls().unlinkat(folder, name, flags);
    };
    EXPECT_EQ(removeItem(tree.bytes("folder")), 0);
    EXPECT_FALSE(nameExists(tree.path("folder")));
}

TEST(ItemRemoval, LeavesAFolderThatMayNotBeRead)
{
    const TemporaryTree tree;
    const OrdinaryUser user(tree.root());
    tree.add("folder/closed/file");
    std::filesystem::permissions(tree.path("folder/closed"), std::filesystem::perms::none);
    EXPECT_EQ(removeItem(tree.bytes("folder")), EACCES);
    std::filesystem::permissions(tree.path("folder/closed"), std::filesystem::perms::owner_all);
    EXPECT_TRUE(nameExists(tree.path("folder/closed/file")));
}

TEST(ItemRemoval, RemovesNothingFromAFolderThatMayNotBeRemovedItself)
{
    const TemporaryTree tree;
    const OrdinaryUser user(tree.root());
    tree.add("outer/folder/file");
    std::filesystem::permissions(tree.path("outer"),
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    EXPECT_EQ(removeItem(tree.bytes("outer/folder")), EACCES);
    EXPECT_TRUE(nameExists(tree.path("outer/folder/file")));
    std::filesystem::permissions(tree.path("outer"), std::filesystem::perms::owner_all);
}

TEST(ItemRemoval, DoesNotGoIntoWhatIsMounted)
{
    const TemporaryTree tree({"folder/mounted/", "other/precious"});
    const std::string mountPoint = tree.path("folder/mounted");
    if (::mount(tree.path("other").c_str(), mountPoint.c_str(), nullptr, MS_BIND, nullptr) != 0)
        GTEST_SKIP() << "this process may not mount";
    EXPECT_EQ(removeItem(tree.bytes("folder")), EBUSY);
    EXPECT_EQ(removeItem(tree.bytes("folder/mounted")), EBUSY);
    EXPECT_TRUE(nameExists(mountPoint + "/precious"));
    ASSERT_EQ(::umount(mountPoint.c_str()), 0);
    EXPECT_TRUE(nameExists(tree.path("other/precious")));
}

/// A change of an item's status, and whether the item then counts as unchanged: with one name, with several, a folder.
struct StatusChange
{
    const char* label;
    void (*change)(struct stat&);
    bool withOneName, withSeveral, asFolder;
};

TEST(CopiedItem, TellsWhetherItChanged)
{
    const std::vector<StatusChange> rows{
        {"nothing", [](struct stat&) {}, true, true, true},
        {"read", [](struct stat& now) { now.st_atim.tv_nsec += 1; }, true, true, true},
        {"new attributes", [](struct stat& now) { now.st_ctim.tv_nsec += 1; }, false, true, true},
        {"new attributes later", [](struct stat& now) { now.st_ctim.tv_sec += 1; }, false, true, true},
        {"written", [](struct stat& now) { now.st_mtim.tv_nsec += 1; }, false, false, true},
        {"written later", [](struct stat& now) { now.st_mtim.tv_sec += 1; }, false, false, true},
        {"made longer", [](struct stat& now) { now.st_size += 1; }, false, false, true},
        {"another item", [](struct stat& now) { now.st_ino += 1; }, false, false, false},
        {"on another device", [](struct stat& now) { now.st_dev += 1; }, false, false, false},
    };
    const auto remainsUnchanged = [](const StatusChange& row, mode_t mode, nlink_t names) {
        struct stat status = {};
        status.st_mode = mode;
        status.st_nlink = names;
        const CopiedItem item = copiedItem(status);
        row.change(status);
        return item.isUnchanged(status);
    };
    for (const StatusChange& row : rows) {
        EXPECT_EQ(remainsUnchanged(row, S_IFREG, 1), row.withOneName) << row.label;
        EXPECT_EQ(remainsUnchanged(row, S_IFREG, 2), row.withSeveral) << row.label;
        EXPECT_EQ(remainsUnchanged(row, S_IFDIR, 2), row.asFolder) << row.label;
    }
}

TEST(ItemRemoval, OfAListLeavesTheRest)
{
    const TemporaryTree tree({"folder/mine", "folder/theirs", "folder/inner/mine"});
    ItemPlace place;
    ASSERT_EQ(place.find(tree.bytes("folder")), 0);
    std::vector<CopiedItem> listed;
    for (const char* name : {"folder", "folder/mine", "folder/inner", "folder/inner/mine"})
        listed.push_back(copiedItem(statusOf(tree.path(name))));
    EXPECT_EQ(removeListed(place, listed), ENOTEMPTY);
    EXPECT_EQ(namesBelow(tree.root()), (std::vector<std::string>{"folder", "folder/theirs"}));
}

} // namespace
} // namespace havrel::platform
