// SPDX-License-Identifier: MIT
#include "cli/archives.h"
#include "cli/command.h"
#include "cli/json_output.h"
#include "cli/output.h"
#include "cli/printable_text.h"
#include "cli/subcommands.h"
#include "components/archive_registry.h"
#include "platform/file_names.h"
#include "platform/items.h"

namespace havrel::cli {
namespace {

QByteArray inWords(const KnownArchive& archive)
{
    QByteArray words = ": captured " + shownDate(archive.lastCapture);
    if (!platform::itemExists(archive.path))
        words += ", not there";
    return toned(Tone::Name, printableName(archive.path)) + words;
}

QByteArray asJson(const KnownArchive& archive)
{
    return JsonObject()
        .add(u"path", jsonText(platform::textOfFileName(archive.path)))
        .add(u"identifier", jsonText(archive.identifier))
        .add(u"exists", jsonBool(platform::itemExists(archive.path)))
        .add(u"lastCapture", jsonDate(archive.lastCapture))
        .add(u"items", jsonPaths(archive.items))
        .take();
}

ExitStatus list(bool json)
{
    for (const KnownArchive& each : ArchiveRegistry().archives())
        writeRecord(json ? asJson(each) : inWords(each));
    return ExitStatus::Done;
}

} // namespace

void defineArchiveList(Command& command)
{
    const auto json = std::make_shared<bool>(false);
    command.flag("--json", *json, "One JSON object a line: path, identifier, exists, lastCapture, items");
    command.footer("The one that was captured to last comes first. Archives of other computers are known here once\n"
                   "something was captured into them from here.");
    command.action([json] { return list(*json); });
}

} // namespace havrel::cli
