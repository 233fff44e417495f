// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace havrel {

/// How important a log line is and what kind of fact it holds. The order is fixed; Logr::nameOfClassification gives
/// the tag that stands in the line.
enum class LogClassification : std::int32_t {
    Preferred = -1, ///< use the exception's own classification
    Plain = 0,      ///< plain information; exceptions named "Info"
    Separator = 1,
    Curious = 2, ///< unexpected but harmless
    Caution = 3, ///< exceptions named "Cancel"
    Warning = 4, ///< exceptions named "Security"; ignored failures; lost lines
    Failure = 5, ///< exceptions and nested errors unless they say otherwise
    Minutia = 6, ///< low-level facts of exceptions (errno, path)
    Details = 7, ///< what hangs below a line
    Subrosa = 8, ///< private details, exception names
    Debug = 9,   ///< debugging output, backtraces, process start and stop
};

} // namespace havrel
