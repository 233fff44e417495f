// SPDX-License-Identifier: MIT
#include "app/archive_list_view.h"

#include <QMouseEvent>

namespace havrel {
namespace {

bool isSelectable(const QModelIndex& index)
{
    return index.isValid() && index.flags().testFlag(Qt::ItemIsSelectable);
}

/// The first archive from \p index on, in steps of \p step; an invalid index where there is none.
QModelIndex nextSelectable(QModelIndex index, int step)
{
    while (index.isValid() && !isSelectable(index))
        index = index.siblingAtRow(index.row() + step);
    return index;
}

} // namespace

ArchiveListView::ArchiveListView(QWidget* parent)
    : QListView(parent)
{
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    setResizeMode(Adjust);
}

QRect ArchiveListView::rectOfRows(int first, int last)
{
    doItemsLayout(); // what flows may have another height now
    return visualRect(model()->index(first, 0)).united(visualRect(model()->index(last, 0)));
}

int ArchiveListView::frameHeightForContentHeight(int height) const
{
    return height + 2 * frameWidth();
}

void ArchiveListView::scrollTo(const QModelIndex& index, ScrollHint hint)
{
    if (index.isValid() && hint == EnsureVisible && index == nextSelectable(model()->index(0, 0), 1))
        scrollToTop();
    else
        QListView::scrollTo(index, hint);
}

QModelIndex ArchiveListView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers)
{
    const QModelIndex reached = QListView::moveCursor(action, modifiers);
    const bool isUpwards = action == MoveUp || action == MovePrevious || action == MovePageUp || action == MoveEnd;
    const QModelIndex there = nextSelectable(reached, isUpwards ? -1 : 1);
    return there.isValid() ? there : nextSelectable(reached, isUpwards ? 1 : -1);
}

void ArchiveListView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        QListView::mouseDoubleClickEvent(event);
    else
        QListView::mousePressEvent(event);
}

} // namespace havrel
