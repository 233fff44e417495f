// SPDX-License-Identifier: MIT
#include "platform/loosened_item.h"

#include "platform/extended_attributes.h"
#include "platform/items.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace havrel::platform {
namespace {

struct stat statusOf(const QByteArray& path)
{
    struct stat status = {};
    EXPECT_EQ(::lstat(path.constData(), &status), 0);
    return status;
}

TEST(LoosenedItem, TakesAttributesThatItsOwnerCouldNotGiveItOtherwise)
{
    const TemporaryTree tree;
    const tests::OrdinaryUser user(tree.root());
    tree.add("file");
    const QByteArray path = tree.bytes("file");
    ASSERT_EQ(::chmod(path.constData(), 0444), 0);
    if (const int error = writeAttribute(path, "user.test", "1"); error != EACCES)
        GTEST_SKIP() << "the folder for temporary files keeps no attributes: " << error;
    const struct stat before = statusOf(path);
    {
        const LoosenedItem loosened(path);
        EXPECT_EQ(loosened.error(), 0);
        EXPECT_EQ(writeAttribute(path, "user.test", "1"), 0);
        tree.write("file", "changed");
    }
    EXPECT_EQ(readAttribute(path, "user.test").bytes, "1");
    EXPECT_EQ(statusOf(path).st_mode, before.st_mode);
    EXPECT_EQ(statusOf(path).st_mtim.tv_nsec, before.st_mtim.tv_nsec);
}

TEST(LoosenedItem, MovesElsewhereAsAReadOnlyFolder)
{
    const TemporaryTree tree;
    const tests::OrdinaryUser user(tree.root());
    tree.add("from/folder/");
    tree.add("to/");
    ASSERT_EQ(::chmod(tree.path("from/folder").c_str(), 0555), 0);
    EXPECT_EQ(renameItem(tree.bytes("from/folder"), tree.bytes("to/folder")), EACCES);
    {
        LoosenedItem loosened(tree.bytes("from/folder"));
        EXPECT_EQ(renameItem(tree.bytes("from/folder"), tree.bytes("to/folder")), 0);
        loosened.movedTo(tree.bytes("to/folder"));
    }
    EXPECT_EQ(statusOf(tree.bytes("to/folder")).st_mode, mode_t{S_IFDIR | 0555});
}

TEST(LoosenedItem, LeavesLinksAndWhatIsNotThereAlone)
{
    const TemporaryTree tree{"file"};
    tree.addLink("link", "file");
    const struct stat before = statusOf(tree.bytes("file"));

    EXPECT_EQ(LoosenedItem(tree.bytes("link")).error(), 0);
    EXPECT_EQ(statusOf(tree.bytes("file")).st_ctim.tv_nsec, before.st_ctim.tv_nsec);
    EXPECT_EQ(LoosenedItem(tree.bytes("missing")).error(), ENOENT);
}

} // namespace
} // namespace havrel::platform
