// SPDX-License-Identifier: MIT
#pragma once

#include "integrations/entry_files.h"

#include <span>

namespace havrel::integrations {

/// Where a file manager looks for the entries that are installed for everybody.
enum class Seen {
    InEveryDataFolder,
    InCompiledInFolder, ///< and in the user's own
};

/// When a file manager that is running takes notice of new entries.
enum class Noticed { AtOnce, AtStart };

/// A way in which a file manager takes commands.
struct Way
{
    const char* name;                  ///< "extension"
    QList<EntryFile> (*files)();       ///< null: the actions in Thunar's file, which holds others, too
    const char* package;               ///< that loads the entry, or several; null when none is needed
    const char* module;                ///< of that package, below a folder for libraries
    const char* description = nullptr; ///< of the interface that the entry imports, below a folder for libraries
    Seen seen = Seen::InEveryDataFolder;
    Noticed noticed = Noticed::AtStart;
    bool mustBeExecutable = false; ///< the user's own copy

    [[nodiscard]] bool isSharedFile() const { return files == nullptr; }
};

/// A file manager that Havrel's commands can be brought to.
struct FileManager
{
    const char* id;            ///< "pcmanfm-qt"
    const char* name;          ///< "PCManFM-Qt"
    const char* program;       ///< the name of its program file
    const char* quit;          ///< the command that ends it, so that the next start sees new entries
    std::span<const Way> ways; ///< the best first
};

/// All of them. \source the projects' own documentation; package names are Debian's
///
/// Threads: any thread.
[[nodiscard]] std::span<const FileManager> fileManagers();

} // namespace havrel::integrations
