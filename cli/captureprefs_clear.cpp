// SPDX-License-Identifier: MIT
#include "cli/command.h"
#include "cli/items.h"
#include "cli/report.h"
#include "cli/stored_preferences.h"
#include "cli/subcommands.h"

namespace havrel::cli {
namespace {

ExitStatus clear(const Items& items)
{
    Report report;
    items.forEach(report, [&](const QByteArray& path) {
        if (const QString fault = removePreferences(path); !fault.isNull())
            report.failure(path, fault);
    });
    return report.status();
}

} // namespace

void defineCaptureprefsClear(Command& command)
{
    const auto items = std::make_shared<Items>();
    items->define(command);
    command.footer(
        "The items are captured normally again. An item without preferences is left as it is, which is no failure.");
    command.action([items] { return clear(*items); });
}

} // namespace havrel::cli
