// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <optional>

namespace havrel::platform {

/// What the link at \p path says, whatever is there; none when it is no link or cannot be read.
///
/// \source readlink(2)
///
/// Threads: any thread.
[[nodiscard]] std::optional<QByteArray> targetOfLink(const QByteArray& path);

/// Reads what the link at \p path says, at most \p longest bytes of it. \return 0 or an errno value, and then \p target
/// is unchanged: EINVAL for what is no link, and for a path with a NUL byte inside.
///
/// \source readlink(2)
///
/// Threads: any thread.
[[nodiscard]] int readLink(const QByteArray& path, qsizetype longest, QByteArray& target);

/// Makes a link at \p path, where nothing may be. \return 0 or an errno value: EINVAL for bytes with a NUL inside.
///
/// \source symlink(2)
///
/// Threads: any thread.
[[nodiscard]] int makeLink(const QByteArray& path, const QByteArray& target);

/// Gives the link at \p path another target. Owner and times stay; the inode does not, because Linux cannot change a
/// link. For links that nobody else changes meanwhile.
///
/// \return 0 or an errno value: EINVAL for what is no link.
/// \source symlink(2), rename(2), utimensat(2), lchown(2)
///
/// Threads: any thread.
[[nodiscard]] int retargetLink(const QByteArray& path, const QByteArray& target);

} // namespace havrel::platform
