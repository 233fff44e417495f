// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <cstdint>

namespace havrel::platform {

/// What the kernel says of a mounted file system.
/// \source statfs(2)
struct FileSystem
{
    std::uint64_t id = 0;   ///< the two 32-bit words of f_fsid, the first one lowest
    std::uint64_t type = 0; ///< f_type
};

/// Asks for the file system that \p path leads to, links followed; blocks on the disk. \return 0 or an errno value.
///
/// Threads: any thread.
[[nodiscard]] int findFileSystem(const QByteArray& path, FileSystem& found);

/// Whether file systems of this type exchange two items in one step. Told from a table: trying would need items that
/// may be exchanged. A type that only some versions or servers can is not in it.
///
/// \source the kernel's file-system drivers (Linux 6.1), those whose rename takes RENAME_EXCHANGE
///
/// Threads: any thread.
[[nodiscard]] bool exchangesItems(const FileSystem& fileSystem);

} // namespace havrel::platform
