// SPDX-License-Identifier: MIT
#include "cli/archives.h"
#include "cli/command.h"
#include "cli/items.h"
#include "cli/report.h"
#include "cli/scheduled_capture.h"
#include "cli/service_client.h"
#include "cli/subcommands.h"
#include "components/item_names.h"
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

/// Does \p work with the items that exist, if there are any.
ExitStatus withPaths(const Items& items,
                     const std::function<void(const QByteArrayList&, const QByteArray&, Report&)>& work)
{
    Report report;
    const QByteArray workingFolder = platform::workingFolder();
    const QByteArrayList paths = existingPaths(items, workingFolder, report);
    if (!paths.isEmpty())
        work(paths, workingFolder, report);
    else if (report.status() == ExitStatus::Done)
        throw WrongUsage("no item given");
    return report.status();
}

void ask(const char* member, const QByteArrayList& paths, const QByteArray& workingFolder, Report& report)
{
    const Pasteboard pasteboard = pasteboardOfItems(paths, workingFolder);
    if (const QString fault = ServiceClient().ask(member, pasteboard); !fault.isNull())
        report.failure("service", fault);
}

/// The archive is read first: what is none needs no scheduler.
void captureTo(const QByteArray& given, QByteArrayList paths, const QByteArray& workingFolder, Report& report)
{
    const QByteArray archive = archivePath(given);
    for (QByteArray& each : paths)
        each = plainPath(each, workingFolder);
    guarded(report, given, [&] {
        (void)ArchiveFile::readFrom(archive);
        captureByScheduler(archive, paths, report);
    });
}

constexpr const char* kFooter =
    "Asks the Havrel service, which is started when it does not run, and does not wait for its window.\n"
    "Links are taken as themselves. Write -- before names that may begin with a dash.";

void define(Command& command, const char* member)
{
    const auto items = std::make_shared<Items>();
    items->define(command);
    command.footer(kFooter);
    command.action([items, member] {
        return withPaths(*items, [member](const QByteArrayList& paths, const QByteArray& folder, Report& report) {
            ask(member, paths, folder, report);
        });
    });
}

} // namespace

void defineCapture(Command& command)
{
    const auto items = std::make_shared<Items>();
    const auto to = std::make_shared<std::optional<QByteArray>>();
    items->define(command);
    command.value("--to", "FILE", *to, "Captures into this archive now, and waits until it is done");
    command.footer(
        "Without --to: asks the Havrel service, which is started when it does not run, and does not wait for\n"
        "its window. With it: asks the scheduler; interrupting the wait does not stop the capture.\n"
        "Links are taken as themselves. Write -- before names that may begin with a dash.");
    command.action([items, to] {
        return withPaths(*items, [&to](const QByteArrayList& paths, const QByteArray& folder, Report& report) {
            if (*to)
                captureTo(**to, paths, folder, report);
            else
                ask(service_address::kCapture, paths, folder, report);
        });
    });
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
