// SPDX-License-Identifier: MIT
#include "platform/folder_search.h"

#include "platform/item_removal.h"
#include "tests/support/item_facts.h"
#include "tests/support/mounted_folder.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

namespace havrel::platform {
namespace {

using namespace havrel::tests;

ItemPlace placeOf(const TemporaryTree& tree, const char* name)
{
    ItemPlace place;
    EXPECT_EQ(place.find(tree.bytes(name)), 0);
    return place;
}

int searched(const TemporaryTree& tree, const char* top, const char* wanted)
{
    return refuseHolding(placeOf(tree, top), identityOf(statusOf(tree.path(wanted))));
}

TEST(FolderSearch, FindsAFolderAtAnyDepthAndTheTopItself)
{
    const TemporaryTree tree{"top/a/b/c/", "top/d/e/", "top/file", "other/f/"};
    tree.addLink("top/link", "../other");
    for (const char* inside : {"top", "top/a", "top/a/b/c", "top/d/e"})
        EXPECT_EQ(searched(tree, "top", inside), EINVAL) << inside;
    for (const char* outside : {".", "other", "other/f"})
        EXPECT_EQ(searched(tree, "top", outside), 0) << outside;
    EXPECT_EQ(searched(tree, "top/link", "other"), 0) << "a link leads nowhere";
    EXPECT_EQ(searched(tree, "top/file", "top"), 0);
    EXPECT_EQ(searched(tree, "nothing", "top"), 0);
}

TEST(FolderSearch, LooksDeeperThanAnyPathAndComesBack)
{
    const TemporaryTree tree{"top/a/", "other/"};
    makeDeepFolder(tree.path("top/deep"));
    EXPECT_EQ(searched(tree, "top", "top/a"), EINVAL) << "the subfolder that is looked into last";
    EXPECT_EQ(searched(tree, "top", "other"), 0);
    EXPECT_EQ(removeItem(tree.bytes("top/deep")), 0); // std::filesystem does not go that deep
}

TEST(FolderSearch, GoesAroundWhatIsMounted)
{
    const TemporaryTree tree{"top/mounted/", "top/z/", "other/inner/"};
    const auto mounted = MountedFolder::bound(tree.bytes("other"), tree.bytes("top/mounted"));
    HAVREL_NEEDS_MOUNTED(mounted);
    EXPECT_EQ(searched(tree, "top", "other/inner"), 0);
    EXPECT_EQ(searched(tree, "top", "top/z"), EINVAL);
}

TEST(FolderSearch, GoesAroundFoldersThatLetNobodyIn)
{
    const TemporaryTree tree;
    const OrdinaryUser user(tree.root());
    tree.add("mine/closed/inner/");
    tree.add("mine/z/");
    const ItemIdentity inner = identityOf(statusOf(tree.path("mine/closed/inner")));
    std::filesystem::permissions(tree.path("mine/closed"), std::filesystem::perms::none);
    EXPECT_EQ(refuseHolding(placeOf(tree, "mine"), inner), 0);
    EXPECT_EQ(searched(tree, "mine", "mine/z"), EINVAL);
    std::filesystem::permissions(tree.path("mine/closed"), std::filesystem::perms::owner_all);
}

TEST(FolderSearch, IsNeededOnlyWhereOneFileSystemHasTwoMounts)
{
    const TemporaryTree tree{"folder/inner/", "view/", "mounted/"};
    EXPECT_FALSE(mayLieBehindTwoMounts(placeOf(tree, "folder/x"), placeOf(tree, "folder/inner/x")));
    const auto view = MountedFolder::bound(tree.bytes("folder"), tree.bytes("view"));
    const MountedFolder other("tmpfs", tree.bytes("mounted"), "size=64k");
    HAVREL_NEEDS_MOUNTED(view);
    HAVREL_NEEDS_MOUNTED(other);
    EXPECT_TRUE(mayLieBehindTwoMounts(placeOf(tree, "folder/x"), placeOf(tree, "view/x")));
    EXPECT_TRUE(mayLieBehindTwoMounts(placeOf(tree, "view/inner/x"), placeOf(tree, "folder/x")));
    EXPECT_FALSE(mayLieBehindTwoMounts(placeOf(tree, "view/x"), placeOf(tree, "view/inner/x")));
    EXPECT_FALSE(mayLieBehindTwoMounts(placeOf(tree, "folder/x"), placeOf(tree, "mounted/x")));
}

} // namespace
} // namespace havrel::platform
