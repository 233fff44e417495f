// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace havrel::platform {

/// What the marks on an item say.
struct ItemMark
{
    int error = 0; ///< 0, or the errno value why the item cannot be looked at
    bool isSet = false;
};

/// Whether file managers hide the item at \p path: its name begins with "." or is a line of the file ".hidden" in its
/// folder. Blocks on the disk.
///
/// \source the convention of GLib and of the file managers for ".hidden"
///
/// Threads: any thread.
[[nodiscard]] ItemMark hiddenMark(const QByteArray& path);

/// Whether the item at \p path itself asks to be left out of backups: by the attribute "user.xdg.robots.backup" with
/// the value "false", by the no-dump flag, or, a folder, by a cache-directory tag in it. Blocks on the disk.
///
/// \source CommonExtendedAttributes (freedesktop.org); Cache Directory Tagging Specification 0.6; chattr(1)
///
/// Threads: any thread.
[[nodiscard]] ItemMark excludedFromBackupMark(const QByteArray& path);

} // namespace havrel::platform
