// SPDX-License-Identifier: MIT
#pragma once

#include "platform/owned_descriptor.h"

#include <QByteArray>

#include <cstdint>
#include <optional>

#include <sys/types.h>

/// Single calls on one item. All may block on the disk; none follows a link at the end of a path unless it says so.
/// A path with a NUL byte inside names no item: EINVAL. Answers 0 or an errno value where it answers an int.
///
/// Threads: any thread.
namespace havrel::platform {

/// Renames \p from, replacing what has the name \p to. \source rename(2)
[[nodiscard]] int renameItem(const QByteArray& from, const QByteArray& to);

/// Renames \p from unless \p to exists (a dangling link counts): EEXIST. In one step where the file system can,
/// else the existence is tested first. \source renameat2(2) with RENAME_NOREPLACE
[[nodiscard]] int renameItemExclusively(const QByteArray& from, const QByteArray& to);

/// Exchanges two items in one step; EINVAL where the file system cannot. \source renameat2(2) with RENAME_EXCHANGE
[[nodiscard]] int exchangeItems(const QByteArray& one, const QByteArray& other);

/// Whether the item exists, links followed: a dangling link does not.
[[nodiscard]] bool itemExists(const QByteArray& path);

/// 0 when something has the name, a dangling link too; else the errno value of the look (ENOENT ...).
[[nodiscard]] int findName(const QByteArray& path);

/// The path without links, "." and ".."; none when it cannot be resolved. \source realpath(3)
[[nodiscard]] std::optional<QByteArray> realPath(const QByteArray& path);

/// The path under which the kernel knows the item that \p path leads to, links followed. Opens nothing for reading or
/// writing, so that a pipe does not block and nothing is triggered. None when it has none.
/// \source proc(5), /proc/[pid]/fd; open(2), O_PATH
[[nodiscard]] std::optional<QByteArray> canonicalPath(const QByteArray& path);

/// The device that the item itself lies on; none when there is no item. \source stat(2), st_dev
[[nodiscard]] std::optional<std::uint64_t> deviceId(const QByteArray& path);

/// Whether a file system, or another part of one, is mounted on the folder itself.
/// \source statx(2), STATX_ATTR_MOUNT_ROOT
[[nodiscard]] bool isMountPoint(const QByteArray& path);
[[nodiscard]] bool isMountPoint(int folder);
[[nodiscard]] bool isMountPoint(int parent, const char* name);

/// Opens the folder itself for listing; closed when it cannot be, or is no folder.
/// \source open(2), O_DIRECTORY, O_NOFOLLOW
[[nodiscard]] OwnedDescriptor openFolder(const QByteArray& path);

/// Makes a folder with \p mode as the process's mask leaves it. \source mkdir(2)
[[nodiscard]] int createFolder(const QByteArray& path, mode_t mode);

/// Unmounts what is mounted on \p mountPoint; \p forcibly also while it is in use, where the file system can.
/// \source umount2(2), MNT_FORCE
[[nodiscard]] int unmountVolume(const QByteArray& mountPoint, bool forcibly);

/// What limits a path's file system names, as pathconf(3) does. -1: an error or no limit.
enum class PathLimit { MinTransferSize, MaxTransferSize, FileSizeBits };
[[nodiscard]] std::int64_t pathLimit(const QByteArray& path, PathLimit limit);

/// Sets the times of access and modification to now; follows links. \source utimensat(2)
int touchItem(const QByteArray& path);

} // namespace havrel::platform
