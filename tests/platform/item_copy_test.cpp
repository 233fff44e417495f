// SPDX-License-Identifier: MIT
#include "platform/item_copy.h"

#include "platform/item_place.h"
#include "platform/item_removal.h"
#include "tests/support/item_facts.h"
#include "tests/support/mounted_folder.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/replaced_item_calls.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

#include <sys/mount.h>
#include <sys/sysmacros.h>

namespace havrel::platform {
namespace {

using namespace havrel::tests;
namespace files = std::filesystem;

AttributeOutcome
copyBetween(const TemporaryTree& tree, const char* from, const char* to, AttributeLoss loss = AttributeLoss::Accepted)
{
    ItemPlace source;
    ItemPlace target;
    if (const int error = source.find(tree.bytes(from)); error != 0)
        return {error};
    if (const int error = target.find(tree.bytes(to)); error != 0)
        return {error};
    return copyItem(source, target, loss);
}

int copied(const TemporaryTree& tree, const char* from, const char* to)
{
    return copyBetween(tree, from, to).error;
}

void setTimes(const std::string& path, time_t accessed, time_t modified)
{
    const struct timespec times[2] = {{accessed, 123456789}, {modified, 987654321}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
}

void expectSameTimes(const std::string& path, time_t accessed, time_t modified)
{
    const struct stat status = statusOf(path);
    EXPECT_EQ(status.st_atim.tv_sec, accessed) << path;
    EXPECT_EQ(status.st_atim.tv_nsec, 123456789) << path;
    EXPECT_EQ(status.st_mtim.tv_sec, modified) << path;
    EXPECT_EQ(status.st_mtim.tv_nsec, 987654321) << path;
}

/// An access list: the owner, one more user, the group, a mask and the others.
/// \source linux/posix_acl_xattr.h: a 32-bit version, then a 16-bit tag, 16-bit permissions and a 32-bit id each
std::string accessList()
{
    const auto entry = [](char tag, char permissions, char idByte) {
        const std::string id = idByte == '\xFF' ? std::string(4, '\xFF') : std::string{idByte, 0, 0, 0};
        return std::string{tag, 0, permissions, 0} + id;
    };
    return std::string{2, 0, 0, 0} + entry(1, 6, '\xFF') + entry(2, 4, 42) + entry(4, 4, '\xFF') +
           entry(16, 4, '\xFF') + entry(32, 0, '\xFF');
}

constexpr auto kAccess = "system.posix_acl_access";
constexpr auto kDefault = "system.posix_acl_default";

TEST(ItemCopy, KeepsContentsModeAndTimes)
{
    const TemporaryTree tree;
    const std::string text = std::string("some text\0with a NUL", 20) + std::string(300000, 'x');
    write(tree.path("a"), text);
    ASSERT_EQ(::chmod(tree.path("a").c_str(), 0741), 0);
    setTimes(tree.path("a"), 1000000000, 1234567890);
    ASSERT_EQ(copied(tree, "a", "b"), 0);
    expectSameTimes(tree.path("b"), 1000000000, 1234567890); // before reading it changes them
    EXPECT_EQ(contentsOf(tree.path("b")), text);
    EXPECT_EQ(statusOf(tree.path("b")).st_mode, static_cast<mode_t>(S_IFREG | 0741));
    EXPECT_NE(statusOf(tree.path("b")).st_ino, statusOf(tree.path("a")).st_ino);
}

TEST(ItemCopy, KeepsTimesToTheNanosecond)
{
    const TemporaryTree tree({"folder/file", "folder/inner/"});
    tree.addLink("folder/link", "nowhere");
    ASSERT_EQ(::mkfifo(tree.path("folder/pipe").c_str(), 0600), 0);
    time_t time = 1000000000;
    for (const char* name : {"folder/file", "folder/link", "folder/pipe", "folder/inner", "folder"}) {
        ++time;
        setTimes(tree.path(name), time, 2 * time);
    }
    ASSERT_EQ(copied(tree, "folder", "copy"), 0);
    time = 1000000000;
    for (const char* name : {"copy/file", "copy/link", "copy/pipe", "copy/inner", "copy"}) {
        ++time;
        expectSameTimes(tree.path(name), time, 2 * time);
    }
}

TEST(ItemCopy, KeepsEveryExtendedAttribute)
{
    const TemporaryTree tree({"folder/file"});
    if (!setAttribute(tree.path("folder/file"), "user.com.havrel.prefs", std::string("a\0b", 3)))
        GTEST_SKIP() << "the file system of $TMPDIR keeps no attributes of users";
    ASSERT_TRUE(setAttribute(tree.path("folder/file"), "user.empty", ""));
    ASSERT_TRUE(setAttribute(tree.path("folder"), "user.of a folder", std::string(2000, 'v')));
    const bool trusted = setAttribute(tree.path("folder/file"), "trusted.x", "t"); // root only
    ASSERT_EQ(copied(tree, "folder", "copy"), 0);
    EXPECT_EQ(attributeOf(tree.path("copy/file"), "user.com.havrel.prefs"), std::string("a\0b", 3));
    EXPECT_EQ(attributeOf(tree.path("copy/file"), "user.empty"), "");
    EXPECT_EQ(attributeOf(tree.path("copy"), "user.of a folder"), std::string(2000, 'v'));
    EXPECT_EQ(attributeOf(tree.path("copy/file"), "trusted.x"), trusted ? "t" : "(none)");
}

TEST(ItemCopy, KeepsTheAttributesOfAFileThatMayNotBeWritten)
{
    const TemporaryTree tree;
    const OrdinaryUser user(tree.root());
    write(tree.path("a"), "text");
    if (!setAttribute(tree.path("a"), "user.x", "value"))
        GTEST_SKIP() << "the file system of $TMPDIR keeps no attributes of users";
    ASSERT_EQ(::chmod(tree.path("a").c_str(), 0444), 0);
    ASSERT_EQ(copied(tree, "a", "b"), 0);
    EXPECT_EQ(attributeOf(tree.path("b"), "user.x"), "value");
    EXPECT_EQ(statusOf(tree.path("b")).st_mode & 07777U, 0444U);
}

TEST(ItemCopy, KeepsAccessListsAndTakesNoneFromTheFolder)
{
    const TemporaryTree tree({"listed", "plain", "folder/inner/", "target/"});
    if (!setAttribute(tree.path("listed"), kAccess, accessList()))
        GTEST_SKIP() << "the file system of $TMPDIR keeps no access lists";
    ASSERT_TRUE(setAttribute(tree.path("folder"), kDefault, accessList()));
    ASSERT_TRUE(setAttribute(tree.path("target"), kDefault, accessList()));
    const mode_t plainMode = statusOf(tree.path("plain")).st_mode;

    ASSERT_EQ(copied(tree, "listed", "target/listed"), 0);
    ASSERT_EQ(copied(tree, "plain", "target/plain"), 0);
    ASSERT_EQ(copied(tree, "folder", "target/folder"), 0);
    EXPECT_EQ(attributeOf(tree.path("target/listed"), kAccess), accessList());
    EXPECT_EQ(attributeOf(tree.path("target/plain"), kAccess), "(none)");
    EXPECT_EQ(statusOf(tree.path("target/plain")).st_mode, plainMode);
    EXPECT_EQ(attributeOf(tree.path("target/folder"), kDefault), accessList());
    EXPECT_EQ(attributeOf(tree.path("target/folder"), kAccess), "(none)");
    EXPECT_EQ(attributeOf(tree.path("target/folder/inner"), kDefault), "(none)");
}

TEST(ItemCopy, KeepsOwnersAndSetIdBitsWherePermitted)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root may give items away";
    const TemporaryTree tree({"file"});
    tree.addLink("link", "nowhere");
    ASSERT_EQ(::chown(tree.path("file").c_str(), 12, 34), 0);
    ASSERT_EQ(::lchown(tree.path("link").c_str(), 56, 78), 0);
    ASSERT_EQ(::chmod(tree.path("file").c_str(), 06755), 0);
    ASSERT_EQ(copied(tree, "file", "copy"), 0);
    ASSERT_EQ(copied(tree, "link", "copied link"), 0);
    EXPECT_EQ(statusOf(tree.path("copy")).st_uid, 12U);
    EXPECT_EQ(statusOf(tree.path("copy")).st_gid, 34U);
    EXPECT_EQ(statusOf(tree.path("copy")).st_mode & 07777U, 06755U);
    EXPECT_EQ(statusOf(tree.path("copied link")).st_uid, 56U);
    EXPECT_EQ(statusOf(tree.path("copied link")).st_gid, 78U);
}

TEST(ItemCopy, DropsSetIdBitsThatWouldStandForSomebodyElse)
{
    const TemporaryTree tree({"file"});
    ASSERT_EQ(::chmod(tree.path("file").c_str(), 06755), 0);
    ReplacedItemCalls calls;
    calls->fchownat = failing(EPERM);
    ASSERT_EQ(copied(tree, "file", "copy"), 0);
    EXPECT_EQ(statusOf(tree.path("copy")).st_mode & 07777U, 0755U);

    calls->fchownat = [](int, const char*, uid_t owner, gid_t, int) {
        return owner == static_cast<uid_t>(-1) ? 0 : FailingCall{EPERM}();
    };
    ASSERT_EQ(copied(tree, "file", "of the group"), 0);
    EXPECT_EQ(statusOf(tree.path("of the group")).st_mode & 07777U, 02755U);
}

TEST(ItemCopy, CopiesLinksAsLinks)
{
    const TemporaryTree tree({"file"});
    const std::string longText(1000, 't');
    tree.addLink("to file", "file");
    tree.addLink("dangling", longText);
    ASSERT_EQ(copied(tree, "to file", "copy"), 0);
    ASSERT_EQ(copied(tree, "dangling", "copied dangling"), 0);
    EXPECT_EQ(files::read_symlink(tree.path("copy")), "file");
    EXPECT_EQ(files::read_symlink(tree.path("copied dangling")), longText);
}

TEST(ItemCopy, CopiesPipesSocketsAndDevicesAsSuch)
{
    const TemporaryTree tree({"folder/"});
    ASSERT_EQ(::mkfifo(tree.path("folder/pipe").c_str(), 0640), 0);
    ASSERT_EQ(::mknod(tree.path("folder/socket").c_str(), S_IFSOCK | 0600, 0), 0);
    const bool device = ::mknod(tree.path("folder/null").c_str(), S_IFCHR | 0622, makedev(1, 3)) == 0; // root only
    ASSERT_EQ(copied(tree, "folder", "copy"), 0);
    EXPECT_EQ(statusOf(tree.path("copy/pipe")).st_mode, static_cast<mode_t>(S_IFIFO | 0640));
    EXPECT_EQ(statusOf(tree.path("copy/socket")).st_mode, static_cast<mode_t>(S_IFSOCK | 0600));
    if (device) {
        EXPECT_EQ(statusOf(tree.path("copy/null")).st_mode, statusOf(tree.path("folder/null")).st_mode);
        EXPECT_EQ(statusOf(tree.path("copy/null")).st_rdev, makedev(1, 3));
    }
}

TEST(ItemCopy, CopiesFoldersWithEverythingInThem)
{
    const TemporaryTree tree({"folder/a/b/c/file",
                              "folder/a/x",
                              "folder/empty/",
                              "folder/bad\xFF\xC3(",
                              "folder/.hidden",
                              "folder/new\nline"});
    ASSERT_EQ(copied(tree, "folder", "copy"), 0);
    EXPECT_EQ(namesBelow(tree.path("copy")), namesBelow(tree.path("folder")));
}

TEST(ItemCopy, KeepsHardLinksInsideTheTree)
{
    const TemporaryTree tree({"folder/a/one", "outside"});
    files::create_hard_link(tree.path("folder/a/one"), tree.path("folder/two"));
    tree.add("folder/b/c/");
    files::create_hard_link(tree.path("folder/a/one"), tree.path("folder/b/c/three"));
    files::create_hard_link(tree.path("outside"), tree.path("folder/four"));
    ASSERT_EQ(copied(tree, "folder", "copy"), 0);
    const struct stat one = statusOf(tree.path("copy/a/one"));
    EXPECT_EQ(one.st_nlink, 3U);
    EXPECT_EQ(statusOf(tree.path("copy/two")).st_ino, one.st_ino);
    EXPECT_EQ(statusOf(tree.path("copy/b/c/three")).st_ino, one.st_ino);
    EXPECT_NE(one.st_ino, statusOf(tree.path("folder/a/one")).st_ino);
    EXPECT_EQ(statusOf(tree.path("copy/four")).st_nlink, 1U);
}

TEST(ItemCopy, CopiesEachNameWhereLinksCannotBeMade)
{
    const TemporaryTree tree({"folder/"});
    write(tree.path("folder/one"), "text");
    files::create_hard_link(tree.path("folder/one"), tree.path("folder/two"));
    ReplacedItemCalls calls;
    calls->linkat = failing(EPERM);
    ASSERT_EQ(copied(tree, "folder", "copy"), 0);
    EXPECT_EQ(contentsOf(tree.path("copy/one")), "text");
    EXPECT_EQ(contentsOf(tree.path("copy/two")), "text");
}

TEST(ItemCopy, SurvivesFoldersDeeperThanAnyPath)
{
    const TemporaryTree tree;
    makeDeepFolder(tree.path("deep"));
    ASSERT_EQ(copied(tree, "deep", "copy"), 0);
    EXPECT_EQ(depthOf(tree.path("copy")), std::pair(kDeeperThanAnyPath, true));
    EXPECT_EQ(removeItem(tree.bytes("deep")), 0); // std::filesystem does not go that deep
    EXPECT_EQ(removeItem(tree.bytes("copy")), 0);
}

TEST(ItemCopy, CopiesAFolderThatLetsNobodyIn)
{
    const TemporaryTree tree;
    const OrdinaryUser user(tree.root());
    tree.add("folder/closed/");
    tree.add("folder/readable/file");
    files::permissions(tree.path("folder/closed"), files::perms::owner_read);
    files::permissions(tree.path("folder/readable"), files::perms::owner_read | files::perms::owner_exec);
    ASSERT_EQ(copied(tree, "folder", "copy"), 0);
    EXPECT_EQ(statusOf(tree.path("copy/closed")).st_mode & 07777U, 0400U);
    EXPECT_EQ(statusOf(tree.path("copy/readable")).st_mode & 07777U, 0500U);
    EXPECT_TRUE(nameExists(tree.path("copy/readable/file")));
    for (const char* name : {"folder/readable", "copy/readable"})
        files::permissions(tree.path(name), files::perms::owner_all);
}

// ---- contents

struct Way
{
    const char* label;
    int clone; // errno values; 0: the real call
    int copyFileRange;
};

class ItemCopyByEveryWay : public ::testing::TestWithParam<Way>
{
protected:
    void SetUp() override
    {
        if (GetParam().clone != 0)
            m_calls->clone = failing(GetParam().clone);
        if (GetParam().copyFileRange != 0)
            m_calls->copyFileRange = failing(GetParam().copyFileRange);
    }
    ReplacedItemCalls m_calls;
};

TEST_P(ItemCopyByEveryWay, CopiesContents)
{
    const TemporaryTree tree;
    std::string text;
    for (int i = 0; text.size() < 1500000; ++i)
        text += std::to_string(i);
    for (const std::string& contents : {std::string(), std::string("x"), text}) {
        write(tree.path("a"), contents);
        ASSERT_EQ(copied(tree, "a", "b"), 0);
        EXPECT_EQ(contentsOf(tree.path("b")), contents);
        files::remove(tree.path("b"));
    }
}

TEST_P(ItemCopyByEveryWay, KeepsHoles)
{
    const TemporaryTree tree;
    const int file = ::open(tree.path("a").c_str(), O_CREAT | O_WRONLY, 0644);
    ASSERT_EQ(::pwrite(file, "middle", 6, 8 << 20), 6);
    ASSERT_EQ(::ftruncate(file, 64 << 20), 0);
    ::close(file);
    if (statusOf(tree.path("a")).st_blocks * 512 > (1 << 20))
        GTEST_SKIP() << "the file system of $TMPDIR keeps no holes";
    ASSERT_EQ(copied(tree, "a", "b"), 0);
    EXPECT_EQ(statusOf(tree.path("b")).st_size, 64 << 20);
    EXPECT_LE(statusOf(tree.path("b")).st_blocks * 512, 1 << 20);
    const int copy = ::open(tree.path("b").c_str(), O_RDONLY);
    std::string middle(7, 'x');
    EXPECT_EQ(::pread(copy, middle.data(), middle.size(), 8 << 20), 7);
    EXPECT_EQ(middle, std::string("middle\0", 7));
    ::close(copy);
}

INSTANTIATE_TEST_SUITE_P(Ways,
                         ItemCopyByEveryWay,
                         ::testing::Values(Way{"shared_where_possible", 0, 0},
                                           Way{"by_the_kernel", EOPNOTSUPP, 0},
                                           Way{"by_hand_across_devices", EXDEV, EXDEV},
                                           Way{"by_hand_without_the_call", ENOTTY, ENOSYS}),
                         [](const auto& each) { return std::string(each.param.label); });

TEST(ItemCopy, GoesOnAfterInterruptionsAndShortWrites)
{
    const TemporaryTree tree;
    const std::string text(1000000, 'y');
    write(tree.path("a"), text);
    ReplacedItemCalls calls;
    calls->clone = failing(EXDEV);
    calls->copyFileRange = failingAt(1, EINTR, systemItemCalls().copyFileRange);
    calls->copyFileRange = [inner = calls->copyFileRange,
                            count = 0](int from, off_t* fromAt, int to, off_t* toAt, std::size_t size) mutable {
        return ++count > 3 ? static_cast<ssize_t>(FailingCall{EINVAL}())
                           : inner(from, fromAt, to, toAt, std::min<std::size_t>(size, 1000));
    };
    calls->pread = failingAt(2, EINTR, systemItemCalls().pread);
    calls->pwrite = [count = 0](int file, const void* bytes, std::size_t size, off_t at) mutable -> ssize_t {
        if (++count % 5 == 0)
            return FailingCall{EINTR}();
        return systemItemCalls().pwrite(file, bytes, std::min<std::size_t>(size, 7001), at);
    };
    ASSERT_EQ(copied(tree, "a", "b"), 0);
    EXPECT_EQ(contentsOf(tree.path("b")), text);
}

TEST(ItemCopy, ReadsFilesThatSayTheyAreEmpty)
{
    const TemporaryTree tree;
    ItemPlace made; // the kernel makes this one up when it is read
    ItemPlace target;
    ASSERT_EQ(made.find("/proc/self/cmdline"), 0);
    ASSERT_EQ(target.find(tree.bytes("copy")), 0);
    EXPECT_EQ(copyItem(made, target, AttributeLoss::Accepted).error, 0);
    EXPECT_EQ(contentsOf(tree.path("copy")), contentsOf("/proc/self/cmdline"));
}

TEST(ItemCopy, CopiesAShrinkingFileAsFarAsItReaches)
{
    const TemporaryTree tree;
    write(tree.path("a"), std::string(1000000, 'z'));
    ReplacedItemCalls calls;
    calls->clone = failing(EXDEV);
    calls->copyFileRange = failing(EXDEV);
    calls->pread = [&tree](int file, void* buffer, std::size_t size, off_t at) {
        files::resize_file(tree.path("a"), 300000);
        return systemItemCalls().pread(file, buffer, size, at);
    };
    ASSERT_EQ(copied(tree, "a", "b"), 0);
    EXPECT_EQ(contentsOf(tree.path("b")), std::string(300000, 'z'));
}

TEST(ItemCopy, DoesNotPadAFileThatShrankBeforeItWasRead)
{
    const TemporaryTree tree;
    write(tree.path("a"), std::string(1000000, 'z'));
    ReplacedItemCalls calls;
    calls->clone = [&tree](int, int) {
        files::resize_file(tree.path("a"), 300000);
        return FailingCall{EXDEV}();
    };
    ASSERT_EQ(copied(tree, "a", "b"), 0);
    EXPECT_EQ(contentsOf(tree.path("b")), std::string(300000, 'z'));
}

// ---- failures

TEST(ItemCopy, RefusesATakenNameAndADanglingLink)
{
    const TemporaryTree tree({"file", "taken", "folder/inner"});
    tree.addLink("dangling", "nowhere");
    write(tree.path("taken"), "kept");
    ASSERT_EQ(::mkfifo(tree.path("pipe").c_str(), 0600), 0);
    for (const char* from : {"file", "folder", "dangling", "pipe"})
        for (const char* to : {"taken", "folder", "dangling"})
            EXPECT_EQ(copied(tree, from, to), EEXIST) << from << " to " << to;
    EXPECT_EQ(contentsOf(tree.path("taken")), "kept");
    EXPECT_TRUE(nameExists(tree.path("folder/inner")));
    EXPECT_FALSE(nameExists(tree.path("nowhere")));
}

/// What each call does to a copy when it fails for good.
struct Fault
{
    const char* label;
    void (*arrange)(ItemCalls&);
    int error;
};

class ItemCopyFault : public ::testing::TestWithParam<Fault>
{
};

TEST_P(ItemCopyFault, LeavesNothingOfTheCopyAndAllOfTheOriginal)
{
    const TemporaryTree tree({"folder/a/b/empty", "folder/z/"});
    write(tree.path("folder/a/file"), std::string(100000, 'f'));
    write(tree.path("folder/file"), "text");
    (void)setAttribute(tree.path("folder/file"), "user.x", "value");
    tree.addLink("folder/a/link", "nowhere");
    ASSERT_EQ(::mkfifo(tree.path("folder/z/pipe").c_str(), 0600), 0);
    const auto before = namesBelow(tree.path("folder"));
    {
        ReplacedItemCalls calls;
        calls->clone = failing(EXDEV);
        calls->copyFileRange = failing(EXDEV);
        GetParam().arrange(itemCalls());
        EXPECT_EQ(copied(tree, "folder", "copy"), GetParam().error);
    }
    EXPECT_FALSE(nameExists(tree.path("copy")));
    EXPECT_EQ(namesBelow(tree.path("folder")), before);
}

INSTANTIATE_TEST_SUITE_P(
    Faults,
    ItemCopyFault,
    ::testing::Values(
        Fault{"full_disk", [](ItemCalls& calls) { calls.pwrite = failingAt(2, ENOSPC, calls.pwrite); }, ENOSPC},
        Fault{"read_error", [](ItemCalls& calls) { calls.pread = failingAt(3, EIO, calls.pread); }, EIO},
        Fault{"no_folder", [](ItemCalls& calls) { calls.mkdirat = failingAt(3, EDQUOT, calls.mkdirat); }, EDQUOT},
        Fault{"no_first_folder", [](ItemCalls& calls) { calls.mkdirat = failing(EROFS); }, EROFS},
        Fault{"no_link", [](ItemCalls& calls) { calls.symlinkat = failing(EPERM); }, EPERM},
        Fault{"no_pipe", [](ItemCalls& calls) { calls.mknodat = failing(EPERM); }, EPERM},
        Fault{"no_mode", [](ItemCalls& calls) { calls.chmod = failingAt(2, EPERM, calls.chmod); }, EPERM},
        Fault{"no_times", [](ItemCalls& calls) { calls.utimensat = failingAt(4, EPERM, calls.utimensat); }, EPERM},
        Fault{"no_length", [](ItemCalls& calls) { calls.ftruncate = failingAt(2, EFBIG, calls.ftruncate); }, EFBIG},
        Fault{"nothing_written",
              [](ItemCalls& calls) { calls.pwrite = [](int, const void*, std::size_t, off_t) { return 0; }; },
              EIO}),
    [](const auto& each) { return std::string(each.param.label); });

TEST(ItemCopy, FailsRatherThanDropAnAttributeThatDoesNotFit)
{
    const TemporaryTree tree({"a"});
    if (!setAttribute(tree.path("a"), "user.x", "value"))
        GTEST_SKIP() << "the file system of $TMPDIR keeps no attributes of users";
    ReplacedItemCalls calls;
    calls->setxattr = failing(ENOSPC);
    EXPECT_EQ(copied(tree, "a", "b"), ENOSPC);
    EXPECT_FALSE(nameExists(tree.path("b")));
}

TEST(ItemCopy, DropsAttributesThatTheTargetCannotKeepOnlyWhenToldTo)
{
    const TemporaryTree tree({"a"});
    if (!setAttribute(tree.path("a"), "user.x", "value"))
        GTEST_SKIP() << "the file system of $TMPDIR keeps no attributes of users";
    ReplacedItemCalls calls;
    calls->setxattr = failing(ENOTSUP);
    const AttributeOutcome accepted = copyBetween(tree, "a", "b", AttributeLoss::Accepted);
    EXPECT_EQ(accepted.error, 0);
    EXPECT_TRUE(accepted.lost);
    EXPECT_EQ(copyBetween(tree, "a", "c", AttributeLoss::Refused).error, ENOTSUP);
    EXPECT_FALSE(nameExists(tree.path("c")));
}

TEST(ItemCopy, TakesBackFinishedFoldersThatLetNobodyIn)
{
    const TemporaryTree tree;
    const OrdinaryUser user(tree.root());
    tree.add("folder/a/file");
    tree.add("folder/b/file");
    files::permissions(tree.path("folder/a"), files::perms::owner_read | files::perms::owner_exec);
    {
        ReplacedItemCalls calls;
        calls->mkdirat = failingAt(3, ENOSPC, systemItemCalls().mkdirat); // "a" is finished then
        EXPECT_EQ(copied(tree, "folder", "copy"), ENOSPC);
    }
    EXPECT_FALSE(nameExists(tree.path("copy")));
    files::permissions(tree.path("folder/a"), files::perms::owner_all);
}

TEST(ItemCopy, TakesBackNothingThatOthersPutIntoTheCopy)
{
    const TemporaryTree tree({"folder/a/file", "folder/b/file"});
    ReplacedItemCalls calls;
    calls->mkdirat = [&tree, count = 0](int folder, const char* name, mode_t mode) mutable {
        if (++count < 3)
            return systemItemCalls().mkdirat(folder, name, mode);
        write(tree.path("copy/a/theirs"), "precious");
        return FailingCall{ENOSPC}();
    };
    EXPECT_EQ(copied(tree, "folder", "copy"), ENOSPC);
    EXPECT_EQ(namesBelow(tree.path("copy")), (std::vector<std::string>{"a", "a/theirs"}));
    EXPECT_EQ(contentsOf(tree.path("copy/a/theirs")), "precious");
}

TEST(ItemCopy, LeavesOutWhatVanishesMeanwhile)
{
    const TemporaryTree tree({"folder/kept", "folder/gone", "folder/inner/"});
    ReplacedItemCalls calls;
    calls->openat = [&tree](int folder, const char* name, int flags, mode_t mode) {
        if (QByteArrayView(name) == "gone")
            files::remove(tree.path("folder/gone"));
        if (QByteArrayView(name) == "inner")
            files::remove(tree.path("folder/inner"));
        return systemItemCalls().openat(folder, name, flags, mode);
    };
    ASSERT_EQ(copied(tree, "folder", "copy"), 0);
    EXPECT_EQ(namesBelow(tree.path("copy")), std::vector<std::string>{"kept"});
}

TEST(ItemCopy, FailsWhenAFileIsReplacedBetweenTheLookAndTheCopy)
{
    const TemporaryTree tree({"folder/one", "other"});
    files::create_hard_link(tree.path("folder/one"), tree.path("folder/two"));
    ReplacedItemCalls calls;
    calls->openat = [&tree](int folder, const char* name, int flags, mode_t mode) {
        if (QByteArrayView(name) == "one" && nameExists(tree.path("other")))
            files::rename(tree.path("other"), tree.path("folder/one"));
        return systemItemCalls().openat(folder, name, flags, mode);
    };
    EXPECT_EQ(copied(tree, "folder", "copy"), ESTALE);
    EXPECT_FALSE(nameExists(tree.path("copy")));
}

TEST(ItemCopy, FailsWhenTheItemItselfIsMissing)
{
    const TemporaryTree tree;
    EXPECT_EQ(copied(tree, "nothing", "copy"), ENOENT);
    EXPECT_EQ(copied(tree, "nothing", "no/folder"), ENOENT);
}

TEST(ItemCopy, CopiesAnEntryThatBecameAFolder)
{
    const TemporaryTree tree({"folder/a", "folder/b", "folder/c"});
    ReplacedItemCalls calls;
    calls->fstatat = [&tree, changed = false](int folder, const char* name, struct stat* status, int flags) mutable {
        if (QByteArrayView(name) == "b" && !changed) {
            changed = true;
            files::remove(tree.path("folder/b"));
            tree.add("folder/b/inner");
        }
        return systemItemCalls().fstatat(folder, name, status, flags);
    };
    ASSERT_EQ(copied(tree, "folder", "copy"), 0);
    EXPECT_EQ(namesBelow(tree.path("copy")), (std::vector<std::string>{"a", "b", "b/inner", "c"}));
}

// ---- what is refused before anything is touched

struct Places
{
    explicit Places(const TemporaryTree& tree, const char* one, const char* other)
        : error(from.find(tree.bytes(one)))
    {
        if (error == 0)
            error = to.find(tree.bytes(other));
    }
    ItemPlace from;
    ItemPlace to;
    int error;
};

TEST(ItemCopy, IsRefusedIntoTheItemItselfAndOfWhatCannotBeRead)
{
    const TemporaryTree tree({"folder/inner/", "file"});
    tree.addLink("link", "folder/inner");
    const auto refusal = [&tree](const char* from, const char* to) {
        const Places places(tree, from, to);
        return places.error != 0 ? places.error : refuseToCopy(places.from, places.to);
    };
    EXPECT_EQ(refusal("folder", "folder/copy"), EINVAL);
    EXPECT_EQ(refusal("folder", "folder/inner/copy"), EINVAL);
    EXPECT_EQ(refusal("folder", "link/copy"), EINVAL);
    EXPECT_EQ(refusal("folder", "copy"), 0);
    EXPECT_EQ(refusal("file", "folder/copy"), 0);
    EXPECT_EQ(refusal("nothing", "copy"), ENOENT);

    const OrdinaryUser user(tree.root());
    write(tree.path("secret"), "x");
    files::permissions(tree.path("secret"), files::perms::none);
    EXPECT_EQ(refusal("secret", "copy"), EACCES);
}

TEST(ItemCopy, IsRefusedOverTheItemItselfItsTargetAndTheFoldersThatHoldIt)
{
    const TemporaryTree tree({"folder/inner/file", "other/file"});
    tree.addLink("link", "folder");
    tree.addLink("folder/to file", "inner/file");
    files::create_hard_link(tree.path("other/file"), tree.path("other/same"));
    const auto refusal = [&tree](const char* from, const char* to) {
        const Places places(tree, from, to);
        return places.error != 0 ? places.error : refuseToReplace(places.from, places.to);
    };
    EXPECT_EQ(refusal("folder/inner/file", "folder/inner/file"), EINVAL);
    EXPECT_EQ(refusal("folder/inner/file", "link/inner/file"), EINVAL);
    EXPECT_EQ(refusal("folder/inner/file", "folder/inner"), EINVAL);
    EXPECT_EQ(refusal("folder/inner/file", "link/inner"), EINVAL);
    EXPECT_EQ(refusal("folder/inner/file", "folder"), EINVAL);
    EXPECT_EQ(refusal("folder/inner", "folder"), EINVAL);
    EXPECT_EQ(refusal("folder/to file", "folder/inner/file"), EINVAL);
    EXPECT_EQ(refusal("other/file", "other/same"), EINVAL);
    EXPECT_EQ(refusal("folder/inner/file", "link"), 0) << "a link goes alone";
    EXPECT_EQ(refusal("folder/inner/file", "other"), 0);
    EXPECT_EQ(refusal("folder", "folder/inner/file"), 0) << "refuseToCopy's business";
    EXPECT_EQ(refusal("other/file", "nothing"), 0);
}

/// Folders and their other names through bind mounts.
class ItemCopyBehindMounts : public ::testing::Test
{
protected:
    [[nodiscard]] int refusal(const char* from, const char* to) const
    {
        const Places places(m_tree, from, to);
        return places.error != 0 ? places.error : refuseToReplace(places.from, places.to);
    }

