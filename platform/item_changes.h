// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <cstdint>

namespace havrel::platform {

class ItemStatus;

/// Writes some of what \p status says to the item itself, never to what a link points to; blocks on the disk.
///
/// The owner comes before the mode, because a new owner costs the set-id bits; the time of modification comes last. A
/// protection against changes (immutable, append-only) that is to go goes first, one that is to come comes after all.
/// Not done in one step: when one of several fails, those before it stand.
///
/// \param attributes bits of platform/attribute_bits.h, of those of every item that can be set.
/// \return 0 or an errno value: ENOTSUP, and nothing is written, for the creation and attribute-changed times and the
///         script, which cannot be set on this system; ENOTSUP for the mode of a link, and for flags that the file
///         system does not keep or sets by itself; EPERM, EROFS ... ; EINVAL for a path with a NUL byte inside.
/// \source fchownat(2), fchmodat(2), utimensat(2), ioctl_iflags(2)
///
/// Threads: any thread.
[[nodiscard]] int writeStatus(const QByteArray& path, const ItemStatus& status, std::uint32_t attributes);

} // namespace havrel::platform
