// SPDX-License-Identifier: MIT
#include "cli/command.h"
#include "cli/items.h"
#include "cli/report.h"
#include "cli/service_client.h"
#include "cli/subcommands.h"
#include "foundation/error.h"
#include "foundation/service_address.h"
#include "platform/items.h"
#include "platform/own_process.h"

namespace havrel::cli {
namespace {

/// The items that exist; what is wrong with the others is told.
QByteArrayList existingPaths(const Items& items, const QByteArray& workingFolder, Report& report)
{
    QByteArrayList paths;
    items.forEach(report, [&](const QByteArray& path) {
        if (const int error = platform::findName(path); error != 0)
            report.failure(path, systemErrorText(error));
        else if (workingFolder.isEmpty() && !path.startsWith('/'))
            report.failure(path, QStringLiteral("the working folder has no path"));
        else
            paths.append(path);
    });
    return paths;
}

ExitStatus ask(const char* member, const Items& items)
{
    Report report;
    const QByteArray workingFolder = platform::workingFolder();
    const QByteArrayList paths = existingPaths(items, workingFolder, report);
    if (paths.isEmpty()) {
        if (report.status() == ExitStatus::Done)
            throw WrongUsage("no item given");
        return report.status();
    }
    const Pasteboard pasteboard = pasteboardOfItems(paths, workingFolder);
    if (const QString fault = ServiceClient().ask(member, pasteboard); !fault.isNull())
        report.failure("service", fault);
    return report.status();
}

void define(Command& command, const char* member)
{
    const auto items = std::make_shared<Items>();
    items->define(command);
    command.footer("Asks the Havrel service, which is started when it does not run, and does not wait for its window.\n"
                   "Links are taken as themselves. Write -- before names that may begin with a dash.");
    command.action([items, member] { return ask(member, *items); });
}

} // namespace

void defineCapture(Command& command)
{
    define(command, service_address::kCapture);
}

void defineCaptureprefsEdit(Command& command)
{
    define(command, service_address::kPreferences);
}

void defineReveal(Command& command)
{
    define(command, service_address::kReveal);
}

} // namespace havrel::cli
