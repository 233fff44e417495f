// SPDX-License-Identifier: MIT
#include "cli/command.h"
#include "cli/integration_row.h"
#include "cli/output.h"
#include "cli/report.h"
#include "cli/subcommands.h"
#include "integrations/integration.h"

namespace havrel::cli {
namespace {

using integrations::Change;
using integrations::FileManager;
using integrations::Integration;
using integrations::Places;

struct Options
{
    QByteArrayList words;
    bool json = false;
};

ExitStatus show(bool asJson)
{
    QList<IntegrationRow> rows;
    for (const FileManager& each : integrations::fileManagers())
        rows.append(rowOf(Integration(each, Places::ofThisProcess())));
    if (!asJson) {
        writeRecord(tableOf(rows));
        return ExitStatus::Done;
    }
    for (const IntegrationRow& each : rows)
        writeRecord(jsonOf(each));
    return ExitStatus::Done;
}

const FileManager& managerOf(const QByteArray& name)
{
    QByteArrayList known;
    for (const FileManager& each : integrations::fileManagers()) {
        if (name.compare(each.id, Qt::CaseInsensitive) == 0)
            return each;
        known.append(each.id);
    }
    throw WrongUsage("no file manager is called \"" + name + "\"; there are " + known.join(", "));
}

/// One line for each file, then what is left for the user to do.
void tell(const Integration& integration, const Change& change, const char* what)
{
    const QByteArray name = toned(Tone::Name, integration.manager().name);
    for (const QByteArray& path : change.changed)
        writeRecord(name + ": " + what + ' ' + path);
    for (const QByteArray& path : change.kept)
        writeRecord(name + ": kept, because it was installed and not added: " + path);
    if (change.changed.isEmpty() && change.kept.isEmpty() && change.fault.isNull())
        writeRecord(name + ": nothing to do");
    const IntegrationRow row = rowOf(integration);
    if (row.isMenuThere && row.isPackageMissing)
        writeRecord(name + ": the package " + row.package + " is missing");
    if (!change.changed.isEmpty() && integration.isRunning())
        writeRecord(name + ": takes notice when it is started again: " + integration.manager().quit);
}

ExitStatus change(const QByteArrayList& names, const char* what, Change (Integration::*act)() const)
{
    QList<const FileManager*> managers;
    for (const QByteArray& each : names)
        managers.append(&managerOf(each));
    Report report;
    for (const FileManager* each : managers) {
        const Integration integration(*each, Places::ofThisProcess());
        const Change result = (integration.*act)();
        tell(integration, result, what);
        if (!result.fault.isNull())
            report.failure(result.at, result.fault);
    }
    return report.status();
}

ExitStatus run(const Options& options)
{
    if (options.words.isEmpty())
        return show(options.json);
    const QByteArrayList names = options.words.mid(1);
    if (options.json)
        throw WrongUsage("--json shows what there is; it cannot be given with " + options.words.first());
    const bool adds = options.words.first() == "add";
    if (!adds && options.words.first() != "remove")
        throw WrongUsage("\"" + options.words.first() + "\" is neither add nor remove");
    if (names.isEmpty())
        throw WrongUsage("no file manager given");
    return adds ? change(names, "added", &Integration::add) : change(names, "removed from", &Integration::remove);
}

} // namespace

void defineIntegrations(Command& command)
{
    const auto options = std::make_shared<Options>();
    command.operands("WORD...", options->words, "add NAME... or remove NAME...; nothing: show how things are");
    command.flag("--json", options->json, "Show one JSON object a file manager");
    command.footer(
        "Shows for each file manager whether it is installed, whether Havrel's commands are in its menus, which "
        "package\n"
        "has to load them, and whether it must be started again to show them.\n"
        "\n"
        "'add' brings the commands to your own menus, 'remove' takes them away again; what is installed is\n"
        "not doubled and stays. Thunar keeps the actions of all programs in one file: only Havrel's are changed in\n"
        "it, and the file as it was is kept beside it as uca.xml.before-havrel.\n"
        "\n"
        "Examples:\n"
        "  havrel integrations\n"
        "  havrel integrations add thunar nemo");
    command.action([options] { return run(*options); });
}

} // namespace havrel::cli
