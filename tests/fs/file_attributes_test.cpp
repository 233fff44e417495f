// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"
#include "fs/directory.h"
#include "fs/file_info.h"
#include "fs/path.h"
#include "fs/regular_file.h"
#include "fs/sub_path.h"
#include "platform/attribute_bits.h"
#include "tests/support/item_facts.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/recording_logr.h"
#include "tests/support/replaced_item_calls.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <thread>

#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace havrel {
namespace {

using namespace havrel::tests;
using namespace havrel::platform;

JNFileInfoPtr infoIn(const TemporaryTree& tree, std::string_view name)
{
    return JNFileInfo::infoForCPath(tree.bytes(name));
}

/// The exception that \p act raises; fails the test when there is none.
template<class Act>
HVException raisedBy(Act act)
{
    try {
        act();
    } catch (const HVException& raised) {
        return raised;
    }
    ADD_FAILURE() << "nothing was raised";
    return {QString(), QString()};
}

bool same(const timespec& one, const timespec& other)
{
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

TEST(FileAttributes, AreThoseOfTheItemItself)
{
    const TemporaryTree tree({"folder/"});
    tree.write("file", "twelve bytes");
    std::filesystem::create_hard_link(tree.path("file"), tree.path("other name"));
    tree.addLink("link", "file");
    ASSERT_EQ(::chmod(tree.path("file").c_str(), 04751), 0);
    const struct stat status = statusOf(tree.path("file"));
    const auto file = infoIn(tree, "file")->asRegularFile();
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(same(file->modifiedTimeSpec(), status.st_mtim));
    EXPECT_TRUE(same(file->attributeChangedTimeSpec(), status.st_ctim));
    EXPECT_EQ(*file->modifiedDate(), newCFDateWithBSDTimeSpec(status.st_mtim));
    EXPECT_EQ(*file->attributeChangedDate(), newCFDateWithBSDTimeSpec(status.st_ctim));
    EXPECT_EQ(*file->createdDate(), newCFDateWithBSDTimeSpec(file->createdTimeSpec()));
    EXPECT_EQ(file->ownerID(), status.st_uid);
    EXPECT_EQ(file->groupID(), status.st_gid);
    EXPECT_EQ(file->access(), 04751);
    EXPECT_EQ(file->localIdentifier(), status.st_ino);
    EXPECT_EQ(file->deviceID(), status.st_dev);
    EXPECT_EQ(file->linkCount(), 2U);
    EXPECT_TRUE(file->isHardLink());
    EXPECT_EQ(file->logicalSize(), 12U);
    EXPECT_EQ(file->dataLength(), 12U);
    EXPECT_EQ(file->physicalSize(), static_cast<std::uint64_t>(status.st_blocks) * 512);
    EXPECT_EQ(file->dataPhysical(), file->physicalSize());
    EXPECT_EQ(file->script(), 0U);
    EXPECT_EQ(infoIn(tree, "link")->localIdentifier(), statusOf(tree.path("link")).st_ino);
}

TEST(FileAttributes, CountOneLinkOfAFolderAndNoneOfNothing)
{
    const TemporaryTree tree({"folder/one/", "folder/two/"});
    EXPECT_EQ(infoIn(tree, "folder")->linkCount(), 1U);
    EXPECT_FALSE(infoIn(tree, "folder")->isHardLink());
    EXPECT_EQ(infoIn(tree, "missing")->linkCount(), 0U);
}

TEST(FileAttributes, OfNothingAreNothing)
{
    const TemporaryTree tree;
    const auto nothing = infoIn(tree, "missing");
    EXPECT_EQ(nothing->createdDate(), std::nullopt);
    EXPECT_EQ(nothing->modifiedDate(), std::nullopt);
    EXPECT_EQ(nothing->attributeChangedDate(), std::nullopt);
    EXPECT_EQ(nothing->deviceID(), 0U);
    EXPECT_EQ(nothing->attrs().fileID, 0U);
    EXPECT_EQ(nothing->acl(), nullptr);
    nothing->setAccess(0600);
    EXPECT_EQ(nothing->access(), 0);
    nothing->setModifiedAttributes();
    EXPECT_FALSE(nothing->exists());
}

TEST(FileAttributes, OfNothingTakeTheDeviceOfTheFolderThatTheirPathStoodIn)
{
    const TemporaryTree tree({"folder/inner/"});
    const auto folder = infoIn(tree, "folder")->asDirectory();
    const auto inner = folder->subdirectoryMatchingCName("inner");
    ASSERT_NE(inner, nullptr);
    const auto gone = inner->deleteFile();
    EXPECT_FALSE(gone->exists());
    EXPECT_EQ(gone->deviceID(), folder->deviceID());
}

TEST(FileAttributes, AreFetchedOnceUntilTheyAreFlushed)
{
    const TemporaryTree tree({"file"});
    const auto info = infoIn(tree, "file");
    ReplacedItemCalls calls;
    int asked = 0;
    calls->statx = [&asked](int folder, const char* path, int flags, unsigned mask, struct statx* status) {
        ++asked;
        return ::statx(folder, path, flags, mask, status);
    };
    (void)info->ownerID();
    (void)info->modifiedDate();
    EXPECT_EQ(asked, 1);
    ASSERT_EQ(::chmod(tree.path("file").c_str(), 0640), 0);
    EXPECT_NE(info->access(), 0640) << "as it was";
    info->setAccess(0777);
    info->flushAttributes();
    EXPECT_EQ(info->access(), 0640) << "a change that was not written is forgotten";
    EXPECT_EQ(asked, 2);
    info->setModifiedAttributes();
    EXPECT_EQ(statusOf(tree.path("file")).st_mode & 07777U, 0640U);
}

TEST(FileAttributes, ThatCannotBeFetchedAreRaised)
{
    const TemporaryTree tree({"file"});
    const auto info = infoIn(tree, "file");
    std::filesystem::remove(tree.path("file"));
    for (const auto& raised : {raisedBy([&] { (void)info->access(); }),
                               raisedBy([&] { info->setAccess(0); }),
                               raisedBy([&] { (void)info->acl(); })}) {
        EXPECT_EQ(raised.name(), QStringLiteral("IO"));
        EXPECT_EQ(raised.reason(), QStringLiteral("failed to get attributes"));
        EXPECT_EQ(raised.detail(detail_key::kPOSIXErr).toInt(), ENOENT);
        EXPECT_EQ(raised.detail(detail_key::kName).toString(), QStringLiteral("file"));
        EXPECT_EQ(raised.detail(detail_key::kPath).toString(), info->path());
        EXPECT_EQ(raised.detail(detail_key::kType).toString(), QStringLiteral("regular file"));
    }
    tree.add("file");
    EXPECT_NO_THROW((void)info->access()) << "a failure is not remembered";
}

TEST(FileAttributes, HaveNoCreationTimeWhereNoneIsKept)
{
    const auto info = JNFileInfo::infoForPath(QStringLiteral("/proc/self/status"));
    EXPECT_TRUE(same(info->createdTimeSpec(), {.tv_sec = 0, .tv_nsec = 0}));
}

TEST(FileAttributes, AreWrittenWhenTheyWereChanged)
{
    const TemporaryTree tree({"file"});
    const auto info = infoIn(tree, "file");
    info->setAccess(0xf000 | 0604);
    info->setModifiedTimeSpec({.tv_sec = 1000000000, .tv_nsec = 123456789});
    EXPECT_NE(statusOf(tree.path("file")).st_mode & 07777U, 0604U) << "not yet";
    info->setModifiedAttributes();
    const struct stat status = statusOf(tree.path("file"));
    EXPECT_EQ(status.st_mode & 07777U, 0604U);
    EXPECT_TRUE(same(status.st_mtim, {.tv_sec = 1000000000, .tv_nsec = 123456789}));
    ASSERT_EQ(::chmod(tree.path("file").c_str(), 0600), 0);
    info->setModifiedAttributes();
    EXPECT_EQ(statusOf(tree.path("file")).st_mode & 07777U, 0600U) << "written once";
}

TEST(FileAttributes, OfAnOwnerAreWrittenBeforeTheModeThatTheyCost)
{
    const TemporaryTree tree({"file"});
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root may give an item to somebody else";
    const auto info = infoIn(tree, "file");
    info->setAccess(06755);
    info->setOwnerID(12345);
    info->setGroupID(54321);
    info->setModifiedAttributes();
    const struct stat status = statusOf(tree.path("file"));
    EXPECT_EQ(status.st_uid, 12345U);
    EXPECT_EQ(status.st_gid, 54321U);
    EXPECT_EQ(status.st_mode & 07777U, 06755U);
}

TEST(FileAttributes, OfALinkAreItsOwn)
{
    const TemporaryTree tree({"file"});
    tree.addLink("link", "file");
    const struct stat before = statusOf(tree.path("file"));
    const auto link = infoIn(tree, "link");
    link->setModifiedTimeSpec({.tv_sec = 77, .tv_nsec = 0});
    link->setModifiedAttributes();
    EXPECT_EQ(statusOf(tree.path("link")).st_mtim.tv_sec, 77);
    EXPECT_TRUE(same(statusOf(tree.path("file")).st_mtim, before.st_mtim));
    link->setAccess(0600);
    const auto raised = raisedBy([&] { link->setModifiedAttributes(); });
    EXPECT_EQ(raised.detail(detail_key::kPOSIXErr).toInt(), ENOTSUP);
}

TEST(FileAttributes, ThatCannotBeSetHereAreRaisedAndNothingIsWritten)
{
    const TemporaryTree tree({"file"});
    struct Row
    {
        std::uint32_t bit;
        std::function<void(JNFileInfo&)> set;
        const char* hex;
    };
    const std::vector<Row> rows{
        {ATTR_CMN_CRTIME, [](JNFileInfo& info) { info.setCreatedTimeSpec({.tv_sec = 5, .tv_nsec = 0}); }, "0x00020200"},
        {ATTR_CMN_CHGTIME, [](JNFileInfo& info) { info.setAttributeChangedTimeSpec({}); }, "0x00020800"},
        {ATTR_CMN_SCRIPT, [](JNFileInfo& info) { info.setScript(7); }, "0x00020100"},
    };
    for (const Row& row : rows) {
        const auto info = infoIn(tree, "file");
        row.set(*info);
        info->setAccess(0111);
        const auto raised = raisedBy([&] { info->setModifiedAttributes(); });
        EXPECT_EQ(raised.reason(), QStringLiteral("unable to set attributes"));
        EXPECT_EQ(raised.detail(detail_key::kPOSIXErr).toInt(), ENOTSUP);
        EXPECT_EQ(raised.detail(QStringLiteral("attributeSet")).toString(), QString::fromLatin1(row.hex));
        EXPECT_EQ(raised.detail(detail_key::kName).toString(), QStringLiteral("file"));
        EXPECT_NE(statusOf(tree.path("file")).st_mode & 07777U, 0111U);
        (void)raisedBy([&] { info->setModifiedAttributes(); }); // it is still to be written
        info->setCommonAttributes(ATTR_CMN_ACCESSMASK);
        EXPECT_EQ(statusOf(tree.path("file")).st_mode & 07777U, 0111U);
        EXPECT_EQ(raisedBy([&] { info->setModifiedAttributes(); }).detail(QStringLiteral("attributeSet")).toString(),
                  QStringLiteral("0x%1").arg(row.bit, 4, 16, QLatin1Char('0')))
            << "what was written is not to be written any more";
        ASSERT_EQ(::chmod(tree.path("file").c_str(), 0644), 0);
    }
}

TEST(FileAttributes, AreNotWrittenForBitsThatCannotBeSetAnywhere)
{
    const TemporaryTree tree({"file"});
    const auto info = infoIn(tree, "file");
    EXPECT_NO_THROW(info->setCommonAttributes(ATTR_CMN_ACCESSMASK)) << "nothing is known";
    info->setAccess(0111);
    EXPECT_NO_THROW(info->setCommonAttributes(ATTR_CMN_FILEID | ATTR_CMN_NAME | ATTR_CMN_DEVID));
    EXPECT_NE(statusOf(tree.path("file")).st_mode & 07777U, 0111U);
}

TEST(FileAttributes, StayMarkedAsChangedWhenTheyCannotBeWritten)
{
    const TemporaryTree tree({"file"});
    const auto info = infoIn(tree, "file");
    info->setModifiedTimeSpec({.tv_sec = 9, .tv_nsec = 8});
    {
        ReplacedItemCalls calls;
        calls->utimensat = failing(EROFS);
        const auto raised = raisedBy([&] { info->setModifiedAttributes(); });
        EXPECT_EQ(raised.name(), QStringLiteral("IO"));
        EXPECT_EQ(raised.detail(detail_key::kPOSIXErr).toInt(), EROFS);
        EXPECT_EQ(raised.detail(QStringLiteral("attributeSet")).toString(), QStringLiteral("0x0400"));
    }
    info->setModifiedAttributes();
    EXPECT_TRUE(same(statusOf(tree.path("file")).st_mtim, {.tv_sec = 9, .tv_nsec = 8}));
}

TEST(FileAttributes, HaveFlagsThatCanBeSet)
{
    const TemporaryTree tree({"file"});
    const auto info = infoIn(tree, "file");
    info->setFileFlags(kNoDumpFlag);
    try {
        info->setModifiedAttributes();
    } catch (const HVException& raised) {
        ASSERT_EQ(raised.detail(detail_key::kPOSIXErr).toInt(), ENOTSUP);
        GTEST_SKIP() << "the file system of temporary items keeps no flags";
    }
    EXPECT_EQ(infoIn(tree, "file")->fileFlags() & kNoDumpFlag, kNoDumpFlag);
    info->setFileFlags(0);
    info->setModifiedAttributes();
    EXPECT_EQ(infoIn(tree, "file")->fileFlags() & kNoDumpFlag, 0U);
}

TEST(FileAttributes, HaveFlagsThatOnlyTheFileSystemSets)
{
    const TemporaryTree tree({"file", "folder/"});
    ASSERT_EQ(::mkfifo(tree.path("pipe").c_str(), 0600), 0);
    const auto refused = [&tree](const char* name, std::uint32_t flags) {
        const auto info = infoIn(tree, name);
        info->setFileFlags(flags);
        return raisedBy([&] { info->setModifiedAttributes(); }).detail(detail_key::kPOSIXErr).toInt();
    };
    EXPECT_EQ(refused("file", kVerityFlag), ENOTSUP);
    EXPECT_EQ(refused("folder", kEncryptedFlag), ENOTSUP);
    EXPECT_EQ(refused("file", 1), ENOTSUP) << "a flag that is not told";
    EXPECT_EQ(refused("pipe", kNoDumpFlag), ENOTSUP) << "and the pipe was not waited for";
}

TEST(FileAttributes, ChangeAroundAProtectionThatComesOrGoes)
{
    const TemporaryTree tree({"file"});
    const auto info = infoIn(tree, "file");
    info->setFileFlags(kImmutableFlag);
    info->setAccess(0444);
    try {
        info->setModifiedAttributes();
    } catch (const HVException&) {
        GTEST_SKIP() << "this process may not protect a file, or the file system cannot";
    }
    EXPECT_EQ(statusOf(tree.path("file")).st_mode & 07777U, 0444U);
    EXPECT_NE(infoIn(tree, "file")->fileFlags() & kImmutableFlag, 0U);
    info->setFileFlags(0);
    info->setAccess(0600);
    info->setModifiedAttributes();
    EXPECT_EQ(statusOf(tree.path("file")).st_mode & 07777U, 0600U);
}

TEST(FileAttributes, TellWhatThisProcessMayDo)
{
    const TemporaryTree tree({"file"});
    ASSERT_EQ(::chmod(tree.path("file").c_str(), 0444), 0);
    const OrdinaryUser user(tree.root());
    EXPECT_EQ(infoIn(tree, "file")->effectiveAccess(), R_OK);
    EXPECT_EQ(infoIn(tree, "")->effectiveAccess(), R_OK | W_OK | X_OK);
    EXPECT_EQ(infoIn(tree, "missing")->effectiveAccess(), 0);
}

TEST(FileAttributes, OfWhatIsNotThereStayEmptyWhenItComes)
{
    const TemporaryTree tree;
    const auto info = infoIn(tree, "later");
    tree.add("later");
    EXPECT_EQ(info->effectiveAccess(), 0);
    EXPECT_EQ(info->acl(), nullptr);
    EXPECT_EQ(info->script(), 0U);
}

TEST(FileAttributes, OfWhatHasGoneCannotBeTold)
{
    const TemporaryTree tree({"file"});
    const auto info = infoIn(tree, "file");
    ASSERT_TRUE(std::filesystem::remove(tree.path("file")));
    const QString expected = QStringLiteral("failed to get attributes");
    EXPECT_EQ(raisedBy([&] { (void)info->effectiveAccess(); }).reason(), expected);
    EXPECT_EQ(raisedBy([&] { (void)info->script(); }).reason(), expected);
    EXPECT_EQ(raisedBy([&] { (void)info->acl(); }).reason(), expected);
}

TEST(FileAttributes, HoldTheAccessListOnce)
{
    const TemporaryTree tree({"file", "plain"});
    const AccessList list{{AccessTag::Owner, 6, 0},
                          {AccessTag::User, 4, 12345},
                          {AccessTag::OwningGroup, 4, 0},
                          {AccessTag::Mask, 4, 0},
                          {AccessTag::Others, 0, 0}};
    EXPECT_EQ(infoIn(tree, "plain")->acl(), nullptr);
    if (!setAttribute(tree.path("file"), "system.posix_acl_access", bytesOfAccessList(list).toStdString()))
        GTEST_SKIP() << "the file system of temporary items keeps no access lists";
    const auto info = infoIn(tree, "file");
    const auto held = info->acl();
    ASSERT_NE(held, nullptr);
    EXPECT_EQ(*held, list);
    EXPECT_EQ(info->acl(), held);
    ASSERT_EQ(::lremovexattr(tree.path("file").c_str(), "system.posix_acl_access"), 0);
    info->flushAttributes();
    EXPECT_EQ(info->acl(), nullptr);
    EXPECT_EQ(*held, list) << "whoever holds it keeps it";
}

TEST(FileResources, AreLoggedWhenTheyCannotBeHad)
{
    const TemporaryTree tree({".hidden file"});
    EXPECT_TRUE(infoIn(tree, ".hidden file")->isHidden());
    EXPECT_FALSE(infoIn(tree, ".hidden file")->isHiddenExtension());
    EXPECT_FALSE(infoIn(tree, ".hidden file")->isExcludedFromBackup());
    EXPECT_FALSE(infoIn(tree, ".hidden file")->isUbiquitousItem());
    const auto logger = std::make_shared<RecordingLogr>();
    const SharedLoggerScope scope(logger);
    const auto gone = infoIn(tree, ".missing");
    EXPECT_FALSE(gone->isHidden());
    EXPECT_FALSE(gone->isHiddenExtension());
    EXPECT_FALSE(gone->isExcludedFromBackup());
    const QString log = logger->lines().join(u'\n');
    for (const char* name : {"isHidden", "isHiddenExtension", "isExcludedFromBackup"})
        EXPECT_TRUE(log.contains(QStringLiteral("problem obtaining %1 attribute").arg(QString::fromLatin1(name))))
            << log.toStdString();
}

TEST(FileAttributes, AreAskedForAndFlushedByManyThreads)
{
    const TemporaryTree tree({"file"});
    const auto info = infoIn(tree, "file");
    const std::uint64_t inode = info->localIdentifier();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&info, inode, i] {
            for (int round = 0; round < 200; ++round) {
                EXPECT_EQ(info->localIdentifier(), inode);
                info->setModifiedTimeSpec({.tv_sec = round, .tv_nsec = i});
                (void)info->acl();
                info->setModifiedAttributes();
                info->flushAttributes();
            }
        });
    for (std::thread& each : threads)
        each.join();
}

} // namespace
} // namespace havrel
