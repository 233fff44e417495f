// SPDX-License-Identifier: MIT
#pragma once

#include "platform/item_place.h"

namespace havrel::platform {

/// Whether two places may lie in one file system that is seen through two mounts, as a bind mount does: the folders
/// above a place, as seen through one mount, then need not be those seen through the other. Of overlays and network
/// file systems that show a local one this cannot be told.
///
/// \source mount(2), MS_BIND; statx(2), STATX_MNT_ID; btrfs(5), whose subvolumes have device numbers of their own
///
/// Threads: any thread.
[[nodiscard]] bool mayLieBehindTwoMounts(const ItemPlace& one, const ItemPlace& other);

/// Whether the tree at \p place holds the folder \p wanted at any depth, or is that folder. Looks through every folder
/// of the tree but those on which something is mounted and those that cannot be opened; blocks on the disk.
///
/// \return 0 when not, EINVAL when so, or the errno value why it cannot be told.
///
/// Threads: any thread.
[[nodiscard]] int refuseHolding(const ItemPlace& place, const ItemIdentity& wanted);

} // namespace havrel::platform
