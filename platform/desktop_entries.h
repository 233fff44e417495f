// SPDX-License-Identifier: MIT
#pragma once

#include "platform/desktop_entry.h"

#include <QByteArray>
#include <QByteArrayList>

#include <optional>

namespace havrel::platform {

/// The folders that hold data of programs, the user's first: XDG_DATA_HOME, then those of XDG_DATA_DIRS, from the
/// environment or its defaults. Relative ones are left out.
///
/// \source XDG Base Directory Specification 0.8
///
/// Threads: any thread, while none changes the environment.
[[nodiscard]] QByteArrayList dataFolders();

/// The entry of the application whose desktop file is \p id with ".desktop", from the first of the data folders that
/// has one in "applications". None when there is none, when that one is hidden or is no application's, or when the
/// program without which it counts as not installed is missing. An id with "-" is not looked for in subfolders. Blocks
/// on the disk.
///
/// \source Desktop Entry Specification 1.5
///
/// Threads: any thread, while none changes the environment.
[[nodiscard]] std::optional<DesktopEntry> findDesktopEntry(const QByteArray& id);

/// The path of the program that \p name means: itself when it has a slash, else the first executable file of that name
/// in the folders of PATH. Empty when there is none. Blocks on the disk.
///
/// Threads: any thread, while none changes the environment.
[[nodiscard]] QByteArray findProgram(const QByteArray& name);

} // namespace havrel::platform
