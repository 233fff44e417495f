// SPDX-License-Identifier: MIT
#include "cli/command.h"
#include "cli/described_preferences.h"
#include "cli/items.h"
#include "cli/report.h"
#include "cli/subcommands.h"
#include "filters/capture_preferences_attribute.h"

namespace havrel::cli {
namespace {

struct Options
{
    Items items;
    bool json = false;
};

ExitStatus show(const Options& options)
{
    Report report;
    DescribedPreferences shown(options.json ? ShownAs::Json : ShownAs::Words, report);
    options.items.forEach(
        report, [&](const QByteArray& path) { shown.show(path, capture_preferences_attribute::valueFrom(path)); });
    return report.status();
}

} // namespace

void defineCaptureprefsShow(Command& command)
{
    const auto options = std::make_shared<Options>();
    options->items.define(command);
    command.flag(
        "--json", options->json, "One JSON object a line: path, preferences (as stored, or null), description");
    command.footer(
        "One line an item: its name and its preferences in words. Links are never followed; they carry none.\n"
        "In JSON, bytes of a name that are not UTF-8 are written as \\udcXX, which os.fsencode of Python turns back.\n"
        "Data and dates, which other programs may have stored, are {\"$data\":\"base64\"} and {\"$date\":\"...Z\"}.");
    command.action([options] { return show(*options); });
}

} // namespace havrel::cli
