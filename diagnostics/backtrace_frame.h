// SPDX-License-Identifier: MIT
#pragma once

#include "platform/backtrace.h"

#include <QString>

#include <optional>

namespace havrel {

/// A frame of a backtrace as it stands in the log, addresses in eighteen columns:
///
///         0x5581c0de2a40:     0x5581c0de2a00 _ZN6havrel4JNPath6moveToE (/usr/lib/libx.so@    0x5581c0de0000)
///
/// A nameless symbol is "unknown"; an address in no image has "(unknown image)" instead.
///
/// Threads: any thread.
[[nodiscard]] QString backtraceFrameText(std::uintptr_t address,
                                         const std::optional<platform::SymbolLocation>& location);

} // namespace havrel
