// SPDX-License-Identifier: MIT
#include "cli/given_patterns.h"

#include "cli/report.h"
#include "filters/pattern_filter_def.h"
#include "foundation/error.h"
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

/// A line as it is in files that other systems wrote, too.
QByteArray withoutCarriageReturn(QByteArray line)
{
    if (line.endsWith('\r'))
        line.chop(1);
    return line;
}

} // namespace

QStringList storablePatterns(const QByteArrayList& lines, Report& report)
{
    QStringList canonicals;
    for (const QByteArray& line : lines)
        addTo(canonicals, line, {}, report);
    return canonicals;
}

QStringList storablePatternsOfFile(const QByteArray& file, Report& report)
{
    QStringList canonicals;
    platform::InputRecords records(file, '\n');
    for (qsizetype number = 1; const std::optional<QByteArray> record = records.next(); ++number) {
        const QByteArray line = withoutCarriageReturn(*record);
        if (!line.isEmpty())
            addTo(canonicals, line, file + ':' + QByteArray::number(number) + ": ", report);
    }
    if (records.error() != 0)
        report.failure(file, systemErrorText(records.error()));
    return canonicals;
}

} // namespace havrel::cli
