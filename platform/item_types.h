// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <cstdint>

namespace havrel::platform {

/// What kind of item something is, in numbers that are stored and shown.
///
/// \source vnode(9) of the BSD systems, enum vtype
enum class ItemType : std::int8_t {
    None = 0,
    RegularFile = 1,
    Directory = 2,
    BlockDevice = 3,
    CharacterDevice = 4,
    SymbolicLink = 5,
    Socket = 6,
    Fifo = 7,
    Bad = 8,
};

/// The type in the mode of a status; Bad for a mode of no known type.
///
/// Threads: any thread.
[[nodiscard]] ItemType typeOfMode(std::uint32_t mode);

/// Looks what kind of item is at \p path, links not followed; blocks on the disk. \return 0 or an errno value.
///
/// Threads: any thread.
[[nodiscard]] int probeType(const QByteArray& path, ItemType& type);
/// The same for an open item, also one opened with O_PATH.
[[nodiscard]] int probeType(int descriptor, ItemType& type);

} // namespace havrel::platform
