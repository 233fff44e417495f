// SPDX-License-Identifier: MIT
#include "cli/given_patterns.h"

#include "cli/report.h"
#include "filters/pattern_file_lines.h"
#include "filters/pattern_filter_def.h"
#include "platform/file_contents.h"
#include "platform/file_names.h"
#include "platform/input_records.h"

namespace havrel::cli {
namespace {

/// Whether the canonical line reads back as the same pattern. It does not where its last pattern looks like options.
bool survivesStoring(PatternFilterDef& definition, const QString& canonical)
{
    const auto again = std::make_shared<PatternFilterDef>(canonical);
    return again->valid() && again->components() == definition.components() &&
           again->patternComponents() == definition.patternComponents() && again->depth() == definition.depth() &&
           again->type() == definition.type();
}

struct StorablePattern
{
    QString canonical;
    QString fault; ///< null when there is none
};

StorablePattern storablePattern(const QByteArray& line)
{
    if (!line.isValidUtf8())
        return {{}, QStringLiteral("a pattern must be valid UTF-8")};
    if (line.contains('\0'))
        return {{}, QStringLiteral("a pattern cannot hold a NUL, because no name does")};
    // An empty line is a line, and not the absence of one.
    const QString text = line.isEmpty() ? QStringLiteral("") : QString::fromUtf8(line);
    const auto definition = std::make_shared<PatternFilterDef>(text);
    if (!definition->valid())
        return {{}, definition->compileFailureDescription()};
    const QString canonical = definition->canonicalPattern();
    if (!survivesStoring(*definition, canonical))
        return {{}, QStringLiteral("it would be stored as \"%1\", which means something else").arg(canonical)};
    return {canonical, {}};
}

void addTo(QStringList& canonicals, const QByteArray& line, const QByteArray& place, Report& report)
{
    const StorablePattern pattern = storablePattern(line);
    if (pattern.fault.isNull())
        canonicals.append(pattern.canonical);
    else
        report.failure(place + line, pattern.fault);
}

platform::FileContents contentsOf(const QByteArray& file)
{
    platform::FileContents contents;
    platform::InputRecords records(file, '\n');
    while (const std::optional<QByteArray> record = records.next())
        contents.bytes += *record + '\n';
    contents.error = records.error();
    return contents;
}

} // namespace

QStringList storablePatterns(const QByteArrayList& lines, Report& report)
{
    QStringList canonicals;
    for (const QByteArray& line : lines)
        addTo(canonicals, line, {}, report);
    return canonicals;
}

PatternsOfFile storablePatternsOfFile(const QByteArray& file, Report& report)
{
    const platform::FileContents contents = contentsOf(file);
    PatternsOfFile patterns{{}, contents.error};
    qsizetype number = 0;
    for (const QString& text : linesOfPatternFile(platform::textOfFileName(contents.bytes))) {
        ++number;
        if (!text.isEmpty())
            addTo(patterns.canonicals,
                  platform::bytesOfFileName(text),
                  file + ':' + QByteArray::number(number) + ": ",
                  report);
    }
    return patterns;
}

} // namespace havrel::cli
