// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/table_view_accessibility.h"

#include "capture_prefs_ui/table_cell_view.h"
#include "capture_prefs_ui/table_view.h"

#include <QAccessibleWidget>
#include <QCoreApplication>

#include <algorithm>
#include <iterator>

namespace havrel {
namespace {

class AccessibleTable final : public QAccessibleWidget
{
public:
    explicit AccessibleTable(TableView& table)
        : QAccessibleWidget(&table, QAccessible::List)
    {
    }

    [[nodiscard]] int childCount() const override { return static_cast<int>(table().views().size()); }

    [[nodiscard]] QAccessibleInterface* child(int index) const override
    {
        if (index < 0 || index >= childCount())
            return nullptr;
        return QAccessible::queryAccessibleInterface(std::next(table().views().begin(), index)->second);
    }

    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override
    {
        const TableView::Views& views = table().views();
        const auto found = std::find_if(
            views.begin(), views.end(), [child](const auto& each) { return each.second == child->object(); });
        return found == views.end() ? -1 : static_cast<int>(std::distance(views.begin(), found));
    }

private:
    [[nodiscard]] const TableView& table() const { return static_cast<const TableView&>(*widget()); }
};

class AccessibleRow final : public QAccessibleWidget
{
public:
    explicit AccessibleRow(TableCellView& row)
        : QAccessibleWidget(&row, QAccessible::ListItem)
    {
    }

    [[nodiscard]] QAccessibleInterface* parent() const override
    {
        TableView* table = row().tableView();
        return table ? QAccessible::queryAccessibleInterface(table) : QAccessibleWidget::parent();
    }

    [[nodiscard]] QString text(QAccessible::Text kind) const override
    {
        const TableView* table = row().tableView();
        if (kind == QAccessible::Description && table)
            return QCoreApplication::translate("havrel::TableView", "row %1 of %2")
                .arg(table->rowForView(&row()) + 1)
                .arg(table->numberOfRows());
        return kind == QAccessible::Name ? row().spokenText() : QAccessibleWidget::text(kind);
    }

    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        const TableView* table = row().tableView();
        if (!table)
            return state;
        const qsizetype place = table->rowForView(&row());
        state.selectable = true;
        state.multiSelectable = true;
        state.focusable = true;
        state.selected = table->selectedRowIndexes().containsIndex(static_cast<IndexSet::Index>(place));
        state.focused = table->hasFocus() && table->currentRow() == place;
        return state;
    }

private:
    [[nodiscard]] TableCellView& row() const { return static_cast<TableCellView&>(*widget()); }
};

QAccessibleInterface* makeInterface(const QString& className, QObject* object)
{
    if (className == QLatin1StringView(TableView::staticMetaObject.className()))
        return new AccessibleTable(static_cast<TableView&>(*object));
    if (className == QLatin1StringView(TableCellView::staticMetaObject.className()))
        return new AccessibleRow(static_cast<TableCellView&>(*object));
    return nullptr;
}

} // namespace

void installTableViewAccessibility()
{
    static const bool s_isInstalled = (QAccessible::installFactory(makeInterface), true);
    (void)s_isInstalled;
}

void tellCurrentRow(TableView& table)
{
    TableCellView* view = table.viewAtRow(table.currentRow());
    if (!view || !QAccessible::isActive())
        return;
    QAccessibleEvent event(view, QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
}

void tellSelection(TableView& table)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent event(&table, QAccessible::SelectionWithin);
    QAccessible::updateAccessibility(&event);
}

} // namespace havrel
