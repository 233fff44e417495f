// SPDX-License-Identifier: MIT
#include "cli/attribute_failure.h"
#include "cli/command.h"
#include "cli/exported_preferences.h"
#include "cli/items.h"
#include "cli/output.h"
#include "cli/preferences_walk.h"
#include "cli/report.h"
#include "cli/subcommands.h"
#include "platform/extended_attributes.h"

namespace havrel::cli {
namespace {

struct Options
{
    Items folders;
    bool cross = false;
};

constexpr const char* kFooter =
    "One JSON object a line, for 'import':\n"
    "  path         as it was reached; export absolute folders to import from anywhere\n"
    "  preferences  the stored dictionary; null when there is none in the record\n"
    "  attribute    the record in base64, where the dictionary would not give the very same bytes again\n"
    "\n"
    "What JSON has no form for: {\"$data\":\"base64\"}, {\"$date\":\"2001-01-01T00:00:00.000Z\"}, "
    "{\"$real\":\"nan\"},\n"
    "{\"$uid\":1}, {\"$dictionary\":{...}} around a dictionary whose only key begins with \"$\".\n"
    "Bytes of a name that are not UTF-8 are \\udcXX, which os.fsencode of Python turns back.";

ExitStatus write(const Options& options)
{
    Report report;
    const auto writeFound = [&](const WalkedPreferences& found) {
        if (found.value.error == 0)
            writeRecord(jsonOfExported({found.path, found.value.bytes}));
        else
            report.failure(found.path, attributeFailureText(found.value.error, found.path, AttributeAccess::Read));
    };
    PreferencesWalk walk(options.cross ? platform::CrossFileSystems::Yes : platform::CrossFileSystems::No,
                         platform::kLongestAttribute,
                         report,
                         writeFound);
    walkEach(options.folders, walk, report);
    return report.status();
}

} // namespace

void defineCaptureprefsExport(Command& command)
{
    const auto options = std::make_shared<Options>();
    options->folders.define(command, "DIR...", "Folder to look through");
    command.flag("--cross", options->cross, "Also enter folders on which other file systems are mounted");
    command.footer(kFooter);
    command.action([options] { return write(*options); });
}

} // namespace havrel::cli
