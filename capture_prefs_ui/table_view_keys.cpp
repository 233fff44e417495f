// SPDX-License-Identifier: MIT
// How a table is used by clicks and keys.
#include "capture_prefs_ui/table_cell_view.h"
#include "capture_prefs_ui/table_view.h"
#include "capture_prefs_ui/table_view_accessibility.h"
#include "capture_prefs_ui/table_view_data_source.h"
#include "capture_prefs_ui/table_view_deleting.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace havrel {
namespace {

using Change = RowSelection::Change;

Change changeOf(Qt::KeyboardModifiers modifiers, Change withControl)
{
    if (modifiers & Qt::ShiftModifier)
        return Change::Extend;
    return modifiers & Qt::ControlModifier ? withControl : Change::Only;
}

/// Where a key leads from a row, of rows of which so many are on a page; nothing for keys that do not lead anywhere.
std::optional<qsizetype> rowAfterKey(int key, qsizetype row, qsizetype page)
{
    switch (key) {
    case Qt::Key_Up:
        return row - 1;
    case Qt::Key_Down:
        return row + 1;
    case Qt::Key_PageUp:
        return row - page;
    case Qt::Key_PageDown:
        return row + page;
    case Qt::Key_Home:
        return 0;
    case Qt::Key_End:
        return std::numeric_limits<int>::max();
    default:
        return std::nullopt;
    }
}

} // namespace

void TableView::select(qsizetype row, Change change)
{
    const IndexSet before = m_selection.rows();
    m_selection.go(row, change);
    scrollRowToVisible(row);
    selectionChanged(before);
    if (hasFocus())
        tellCurrentRow(*this);
}

void TableView::selectRowIndexes(const IndexSet& rows)
{
    const IndexSet before = m_selection.rows();
    IndexSet within;
    for (const IndexSet::Index row : rows)
        if (row < static_cast<IndexSet::Index>(numberOfRows()))
            within.addIndex(row);
    const qsizetype current = within.isEmpty() ? m_selection.current() : static_cast<qsizetype>(*within.begin());
    m_selection.set(within, current);
    selectionChanged(before);
}

void TableView::selectionChanged(const IndexSet& before)
{
    viewport()->update();
    if (before == m_selection.rows())
        return;
    tellSelection(*this);
    if (m_delegate)
        m_delegate->tableViewSelectionDidChange(*this);
}

/// What gets the keyboard is brought into sight, and its row is the one that commands are about.
void TableView::focusMoved(QWidget* now)
{
    const qsizetype row = now && viewport()->isAncestorOf(now) ? rowForView(now) : -1;
    if (row < 0)
        return;
    select(row, m_selection.contains(row) ? Change::Move : Change::Only);
}

void TableView::endEditing()
{
    const Views views = m_views;
    for (const auto& [row, view] : views)
        view->commitEditing();
    if (QWidget* focus = window()->focusWidget())
        focus->clearFocus();
}

void TableView::delete_(QObject* sender)
{
    if (auto* deleting = dynamic_cast<TableViewDeleting*>(m_delegate))
        deleting->doRemoveSelectedItems(sender);
}

void TableView::editRow(qsizetype row)
{
    if (row < 0 || row >= numberOfRows())
        return;
    scrollRowToVisible(row);
    if (TableCellView* view = viewAtRow(row))
        view->autoEdit();
}

void TableView::moveSelection(int by)
{
    IndexSet rows = m_selection.rows();
    if (rows.isEmpty() && m_selection.current() >= 0)
        rows = {static_cast<IndexSet::Index>(m_selection.current())};
    if (!m_delegate || rows.isEmpty())
        return;
    m_delegate->tableViewMoveRows(*this, rows, by);
    scrollRowToVisible(m_selection.current());
}

void TableView::keyPressEvent(QKeyEvent* event)
{
    const bool isInField = !hasFocus(); // a field left the key to us
    if (isInField ? pressArrowInField(*event) : pressCommandKey(*event) || pressMovingKey(*event))
        return event->accept();
    event->ignore();
}

bool TableView::pressArrowInField(const QKeyEvent& event)
{
    const bool isUp = event.key() == Qt::Key_Up;
    if (!isUp && event.key() != Qt::Key_Down)
        return false;
    const int by = isUp ? -1 : 1;
    if (event.modifiers() == Qt::AltModifier)
        moveSelection(by);
    else
        editRow(m_selection.current() + by);
    return true;
}

bool TableView::pressCommandKey(const QKeyEvent& event)
{
    if (event.matches(QKeySequence::Delete) || event.key() == Qt::Key_Backspace)
        delete_(this);
    else if (event.matches(QKeySequence::Copy))
        copySelection();
    else if (event.matches(QKeySequence::Paste))
        paste();
    else if (event.matches(QKeySequence::SelectAll)) {
        const IndexSet before = m_selection.rows();
        m_selection.selectAll(numberOfRows());
        selectionChanged(before);
    } else if (event.key() == Qt::Key_F2 || event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter)
        editRow(m_selection.current());
    else
        return false;
    return true;
}

bool TableView::pressMovingKey(const QKeyEvent& event)
{
    const qsizetype page = qMax(1, viewport()->height() / pitch());
    const qsizetype current = m_selection.current();
    if (event.modifiers() & Qt::AltModifier) {
        if (event.key() != Qt::Key_Up && event.key() != Qt::Key_Down)
            return false;
        moveSelection(event.key() == Qt::Key_Up ? -1 : 1);
        return true;
    }
    if (event.key() == Qt::Key_Space && current >= 0) {
        select(current, event.modifiers() & Qt::ControlModifier ? Change::Toggle : Change::Only);
        return true;
    }
    const auto target = rowAfterKey(event.key(), current, page);
    if (!target || m_objects.empty())
        return false;
    select(std::clamp<qsizetype>(*target, 0, numberOfRows() - 1), changeOf(event.modifiers(), Change::Move));
    return true;
}

void TableView::focusInEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusInEvent(event);
    if (m_selection.current() < 0 && !m_objects.empty())
        m_selection.go(0, Change::Move);
    tellCurrentRow(*this);
    viewport()->update();
}

void TableView::focusOutEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

void TableView::mousePressEvent(QMouseEvent* event)
{
    m_pressedRow = -1;
    if (event->button() != Qt::LeftButton)
        return event->ignore();
    const qsizetype row = rowAt(event->pos().y());
    if (row < 0)
        return selectRowIndexes({});
    m_pressedRow = row;
    m_pressedAt = event->pos();
    // A click on one of several selected rows may begin a drag of all of them.
    m_selectAtRelease = m_selection.contains(row) && event->modifiers() == Qt::NoModifier;
    if (!m_selectAtRelease)
        select(row, changeOf(event->modifiers(), Change::Toggle));
}

void TableView::mouseMoveEvent(QMouseEvent* event)
{
    if (m_pressedRow < 0 || !(event->buttons() & Qt::LeftButton))
        return;
    if ((event->pos() - m_pressedAt).manhattanLength() < QApplication::startDragDistance())
        return;
    const qsizetype row = std::exchange(m_pressedRow, -1);
    if (m_selection.contains(row))
        dragSelection(m_pressedAt);
}

void TableView::mouseReleaseEvent(QMouseEvent* /*event*/)
{
    const qsizetype row = std::exchange(m_pressedRow, -1);
    if (row >= 0 && row < numberOfRows() && std::exchange(m_selectAtRelease, false))
        select(row, Change::Only);
}

void TableView::mouseDoubleClickEvent(QMouseEvent* event)
{
    editRow(rowAt(event->pos().y()));
}

} // namespace havrel
