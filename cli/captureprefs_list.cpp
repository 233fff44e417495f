// SPDX-License-Identifier: MIT
#include "cli/command.h"
#include "cli/described_preferences.h"
#include "cli/items.h"
#include "cli/preferences_walk.h"
#include "cli/report.h"
#include "cli/subcommands.h"
#include "filters/capture_preferences_attribute.h"

#include <array>

namespace havrel::cli {
namespace {

struct Options
{
    Items folders;
    bool cross = false;
    bool json = false;
    bool names = false;
};

ExitStatus list(const Options& options)
{
    Report report;
    DescribedPreferences shown(options.json    ? ShownAs::Json
                               : options.names ? ShownAs::NulTerminatedNames
                                               : ShownAs::Words,
                               report);
    PreferencesWalk walk(options.cross ? platform::CrossFileSystems::Yes : platform::CrossFileSystems::No,
                         capture_preferences_attribute::kMostBytesRead,
                         report,
                         [&](const WalkedPreferences& found) { shown.show(found.path, found.value); });
    walkEach(options.folders, walk, report);
    return report.status();
}

} // namespace

void defineCaptureprefsList(Command& command)
{
    const auto options = std::make_shared<Options>();
    options->folders.define(command, "DIR...", "Folder to look through");
    command.flag("--cross", options->cross, "Also enter folders on which other file systems are mounted");
    command.flag("--json", options->json, "One JSON object a line, as 'show' writes it");
    command.flag("-0,--null", options->names, "Only the names, each ended by NUL, as --items-from reads them");
    command.alternatives(std::array{"--json", "--null"});
    command.footer(
        "Prints the folder itself and every item below it that carries preferences. Links are never followed.");
    command.action([options] { return list(*options); });
}

} // namespace havrel::cli
