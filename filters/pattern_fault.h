// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace havrel {

/// What is wrong with a pattern line, or with the anchor path or the single pattern of an anchored definition.
enum class PatternFault {
    None,
    SuccessiveSlashes,
    TooManyLeadingSlashes,
    TrailingSlash,
    Incomplete,
    SlashInPattern,
    TrailingSlashWithoutOptions,
    TripleSlash,
    AbsoluteNotPermitted,
    NothingDefined,
};

/// The words that people read ("Too many leading /"); null for None.
///
/// Threads: any thread.
[[nodiscard]] QString patternFaultText(PatternFault fault);

} // namespace havrel
