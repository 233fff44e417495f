// SPDX-License-Identifier: MIT
#pragma once

#include "platform/item_attributes.h"

namespace havrel::platform {

class ItemPlace;

/// Whether \p from can be copied at all, without touching anything: it exists, it can be opened for reading, and
/// \p to does not lie inside of it. Blocks on the disk.
/// \return 0 or an errno value, EINVAL for a place inside.
[[nodiscard]] int refuseToCopy(const ItemPlace& from, const ItemPlace& to);

/// Whether what is at \p to may be removed to make room for a copy of \p from: not when it is that item itself (under
/// whatever name), the target of that link, or a folder that holds it. Where the two are seen through different mounts
/// of one file system, such as bind mounts, both trees are looked through, also for a place inside of \p from.
///
/// \return 0, also when there is nothing; EINVAL, or the errno value why it cannot be told.
[[nodiscard]] int refuseToReplace(const ItemPlace& from, const ItemPlace& to);

/// Copies an item, a folder with everything in it; blocks on the disk.
///
/// Links are copied as links, pipes, sockets and devices as such; nothing is opened that blocks or triggers anything.
/// Hard links between items of the tree are kept where the file system can and the names are not too long. Until the
/// last step only this user can get at a copied folder. Items of the tree that vanish meanwhile are left out.
///
/// \return an error EEXIST when something is at \p to, a dangling link too; EINVAL when the copy turns up inside of
///         what is copied, through a mount; ESTALE when a file was replaced by another meanwhile. On any error
///         everything that this copy made is removed again, and nothing else.
///
/// Threads: any thread.
[[nodiscard]] AttributeOutcome copyItem(const ItemPlace& from, const ItemPlace& to, AttributeLoss loss);

/// Moves an item to another file system: copies it, sees to it that the copy is on the disk, and removes the original.
/// Attributes that the other file system does not keep are refused (ENOTSUP).
///
/// An original that is a mount point or lies in a folder that takes no changes is refused before anything is copied;
/// one that holds a mount point, a file too, as soon as the copy comes to it (EBUSY).
///
/// \return 0 or an errno value. The original is then untouched and the copy gone; only when the original could not be
///         removed, the copy stays beside what is left of it. What came to the original or changed there meanwhile is
///         not removed (ENOTEMPTY; ESTALE for a lone file).
///
/// Every file is looked at once more right before it is removed. What a program writes between that look and the
/// removal, or later through a descriptor or mapping that it still has, is lost with the original: Linux has no call
/// that removes an item only if it did not change. So is a change of a file's data through a mapping that the kernel
/// has not given a time yet.
///
/// Threads: any thread.
[[nodiscard]] int moveAcross(const ItemPlace& from, const ItemPlace& to);

} // namespace havrel::platform
