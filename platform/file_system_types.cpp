// SPDX-License-Identifier: MIT
#include "platform/file_system_types.h"

#include "platform/volume_bits.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <linux/magic.h>

namespace havrel::platform {
namespace {

// Format.
constexpr std::uint32_t kIds = VOL_CAP_FMT_PERSISTENTOBJECTIDS;
constexpr std::uint32_t kLinks = VOL_CAP_FMT_SYMBOLICLINKS | VOL_CAP_FMT_HARDLINKS;
constexpr std::uint32_t kKeepsCase = VOL_CAP_FMT_CASE_PRESERVING;
constexpr std::uint32_t kCase = VOL_CAP_FMT_CASE_SENSITIVE | VOL_CAP_FMT_CASE_PRESERVING;
constexpr std::uint32_t kHoles = VOL_CAP_FMT_SPARSE_FILES | VOL_CAP_FMT_ZERO_RUNS;
constexpr std::uint32_t kBig = VOL_CAP_FMT_2TB_FILESIZE;
constexpr std::uint32_t kFast = VOL_CAP_FMT_FAST_STATFS;
constexpr std::uint32_t kWide = VOL_CAP_FMT_64BIT_OBJECT_IDS;
constexpr std::uint32_t kJournal = VOL_CAP_FMT_JOURNAL | VOL_CAP_FMT_JOURNAL_ACTIVE;
constexpr std::uint32_t kUnix = kLinks | kCase | kHoles | kBig | kFast;
constexpr std::uint32_t kDisk = kUnix | kIds;
constexpr std::uint32_t kFat = kKeepsCase | kFast | VOL_CAP_FMT_NO_ROOT_TIMES;
constexpr std::uint32_t kImage = kLinks | kCase | kBig | kFast | kIds;

constexpr std::uint32_t kAnyFormat = kDisk | kWide | kJournal | VOL_CAP_FMT_NO_ROOT_TIMES;

// Interface.
constexpr std::uint32_t kExclusive = VOL_CAP_INT_RENAME_EXCL;
constexpr std::uint32_t kSwap = VOL_CAP_INT_RENAME_SWAP | VOL_CAP_INT_RENAME_EXCL;
constexpr std::uint32_t kAllocates = VOL_CAP_INT_ALLOCATE;
constexpr std::uint32_t kClones = VOL_CAP_INT_CLONE;
constexpr std::uint32_t kSnapshots = VOL_CAP_INT_SNAPSHOT;
constexpr std::uint32_t kAnyInterface = kSwap | kAllocates | kClones | kSnapshots;
constexpr std::uint32_t kByServer = kAllocates | kClones;

constexpr std::uint32_t kNetwork = kRemote | kMayHang;
constexpr std::uint32_t kExt = kAsksForCase | kAsksForJournal;

// Sorted by name.
constexpr auto kTypes = std::to_array<FileSystemType>({
    {"9p", kMayHang, kCase | kBig, kLinks | kHoles | kIds | kWide | kFast, 0, 0},
    {"afs", kNetwork, kCase | kLinks | kBig, kHoles, 0, 0},
    {"autofs", kKernelOnly | kMayHang | kNeverAsk, kCase | kFast, 0, 0, 0},
    {"bcachefs", kOnDevices | kAsksForCase, kDisk | kWide | kJournal, 0, kSwap | kAllocates | kClones | kSnapshots, 0},
    {"binder", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"binfmt_misc", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"bpf", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"btrfs", kOnDevices, kDisk | kWide, 0, kSwap | kAllocates | kClones | kSnapshots, 0},
    {"ceph", kNetwork, (kDisk | kWide) & ~kFast, 0, kAllocates, kSnapshots},
    {"cgroup", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"cgroup2", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"cifs", kNetwork, kKeepsCase | kBig, kCase | kLinks | kHoles | kIds | kWide, kExclusive, kByServer},
    {"coda", kNetwork, kCase | kLinks, kHoles | kBig, 0, 0},
    {"configfs", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"cpuset", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"debugfs", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"devpts", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"devtmpfs", kKernelOnly, kUnix, 0, kSwap, 0},
    {"efivarfs", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"erofs", kPlain, kImage | kHoles | kWide, 0, 0, 0},
    {"exfat", kNoOwners | kNoInodes, kFat | kBig, 0, kExclusive, kAllocates},
    {"ext2", kExt, kDisk, kJournal, kExclusive, VOL_CAP_INT_RENAME_SWAP},
    {"ext3", kExt, kDisk, kJournal, kSwap, 0},
    {"ext4", kExt, kDisk, kJournal, kSwap | kAllocates, 0},
    {"f2fs", kAsksForCase, kDisk, 0, kSwap | kAllocates, 0},
    {"fuse", kMayHang, kFast, kAnyFormat & ~kFast, 0, kAnyInterface},
    {"fuse.glusterfs", kNetwork, 0, kAnyFormat & ~kFast, 0, kAnyInterface},
    {"fuse.rclone", kNetwork, 0, kAnyFormat & ~kFast, 0, kAnyInterface},
    {"fuse.s3fs", kNetwork, 0, kAnyFormat & ~kFast, 0, kAnyInterface},
    {"fuse.sshfs", kNetwork, 0, kAnyFormat & ~kFast, 0, kAnyInterface},
    {"fuseblk", kMayHang | kNoOwners, kFast, kAnyFormat & ~kFast, 0, kAnyInterface},
    {"fusectl", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"gfs2", kMayHang, kDisk | kWide | kJournal, 0, kSwap | kAllocates, 0},
    {"hfs", kNoOwners, kKeepsCase | kFast | kIds, 0, kExclusive, 0},
    {"hfsplus", kPlain, kKeepsCase | kLinks | kBig | kFast | kIds, kCase | kJournal, kExclusive, 0},
    {"hugetlbfs", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"iso9660", kPlain, kBig | kFast, kCase | kLinks | kIds, 0, 0},
    {"jffs2", kPlain, kDisk & ~kBig, 0, kExclusive, 0},
    {"jfs", kPlain, kDisk | kJournal, kCase, kExclusive, 0},
    {"minix", kPlain, (kDisk & ~kBig), 0, kExclusive, 0},
    {"mqueue", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"msdos", kNoOwners | kNoInodes, kFast | VOL_CAP_FMT_NO_ROOT_TIMES, 0, kExclusive | kAllocates, 0},
    {"nfs", kNetwork, (kDisk | kWide) & ~(kFast | kHoles), kHoles, 0, kByServer},
    {"nfs4", kNetwork, (kDisk | kWide) & ~(kFast | kHoles), kHoles, 0, kByServer},
    {"nfsd", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"nilfs2", kPlain, kDisk | kWide, 0, kExclusive | kSnapshots, 0},
    {"nsfs", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"ntfs", kNoOwners, kKeepsCase | kBig | kFast | kIds | VOL_CAP_FMT_JOURNAL, kCase | kHoles | kLinks, 0, kExclusive},
    {"ntfs3",
     kNoOwners,
     kKeepsCase | kLinks | kHoles | kBig | kFast | kIds | kJournal,
     kCase,
     kExclusive | kAllocates,
     0},
    {"ocfs2", kMayHang, kDisk | kWide | kJournal, 0, kAllocates, kExclusive | kClones},
    {"overlay", kPlain, kUnix, kIds | kWide, kSwap, kAllocates | kClones},
    {"proc", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"pstore", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"ramfs", kPlain, kUnix & ~kHoles, kHoles, kSwap, 0},
    {"reiserfs", kPlain, kDisk | kJournal, 0, kExclusive, 0},
    {"resctrl", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"romfs", kPlain, kImage & ~kBig, 0, 0, 0},
    {"rpc_pipefs", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"securityfs", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"selinuxfs", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"smackfs", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"smb3", kNetwork, kKeepsCase | kBig, kCase | kLinks | kHoles | kIds | kWide, kExclusive, kByServer},
    {"squashfs", kPlain, kImage | kHoles, 0, 0, 0},
    {"sysfs", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"tmpfs", kAsksForCase | kAsksForObjectIds, kUnix, 0, kSwap | kAllocates, 0},
    {"tracefs", kKernelOnly, kCase | kFast, 0, 0, 0},
    {"ubifs", kPlain, kDisk, 0, kSwap, 0},
    {"udf", kPlain, kDisk, 0, kExclusive, 0},
    {"vboxsf", kMayHang, kBig, kAnyFormat & ~(kBig | kFast), 0, 0},
    {"vfat", kNoOwners | kNoInodes, kFat, 0, kSwap | kAllocates, 0},
    {"virtiofs", kMayHang, kFast, kAnyFormat & ~kFast, 0, kAnyInterface},
    {"xfs", kAsksForXfs, kDisk | kWide | kJournal, kCase, kSwap | kAllocates, kClones},
    {"zfs", kOnDevices, kDisk | kWide, kCase, kSnapshots, kSwap | kAllocates | kClones},
});

static_assert(std::is_sorted(kTypes.begin(), kTypes.end(), [](const FileSystemType& one, const FileSystemType& other) {
    return std::string_view(one.name) < std::string_view(other.name);
}));

constexpr FileSystemType kUnknown{"", kPlain, 0, kAnyFormat, 0, kAnyInterface};

struct Magic
{
    std::uint64_t number;
    const char* name;
};

constexpr std::uint64_t kUbifsMagic = 0x24051905; // not in the kernel's header

// Where types share a number, the one that can the least, unless one of them is all that is ever met with.
constexpr auto kMagics = std::to_array<Magic>({
    {EXT4_SUPER_MAGIC, "ext4"},
    {XFS_SUPER_MAGIC, "xfs"},
    {BTRFS_SUPER_MAGIC, "btrfs"},
    {TMPFS_MAGIC, "tmpfs"},
    {RAMFS_MAGIC, "ramfs"},
    {F2FS_SUPER_MAGIC, "f2fs"},
    {OVERLAYFS_SUPER_MAGIC, "overlay"},
    {MSDOS_SUPER_MAGIC, "msdos"},
    {EXFAT_SUPER_MAGIC, "exfat"},
    {SQUASHFS_MAGIC, "squashfs"},
    {EROFS_SUPER_MAGIC_V1, "erofs"},
    {ISOFS_SUPER_MAGIC, "iso9660"},
    {NFS_SUPER_MAGIC, "nfs"},
    {CIFS_SUPER_MAGIC, "cifs"},
    {SMB2_SUPER_MAGIC, "smb3"},
    {V9FS_MAGIC, "9p"},
    {CEPH_SUPER_MAGIC, "ceph"},
    {FUSE_SUPER_MAGIC, "fuse"},
    {AUTOFS_SUPER_MAGIC, "autofs"},
    {PROC_SUPER_MAGIC, "proc"},
    {SYSFS_MAGIC, "sysfs"},
    {CGROUP_SUPER_MAGIC, "cgroup"},
    {CGROUP2_SUPER_MAGIC, "cgroup2"},
    {DEVPTS_SUPER_MAGIC, "devpts"},
    {kUbifsMagic, "ubifs"},
});

struct Tree
{
    const char* folder;
    bool isPrivate;
};

// The longest one that a mount point lies in decides.
constexpr auto kTrees = std::to_array<Tree>({
    {"/proc", true},
    {"/sys", true},
    {"/dev", true},
    {"/run", true},
    {"/run/media", false},
    {"/var/run", true},
    {"/snap", true},
    {"/var/snap", true},
    {"/var/lib/containerd", true},
    {"/var/lib/containers", true},
    {"/var/lib/docker", true},
    {"/var/lib/flatpak", true},
    {"/var/lib/kubelet", true},
    {"/var/lib/lxc", true},
    {"/var/lib/lxd", true},
    {"/var/lib/nfs", true},
    {"/var/lib/snapd", true},
});

bool liesIn(QByteArrayView path, QByteArrayView folder)
{
    return path.startsWith(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

const FileSystemType* find(QByteArrayView name)
{
    const auto* const found =
        std::lower_bound(kTypes.begin(), kTypes.end(), name, [](const FileSystemType& type, QByteArrayView wanted) {
            return QByteArrayView(type.name) < wanted;
        });
    return found != kTypes.end() && name == found->name ? found : nullptr;
}

} // namespace

const FileSystemType& fileSystemTypeNamed(QByteArrayView name)
{
    if (const FileSystemType* const found = find(name))
        return *found;
    if (name.startsWith("fuse."))
        return *find("fuse");
    if (name.startsWith("fuseblk."))
        return *find("fuseblk");
    return kUnknown;
}

QByteArray typeNameOfMagic(std::uint64_t magic)
{
    const auto* const found =
        std::find_if(kMagics.begin(), kMagics.end(), [&](const Magic& each) { return each.number == magic; });
    return found == kMagics.end() ? QByteArray() : QByteArray(found->name);
}

bool isPrivateMountPoint(QByteArrayView mountPoint)
{
    const Tree* innermost = nullptr;
    for (const Tree& tree : kTrees)
        if (liesIn(mountPoint, tree.folder) &&
            (innermost == nullptr || qstrlen(tree.folder) > qstrlen(innermost->folder)))
            innermost = &tree;
    return (innermost != nullptr && innermost->isPrivate) || mountPoint.indexOf("/.") >= 0;
}

} // namespace havrel::platform
