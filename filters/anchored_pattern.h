// SPDX-License-Identifier: MIT
#pragma once

#include "filters/pattern_fault.h"
#include "filters/pattern_options.h"

#include <QString>

namespace havrel {

/// The parts of a definition that people edit apart: a pattern, and the path that it is anchored at.
struct AnchoredPattern
{
    QString anchorPath; ///< null and empty mean the same here
    QString singlePattern;
    PatternOptions options; ///< the depth is indefinite or counts as 0
};

/// Finds the first fault of an anchor path, from the left. An anchor may start with one slash; it may neither end with
/// a slash nor hold two in a row. "/" alone is refused, the empty anchor is not. Takes time linear in the length.
///
/// Threads: any thread.
[[nodiscard]] PatternFault faultOfAnchor(QStringView anchorPath);

/// Finds the fault of a single pattern: it must not be empty nor hold a slash.
///
/// Threads: any thread.
[[nodiscard]] PatternFault faultOfSinglePattern(QStringView singlePattern);

/// The complete line that says the same: `Users/work//*.tmp/0:glob`. Makes sense only of parts without a fault.
///
/// Threads: any thread.
[[nodiscard]] QString completeTextOf(const AnchoredPattern& anchored);

} // namespace havrel
