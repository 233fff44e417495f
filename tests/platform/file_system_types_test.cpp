// SPDX-License-Identifier: MIT
#include "platform/file_system_types.h"

#include "platform/volume_bits.h"

#include <gtest/gtest.h>

#include <linux/magic.h>

namespace havrel::platform {
namespace {

/// Which of the answers a type gives: set, clear, or not settled.
char answer(std::uint32_t bits, std::uint32_t unsettled, std::uint32_t bit)
{
    return (unsettled & bit) != 0 ? '?' : (bits & bit) != 0 ? 'y' : 'n';
}

struct Facts
{
    const char* name;
    const char* swap; ///< y, n or ?: exchange, exclusive rename, cloning, case counts, files beyond 4 GiB, hard links
};

TEST(FileSystemType, SettlesWhatItsNameTells)
{
    for (const Facts& facts : {
             Facts{"ext4", "yynyyy"},  Facts{"ext3", "yynyyy"},       Facts{"ext2", "?ynyyy"},
             Facts{"xfs", "yy??yy"},   Facts{"btrfs", "yyyyyy"},      Facts{"f2fs", "yynyyy"},
             Facts{"tmpfs", "yynyyy"}, Facts{"overlay", "yy?yyy"},    Facts{"vfat", "yynnnn"},
             Facts{"msdos", "nynnnn"}, Facts{"exfat", "nynnyn"},      Facts{"ntfs3", "nyn?yy"},
             Facts{"nfs4", "nn?yyy"},  Facts{"cifs", "ny??y?"},       Facts{"9p", "nnnyy?"},
             Facts{"proc", "nnnynn"},  Facts{"squashfs", "nnnyyy"},   Facts{"iso9660", "nnn?y?"},
             Facts{"fuse", "??????"},  Facts{"fuse.sshfs", "??????"}, Facts{"nobody knows", "??????"},
         }) {
        const FileSystemType& type = fileSystemTypeNamed(facts.name);
        const std::string found{
            answer(type.interface, type.unsettledInterface, VOL_CAP_INT_RENAME_SWAP),
            answer(type.interface, type.unsettledInterface, VOL_CAP_INT_RENAME_EXCL),
            answer(type.interface, type.unsettledInterface, VOL_CAP_INT_CLONE),
            answer(type.format, type.unsettledFormat, VOL_CAP_FMT_CASE_SENSITIVE),
            answer(type.format, type.unsettledFormat, VOL_CAP_FMT_2TB_FILESIZE),
            answer(type.format, type.unsettledFormat, VOL_CAP_FMT_HARDLINKS),
        };
        EXPECT_EQ(found, facts.swap) << facts.name;
    }
}

TEST(FileSystemType, KnowsWhatDependsOnOthers)
{
    for (const char* name : {"nfs", "nfs4", "cifs", "smb3", "ceph", "afs", "fuse.sshfs", "fuse.rclone"}) {
        EXPECT_TRUE(fileSystemTypeNamed(name).has(kRemote)) << name;
        EXPECT_TRUE(fileSystemTypeNamed(name).has(kMayHang)) << name;
    }
    for (const char* name : {"fuse", "fuseblk", "fuse.portal", "fuseblk.ntfs", "virtiofs", "9p"}) {
        EXPECT_FALSE(fileSystemTypeNamed(name).has(kRemote)) << name;
        EXPECT_TRUE(fileSystemTypeNamed(name).has(kMayHang)) << name;
    }
    for (const char* name : {"ext4", "vfat", "tmpfs", "proc", "overlay", "fused", ""})
        EXPECT_FALSE(fileSystemTypeNamed(name).has(kRemote | kMayHang)) << name;
    EXPECT_TRUE(fileSystemTypeNamed("autofs").has(kNeverAsk));
}

TEST(FileSystemType, KnowsTheKernelsOwn)
{
    for (const char* name : {"proc", "sysfs", "cgroup2", "devpts", "devtmpfs", "mqueue", "bpf", "tracefs", "nsfs"})
        EXPECT_TRUE(fileSystemTypeNamed(name).has(kKernelOnly)) << name;
    for (const char* name : {"tmpfs", "overlay", "squashfs", "fuse", "other"})
        EXPECT_FALSE(fileSystemTypeNamed(name).has(kKernelOnly)) << name;
}

TEST(FileSystemType, NeverSettlesAndDoubtsTheSameBit)
{
    for (const char* name : {"9p",
                             "ceph",
                             "cifs",
                             "ext2",
                             "fuse",
                             "hfsplus",
                             "iso9660",
                             "nfs",
                             "ntfs",
                             "ntfs3",
                             "ocfs2",
                             "overlay",
                             "ramfs",
                             "vboxsf",
                             "virtiofs",
                             "zfs"}) {
        const FileSystemType& type = fileSystemTypeNamed(name);
        EXPECT_EQ(type.format & type.unsettledFormat & VOL_CAP_FMT_HARDLINKS, 0U) << name;
        EXPECT_EQ(type.interface & type.unsettledInterface, 0U) << name;
    }
}

TEST(FileSystemType, IsToldByTheMagicNumberWhereThatCan)
{
    EXPECT_EQ(typeNameOfMagic(EXT4_SUPER_MAGIC), "ext4");
    EXPECT_EQ(typeNameOfMagic(TMPFS_MAGIC), "tmpfs");
    EXPECT_EQ(typeNameOfMagic(MSDOS_SUPER_MAGIC), "msdos");
    EXPECT_TRUE(typeNameOfMagic(0x1234).isEmpty());
}

TEST(MountPoint, IsPrivateInTreesOfPrograms)
{
    for (const char* path : {"/proc",
                             "/proc/sys/fs/binfmt_misc",
                             "/sys",
                             "/dev",
                             "/dev/shm",
                             "/run",
                             "/run/lock",
                             "/run/user/1000",
                             "/run/user/1000/doc",
                             "/snap/core/1",
                             "/var/lib/docker/overlay2/1/merged",
                             "/home/someone/.cache/doc",
                             "/.snapshots",
                             "/home/.hidden/folder"})
        EXPECT_TRUE(isPrivateMountPoint(path)) << path;
    for (const char* path : {"/",
                             "/home",
                             "/boot",
                             "/boot/efi",
                             "/media/someone/DISK",
                             "/run/media/someone/DISK",
                             "/mnt/process",
                             "/procedure",
                             "/devices",
                             "/runner",
                             "/srv",
                             "/tmp",
                             "/var/lib",
                             "/media/some.one/a.b"})
        EXPECT_FALSE(isPrivateMountPoint(path)) << path;
}

} // namespace
} // namespace havrel::platform
