// SPDX-License-Identifier: MIT
#pragma once

#include "platform/mount_table.h"

#include <QByteArray>

#include <cstdint>

namespace havrel::platform {

/// What the kernel says of a mounted file system: its statistics and how it is mounted.
struct FileSystem
{
    /// The two 32-bit words of f_fsid, the first one lowest. The number of the device instead where both are 0, and
    /// where the statistics are another host's: they cannot always be had, and the same volume has the same id.
    std::uint64_t id = 0;
    std::uint32_t flags = 0;          ///< MNT_ bits (platform/volume_bits.h)
    std::int64_t blockSize = 0;       ///< bytes; unit of the three counts of blocks
    std::int64_t optimalXferSize = 0; ///< bytes
    std::uint64_t blocks = 0;
    std::uint64_t freeBlocks = 0;
    std::uint64_t availableBlocks = 0; ///< to ordinary users
    std::uint64_t items = 0;           ///< that there can be; 0 where nobody counts
    std::uint64_t freeItems = 0;
    bool answered = false; ///< whether it told its statistics; otherwise the counts and sizes are 0

    QByteArray type;                ///< "ext4"; empty when unknown
    QByteArray mountPoint;          ///< absolute, without links
    QByteArray device;              ///< what was mounted: "/dev/sda1", "tmpfs"; empty when unknown
    QByteArray superOptions;        ///< "rw,errors=remount-ro"
    std::uint64_t deviceNumber = 0; ///< 0 when unknown; its major number is 0 for file systems without a device
    /// Whether a question may wait for another host or program, by its own type or that of a mount above it.
    bool mayHang = false;
};

/// Asks for the file system that \p path leads to, links followed; blocks on the disk. \return 0 or an errno value.
///
/// Threads: any thread.
[[nodiscard]] int findFileSystem(const QByteArray& path, FileSystem& found);

/// What a row of the table of mounts alone says of a file system, without asking it.
///
/// \param hidden mount points that are not to be shown
///
/// Threads: any thread.
[[nodiscard]] FileSystem fileSystemOfMount(const MountEntry& mount, const QByteArrayList& hidden);

/// Asks the file system for its statistics, by its mount point; blocks on it.
/// \return 0, or an errno value, and then \p fileSystem is unchanged.
///
/// \source statfs(2)
///
/// Threads: any thread.
[[nodiscard]] int askForStatistics(FileSystem& fileSystem);

} // namespace havrel::platform
