// SPDX-License-Identifier: MIT
#include "platform/volume_identity.h"

#include "platform/blkid_library.h"
#include "platform/device_registry.h"
#include "platform/file_system_types.h"
#include "platform/file_systems.h"
#include "platform/xfs_geometry.h"

#include <QByteArrayList>

#include <algorithm>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <linux/btrfs.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace havrel::platform {
namespace {

constexpr const char* kLinksByUUID = "/dev/disk/by-uuid";
constexpr const char* kLinksByLabel = "/dev/disk/by-label";
constexpr std::array<int, 5> kUUIDGroups{8, 4, 4, 4, 12};
constexpr int kUUIDLength = 36;

/// The kernel's answer to the question for a UUID. Not in every version of its header.
/// \source linux/fs.h, struct fsuuid2 (Linux 6.9)
struct KernelUUID
{
    std::uint8_t length;
    std::array<std::uint8_t, 16> bytes;
};
constexpr unsigned long kGetUUID = _IOR(0x15, 0, KernelUUID);

/// ext4's answer to its own, older question.
/// \source fs/ext4/ext4.h, struct fsuuid and EXT4_IOC_GETFSUUID (Linux 6.0)
struct Ext4UUID
{
    std::uint32_t length; // in: the room for bytes
    std::uint32_t flags;
    std::array<std::uint8_t, 16> bytes;
};
constexpr unsigned long kExt4GetUUID = _IOR('f', 44, std::uint64_t); // its size is that of the head alone

std::optional<VolumeUUID> unlessZero(const VolumeUUID& uuid)
{
    return uuid == VolumeUUID{} ? std::nullopt : std::optional(uuid);
}

std::optional<VolumeUUID> uuidByExt4(int folder)
{
    Ext4UUID answer{};
    answer.length = static_cast<std::uint32_t>(answer.bytes.size());
    return ::ioctl(folder, kExt4GetUUID, &answer) == 0 ? unlessZero(answer.bytes) : std::nullopt;
}

std::optional<VolumeUUID> uuidByBtrfs(int folder)
{
    btrfs_ioctl_fs_info_args answer{};
    if (::ioctl(folder, BTRFS_IOC_FS_INFO, &answer) != 0)
        return std::nullopt;
    VolumeUUID uuid;
    std::copy_n(answer.fsid, uuid.size(), uuid.begin());
    return unlessZero(uuid);
}

std::optional<VolumeUUID> uuidByXfs(int folder)
{
    const auto geometry = xfsGeometry(folder);
    return geometry ? unlessZero(geometry->uuid) : std::nullopt;
}

std::optional<VolumeUUID> uuidByType(const QByteArray& type, int folder)
{
    if (type.startsWith("ext"))
        return uuidByExt4(folder);
    if (type == "btrfs")
        return uuidByBtrfs(folder);
    return type == "xfs" ? uuidByXfs(folder) : std::nullopt;
}

std::optional<VolumeUUID> uuidByKernel(const QByteArray& type, int folder)
{
    KernelUUID answer{};
    if (::ioctl(folder, kGetUUID, &answer) == 0 && answer.length == answer.bytes.size())
        return unlessZero(answer.bytes);
    return uuidByType(type, folder);
}

/// Whether the kernel knows labels of this file system; \p label may be empty then.
bool readLabel(int folder, QByteArray& label)
{
    std::array<char, FSLABEL_MAX> text{};
    if (::ioctl(folder, FS_IOC_GETFSLABEL, text.data()) != 0)
        return false;
    label = QByteArray(text.data(), static_cast<qsizetype>(qstrnlen(text.data(), text.size())));
    return true;
}

bool isBlockDevice(const QByteArray& path, std::uint64_t device)
{
    struct stat status;
    return ::stat(path.constData(), &status) == 0 && S_ISBLK(status.st_mode) && status.st_rdev == device;
}

/// The path of the block device, which need not be what was mounted: that may be "/dev/root".
QByteArray pathOfDevice(const FileSystem& fileSystem)
{
    if (isBlockDevice(fileSystem.device, fileSystem.deviceNumber))
        return fileSystem.device;
    const QByteArray path = "/dev/" + nameOfBlockDevice(fileSystem.deviceNumber);
    return isBlockDevice(path, fileSystem.deviceNumber) ? path : QByteArray();
}

void completeFromDevice(const FileSystem& fileSystem, bool labelKnown, VolumeIdentity& identity)
{
    const QByteArray path = pathOfDevice(fileSystem);
    const DeviceTags tags = path.isEmpty() ? DeviceTags() : tagsOfDevice(path);
    if (!identity.uuid)
        identity.uuid = parseVolumeUUID(tags.uuid);
    if (!labelKnown)
        identity.label = tags.label;
    if (!tags.uuid.isEmpty() || !tags.label.isEmpty())
        return;
    if (!identity.uuid)
        identity.uuid = parseVolumeUUID(linkToDevice(kLinksByUUID, fileSystem.deviceNumber));
    if (!labelKnown)
        identity.label = unescapedDeviceLink(linkToDevice(kLinksByLabel, fileSystem.deviceNumber));
}

int hexDigit(char character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    const char small = static_cast<char>(character | 0x20);
    return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

} // namespace

VolumeIdentity identityOfVolume(const FileSystem& fileSystem, int folder)
{
    VolumeIdentity identity;
    const bool onDevice = ::major(fileSystem.deviceNumber) != 0;
    if (!onDevice && !fileSystemTypeNamed(fileSystem.type).has(kOnDevices))
        return identity;
    identity.uuid = folder < 0 ? std::nullopt : uuidByKernel(fileSystem.type, folder);
    identity.labelCanBeSet = folder >= 0 && readLabel(folder, identity.label);
    if (onDevice && (!identity.uuid || !identity.labelCanBeSet))
        completeFromDevice(fileSystem, identity.labelCanBeSet, identity);
    return identity;
}

std::optional<VolumeUUID> parseVolumeUUID(QByteArrayView text)
{
    if (text.size() != kUUIDLength)
        return std::nullopt;
    VolumeUUID uuid{};
    std::size_t digits = 0;
    qsizetype at = 0;
    for (const int group : kUUIDGroups) {
        if (at > 0 && text[at++] != '-')
            return std::nullopt;
        for (int i = 0; i < group; ++i, ++at, ++digits) {
            const int digit = hexDigit(text[at]);
            if (digit < 0)
                return std::nullopt;
            uuid[digits / 2] = static_cast<std::uint8_t>(uuid[digits / 2] << 4 | digit);
        }
    }
    return unlessZero(uuid);
}

QByteArray textOfVolumeUUID(const VolumeUUID& uuid)
{
    const QByteArray digits =
        QByteArray(reinterpret_cast<const char*>(uuid.data()), static_cast<qsizetype>(uuid.size())).toHex().toUpper();
    QByteArrayList groups;
    qsizetype at = 0;
    for (const int group : kUUIDGroups) {
        groups << digits.mid(at, group);
        at += group;
    }
    return groups.join('-');
}

QByteArray unescapedDeviceLink(QByteArrayView name)
{
    QByteArray bytes;
    for (qsizetype at = 0; at < name.size(); ++at) {
        const bool escape = at + 3 < name.size() && name[at] == '\\' && name[at + 1] == 'x' &&
                            hexDigit(name[at + 2]) >= 0 && hexDigit(name[at + 3]) >= 0;
        bytes += escape ? static_cast<char>(hexDigit(name[at + 2]) * 16 + hexDigit(name[at + 3])) : name[at];
        at += escape ? 3 : 0;
    }
    return bytes;
}

QByteArray linkToDevice(const QByteArray& folder, std::uint64_t device)
{
    const std::unique_ptr<DIR, int (*)(DIR*)> links(::opendir(folder.constData()), ::closedir);
    if (!links)
        return {};
    while (const dirent* const link = ::readdir(links.get())) { // NOLINT(concurrency-mt-unsafe): a stream of our own
        struct stat status;
        if (::fstatat(::dirfd(links.get()), link->d_name, &status, 0) == 0 && S_ISBLK(status.st_mode) &&
            status.st_rdev == device)
            return {link->d_name};
    }
    return {};
}

} // namespace havrel::platform
