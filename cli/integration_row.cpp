// SPDX-License-Identifier: MIT
#include "cli/integration_row.h"

#include "cli/json_output.h"
#include "cli/output.h"
#include "integrations/integration.h"

#include <array>

namespace havrel::cli {
namespace {

using integrations::Integration;
using integrations::Presence;
using integrations::WayState;

constexpr std::size_t kColumns = 5;
using Cells = std::array<QByteArray, kColumns>;

QByteArray menuOf(const IntegrationRow& row)
{
    if (!row.isMenuThere)
        return "no";
    return row.isForEverybody ? "for everybody" : row.isOutdated ? "yours, outdated" : "yours";
}

QByteArray packageOf(const IntegrationRow& row)
{
    if (row.package.isEmpty())
        return "none needed";
    return row.package + (row.isPackageMissing ? ", missing" : "");
}

Cells cellsOf(const IntegrationRow& row)
{
    return {row.name, row.isInstalled ? "yes" : "no", menuOf(row), packageOf(row), adviceOf(row)};
}

QByteArray lineOf(const Cells& cells, const std::array<qsizetype, kColumns>& widths)
{
    QByteArray line;
    for (std::size_t i = 0; i < kColumns; ++i)
        line += cells[i].leftJustified(widths[i] + 2);
    return line.trimmed();
}

QByteArray jsonOfText(const QByteArray& text)
{
    return text.isEmpty() ? kJsonNull.toByteArray() : jsonText(QString::fromUtf8(text));
}

} // namespace

IntegrationRow rowOf(const Integration& integration)
{
    const WayState state = integration.state();
    return {.id = integration.manager().id,
            .name = integration.manager().name,
            .isInstalled = integration.isInstalled(),
            .isMenuThere = state.isThere(),
            .isForEverybody = state.ofEverybody != Presence::None,
            .isOutdated = state.ofEverybody == Presence::None && state.ofUser == Presence::Other,
            .way = state.way->name,
            .package = state.way->package,
            .isPackageMissing = state.isLoaderMissing,
            .needsRestart = state.needsRestart,
            .quit = integration.manager().quit,
            .fault = state.fault.toUtf8()};
}

QByteArray adviceOf(const IntegrationRow& row)
{
    if (!row.isInstalled)
        return {};
    if (!row.fault.isEmpty())
        return "its file of actions: " + row.fault;
    if (!row.isMenuThere || row.isOutdated)
        return "havrel integrations add " + row.id;
    if (row.isPackageMissing)
        return "install " + row.package;
    return row.needsRestart ? "start it again: " + row.quit : QByteArray();
}

QByteArray tableOf(const QList<IntegrationRow>& rows)
{
    QList<Cells> lines{{"FILE MANAGER", "INSTALLED", "IN ITS MENUS", "PACKAGE", "TO DO"}};
    for (const IntegrationRow& each : rows)
        lines.append(cellsOf(each));
    std::array<qsizetype, kColumns> widths{};
    for (const Cells& cells : lines)
        for (std::size_t i = 0; i < kColumns; ++i)
            widths[i] = std::max(widths[i], cells[i].size());
    QByteArrayList texts{toned(Tone::Quiet, lineOf(lines.takeFirst(), widths))};
    for (const Cells& cells : lines)
        texts.append(lineOf(cells, widths));
    return texts.join('\n');
}

QByteArray jsonOf(const IntegrationRow& row)
{
    return JsonObject()
        .add(u"name", jsonOfText(row.id))
        .add(u"installed", jsonBool(row.isInstalled))
        .add(u"menu",
             jsonOfText(!row.isMenuThere     ? ""
                        : row.isForEverybody ? "everybody"
                                             : "user"))
        .add(u"outdated", jsonBool(row.isOutdated))
        .add(u"way", jsonOfText(row.way))
        .add(u"package", jsonOfText(row.package))
        .add(u"packageMissing", jsonBool(row.isPackageMissing))
        .add(u"needsRestart", jsonBool(row.needsRestart))
        .add(u"fault", jsonOfText(row.fault))
        .take();
}

} // namespace havrel::cli