    const TemporaryTree m_tree{
        "data/inner/deep/file", "data/x", "data/mounted/", "view/", "away/file", "other/mounted/"};
    const MountedFolder m_view = MountedFolder::bound(m_tree.bytes("data/inner"), m_tree.bytes("view"));
};

TEST_F(ItemCopyBehindMounts, IsRefusedOverTheFoldersThatReallyHoldTheItem)
{
    HAVREL_NEEDS_MOUNTED(m_view);
    EXPECT_EQ(refusal("view/deep/file", "data"), EINVAL);
    EXPECT_EQ(refusal("view/deep/file", "data/inner"), EINVAL);
    EXPECT_EQ(refusal("view/deep/file", "data/inner/deep"), EINVAL);
    EXPECT_EQ(refusal("view/deep/file", "data/inner/deep/file"), EINVAL);
    EXPECT_EQ(refusal("data/inner/deep/file", "view/deep"), EINVAL);
    EXPECT_EQ(refusal("view/deep", "data"), EINVAL);
    EXPECT_EQ(refusal("view/deep", "data/x"), 0);
    EXPECT_EQ(refusal("view/deep/file", "away"), 0);
    EXPECT_EQ(refusal("away/file", "view/deep"), 0);
}

TEST_F(ItemCopyBehindMounts, IsRefusedOverAnItemThatTheOriginalReallyHolds)
{
    HAVREL_NEEDS_MOUNTED(m_view);
    EXPECT_EQ(refusal("data", "view/deep"), EINVAL);
    EXPECT_EQ(refusal("data", "view/deep/file"), EINVAL);
    EXPECT_EQ(refusal("data/inner", "view/deep/file"), EINVAL);
    EXPECT_EQ(refusal("data/x", "view/deep/file"), 0);
}

TEST_F(ItemCopyBehindMounts, IsAllowedOverAFolderThatOnlyLeadsToTheItem)
{
    HAVREL_NEEDS_MOUNTED(m_view);
    const auto mounted = MountedFolder::bound(m_tree.bytes("away"), m_tree.bytes("data/mounted"));
    HAVREL_NEEDS_MOUNTED(mounted);
    // What is removed with "data" is not what is mounted in it: that refuses to go.
    EXPECT_EQ(refusal("away/file", "data"), 0);
    EXPECT_EQ(refusal("data/mounted/file", "data"), EINVAL) << "the way to the item itself";
}

TEST_F(ItemCopyBehindMounts, LooksNotIntoAnotherFileSystem)
{
    const MountedFolder mounted("tmpfs", m_tree.bytes("other/mounted"), "size=64k");
    HAVREL_NEEDS_MOUNTED(mounted);
    m_tree.add("other/mounted/folder/file");
    ReplacedItemCalls calls;
    bool looked = false;
    calls->openat = [&looked](int folder, const char* name, int flags, mode_t mode) {
        looked = looked || QByteArrayView(name) == "folder";
        return systemItemCalls().openat(folder, name, flags, mode);
    };
    EXPECT_EQ(refusal("away/file", "other/mounted/folder"), 0);
    EXPECT_FALSE(looked);
}

TEST_F(ItemCopyBehindMounts, CopiesNothingIntoItself)
{
    HAVREL_NEEDS_MOUNTED(m_view);
    const auto before = namesBelow(m_tree.path("data"));
    EXPECT_EQ(copied(m_tree, "data", "view/copy"), EINVAL);
    Places places(m_tree, "data", "view/moved");
    EXPECT_EQ(moveAcross(places.from, places.to), EINVAL);
    EXPECT_EQ(namesBelow(m_tree.path("data")), before);
}

TEST_F(ItemCopyBehindMounts, MovesNoFileOnWhichSomethingIsMounted)
{
    write(m_tree.path("away/file"), "precious");
    const auto mounted = MountedFolder::bound(m_tree.bytes("away/file"), m_tree.bytes("data/inner/deep/file"));
    HAVREL_NEEDS_MOUNTED(mounted);
    const auto before = namesBelow(m_tree.path("data"));
    for (const char* moved : {"data", "data/inner/deep/file"}) {
        Places places(m_tree, moved, "moved");
        EXPECT_EQ(moveAcross(places.from, places.to), EBUSY);
        EXPECT_FALSE(nameExists(m_tree.path("moved")));
        EXPECT_EQ(namesBelow(m_tree.path("data")), before);
    }
    EXPECT_EQ(copied(m_tree, "data", "copy"), 0);
    EXPECT_EQ(contentsOf(m_tree.path("copy/inner/deep/file")), "precious");
}

// ---- moves

TEST(ItemCopy, MovesByCopyingAndRemoving)
{
    const TemporaryTree tree({"folder/a/file"});
    Places places(tree, "folder", "moved");
    EXPECT_EQ(moveAcross(places.from, places.to), 0);
    EXPECT_EQ(namesBelow(tree.root()), (std::vector<std::string>{"moved", "moved/a", "moved/a/file"}));
}

TEST(ItemCopy, MovesNothingUnlessTheCopyIsOnTheDisk)
{
    const TemporaryTree tree({"folder/file"});
    Places places(tree, "folder", "moved");
    ReplacedItemCalls calls;
    calls->syncfs = failing(EIO);
    EXPECT_EQ(moveAcross(places.from, places.to), EIO);
    EXPECT_EQ(namesBelow(tree.root()), (std::vector<std::string>{"folder", "folder/file"}));
}

TEST(ItemCopy, MovesNothingThatWouldLoseAttributes)
{
    const TemporaryTree tree({"file"});
    if (!setAttribute(tree.path("file"), "user.x", "value"))
        GTEST_SKIP() << "the file system of $TMPDIR keeps no attributes of users";
    Places places(tree, "file", "moved");
    ReplacedItemCalls calls;
    calls->setxattr = failing(ENOTSUP);
    EXPECT_EQ(moveAcross(places.from, places.to), ENOTSUP);
    EXPECT_EQ(namesBelow(tree.root()), std::vector<std::string>{"file"});
}

TEST(ItemCopy, CopiesNothingThatCouldNotBeRemovedThen)
{
    const TemporaryTree tree;
    const OrdinaryUser user(tree.root());
    tree.add("closed/file");
    files::permissions(tree.path("closed"), files::perms::owner_read | files::perms::owner_exec);
    Places places(tree, "closed/file", "moved");
    ReplacedItemCalls calls;
    int made = 0;
    calls->openat = [&made](int folder, const char* name, int flags, mode_t mode) {
        made += (flags & O_CREAT) != 0;
        return systemItemCalls().openat(folder, name, flags, mode);
    };
    EXPECT_EQ(moveAcross(places.from, places.to), EACCES);
    EXPECT_EQ(made, 0);
    files::permissions(tree.path("closed"), files::perms::owner_all);
}

TEST(ItemCopy, MovesNoMountPoint)
{
    const TemporaryTree tree({"mounted/"});
    if (::mount("none", tree.path("mounted").c_str(), "tmpfs", 0, "size=64k") != 0)
        GTEST_SKIP() << "this process may not mount";
    write(tree.path("mounted/file"), "x");
    Places places(tree, "mounted", "moved");
    EXPECT_EQ(moveAcross(places.from, places.to), EBUSY);
    EXPECT_FALSE(nameExists(tree.path("moved")));
    EXPECT_EQ(::umount(tree.path("mounted").c_str()), 0);
}

TEST(ItemCopy, MovesNothingThatHoldsAMountPoint)
{
    const TemporaryTree tree({"folder/file", "folder/inner/mounted/"});
    const std::string mountPoint = tree.path("folder/inner/mounted");
    if (::mount("none", mountPoint.c_str(), "tmpfs", 0, "size=64k") != 0)
        GTEST_SKIP() << "this process may not mount";
    Places places(tree, "folder", "moved");
    EXPECT_EQ(moveAcross(places.from, places.to), EBUSY);
    EXPECT_FALSE(nameExists(tree.path("moved")));
    EXPECT_TRUE(nameExists(tree.path("folder/file")));
    EXPECT_EQ(copied(tree, "folder", "copy"), 0);
    EXPECT_EQ(::umount(mountPoint.c_str()), 0);
}

TEST(ItemCopy, EndsWhereAMountLeadsIntoTheCopyItself)
{
    const TemporaryTree tree({"folder/mounted/", "above/file"});
    const std::string mountPoint = tree.path("folder/mounted");
    if (::mount(tree.path("above").c_str(), mountPoint.c_str(), nullptr, MS_BIND, nullptr) != 0)
        GTEST_SKIP() << "this process may not mount";
    EXPECT_EQ(copied(tree, "folder", "above/copy"), EINVAL);
    EXPECT_EQ(namesBelow(tree.path("above")), std::vector<std::string>{"file"});
    EXPECT_EQ(::umount(mountPoint.c_str()), 0);
}

TEST(ItemCopy, RemovesNothingThatCameWhileItWasMoved)
{
    const TemporaryTree tree({"folder/file"});
    Places places(tree, "folder", "moved");
    ReplacedItemCalls calls;
    calls->syncfs = [&tree](int folder) {
        write(tree.path("folder/new"), "precious");
        return systemItemCalls().syncfs(folder);
    };
    EXPECT_EQ(moveAcross(places.from, places.to), ENOTEMPTY);
    EXPECT_EQ(namesBelow(tree.root()), (std::vector<std::string>{"folder", "folder/new", "moved", "moved/file"}));
}

TEST(ItemCopy, RemovesNoFileThatChangedAfterItWasCopied)
{
    for (const char* moved : {"folder", "folder/file"}) {
        const TemporaryTree tree({"folder/file", "folder/other"});
        Places places(tree, moved, "moved");
        ReplacedItemCalls calls;
        calls->syncfs = [&tree](int folder) {
            std::ofstream(tree.path("folder/file"), std::ios::app) << "precious";
            return systemItemCalls().syncfs(folder);
        };
        EXPECT_EQ(moveAcross(places.from, places.to), moved == std::string("folder") ? ENOTEMPTY : ESTALE);
        EXPECT_EQ(contentsOf(tree.path("folder/file")), "precious");
        EXPECT_TRUE(nameExists(tree.path("moved")));
    }
}

TEST(ItemCopy, RemovesNoFileThatWasRewrittenAtTheSameLength)
{
    const TemporaryTree tree({"folder/"});
    write(tree.path("folder/file"), "old");
    setTimes(tree.path("folder/file"), 1000000000, 1234567890);
    Places places(tree, "folder", "moved");
    ReplacedItemCalls calls;
    calls->syncfs = [&tree](int folder) {
        write(tree.path("folder/file"), "new");
        return systemItemCalls().syncfs(folder);
    };
    EXPECT_EQ(moveAcross(places.from, places.to), ENOTEMPTY);
    EXPECT_EQ(contentsOf(tree.path("folder/file")), "new");
}

TEST(ItemCopy, MovesFilesWithSeveralNames)
{
    const TemporaryTree tree({"folder/one"});
    files::create_hard_link(tree.path("folder/one"), tree.path("folder/two"));
    Places places(tree, "folder", "moved");
    EXPECT_EQ(moveAcross(places.from, places.to), 0);
    EXPECT_EQ(namesBelow(tree.root()), (std::vector<std::string>{"moved", "moved/one", "moved/two"}));
}

} // namespace
} // namespace havrel::platform
