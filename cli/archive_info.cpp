// SPDX-License-Identifier: MIT
#include "cli/archives.h"
#include "cli/command.h"
#include "cli/json_output.h"
#include "cli/output.h"
#include "cli/printable_text.h"
#include "cli/report.h"
#include "cli/subcommands.h"
#include "components/archive_key.h"
#include "platform/file_names.h"

namespace havrel::cli {
namespace {

struct Options
{
    QByteArrayList files;
    bool json = false;
};

void tell(const char* what, const QByteArray& value)
{
    writeRecord(toned(Tone::Quiet, QByteArray(what).leftJustified(12)) + value);
}

QByteArray lineOf(const CaptureRecord& capture)
{
    QByteArrayList items;
    for (const QByteArray& each : capture.items)
        items.append(printableName(each));
    return capture.id.left(8).toLatin1() + "  " + shownDate(capture.date) + "  " + items.join(' ');
}

void showFile(const ArchiveFile& archive)
{
    tell("engine", printableText(archive.engine));
    tell("repository", printableName(shownPlace(archive.repository)));
    tell("identifier", archive.identifier.toLatin1());
    tell("made", shownDate(archive.made));
    tell("key",
         archive.key.command.isEmpty() ? printableName(keyFileOf(archive.identifier))
                                       : "what this prints: " + printableText(archive.key.command));
}

void showCaptures(const QList<CaptureRecord>& captures)
{
    if (captures.isEmpty())
        tell("captures", "none");
    for (qsizetype i = 0; i < captures.size(); ++i)
        tell(i == 0 ? "captures" : "", lineOf(captures[i]));
}

QByteArray jsonOf(const CaptureRecord& capture)
{
    return JsonObject()
        .add(u"id", jsonText(capture.id))
        .add(u"date", jsonDate(capture.date))
        .add(u"host", jsonText(capture.host))
        .add(u"user", jsonText(capture.user))
        .add(u"items", jsonPaths(capture.items))
        .take();
}

QByteArray jsonOfKey(const ArchiveFile& archive)
{
    if (archive.key.command.isEmpty())
        return JsonObject()
            .add(u"kind", jsonText(u"file"))
            .add(u"file", jsonText(platform::textOfFileName(keyFileOf(archive.identifier))))
            .take();
    return JsonObject().add(u"kind", jsonText(u"command")).add(u"command", jsonText(archive.key.command)).take();
}

QByteArray
jsonOf(const QByteArray& path, const ArchiveFile& archive, const std::optional<QList<CaptureRecord>>& captures)
{
    QByteArrayList list;
    for (const CaptureRecord& each : captures.value_or(QList<CaptureRecord>()))
        list.append(jsonOf(each));
    return JsonObject()
        .add(u"path", jsonText(platform::textOfFileName(path)))
        .add(u"engine", jsonText(archive.engine))
        .add(u"repository", jsonText(platform::textOfFileName(shownPlace(archive.repository))))
        .add(u"identifier", jsonText(archive.identifier))
        .add(u"made", jsonDate(archive.made))
        .add(u"key", jsonOfKey(archive))
        .add(u"captures", captures ? '[' + list.join(',') + ']' : kJsonNull.toByteArray())
        .take();
}

void show(const Options& options, const QByteArray& given, Report& report)
{
    const QByteArray path = archivePath(given);
    const ArchiveFile archive = ArchiveFile::readFrom(path);
    std::optional<QList<CaptureRecord>> captures;
    if (!options.json)
        showFile(archive);
    guarded(report, given, [&] { captures = engineOf(archive)->captures(); });
    if (options.json)
        writeRecord(jsonOf(path, archive, captures));
    else if (captures)
        showCaptures(*captures);
}

ExitStatus run(const Options& options)
{
    if (options.files.isEmpty())
        throw WrongUsage("no archive given");
    Report report;
    for (const QByteArray& each : options.files)
        guarded(report, each, [&] { show(options, each, report); });
    return report.status();
}

} // namespace

void defineArchiveInfo(Command& command)
{
    const auto options = std::make_shared<Options>();
    command.operands("FILE...", options->files, "An archive");
    command.flag("--json",
                 options->json,
                 "One JSON object a line: path, engine, repository, identifier, made, key, captures (null when the "
                 "engine fails)");
    command.footer("The captures come oldest first, each with the beginning of its name, its date, and its items.");
    command.action([options] { return run(*options); });
}

} // namespace havrel::cli
