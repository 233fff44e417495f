// SPDX-License-Identifier: MIT
#include "cli/archives.h"
#include "cli/command.h"
#include "cli/items.h"
#include "cli/report.h"
#include "cli/subcommands.h"
#include "components/item_names.h"
#include "platform/file_names.h"
#include "platform/own_process.h"

namespace havrel::cli {
namespace {

struct Options
{
    Items items; // the archive first
    std::optional<QByteArray> into;
    std::optional<QByteArray> capture;
};

/// What is to come from one capture.
struct Part
{
    CaptureRecord capture;
    QByteArrayList items;
};

QList<Part> newestParts(CaptureEngine& engine, const QByteArrayList& items, Report& report)
{
    const QHash<QByteArray, CaptureRecord> newest = engine.newestHolding(items);
    QList<Part> parts;
    for (const QByteArray& item : items) {
        const auto found = newest.find(item);
        if (found == newest.end()) {
            report.failure(item, QStringLiteral("no capture holds it"));
            continue;
        }
        const auto same = [&found](const Part& part) { return part.capture.id == found->id; };
        if (const auto part = std::find_if(parts.begin(), parts.end(), same); part != parts.end())
            part->items.append(item);
        else
            parts.append({*found, {item}});
    }
    return parts;
}

void restore(const Options& options, const QByteArray& archive, const QByteArrayList& items, Report& report)
{
    const std::unique_ptr<CaptureEngine> engine = engineOf(ArchiveFile::readFrom(archivePath(archive)));
    const QByteArray into = plainPath(*options.into, platform::workingFolder());
    const QList<Part> parts = options.capture ? QList<Part>{{chosenCapture(engine->captures(), options.capture), items}}
                                              : newestParts(*engine, items, report);
    for (const Part& part : parts)
        for (const EngineProblem& each : engine->restore(part.capture, part.items, into))
            report.failure(platform::bytesOfFileName(each.item), each.reason);
}

ExitStatus run(Options& options)
{
    const QByteArray archive = options.items.takeFirst("archive");
    if (!options.into || options.into->isEmpty())
        throw WrongUsage("--into is missing: the folder that the items are to come to");
    Report report;
    QByteArrayList items;
    options.items.forEach(report,
                          [&](const QByteArray& path) { items.append(plainPath(path, platform::workingFolder())); });
    if (!items.isEmpty())
        guarded(report, archive, [&] { restore(options, archive, items, report); });
    return report.status();
}

} // namespace

void defineArchiveRestore(Command& command)
{
    const auto options = std::make_shared<Options>();
    options->items.define(command, "FILE ITEM...", "The archive, then paths of items as they were captured");
    command.value("--into", "FOLDER", options->into, "Where the items come to, each under its own name");
    command.value("--capture", "ID", options->capture, "From this capture; otherwise the newest that holds the item");
    command.footer("Nothing is written over: an item whose name is taken in FOLDER stays in the archive. What comes\n"
                   "back is whole: contents, links, holes, modes, times, and attributes, as far as you may set them.\n"
                   "\n"
                   "Examples:\n"
                   "  havrel archive restore Home.zephra projects/notes.txt --into /tmp/back");
    command.action([options] { return run(*options); });
}

} // namespace havrel::cli
