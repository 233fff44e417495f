// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/index_set.h"

#include <QString>

#include <memory>

class QMimeData;
class QObject;

namespace havrel {

class TableCellView;
class TableView;

/// Where a drop goes: onto a row, or into the gap above it.
/// \source the numbers are the platform's documented drop operations.
enum class DropOperation { On = 0, Above = 1 };

/// What is being dragged over a table.
struct DraggingInfo
{
    const QMimeData& pasteboard;
    Qt::DropActions sourceOperationMask; ///< what the source permits
};

/// What a table shows, and what can be dragged into it and out of it. Rows count from 0.
///
/// Threads: the main thread only.
class TableViewDataSource
{
public:
    TableViewDataSource() = default;
    virtual ~TableViewDataSource() = default;
    TableViewDataSource(const TableViewDataSource&) = delete;
    TableViewDataSource& operator=(const TableViewDataSource&) = delete;
    TableViewDataSource(TableViewDataSource&&) = delete;
    TableViewDataSource& operator=(TableViewDataSource&&) = delete;

    /// \selector numberOfRowsInTableView:
    [[nodiscard]] virtual qsizetype numberOfRowsInTableView(const TableView& table) const = 0;
    /// The object of a row, never null. Rows are told apart by it: a table that is loaded again keeps the widgets and
    /// the selection of the objects that are still there. \selector tableView:objectValueForTableColumn:row:
    [[nodiscard]] virtual std::shared_ptr<QObject> tableViewObjectValue(const TableView& table,
                                                                        qsizetype row) const = 0;
    /// What a drop of text would do: one action, or Qt::IgnoreAction.
    /// \selector tableView:validateDrop:proposedRow:proposedDropOperation:
    [[nodiscard]] virtual Qt::DropAction
    tableViewValidateDrop(const TableView& table, const DraggingInfo& info, qsizetype row, DropOperation operation) = 0;
    /// Takes the text in. \return whether it was taken. \selector tableView:acceptDrop:row:dropOperation:
    virtual bool
    tableViewAcceptDrop(TableView& table, const DraggingInfo& info, qsizetype row, DropOperation operation) = 0;
    /// Puts the rows into \p pasteboard. \return false, with nothing written, when they are worth nothing.
    /// \selector tableView:writeRowsWithIndexes:toPasteboard:
    virtual bool tableViewWriteRows(const TableView& table, const IndexSet& rows, QMimeData& pasteboard) = 0;
};

/// How a table shows its rows, and who hears of it.
///
/// Threads: the main thread only.
class TableViewDelegate
{
public:
    TableViewDelegate() = default;
    virtual ~TableViewDelegate() = default;
    TableViewDelegate(const TableViewDelegate&) = delete;
    TableViewDelegate& operator=(const TableViewDelegate&) = delete;
    TableViewDelegate(TableViewDelegate&&) = delete;
    TableViewDelegate& operator=(TableViewDelegate&&) = delete;

    /// A widget for the row: one that TableView::dequeueView answers, or a new one. The table takes it over.
    /// \selector tableView:viewForTableColumn:row:
    [[nodiscard]] virtual TableCellView* tableViewView(TableView& table, qsizetype row) = 0;
    /// Null for none. \selector tableView:toolTipForCell:rect:tableColumn:row:mouseLocation:
    [[nodiscard]] virtual QString tableViewToolTip(const TableView& table, qsizetype row) const = 0;
    /// \selector tableViewSelectionDidChange:
    virtual void tableViewSelectionDidChange(TableView& table) = 0;
    /// The user asks by a key that the rows stand one place further down (\p by is 1) or up (-1).
    virtual void tableViewMoveRows(TableView& table, const IndexSet& rows, int by) = 0;
};

} // namespace havrel
