// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <cstdint>
#include <vector>

namespace havrel::platform {

/// One row of the kernel's table of mounts. All names are bytes, unescaped. Options stay escaped: what is an
/// escaped comma inside of one does not part two.
struct MountEntry
{
    std::uint64_t id = 0;
    std::uint64_t parent = 0; ///< the mount that this one is mounted on; not in the table for the outermost
    std::uint32_t major = 0;  ///< of the device; 0 for file systems without one
    std::uint32_t minor = 0;
    QByteArray root;         ///< the part of the file system that is seen here: "/", or what is bound
    QByteArray mountPoint;   ///< as seen from this process's root
    QByteArray options;      ///< of this mount: "rw,nosuid,relatime"
    QByteArray type;         ///< "ext4", "fuse.sshfs"
    QByteArray source;       ///< "/dev/sda1", "host:/share", whatever was given; may be empty
    QByteArray superOptions; ///< of the file system: "rw,errors=remount-ro"

    friend bool operator==(const MountEntry&, const MountEntry&) = default;
};

/// The rows of a table's text, in its order. Lines that are no rows are left out.
///
/// \source proc(5), /proc/[pid]/mountinfo: blanks, tabs, newlines, backslashes and "#" are written as "\040" and so on
///
/// Threads: any thread.
[[nodiscard]] std::vector<MountEntry> parseMountTable(QByteArrayView text);

/// \p text with each "\ooo" made the byte that it stands for.
///
/// Threads: any thread.
[[nodiscard]] QByteArray unescapedMountText(QByteArrayView text);

/// The rows whose mount points lead to them: not those that later mounts cover, on the same folder or on one above it.
///
/// Threads: any thread.
[[nodiscard]] std::vector<MountEntry> uncoveredMounts(const std::vector<MountEntry>& table);

/// Whether \p name is one of the options, which commas part.
///
/// Threads: any thread.
[[nodiscard]] bool hasMountOption(QByteArrayView options, QByteArrayView name);

/// The mount points that users are not to see, by the options "x-gvfs-hide" and "x-gdu.hide".
///
/// \param text the table that mount(8) keeps of options which the kernel does not know: lines of NAME=VALUE
/// \source libmount's /run/mount/utab; udisks(8) and the file managers' x-gvfs-hide
///
/// Threads: any thread.
[[nodiscard]] QByteArrayList hiddenMountPoints(QByteArrayView text);

/// The table as it is now, or why it could not be had.
struct MountTable
{
    std::vector<MountEntry> entries;
    int openError = 0; ///< errno value; 0: it could be opened
    int readError = 0; ///< errno value; 0: it was read to its end
};

/// Reads the kernel's table for this process. Does not wait for any file system.
///
/// \source /proc/self/mountinfo
///
/// Threads: any thread.
[[nodiscard]] MountTable readMountTable();

/// hiddenMountPoints() of the table that mount(8) keeps; none without one.
///
/// Threads: any thread.
[[nodiscard]] QByteArrayList readHiddenMountPoints();

} // namespace havrel::platform
