// SPDX-License-Identifier: MIT
#include "platform/item_marks.h"

#include "tests/support/item_facts.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

bool isHidden(const TemporaryTree& tree, const char* name)
{
    return hiddenMark(tree.bytes(name)).isSet;
}

bool isExcluded(const TemporaryTree& tree, const char* name)
{
    return excludedFromBackupMark(tree.bytes(name)).isSet;
}

TEST(HiddenMark, IsADotOrALineInTheListOfTheFolder)
{
    const TemporaryTree tree({"plain", ".dotted", "listed", "listed too", "list", "folder/", "folder/listed"});
    tree.write(".hidden", "listed\nlisted too\nmissing\n");
    EXPECT_FALSE(isHidden(tree, "plain"));
    EXPECT_TRUE(isHidden(tree, ".dotted"));
    EXPECT_TRUE(isHidden(tree, "listed"));
    EXPECT_TRUE(isHidden(tree, "listed too"));
    EXPECT_FALSE(isHidden(tree, "list")) << "a whole line, not a part of one";
    EXPECT_FALSE(isHidden(tree, "folder/listed")) << "a list is for its own folder";
    EXPECT_FALSE(isHidden(tree, "folder/"));
    EXPECT_FALSE(hiddenMark("/").isSet);
    EXPECT_FALSE(isHidden(tree, "folder/.")) << "the folder, not a name with a dot";
}

TEST(HiddenMark, IsNotLookedForInWhatIsNoFile)
{
    const TemporaryTree tree({"item"});
    ASSERT_EQ(::mkfifo(tree.path(".hidden").c_str(), 0600), 0);
    EXPECT_FALSE(isHidden(tree, "item")) << "and the pipe was not waited for";
}

TEST(ItemMarks, TellWhyThereAreNone)
{
    const TemporaryTree tree;
    EXPECT_EQ(hiddenMark(tree.bytes(".missing")).error, ENOENT);
    EXPECT_FALSE(hiddenMark(tree.bytes(".missing")).isSet);
    EXPECT_EQ(excludedFromBackupMark(tree.bytes("missing")).error, ENOENT);
    EXPECT_EQ(excludedFromBackupMark(QByteArray("a\0b", 3)).error, EINVAL);
}

TEST(ExcludedFromBackupMark, IsTheCacheDirectoryTagOfAFolder)
{
    const TemporaryTree tree({"cache/", "folder/", "wrong/", "file"});
    const std::string signature = "Signature: 8a477f597d28d172789f06886806bc55";
    tree.write("cache/CACHEDIR.TAG", signature + "\n# a comment\n");
    tree.write("wrong/CACHEDIR.TAG", "Signature: 8a477f597d28d172789f06886806bc5");
    EXPECT_TRUE(isExcluded(tree, "cache"));
    EXPECT_FALSE(isExcluded(tree, "cache/CACHEDIR.TAG")) << "the folder, not what is in it";
    EXPECT_FALSE(isExcluded(tree, "wrong"));
    EXPECT_FALSE(isExcluded(tree, "folder"));
    EXPECT_FALSE(isExcluded(tree, "file"));
    tree.addLink("link", "cache");
    EXPECT_FALSE(isExcluded(tree, "link")) << "the link itself";
}

TEST(ExcludedFromBackupMark, IsTheAttributeOfRobots)
{
    const TemporaryTree tree({"out", "in", "odd"});
    if (!tests::setAttribute(tree.path("out"), "user.xdg.robots.backup", "false"))
        GTEST_SKIP() << "the file system of temporary items keeps no attributes of users";
    ASSERT_TRUE(tests::setAttribute(tree.path("in"), "user.xdg.robots.backup", "true"));
    ASSERT_TRUE(tests::setAttribute(tree.path("odd"), "user.xdg.robots.backup", "false\n"));
    EXPECT_TRUE(isExcluded(tree, "out"));
    EXPECT_FALSE(isExcluded(tree, "in"));
    EXPECT_FALSE(isExcluded(tree, "odd"));
}

TEST(ExcludedFromBackupMark, IsTheNoDumpFlag)
{
    const TemporaryTree tree({"item"});
    const int file = ::open(tree.path("item").c_str(), O_RDONLY);
    const unsigned flags = FS_NODUMP_FL;
    const int result = ::ioctl(file, FS_IOC_SETFLAGS, &flags);
    ::close(file);
    if (result != 0)
        GTEST_SKIP() << "the file system of temporary items keeps no flags";
    EXPECT_TRUE(isExcluded(tree, "item"));
}

} // namespace
} // namespace havrel::platform
