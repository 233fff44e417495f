// SPDX-License-Identifier: MIT
#include "platform/file_systems.h"

#include "platform/file_system_types.h"
#include "platform/item_calls.h"
#include "platform/items.h"
#include "platform/volume_bits.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>

namespace havrel::platform {
namespace {

/// How a mount option and the flag of statfs say what a flag of ours says.
struct MountFlag
{
    const char* option;
    unsigned long statisticsFlag;
    std::uint32_t flag;
};

constexpr std::array<MountFlag, 4> kMountFlags{{
    {"ro", ST_RDONLY, MNT_RDONLY},
    {"noexec", ST_NOEXEC, MNT_NOEXEC},
    {"nosuid", ST_NOSUID, MNT_NOSUID},
    {"nodev", ST_NODEV, MNT_NODEV},
}};

constexpr std::uint32_t kFlagsOfStatistics = MNT_RDONLY | MNT_NOEXEC | MNT_NOSUID | MNT_NODEV;

std::uint32_t flagsOfOptions(const MountEntry& mount)
{
    std::uint32_t flags = 0;
    for (const MountFlag& each : kMountFlags)
        if (hasMountOption(mount.options, each.option))
            flags |= each.flag;
    return hasMountOption(mount.superOptions, "ro") ? flags | MNT_RDONLY : flags;
}

std::uint32_t flagsOfStatistics(const struct statfs& statistics)
{
    std::uint32_t flags = 0;
    for (const MountFlag& each : kMountFlags)
        if ((static_cast<unsigned long>(statistics.f_flags) & each.statisticsFlag) != 0)
            flags |= each.flag;
    return flags;
}

std::uint32_t flagsOfType(const FileSystemType& type)
{
    std::uint32_t flags = type.has(kRemote) ? 0 : MNT_LOCAL;
    if (type.has(kNoOwners))
        flags |= MNT_IGNORE_OWNERSHIP;
    return type.has(kKernelOnly) ? flags | MNT_DONTBROWSE : flags;
}

std::uint32_t flagsOfPlace(const QByteArray& mountPoint)
{
    return (mountPoint == "/" ? MNT_ROOTFS : 0) | (isPrivateMountPoint(mountPoint) ? MNT_DONTBROWSE : 0);
}

/// A mounted file stands for one item of another volume, which nobody looks for as a volume.
bool isMountedFile(const QByteArray& mountPoint)
{
    struct statx status;
    return itemCalls().statx(AT_FDCWD, mountPoint.constData(), AT_SYMLINK_NOFOLLOW, STATX_TYPE, &status) == 0 &&
           !S_ISDIR(status.stx_mode);
}

void take(const struct statfs& statistics, FileSystem& fileSystem)
{
    const auto words = std::bit_cast<std::array<std::uint32_t, 2>>(statistics.f_fsid);
    const std::uint64_t id = words[0] + (std::uint64_t(words[1]) << 32U);
    fileSystem.id = id == 0 || fileSystemTypeNamed(fileSystem.type).has(kRemote) ? fileSystem.deviceNumber : id;
    fileSystem.optimalXferSize = statistics.f_bsize;
    fileSystem.blockSize = statistics.f_frsize > 0 ? statistics.f_frsize : statistics.f_bsize;
    fileSystem.blocks = statistics.f_blocks;
    fileSystem.freeBlocks = statistics.f_bfree;
    fileSystem.availableBlocks = statistics.f_bavail;
    fileSystem.items = statistics.f_files;
    fileSystem.freeItems = statistics.f_ffree;
    fileSystem.flags = (fileSystem.flags & ~kFlagsOfStatistics) | flagsOfStatistics(statistics);
    if (isMountedFile(fileSystem.mountPoint))
        fileSystem.flags |= MNT_DONTBROWSE;
    fileSystem.answered = true;
}

/// The mount that \p path leads to, and the device.
std::optional<struct statx> placeOf(const QByteArray& path)
{
    struct statx status;
    if (itemCalls().statx(AT_FDCWD, path.constData(), 0, STATX_MNT_ID, &status) != 0)
        return std::nullopt;
    return status;
}

std::optional<MountEntry> mountOf(const struct statx& place, const std::vector<MountEntry>& table)
{
    if ((place.stx_mask & STATX_MNT_ID) == 0)
        return std::nullopt;
    const auto found =
        std::find_if(table.begin(), table.end(), [&](const MountEntry& each) { return each.id == place.stx_mnt_id; });
    return found == table.end() ? std::nullopt : std::optional(*found);
}

/// Where the file system begins whose mount the table does not show, because it lies outside of this process's root:
/// the outermost folder above \p path on the same mount.
QByteArray outermostFolder(const QByteArray& path, const struct statx& place)
{
    QByteArray folder = realPath(path).value_or("/");
    while (folder.size() > 1) {
        const qsizetype slash = folder.lastIndexOf('/');
        const QByteArray above = slash > 0 ? folder.first(slash) : QByteArray("/");
        const auto there = placeOf(above);
        if (!there || there->stx_mnt_id != place.stx_mnt_id || there->stx_dev_major != place.stx_dev_major ||
            there->stx_dev_minor != place.stx_dev_minor)
            break;
        folder = above;
    }
    return folder;
}

/// A row for a mount that the table does not show.
MountEntry mountWithoutRow(const QByteArray& path, const struct statx& place, const struct statfs& statistics)
{
    MountEntry mount;
    mount.id = place.stx_mnt_id;
    mount.major = place.stx_dev_major;
    mount.minor = place.stx_dev_minor;
    mount.mountPoint = outermostFolder(path, place);
    mount.type = typeNameOfMagic(static_cast<std::uint64_t>(statistics.f_type));
    return mount;
}

} // namespace

FileSystem fileSystemOfMount(const MountEntry& mount, const QByteArrayList& hidden)
{
    const FileSystemType& type = fileSystemTypeNamed(mount.type);
    FileSystem fileSystem;
    fileSystem.deviceNumber = ::makedev(mount.major, mount.minor);
    fileSystem.id = fileSystem.deviceNumber;
    fileSystem.flags = flagsOfOptions(mount) | flagsOfType(type) | flagsOfPlace(mount.mountPoint);
    if (hidden.contains(mount.mountPoint))
        fileSystem.flags |= MNT_DONTBROWSE;
    fileSystem.type = mount.type;
    fileSystem.mountPoint = mount.mountPoint;
    fileSystem.device = mount.source;
    fileSystem.superOptions = mount.superOptions;
    fileSystem.mayHang = type.has(kMayHang);
    return fileSystem;
}

int askForStatistics(FileSystem& fileSystem)
{
    struct statfs statistics;
    if (itemCalls().statfs(fileSystem.mountPoint.constData(), &statistics) != 0)
        return errno;
    take(statistics, fileSystem);
    return 0;
}

int findFileSystem(const QByteArray& path, FileSystem& found)
{
    if (path.contains('\0'))
        return EINVAL;
    struct statfs statistics;
    if (itemCalls().statfs(path.constData(), &statistics) != 0)
        return errno;
    const auto place = placeOf(path);
    if (!place)
        return errno;
    const auto mount = mountOf(*place, readMountTable().entries);
    found = fileSystemOfMount(mount ? *mount : mountWithoutRow(path, *place, statistics), readHiddenMountPoints());
    take(statistics, found);
    return 0;
}

} // namespace havrel::platform
