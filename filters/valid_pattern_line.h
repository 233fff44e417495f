// SPDX-License-Identifier: MIT
#pragma once

#include "filters/pattern_line.h"

#include <optional>

namespace havrel {

/// What a valid line of the pattern language says; nothing for any other. The same judgement as a definition's, for who
/// needs no object.
///
/// Threads: any thread.
[[nodiscard]] std::optional<PatternLine> validPatternLine(QStringView text, AbsolutePaths absolutePaths);

} // namespace havrel
