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
    command.footer("One JSON object a line, for 'import': path (as it was reached, so export absolute folders to "
                   "import from anywhere),\n"
                   "preferences (the stored dictionary; null when it cannot be read), and attribute (base64) where the "
                   "bytes would not\n"
                   "come back exactly from the dictionary: malformed, of more than 1024 bytes and unreadable, or "
                   "written in another way.\n"
                   "What JSON has no form for: {\"$data\":\"base64\"}, {\"$date\":\"2001-01-01T00:00:00.000Z\"}, "
                   "{\"$real\":\"nan\"},\n"
                   "{\"$uid\":1}, {\"$dictionary\":{...}} around a dictionary whose only key begins with \"$\". Bytes "
                   "of a name that are not\n"
                   "UTF-8 are \\udcXX.");
    command.action([options] { return write(*options); });
}

} // namespace havrel::cli
