// SPDX-License-Identifier: MIT
// Any bytes as a pattern line. Laws: a valid line's canonical text reads as the same line, unless that text has no
// options and ends in a pattern that looks like some; a definition renders the same line before and after simplify, and
// compiles again to it unless it is absolute without an anchor; nothing crashes.
#include "filters/pattern_filter_def.h"
#include "platform/file_names.h"

#include <cstdint>
#include <cstdlib>

namespace havrel {
namespace {

void require(bool law)
{
    if (!law)
        std::abort();
}

bool endsLikeOptions(const PatternLine& line)
{
    const auto last = static_cast<quint64>(line.components.size()) - 1;
    return line.options == PatternOptions{} && line.patternComponents.containsIndex(last) &&
           readPatternOptions(line.components.constLast());
}

void checkLine(const QString& text, AbsolutePaths absolutePaths)
{
    const PatternLineReading reading = readPatternLine(text, absolutePaths);
    require(patternFaultText(reading.fault).isNull() == (reading.fault == PatternFault::None));
    if (reading.fault != PatternFault::None)
        return;
    require(!reading.line.components.isEmpty() && !reading.line.components.contains(QString()));
    const QString canonical = canonicalTextOf(reading.line);
    const PatternLineReading again = readPatternLine(canonical, absolutePaths);
    if (!endsLikeOptions(reading.line))
        require(again.fault == PatternFault::None && again.line == reading.line);
    require(platform::textOfFileName(platform::bytesOfFileName(canonical)) == canonical);
}

void checkSimpleForm(PatternFilterDef& definition, const QString& canonical)
{
    const bool compilesAgain = definition.anchorPath() != u"/";
    require(definition.canonicalPattern() == canonical);
    definition.uncompile();
    require(definition.valid() == compilesAgain);
    require(!compilesAgain || definition.canonicalPattern() == canonical);
}

void checkDefinition(const QString& text, AbsolutePaths absolutePaths)
{
    PatternFilterDef definition(text);
    definition.setRooted(absolutePaths == AbsolutePaths::Permitted);
    const bool valid = definition.valid();
    require(valid == definition.compiled() && valid != definition.compilationError().has_value());
    const QString canonical = definition.canonicalPattern();
    require(valid != canonical.isEmpty());
    if (definition.simplify())
        checkSimpleForm(definition, canonical);
}

} // namespace
} // namespace havrel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace havrel;
    const QString text = platform::textOfFileName({data, static_cast<qsizetype>(size)});
    for (const AbsolutePaths absolutePaths : {AbsolutePaths::Refused, AbsolutePaths::Permitted}) {
        checkLine(text, absolutePaths);
        checkDefinition(text.isNull() ? QStringLiteral("") : text, absolutePaths);
    }
    return 0;
}
