// SPDX-License-Identifier: MIT
// The rows of the pattern table: what they show, and how they are dragged.
#include "capture_prefs_ui/pattern_problem_popover.h"
#include "capture_prefs_ui/pattern_table_expert_cell_view.h"
#include "capture_prefs_ui/pattern_table_multiple_cell_view.h"
#include "capture_prefs_ui/pattern_table_simple_cell_view.h"
#include "capture_prefs_ui/pattern_table_view_controller.h"
#include "capture_prefs_ui/table_view.h"
#include "filters/pattern_filter_def.h"
#include "foundation/dispatch.h"

#include <QMimeData>

#include <algorithm>
#include <iterator>

namespace havrel {
namespace {

struct RowKind
{
    QLatin1StringView identifier;
    PatternTableCellView* (*make)(QWidget* parent);
};

template<class View>
PatternTableCellView* makeRow(QWidget* parent)
{
    return new View(parent);
}

constexpr RowKind kKinds[] = {
    {QLatin1StringView("simple"), makeRow<PatternTableSimpleCellView>},
    {QLatin1StringView("complete"), makeRow<PatternTableExpertCellView>},
    {QLatin1StringView("multiple"), makeRow<PatternTableMultipleCellView>},
};

const RowKind& kindOf(const PatternFilterDef& definition)
{
    if (definition.multiplePatternsPlaceholder())
        return kKinds[2];
    return kKinds[definition.simple() ? 0 : 1];
}

/// What is dragged out for a definition; nothing when it is not valid. Compiled anew, because a copy has forgotten
/// whether its path is absolute.
QString lineOf(PatternFilterDef& definition)
{
    definition.uncompile();
    if (!definition.valid())
        return {};
    return definition.simple() ? definition.canonicalPattern() : definition.completePattern();
}

} // namespace

qsizetype PatternTableViewController::numberOfRowsInTableView(const TableView& /*table*/) const
{
    return m_filterDefs.size();
}

std::shared_ptr<QObject> PatternTableViewController::tableViewObjectValue(const TableView& /*table*/,
                                                                          qsizetype row) const
{
    return m_filterDefs[row];
}

QString PatternTableViewController::tableViewToolTip(const TableView& /*table*/, qsizetype row) const
{
    return m_filterDefs[row]->completePattern();
}

TableCellView* PatternTableViewController::tableViewView(TableView& table, qsizetype row)
{
    const RowKind& kind = kindOf(*m_filterDefs[row]);
    TableCellView* view = table.dequeueView(kind.identifier);
    if (view)
        return view;
    PatternTableCellView* made = kind.make(table.viewport());
    made->setPopover(m_popover);
    return made;
}

/// Every row is as high as the highest kind, in the font of today.
void PatternTableViewController::measureRows()
{
    QSize size;
    for (const RowKind& kind : kKinds) {
        const std::unique_ptr<PatternTableCellView> row(kind.make(tableView().viewport()));
        row->ensurePolished();
        size = size.expandedTo({row->minimumSizeHint().width(), row->sizeHint().height()});
    }
    tableView().setRowSize(size);
    resizeTableView();
}

void PatternTableViewController::editRow(qsizetype row)
{
    tableView().selectRowIndexes({static_cast<IndexSet::Index>(row)});
    tableView().scrollRowToVisible(row);
    auto* view = qobject_cast<PatternTableCellView*>(tableView().viewAtRow(row));
    if (!view)
        return;
    onMainQueue([view = QPointer(view), definition = m_filterDefs[row]] {
        if (view && view->filterDef() == definition)
            view->autoEdit();
    });
}

Qt::DropAction PatternTableViewController::tableViewValidateDrop(const TableView& /*table*/,
                                                                 const DraggingInfo& info,
                                                                 qsizetype /*row*/,
                                                                 DropOperation /*operation*/)
{
    return info.sourceOperationMask.testFlag(Qt::CopyAction) ? Qt::CopyAction : Qt::IgnoreAction;
}

bool PatternTableViewController::tableViewAcceptDrop(TableView& /*table*/,
                                                     const DraggingInfo& info,
                                                     qsizetype row,
                                                     DropOperation /*operation*/)
{
    PatternFilterDefs definitions;
    const QStringList lines = info.pasteboard.text().split(u'\n');
    for (const QString& line : lines) {
        auto definition = std::make_shared<PatternFilterDef>(line);
        definition->setRooted(m_repositoryPatterns);
        definition->simplify();
        if (definition->valid())
            definitions << std::move(definition);
    }
    const qsizetype before = m_filterDefs.size();
    addPatterns(definitions, row);
    return m_filterDefs.size() > before;
}

bool PatternTableViewController::tableViewWriteRows(const TableView& /*table*/,
                                                    const IndexSet& rows,
                                                    QMimeData& pasteboard)
{
    QStringList lines;
    for (const IndexSet::Index row : rows)
        if (const QString line = lineOf(*m_filterDefs[static_cast<qsizetype>(row)]); !line.isEmpty())
            lines << line;
    if (lines.isEmpty())
        return false;
    pasteboard.setText(lines.join(u'\n'));
    return true;
}

void PatternTableViewController::tableViewMoveRows(TableView& /*table*/, const IndexSet& rows, int by)
{
    PatternFilterDefs list = m_filterDefs;
    std::vector<qsizetype> moved(rows.begin(), rows.end());
    if (by > 0)
        std::reverse(moved.begin(), moved.end());
    for (const qsizetype row : moved) {
        const qsizetype target = row + by;
        if (target < 0 || target >= list.size())
            return; // all of them stay: they move together
        list.swapItemsAt(row, target);
    }
    setFilterDefs(list);
}

} // namespace havrel
