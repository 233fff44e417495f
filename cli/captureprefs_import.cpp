// SPDX-License-Identifier: MIT
#include "cli/command.h"
#include "cli/exported_preferences.h"
#include "cli/items.h"
#include "cli/report.h"
#include "cli/stored_preferences.h"
#include "cli/subcommands.h"
#include "foundation/error.h"
#include "platform/input_records.h"

namespace havrel::cli {
namespace {

struct Options
{
    QByteArrayList files;
    bool force = false;
};

void importLine(const QByteArray& line, const QByteArray& place, bool force, Report& report)
{
    const ExportedReading reading = exportedOfJson(line);
    if (!reading.fault.isNull()) {
        report.failure(place, reading.fault);
        return;
    }
    if (reading.hasNoRecord)
        return;
    const QByteArray path = withoutTrailingSlashes(reading.record.path);
    if (const QString fault = storePreferences(path, reading.record.bytes, force); !fault.isNull())
        report.failure(path, fault);
}

void importFile(const QByteArray& file, bool force, Report& report)
{
    platform::InputRecords lines(file, '\n');
    for (qsizetype number = 1; const std::optional<QByteArray> line = lines.next(); ++number)
        if (!line->trimmed().isEmpty())
            importLine(*line, file + ':' + QByteArray::number(number), force, report);
    if (lines.error() != 0)
        report.failure(file, systemErrorText(lines.error()));
}

ExitStatus import(const Options& options)
{
    if (options.files.isEmpty())
        throw WrongUsage("no file given");
    Report report;
    for (const QByteArray& file : options.files)
        importFile(file, options.force, report);
    return report.status();
}

} // namespace

void defineCaptureprefsImport(Command& command)
{
    const auto options = std::make_shared<Options>();
    command.operands("FILE...", options->files, "What 'export' wrote, or 'show --json'; - is standard input");
    command.flag("--force", options->force, "Also write records of more than 1024 bytes, which no reader takes");
    command.footer(
        "Replaces the preferences of each item that is named. Lines that make no sense are refused with their number,\n"
        "the rest is done. Lines whose \"preferences\" are null, without an \"attribute\", are skipped: their items "
        "stay as\n"
        "they are. Relative paths are taken from the working directory. Links are never followed.");
    command.action([options] { return import(*options); });
}

} // namespace havrel::cli
