// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/property_list.h"

#include <string_view>

namespace havrel {

/// The binary format: a head, the objects, a table of their offsets, and a trailer that says where the table is.
/// Numbers are big-endian. Behind the head, every object begins with a marker: its upper half is the type, its lower
/// half a size or a count; 15 there means that an integer object with the count follows.
///
/// \source the format's description in the comments of the published CFBinaryPList.c, and Python's plistlib.
namespace binary_property_list {

inline constexpr std::string_view kHead = "bplist00";
inline constexpr int kTrailerSize = 32;

enum Marker : quint8 {
    Null = 0x00,
    False = 0x08,
    True = 0x09,
    Integer = 0x10,    ///< 2^n bytes; of eight bytes signed, of fewer unsigned, of sixteen a signed number again
    Real = 0x20,       ///< 2^n bytes, IEEE 754
    Date = 0x30,       ///< with 3 in the lower half: eight bytes, a double of seconds since the reference date
    Data = 0x40,       ///< n bytes
    ASCII = 0x50,      ///< n characters of one byte
    Unicode = 0x60,    ///< n code units of two bytes
    UID = 0x80,        ///< n + 1 bytes
    Array = 0xA0,      ///< n references
    Dictionary = 0xD0, ///< n references to keys, then n to values
};

inline constexpr quint8 kCountFollows = 0x0F;

} // namespace binary_property_list

/// The binary half of parsePropertyList(); \p bytes begin with "bplist".
///
/// Threads: any thread.
[[nodiscard]] PropertyListReading readBinaryPropertyList(const QByteArray& bytes);

} // namespace havrel
