// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>

namespace havrel::platform {

/// A number that nobody can foresee, for names that nobody else has taken. Never fails; does not block once the system
/// is up.
///
/// \source arc4random(3), which draws on getrandom(2)
///
/// Threads: any thread.
[[nodiscard]] std::uint32_t random32();

/// Where random32() takes its numbers; a test puts its own in its place.
///
/// Threads: any thread, as long as nobody replaces it.
[[nodiscard]] std::function<std::uint32_t()>& randomSource();

} // namespace havrel::platform
