// SPDX-License-Identifier: MIT
#include "platform/volume_attributes.h"

#include "platform/attribute_bits.h"
#include "platform/file_systems.h"
#include "platform/volume_bits.h"
#include "tests/support/replaced_item_calls.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <utility>

#include <linux/fs.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>

namespace havrel::platform {
namespace {

using namespace havrel::tests;

/// A file system that has told its statistics.
FileSystem fileSystem(const char* type, const char* superOptions = "rw")
{
    MountEntry mount;
    mount.mountPoint = "/somewhere";
    mount.type = type;
    mount.superOptions = superOptions;
    FileSystem made = fileSystemOfMount(mount, {});
    made.blocks = 100;
    made.items = 10;
    made.answered = true;
    return made;
}

bool hasFormat(const VolumeAttributes& attributes, std::uint32_t bit)
{
    return (attributes.capabilities.format.bits & attributes.capabilities.format.valid & bit) != 0;
}

bool isKnown(const VolumeAttributes& attributes, std::uint32_t bit)
{
    return (attributes.capabilities.format.valid & bit) != 0;
}

TEST(VolumeAttributes, TakeFromOptionsWhatTheTypeLeavesOpen)
{
    EXPECT_TRUE(hasFormat(attributesByType(fileSystem("tmpfs", "rw,inode64")), VOL_CAP_FMT_64BIT_OBJECT_IDS));
    EXPECT_FALSE(hasFormat(attributesByType(fileSystem("tmpfs")), VOL_CAP_FMT_64BIT_OBJECT_IDS));
    EXPECT_TRUE(hasFormat(attributesByType(fileSystem("xfs")), VOL_CAP_FMT_JOURNAL_ACTIVE));
    EXPECT_FALSE(hasFormat(attributesByType(fileSystem("xfs", "ro,norecovery")), VOL_CAP_FMT_JOURNAL_ACTIVE));
    EXPECT_TRUE(hasFormat(attributesByType(fileSystem("xfs", "ro,norecovery")), VOL_CAP_FMT_JOURNAL));
    EXPECT_FALSE(isKnown(attributesByType(fileSystem("cifs")), VOL_CAP_FMT_CASE_SENSITIVE));
    EXPECT_TRUE(isKnown(attributesByType(fileSystem("cifs", "rw,nocase")), VOL_CAP_FMT_CASE_SENSITIVE));
    EXPECT_FALSE(hasFormat(attributesByType(fileSystem("cifs", "rw,nocase")), VOL_CAP_FMT_CASE_SENSITIVE));
}

TEST(VolumeAttributes, TellThatThereAreNoSizesOnlyWhenAsked)
{
    FileSystem proc = fileSystem("proc");
    proc.blocks = 0;
    EXPECT_TRUE(hasFormat(attributesByType(proc), VOL_CAP_FMT_NO_VOLUME_SIZES));
    EXPECT_EQ(attributesByType(proc).supported.valid.volume & ATTR_VOL_SIZE, 0U);
    proc.answered = false;
    EXPECT_FALSE(isKnown(attributesByType(proc), VOL_CAP_FMT_NO_VOLUME_SIZES));
    EXPECT_FALSE(hasFormat(attributesByType(fileSystem("ext4")), VOL_CAP_FMT_NO_VOLUME_SIZES));
}

TEST(VolumeAttributes, TellWhatTheFileSystemItselfKeeps)
{
    const AttributeSet plain = attributesByType(fileSystem("ext4")).supported.native;
    EXPECT_NE(plain.common & ATTR_CMN_OWNERID, 0U);
    EXPECT_NE(plain.common & ATTR_CMN_FILEID, 0U);
    EXPECT_EQ(plain.common & (ATTR_CMN_SCRIPT | ATTR_CMN_FULLPATH), 0U);
    EXPECT_NE(plain.file & ATTR_FILE_LINKCOUNT, 0U);
    EXPECT_EQ(plain.directory, ATTR_DIR_MOUNTSTATUS);
    EXPECT_EQ(plain.volume & ATTR_VOL_CAPABILITIES, 0U);

    const SupportedAttributes fat = attributesByType(fileSystem("vfat")).supported;
    EXPECT_EQ(fat.native.common & (ATTR_CMN_OWNERID | ATTR_CMN_ACCESSMASK | ATTR_CMN_FILEID | ATTR_CMN_CHGTIME), 0U);
    EXPECT_NE(fat.valid.common & ATTR_CMN_OWNERID, 0U) << "made up, but there";
    EXPECT_EQ(fat.native.file & ATTR_FILE_LINKCOUNT, 0U);
    EXPECT_NE(fat.valid.file & ATTR_FILE_LINKCOUNT, 0U);
    EXPECT_EQ(fat.valid.fork, 0U);
}

TEST(VolumeAttributes, DoNotComeFromAMountPointThatIsGone)
{
    VolumeAttributes attributes;
    FileSystem gone = fileSystem("tmpfs");
    const TemporaryTree tree({"file"});
    gone.mountPoint = tree.bytes("missing");
    EXPECT_EQ(askForAttributes(gone, attributes), ENOENT);
    gone.mountPoint = tree.bytes("file/below");
    EXPECT_EQ(askForAttributes(gone, attributes), ENOTDIR);
}

TEST(VolumeAttributes, AreKnownAsFarAsTheRootMayBeRead)
{
    const TemporaryTree tree;
    ReplacedItemCalls calls;
    calls->openat = failing(EACCES);
    FileSystem unread = fileSystem("xfs");
    unread.mountPoint = QByteArray::fromStdString(tree.root());
    VolumeAttributes attributes;
    EXPECT_EQ(askForAttributes(unread, attributes), 0);
    EXPECT_EQ(attributes.capabilities.interface.valid & VOL_CAP_INT_CLONE, 0U) << "xfs could not be asked";
    EXPECT_NE(attributes.capabilities.interface.valid & VOL_CAP_INT_RENAME_SWAP, 0U) << "the type settles that";
}

TEST(VolumeAttributes, TellWhetherCaseCountsInTheRootWhereFoldersDiffer)
{
    const TemporaryTree tree;
    ReplacedItemCalls calls;
    int answer = 0;
    calls->inodeFlags = [&](int, int* flags) {
        *flags = FS_CASEFOLD_FL | FS_NODUMP_FL;
        return answer;
    };
    const auto countsCase = [&](const char* type) {
        FileSystem asked = fileSystem(type);
        asked.mountPoint = QByteArray::fromStdString(tree.root());
        VolumeAttributes attributes;
        EXPECT_EQ(askForAttributes(asked, attributes), 0);
        EXPECT_TRUE(isKnown(attributes, VOL_CAP_FMT_CASE_SENSITIVE));
        EXPECT_TRUE(hasFormat(attributes, VOL_CAP_FMT_CASE_PRESERVING));
        return hasFormat(attributes, VOL_CAP_FMT_CASE_SENSITIVE);
    };
    EXPECT_FALSE(countsCase("ext4"));
    EXPECT_FALSE(countsCase("f2fs"));
    EXPECT_FALSE(countsCase("tmpfs"));
    EXPECT_TRUE(countsCase("btrfs")) << "whose folders are all the same";
    answer = -1;
    EXPECT_TRUE(countsCase("ext4")) << "it cannot be asked";
}

TEST(VolumeAttributes, HaveNoTimeWhereNoneIsKept)
{
    const TemporaryTree tree;
    ReplacedItemCalls calls;
    calls->statx = [](int folder, const char* path, int flags, unsigned mask, struct statx* status) {
        const int result = systemItemCalls().statx(folder, path, flags, mask & ~STATX_BTIME, status);
        status->stx_mask &= ~STATX_BTIME;
        return result;
    };
    FileSystem old = fileSystem("ext4");
    old.mountPoint = QByteArray::fromStdString(tree.root());
    VolumeAttributes attributes;
    ASSERT_EQ(askForAttributes(old, attributes), 0);
    EXPECT_FALSE(attributes.created);
    EXPECT_EQ(attributes.supported.valid.common & ATTR_CMN_CRTIME, 0U);
}

struct Flags
{
    const char *type, *mountPoint, *options, *superOptions;
    std::uint32_t flags;
};

TEST(FileSystem, IsMountedAsItsRowSays)
{
    constexpr std::uint32_t kLocal = MNT_LOCAL;
    for (const Flags& each : {
             Flags{"ext4", "/", "rw,relatime", "rw", kLocal | MNT_ROOTFS},
             Flags{"ext4",
                   "/mnt",
                   "ro,noexec,nosuid,nodev",
                   "rw",
                   kLocal | MNT_RDONLY | MNT_NOEXEC | MNT_NOSUID | MNT_NODEV},
             Flags{"ext4", "/mnt", "rw", "ro", kLocal | MNT_RDONLY},
             Flags{"vfat", "/boot/efi", "rw", "rw", kLocal | MNT_IGNORE_OWNERSHIP},
             Flags{"exfat", "/media/x", "rw", "rw", kLocal | MNT_IGNORE_OWNERSHIP},
             Flags{"ntfs3", "/media/x", "rw", "rw", kLocal | MNT_IGNORE_OWNERSHIP},
             Flags{"nfs4", "/srv", "rw", "rw", 0},
             Flags{"fuse.sshfs", "/home/a/server", "rw", "rw", 0},
             Flags{"proc", "/mnt/p", "rw", "rw", kLocal | MNT_DONTBROWSE},
             Flags{"tmpfs", "/run/lock", "rw", "rw", kLocal | MNT_DONTBROWSE},
             Flags{"ext4", "/hidden", "rw", "rw", kLocal | MNT_DONTBROWSE},
         }) {
        MountEntry mount;
        mount.type = each.type;
        mount.mountPoint = each.mountPoint;
        mount.options = each.options;
        mount.superOptions = each.superOptions;
        EXPECT_EQ(fileSystemOfMount(mount, {"/hidden"}).flags, each.flags) << each.type << ' ' << each.mountPoint;
    }
}

TEST(FileSystem, HasTheDevicesNumberForAnIdWhereTheKernelGivesNone)
{
    MountEntry mount;
    mount.major = 0;
    mount.minor = 77;
    mount.mountPoint = "/";
    ReplacedItemCalls calls;
    std::pair<int, int> words;
    calls->statfs = [&](const char*, struct statfs* statistics) {
        *statistics = {};
        statistics->f_fsid = {{words.first, words.second}};
        return 0;
    };
    mount.type = "tmpfs";
    FileSystem asked = fileSystemOfMount(mount, {});
    EXPECT_EQ(asked.id, ::makedev(0, 77));
    words = {0, 0};
    ASSERT_EQ(askForStatistics(asked), 0);
    EXPECT_EQ(asked.id, ::makedev(0, 77));
    words = {-1, 0x12};
    ASSERT_EQ(askForStatistics(asked), 0);
    EXPECT_EQ(asked.id, 0x12FFFFFFFFU);
    mount.type = "cifs";
    asked = fileSystemOfMount(mount, {});
    ASSERT_EQ(askForStatistics(asked), 0);
    EXPECT_EQ(asked.id, ::makedev(0, 77)) << "as when the server did not answer";
}

} // namespace
} // namespace havrel::platform
