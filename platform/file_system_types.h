// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <cstdint>

namespace havrel::platform {

// What is true of every file system of a type; to be combined.
inline constexpr std::uint32_t kPlain = 0;
inline constexpr std::uint32_t kKernelOnly = 1U << 0U;  ///< shows what the kernel knows, keeps no files of people
inline constexpr std::uint32_t kRemote = 1U << 1U;      ///< on another host
inline constexpr std::uint32_t kMayHang = 1U << 2U;     ///< waits for another host or program, perhaps for ever
inline constexpr std::uint32_t kNeverAsk = 1U << 3U;    ///< a question would mount something
inline constexpr std::uint32_t kNoOwners = 1U << 4U;    ///< keeps neither owners nor modes
inline constexpr std::uint32_t kNoInodes = 1U << 5U;    ///< keeps neither inode numbers nor times of attribute changes
inline constexpr std::uint32_t kOnDevices = 1U << 6U;   ///< on block devices, by a device number without one
inline constexpr std::uint32_t kAsksForCase = 1U << 7U; ///< each folder says whether case counts in it
inline constexpr std::uint32_t kAsksForJournal = 1U << 8U;   ///< may be without a journal
inline constexpr std::uint32_t kAsksForObjectIds = 1U << 9U; ///< the mount options say how wide inode numbers are
inline constexpr std::uint32_t kAsksForXfs = 1U << 10U;      ///< cloning and case are told by a call of its own

/// A type of file systems and what it can do. Bits that its name does not settle are in the sets of the unsettled: what
/// they are must be asked for, else is not known.
struct FileSystemType
{
    const char* name = "";
    std::uint32_t traits = kPlain;
    std::uint32_t format = 0; ///< VOL_CAP_FMT_ bits
    std::uint32_t unsettledFormat = 0;
    std::uint32_t interface = 0; ///< VOL_CAP_INT_ bits
    std::uint32_t unsettledInterface = 0;

    [[nodiscard]] bool has(std::uint32_t trait) const noexcept { return (traits & trait) != 0; }
};

/// The type of that name; for a name that is not known one of which nothing is settled.
///
/// Exchange, exclusive renaming, cloning and preallocation are those of the drivers of Linux 6.1: rename's flags cannot
/// be tried without renaming something.
///
/// \param name as in the table of mounts: "ext4", "fuse.sshfs"
/// \source the kernel's file-system drivers and their documentation
///
/// Threads: any thread.
[[nodiscard]] const FileSystemType& fileSystemTypeNamed(QByteArrayView name);

/// The name of the type with that magic number, for those that one can be told of; else empty.
///
/// \source linux/magic.h, statfs(2)
///
/// Threads: any thread.
[[nodiscard]] QByteArray typeNameOfMagic(std::uint64_t magic);

/// Whether items below this mount point belong to a program's own machinery rather than to people: the kernel's own
/// trees, those of container and package systems, and what lies below a folder with a dot name.
///
/// Threads: any thread.
[[nodiscard]] bool isPrivateMountPoint(QByteArrayView mountPoint);

} // namespace havrel::platform
