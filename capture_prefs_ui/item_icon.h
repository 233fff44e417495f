// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

class QIcon;

namespace havrel {

class JNPath;
struct LoadedItems;

/// Looks up the desktop's icon for one item, by its name; that of its kind for several of one kind, else one for
/// several. To be called when there is time: to look through the themes takes as long as to make the window.
///
/// Threads: the main thread only.
[[nodiscard]] std::function<QIcon()> iconForItems(const LoadedItems& loaded);

/// The desktop's icon for the item at \p path: a folder's, or by its name. Looks at the disk.
///
/// Threads: the main thread only.
[[nodiscard]] QIcon iconForItem(const JNPath& path);

} // namespace havrel
