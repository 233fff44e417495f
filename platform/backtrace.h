// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace havrel::platform {

using ReturnAddresses = std::vector<std::uintptr_t>;

/// The return addresses of the calling thread's stack, innermost first, without this function's own frame.
/// At most 128 frames; never fails (an empty list where the stack cannot be walked).
///
/// \source backtrace(3)
///
/// Threads: any thread.
[[nodiscard]] ReturnAddresses currentReturnAddresses();

/// What the dynamic linker knows of a code address.
struct SymbolLocation
{
    std::uintptr_t symbolAddress = 0; ///< 0 when no symbol covers the address
    QString symbolName;               ///< as linked (not demangled); empty when no symbol covers the address
    QString imagePath;                ///< the program or library
    std::uintptr_t imageBase = 0;     ///< where it is loaded
};

/// Looks an address up; nullopt when it lies in no loaded image.
///
/// \source dladdr(3)
///
/// Threads: any thread.
[[nodiscard]] std::optional<SymbolLocation> symbolAt(std::uintptr_t address);

} // namespace havrel::platform
