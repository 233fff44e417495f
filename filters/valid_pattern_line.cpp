// SPDX-License-Identifier: MIT
#include "filters/valid_pattern_line.h"

#include "filters/pattern_component.h"

#include <algorithm>

namespace havrel {

std::optional<PatternLine> validPatternLine(QStringView text, AbsolutePaths absolutePaths)
{
    PatternLineReading reading = readPatternLine(text, absolutePaths);
    if (reading.fault != PatternFault::None)
        return std::nullopt;
    const PatternLine& line = reading.line;
    const bool valid =
        std::all_of(line.patternComponents.begin(), line.patternComponents.end(), [&line](IndexSet::Index index) {
            return bool(validatePatternComponent(line.components[static_cast<qsizetype>(index)], line.options.type));
        });
    return valid ? std::optional(std::move(reading.line)) : std::nullopt;
}

} // namespace havrel
