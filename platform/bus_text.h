// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace havrel::platform {

/// What arrives of \p text: U+FFFD takes the place of noncharacters (U+FFFE, ...), which the library of the bus
/// refuses, and of lone surrogates.
///
/// \source Unicode, "Noncharacters"; the message bus specification, "Basic types"
///
/// Threads: any thread.
[[nodiscard]] QString busText(const QString& text);

} // namespace havrel::platform
