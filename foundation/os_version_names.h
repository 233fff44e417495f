// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>

namespace havrel {

/// An operating-system version as one number, major << 16 | minor << 8 | patch: 10.14.0 is 0xA0E00.
using PackedOSVersion = std::uint32_t;

inline constexpr PackedOSVersion kMojave = 0xA0E00;
inline constexpr PackedOSVersion kCatalina = 0xA0F00;
inline constexpr PackedOSVersion kBigSur = 0xB0000;
inline constexpr PackedOSVersion kMonterey = 0xC0000;
inline constexpr PackedOSVersion kVentura = 0xD0000;
inline constexpr PackedOSVersion kSonoma = 0xE0000;

/// The nickname of a release that is known by name: that of the newest one not newer than \p version. "Unknown" from
/// 0xF0000 on, "Panther (or earlier)" below 0xA0400.
///
/// Threads: any thread.
[[nodiscard]] QString nicknameOfOSVersion(PackedOSVersion version);

/// What stands before the version in the readable form of such a release, with the blank: "Mac OS X " below 0xA0800,
/// then "OS X ", from 0xA0C00 on "macOS ".
///
/// Threads: any thread.
[[nodiscard]] QString prefixOfOSVersion(PackedOSVersion version);

} // namespace havrel
