// SPDX-License-Identifier: MIT
#pragma once

#include "platform/item_types.h"

#include <cstdint>
#include <span>
#include <vector>

namespace havrel::platform {

/// An entry of a folder, as the kernel lists it.
struct FolderEntry
{
    const char* name = nullptr; ///< in the buffer it was read into
    std::uint8_t kind = 0;      ///< DT_REG ...; DT_UNKNOWN (0) where the file system does not say
};

/// What reading the next entries of a folder came to.
struct EntriesRead
{
    int error = 0;      ///< 0 or an errno value
    bool ended = false; ///< there are no more
};

/// Reads the next entries of an open folder, as many as \p buffer holds, in the file system's order and without "." and
/// ".."; blocks on the disk. There may be none though it is not the end.
///
/// \param buffer  aligned for numbers of 64 bits; the names lie in it.
/// \param entries what was read; whatever it held before is gone.
/// \source getdents64(2)
///
/// Threads: any thread.
[[nodiscard]] EntriesRead readEntries(int folder, std::span<char> buffer, std::vector<FolderEntry>& entries);

/// The type for the kind of an entry; None for an unknown one. \source readdir(3), d_type
///
/// Threads: any thread.
[[nodiscard]] ItemType typeOfEntry(std::uint8_t kind);

} // namespace havrel::platform
