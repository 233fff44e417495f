// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>

namespace havrel::integrations {

/// A file that brings the commands somewhere.
struct EntryFile
{
    QByteArray path; ///< below a data folder, such as /usr/share or ~/.local/share
    QByteArray contents;
};

/// The application's own desktop entry, for starting it over the bus.
///
/// \source Desktop Entry Specification 1.4; "D-Bus Activation" there
///
/// Threads: any thread.
[[nodiscard]] QList<EntryFile> desktopEntry();

/// What software centres show. \source AppStream 0.16, "Desktop applications"
///
/// Threads: any thread.
[[nodiscard]] QList<EntryFile> metainfo();

/// A menu for Dolphin. \source KIO 5.85 and later, "Creating Dolphin service menus"
///
/// Threads: any thread.
[[nodiscard]] QList<EntryFile> dolphinServiceMenu();

/// Actions for Nemo. They hide where the extension for everybody is installed, which takes more items.
///
/// \source sample.nemo_action of Nemo 5.6
///
/// Threads: any thread.
[[nodiscard]] QList<EntryFile> nemoActions();

/// A menu for PCManFM-Qt, and what else reads such files.
///
/// \source Desktop Entry Specification Extension for Menus and Actions 0.15, as libfm-qt 1.2 reads it
///
/// Threads: any thread.
[[nodiscard]] QList<EntryFile> fileManagerActions();

// Extensions in Python, which hand over any number of items through a pipe.
// \source README of nautilus-python 4.0 and of its relatives

[[nodiscard]] QList<EntryFile> nautilusExtension(); ///< Threads: any thread.
[[nodiscard]] QList<EntryFile> nemoExtension();     ///< Threads: any thread.
[[nodiscard]] QList<EntryFile> cajaExtension();     ///< Threads: any thread.
[[nodiscard]] QList<EntryFile> thunarExtension();   ///< Threads: any thread.

} // namespace havrel::integrations
