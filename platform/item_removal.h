// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <vector>

#include <sys/types.h>

namespace havrel::platform {

class ItemPlace;

/// Removes an item, a folder with everything in it; blocks on the disk. Never follows a link, survives trees of any
/// depth, and does not go into a folder on which something is mounted (EBUSY; what is mounted stays whole).
///
/// \return 0, or the errno value of the first item that could not be removed: what was removed before it is gone.
///
/// Threads: any thread.
[[nodiscard]] int removeItem(const QByteArray& path);
[[nodiscard]] int removeItem(const ItemPlace& place);

/// As removeItem, but only items whose inodes are among \p listed; others stay, with the folders around them
/// (ENOTEMPTY).
///
/// Threads: any thread.
[[nodiscard]] int removeListed(const ItemPlace& place, std::vector<ino_t> listed);

/// Takes back what a copy has made: of the tree at \p place, only items whose inodes are among \p created, as far as
/// that goes. What others put there stays, with the folders around it.
///
/// Threads: any thread.
void removeCreated(const ItemPlace& place, std::vector<ino_t> created);

} // namespace havrel::platform
