// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace havrel::platform {

/// Whether the process, as its effective user, may write to the item itself; a link at the end of the path is not
/// followed. Blocks on the disk. Root always may, except on a file system that is mounted read-only.
///
/// \return 0 when it may, else an errno value: EACCES, EROFS, ENOENT ...; EINVAL for a path with a NUL byte inside.
/// \source faccessat2(2) with AT_EACCESS and AT_SYMLINK_NOFOLLOW
///
/// Threads: any thread.
[[nodiscard]] int checkWritable(const QByteArray& path);

/// Whether it may also change the item's attributes: for a folder with the sticky bit, that is for its owner and root.
///
/// \return as checkWritable; EPERM for another's sticky folder.
/// \source xattr(7), "Extended user attributes"
///
/// Threads: any thread.
[[nodiscard]] int checkAttributesWritable(const QByteArray& path);

} // namespace havrel::platform
