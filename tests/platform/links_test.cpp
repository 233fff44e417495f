// SPDX-License-Identifier: MIT
#include "platform/links.h"

#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

namespace havrel::platform {
namespace {

TEST(Links, TellTheirTargetsWhateverTheBytes)
{
    const TemporaryTree tree{"file"};
    tree.addLink("link", "a\xff\nb");

    EXPECT_EQ(targetOfLink(tree.bytes("link")), QByteArray("a\xff\nb"));
    EXPECT_EQ(targetOfLink(tree.bytes("file")), std::nullopt);
    EXPECT_EQ(targetOfLink(tree.bytes("missing")), std::nullopt);
}

TEST(Links, GetOtherTargetsAndKeepTheirTimes)
{
    const TemporaryTree tree;
    tree.addLink("link", "before");
    const timespec then[] = {{1'000'000'001, 123456789}, {1'000'000'002, 987654321}};
    ASSERT_EQ(::utimensat(AT_FDCWD, tree.path("link").c_str(), then, AT_SYMLINK_NOFOLLOW), 0);

    EXPECT_EQ(retargetLink(tree.bytes("link"), "after\xfe"), 0);

    EXPECT_EQ(targetOfLink(tree.bytes("link")), QByteArray("after\xfe"));
    struct stat status = {};
    ASSERT_EQ(::lstat(tree.path("link").c_str(), &status), 0);
    EXPECT_EQ(status.st_mtim.tv_sec, 1'000'000'002);
    EXPECT_EQ(status.st_mtim.tv_nsec, 987654321);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(tree.root()), {}), 1) << "nothing is left behind";
}

TEST(Links, AreWhatGetsATarget)
{
    const TemporaryTree tree{"file"};

    EXPECT_EQ(retargetLink(tree.bytes("file"), "x"), EINVAL);
    EXPECT_EQ(retargetLink(tree.bytes("missing"), "x"), ENOENT);
}

} // namespace
} // namespace havrel::platform
