// SPDX-License-Identifier: MIT
#pragma once

#include <QStringView>

namespace havrel {

class JNPath;

/// What a window that edits items has to know of each before it shows it.
struct ItemResources
{
    bool isDirectory = false;
    bool isPackage = false;          ///< a folder that people handle as one thing, like a file
    bool isWritable = false;         ///< with its attributes
    bool canCarryAttributes = false; ///< a file or a folder: the kernel keeps attributes of users from all else

    /// A folder whose contents are items of their own.
    [[nodiscard]] bool isContainer() const noexcept { return isDirectory && !isPackage; }
};

/// Looks at the item at \p path itself, not at what a link points to. An item that is not there, or cannot be looked
/// at, is nothing of all this. Blocks on the disk.
///
/// Threads: any thread.
[[nodiscard]] ItemResources itemResources(const JNPath& path);

/// Whether a folder of the name \p name is a package: its extension is in a short table. Case does not count.
///
/// Threads: any thread.
[[nodiscard]] bool isPackageName(QStringView name);

} // namespace havrel
