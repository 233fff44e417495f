// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <array>
#include <cstdint>
#include <optional>

namespace havrel::platform {

struct FileSystem;

/// The 16 bytes of a volume's UUID, in the order of its text.
using VolumeUUID = std::array<std::uint8_t, 16>;

/// What a volume is called, where it says so.
struct VolumeIdentity
{
    std::optional<VolumeUUID> uuid; ///< none for shorter identifiers, such as those of FAT
    QByteArray label;               ///< empty when it has none
    bool labelCanBeSet = false;     ///< while it is mounted
};

/// Asks for the UUID and the label of a file system on a block device; file systems without one have neither. The
/// kernel is asked first, which anybody may and which needs no device; then the device is read, where that is
/// permitted; then the links that the device manager keeps are looked through. Blocks on the disk.
///
/// \param folder the mount point, opened for reading; -1 when it could not be opened
///
/// \source linux/fs.h, FS_IOC_GETFSLABEL and FS_IOC_GETFSUUID; ext4's, btrfs's and xfs's own calls; libblkid; udev(7),
///         /dev/disk/by-uuid and by-label
///
/// Threads: any thread.
[[nodiscard]] VolumeIdentity identityOfVolume(const FileSystem& fileSystem, int folder);

/// The UUID that a text stands for: 32 hexadecimal digits in groups of 8, 4, 4, 4 and 12; none for any other text and
/// for the UUID of all zeros.
///
/// Threads: any thread.
[[nodiscard]] std::optional<VolumeUUID> parseVolumeUUID(QByteArrayView text);

/// The text of a UUID, in upper case.
///
/// Threads: any thread.
[[nodiscard]] QByteArray textOfVolumeUUID(const VolumeUUID& uuid);

/// The name of a link of the device manager with each "\xHH" made the byte that it stands for.
///
/// \source udev(7), systemd-escape(1): the encoding of ID_FS_LABEL_ENC
///
/// Threads: any thread.
[[nodiscard]] QByteArray unescapedDeviceLink(QByteArrayView name);

/// The name of the link in \p folder that leads to the block device \p device; empty when there is none.
///
/// Threads: any thread.
[[nodiscard]] QByteArray linkToDevice(const QByteArray& folder, std::uint64_t device);

} // namespace havrel::platform
