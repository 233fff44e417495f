// SPDX-License-Identifier: MIT
#pragma once

#include "platform/item_place.h"

#include <QByteArray>

#include <ctime>
#include <vector>

#include <sys/types.h>

struct stat;

namespace havrel::platform {

/// An item as it was when it was copied.
struct CopiedItem
{
    ItemIdentity identity;
    off_t size = 0; // in bytes
    struct timespec modified = {};
    struct timespec changed = {}; // also by new attributes
    bool severalNames = false;

    /// Whether that is still the item, and nobody changed it or its attributes since. Of a file with several names only
    /// what was written to it is told: the removal of a name is a change too. A folder may have changed: it goes only
    /// when it is empty.
    [[nodiscard]] bool isUnchanged(const struct stat& now) const;
};

[[nodiscard]] CopiedItem copiedItem(const struct stat& status);

/// Removes an item, a folder with everything in it; blocks on the disk. Never follows a link, survives trees of any
/// depth, and does not go into a folder on which something is mounted (EBUSY; what is mounted stays whole).
///
/// \return 0, or the errno value of the first item that could not be removed: what was removed before it is gone.
///
/// Threads: any thread.
[[nodiscard]] int removeItem(const QByteArray& path);
[[nodiscard]] int removeItem(const ItemPlace& place);

/// As removeItem, but only items that are among \p listed and did not change since; others stay, with the folders
/// around them (ENOTEMPTY), the item at \p place itself too (ESTALE).
///
/// Threads: any thread.
[[nodiscard]] int removeListed(const ItemPlace& place, std::vector<CopiedItem> listed);

/// Takes back what a copy has made: of the tree at \p place, only items whose inodes are among \p created, as far as
/// that goes. What others put there stays, with the folders around it.
///
/// Threads: any thread.
void removeCreated(const ItemPlace& place, std::vector<ino_t> created);

} // namespace havrel::platform
