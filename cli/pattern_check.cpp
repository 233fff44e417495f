// SPDX-License-Identifier: MIT
#include "cli/command.h"
#include "cli/json_output.h"
#include "cli/output.h"
#include "cli/printable_text.h"
#include "cli/report.h"
#include "cli/subcommands.h"
#include "filters/pattern_filter_def.h"
#include "foundation/error.h"
#include "platform/file_names.h"
#include "platform/input_records.h"

namespace havrel::cli {
namespace {

struct Options
{
    QByteArrayList lines;
    bool rooted = false;
    bool json = false;
    bool null = false;
    std::optional<QByteArray> anchor;
    std::optional<QByteArray> pattern;
    std::optional<QByteArray> type;
    bool indefinitely = false;

    [[nodiscard]] bool isSimpleForm() const { return anchor || pattern || type || indefinitely; }
};

QByteArray jsonOfIndexes(const IndexSet& indexes)
{
    QByteArray json = "[";
    for (const auto index : indexes)
        json += (json.size() > 1 ? "," : "") + QByteArray::number(index);
    return json + ']';
}

/// What simplifying makes of the definition, which is left so.
QByteArray jsonOfSimplified(PatternFilterDef& definition)
{
    if (!definition.simplify())
        return kJsonNull.toByteArray();
    return JsonObject()
        .add(u"anchor", jsonText(definition.anchorPath()))
        .add(u"pattern", jsonText(definition.singlePattern()))
        .add(u"indefinite", jsonBool(definition.propagateIndefinitely()))
        .add(u"type", QByteArray::number(static_cast<int>(definition.type())))
        .take();
}

QByteArray jsonOf(PatternFilterDef& definition, const QString& text)
{
    const bool valid = definition.valid();
    const QString& failure = definition.compileFailureDescription();
    JsonObject json;
    json.add(u"pattern", jsonText(text))
        .add(u"valid", jsonBool(valid))
        .add(u"error", valid ? kJsonNull.toByteArray() : jsonText(failure))
        .add(u"errorInPattern", jsonBool(definition.errorInPattern()))
        .add(u"absolute", jsonBool(definition.absolute()))
        .add(u"components", jsonTexts(definition.components()))
        .add(u"patternComponents", jsonOfIndexes(definition.patternComponents()))
        .add(u"type", QByteArray::number(static_cast<int>(definition.type())))
        .add(u"depth", jsonText(QString::number(definition.depth())))
        .add(u"effectiveDepth", jsonText(QString::number(definition.effectiveDepth())))
        .add(u"canonical", jsonText(definition.canonicalPattern()));
    return json.add(u"simple", jsonOfSimplified(definition)).take();
}

QByteArray wordsOf(PatternFilterDef& definition, const QString& text)
{
    const QByteArray head = toned(Tone::Name, printableText(text)) + ": ";
    if (!definition.valid())
        return head + toned(Tone::Bad, printableText(definition.compileFailureDescription()));
    const QString canonical = definition.canonicalPattern();
    const QByteArray usual = canonical == text ? QByteArray() : ", usually written " + printableText(canonical);
    return head + toned(Tone::Good, "valid") + usual;
}

/// Writes the verdict on the definition that \p text stands for, and answers whether it is valid.
bool tell(PatternFilterDef& definition, const QString& text, bool json)
{
    writeRecord(json ? jsonOf(definition, text) : wordsOf(definition, text));
    return definition.valid();
}

bool checkLine(const QByteArray& line, const Options& options)
{
    // An empty line is a line, and not the absence of one.
    const QString text = line.isEmpty() ? QStringLiteral("") : platform::textOfFileName(line);
    const auto definition = std::make_shared<PatternFilterDef>(text);
    definition->setRooted(options.rooted);
    return tell(*definition, text, options.json);
}

PatternType typeOf(const QByteArray& name)
{
    if (name == "glob")
        return PatternType::Glob;
    if (name == "re")
        return PatternType::RegularExpression;
    throw WrongUsage("--type wants glob or re");
}

bool checkSimpleForm(const Options& options)
{
    const auto definition = std::make_shared<PatternFilterDef>(typeOf(options.type.value_or("glob")));
    definition->setRooted(options.rooted);
    if (options.anchor)
        definition->setAnchorPath(platform::textOfFileName(*options.anchor));
    if (options.pattern)
        definition->setSinglePattern(platform::textOfFileName(*options.pattern));
    definition->setPropagateIndefinitely(options.indefinitely);
    return tell(*definition, platform::textOfFileName(options.pattern.value_or(QByteArray())), options.json);
}

ExitStatus checkInput(const Options& options)
{
    bool allValid = true;
    platform::InputRecords lines("-", options.null ? '\0' : '\n');
    while (const std::optional<QByteArray> line = lines.next())
        allValid &= checkLine(*line, options);
    Report report;
    if (lines.error() != 0)
        report.failure("standard input", systemErrorText(lines.error()));
    return allValid ? report.status() : ExitStatus::SomethingFailed;
}

ExitStatus check(const Options& options)
{
    if (options.isSimpleForm() && !options.lines.isEmpty())
        throw WrongUsage("give lines, or --anchor and --pattern, but not both");
    if (!options.isSimpleForm() && options.lines.isEmpty())
        return checkInput(options);
    bool allValid = options.isSimpleForm() ? checkSimpleForm(options) : true;
    for (const QByteArray& line : options.lines)
        allValid &= checkLine(line, options);
    return allValid ? ExitStatus::Done : ExitStatus::SomethingFailed;
}

} // namespace

void definePatternCheck(Command& command)
{
    const auto options = std::make_shared<Options>();
    command.operands("LINE...", options->lines, "Pattern to check; none: standard input, one a line");
    command.flag("--rooted", options->rooted, "Permit absolute patterns, as an archive does and an item does not");
    command.flag("--json", options->json, "One JSON object a pattern");
    command.flag("-0,--null", options->null, "Patterns on standard input end with NUL, not with a newline");
    command.value("--anchor", "PATH", options->anchor, "Simple form: the path that the pattern is anchored at");
    command.value("--pattern", "PATTERN", options->pattern, "Simple form: the one pattern");
    command.value(
        "--type", "glob|re", options->type, "Simple form: glob, or re for a regular expression; glob unless given");
    command.flag("--indefinitely", options->indefinitely, "Simple form: reaches all levels below what it matches");
    command.footer("Exit status 1 when a pattern is invalid. In JSON, \"depth\" and \"effectiveDepth\" are decimal "
                   "strings, because\n"
                   "many readers keep only 53 bits of a number; 18446744073709551615 stands for indefinitely.");
    command.action([options] { return check(*options); });
}

} // namespace havrel::cli
