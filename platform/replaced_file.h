// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <sys/types.h>

namespace havrel::platform {

/// Gives the file at \p path other contents, whole or not at all: writes them beside it, sees to it that they are on
/// the disk, and renames. Owner, mode, access list and attributes stay; a link stays a link, and its target is
/// replaced. Blocks on the disk.
///
/// \param modeOfNew of a file that was not there before, less the process's mask.
/// \return 0, or an errno value with the old contents untouched and nothing left behind: EISDIR for a folder, EINVAL
///         for what is neither file nor folder, ENOENT for a dangling link or a missing folder.
/// \source rename(2), fsync(2)
///
/// Threads: any thread.
[[nodiscard]] int replaceFile(const QByteArray& path, const QByteArray& bytes, mode_t modeOfNew);

/// Makes a folder and those above it that are missing.
///
/// \param mode of the new ones, less the process's mask.
/// \return 0, also when it is there already, or an errno value. \source mkdir(2)
///
/// Threads: any thread.
[[nodiscard]] int makeFolders(const QByteArray& path, mode_t mode);

} // namespace havrel::platform
