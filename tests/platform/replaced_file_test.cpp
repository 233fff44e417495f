// SPDX-License-Identifier: MIT
#include "platform/replaced_file.h"

#include "platform/extended_attributes.h"
#include "platform/file_contents.h"
#include "tests/support/attribute_folder.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

struct stat statusOf(const QByteArray& path)
{
    struct stat status = {};
    EXPECT_EQ(::lstat(path.constData(), &status), 0) << path.constData();
    return status;
}

std::size_t countOfItems(const TemporaryTree& tree)
{
    const std::filesystem::directory_iterator items(tree.root());
    return static_cast<std::size_t>(std::distance(begin(items), end(items)));
}

TEST(ReplacedFile, IsMadeWhenThereIsNone)
{
    const TemporaryTree tree;
    const mode_t mask = ::umask(027);
    EXPECT_EQ(replaceFile(tree.bytes("new"), "text", 0755), 0);
    ::umask(mask);
    EXPECT_EQ(readFile(tree.bytes("new")).bytes, "text");
    EXPECT_EQ(statusOf(tree.bytes("new")).st_mode & 07777, 0750U);
    EXPECT_EQ(countOfItems(tree), 1U);
}

TEST(ReplacedFile, KeepsModeAndTellsThatItChanged)
{
    const TemporaryTree tree({"file"});
    ASSERT_EQ(::chmod(tree.path("file").c_str(), 0604), 0);
    const timespec old[2] = {{1000, 0}, {1000, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, tree.path("file").c_str(), old, 0), 0);
    EXPECT_EQ(replaceFile(tree.bytes("file"), QByteArray(100000, 'x'), 0755), 0);
    EXPECT_EQ(readFile(tree.bytes("file")).bytes, QByteArray(100000, 'x'));
    EXPECT_EQ(statusOf(tree.bytes("file")).st_mode & 07777, 0604U);
    EXPECT_GT(statusOf(tree.bytes("file")).st_mtim.tv_sec, 1000);
    EXPECT_EQ(replaceFile(tree.bytes("file"), "", 0755), 0);
    EXPECT_EQ(readFile(tree.bytes("file")).bytes, "");
}

TEST(ReplacedFile, StaysBehindItsLink)
{
    const TemporaryTree tree({"folder/file"});
    tree.addLink("link", "folder/file");
    EXPECT_EQ(replaceFile(tree.bytes("link"), "text", 0600), 0);
    EXPECT_TRUE(S_ISLNK(statusOf(tree.bytes("link")).st_mode));
    EXPECT_EQ(readFile(tree.bytes("folder/file")).bytes, "text");
}

TEST(ReplacedFile, IsRefusedWhereThereIsNoFileToReplace)
{
    const TemporaryTree tree({"folder/"});
    tree.addLink("dangling", "nowhere");
    tree.addLink("circle", "circle");
    ASSERT_EQ(::mkfifo(tree.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(replaceFile(tree.bytes("folder"), "text", 0600), EISDIR);
    EXPECT_EQ(replaceFile(tree.bytes("pipe"), "text", 0600), EINVAL);
    EXPECT_EQ(replaceFile(tree.bytes("dangling"), "text", 0600), ENOENT);
    EXPECT_EQ(replaceFile(tree.bytes("circle"), "text", 0600), ELOOP);
    EXPECT_EQ(replaceFile(tree.bytes("missing/file"), "text", 0600), ENOENT);
    EXPECT_EQ(replaceFile(tree.bytes("x") + '\0', "text", 0600), EINVAL);
    EXPECT_EQ(countOfItems(tree), 4U);
}

TEST(ReplacedFile, StaysAsItIsInAFolderThatTakesNothing)
{
    const TemporaryTree tree({"file"});
    const tests::OrdinaryUser user(tree.root());
    ASSERT_EQ(::chmod(tree.root().c_str(), 0555), 0);
    EXPECT_EQ(replaceFile(tree.bytes("file"), "text", 0600), EACCES);
    ASSERT_EQ(::chmod(tree.root().c_str(), 0755), 0);
    EXPECT_EQ(readFile(tree.bytes("file")).bytes, "");
    EXPECT_EQ(countOfItems(tree), 1U);
}

TEST(ReplacedFile, LeavesTheLeftoversOfOthersAlone)
{
    const TemporaryTree tree;
    const std::string taken = ".havrel-" + std::to_string(::getpid()) + "-0";
    tree.write(taken, "precious");
    EXPECT_EQ(replaceFile(tree.bytes("file"), "text", 0600), 0);
    EXPECT_EQ(readFile(tree.bytes(taken)).bytes, "precious");
}

class ReplacedFileWith : public tests::WithAttributes
{
};

TEST_F(ReplacedFileWith, AttributesKeepsThem)
{
    m_tree.add("file");
    ASSERT_EQ(writeAttribute(m_tree.bytes("file"), "user.test", "value"), 0);
    EXPECT_EQ(replaceFile(m_tree.bytes("file"), "text", 0600), 0);
    EXPECT_EQ(readAttribute(m_tree.bytes("file"), "user.test").bytes, "value");
}

TEST(MadeFolders, AreThereWithThoseAboveThem)
{
    const TemporaryTree tree({"file"});
    EXPECT_EQ(makeFolders(tree.bytes("a/b/c"), 0700), 0);
    EXPECT_EQ(statusOf(tree.bytes("a")).st_mode & 07777, 0700U);
    EXPECT_TRUE(S_ISDIR(statusOf(tree.bytes("a/b/c")).st_mode));
    EXPECT_EQ(makeFolders(tree.bytes("a/b/c"), 0700), 0);
    EXPECT_EQ(makeFolders(tree.bytes("file/a"), 0700), ENOTDIR);
    EXPECT_EQ(makeFolders(tree.bytes("file"), 0700), EEXIST);
}

} // namespace
} // namespace havrel::platform
