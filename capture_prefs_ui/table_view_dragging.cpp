// SPDX-License-Identifier: MIT
// How a table exchanges rows with other programs: by dragging and by the clipboard.
#include "capture_prefs_ui/table_cell_view.h"
#include "capture_prefs_ui/table_drop_indicator.h"
#include "capture_prefs_ui/table_view.h"
#include "capture_prefs_ui/table_view_data_source.h"

#include <QClipboard>
#include <QDrag>
#include <QDropEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QTimerEvent>

#include <algorithm>

namespace havrel {
namespace {

constexpr QLatin1StringView kText{"text/plain"};
constexpr int kScrollInterval = 40; // milliseconds between two steps while a drag is at an edge
constexpr int kIndicatorHeight = 2; // pixels

/// To other programs rows are copied or linked; within the program they are copied.
/// \source copy (1) and generic (4) in the platform's mask of drag operations.
constexpr Qt::DropActions kDragActions = Qt::CopyAction | Qt::LinkAction;

} // namespace

QPixmap TableView::dragPicture(const IndexSet& rows) const
{
    QList<TableCellView*> views;
    for (const auto& [row, view] : m_views)
        if (rows.containsIndex(static_cast<IndexSet::Index>(row)) && viewport()->rect().intersects(rowRect(row)))
            views << view;
    if (views.isEmpty())
        return {};
    const qreal ratio = devicePixelRatioF();
    const QSize size(views.constFirst()->width(), static_cast<int>(views.size()) * pitch());
    QPixmap picture(size * ratio);
    picture.setDevicePixelRatio(ratio);
    picture.fill(palette().color(QPalette::Base));
    QPainter painter(&picture);
    for (qsizetype i = 0; i < views.size(); ++i)
        painter.drawPixmap(0, static_cast<int>(i) * pitch(), views[i]->grab());
    return picture;
}

void TableView::dragSelection(const QPoint& from)
{
    auto text = std::make_unique<QMimeData>();
    if (!m_dataSource || !m_dataSource->tableViewWriteRows(*this, m_selection.rows(), *text))
        return;
    auto* drag = new QDrag(this); // goes by itself after the drag
    drag->setMimeData(text.release());
    drag->setPixmap(dragPicture(m_selection.rows()));
    drag->setHotSpot({from.x() - gutter(), pitch() / 2});
    drag->exec(kDragActions, Qt::CopyAction);
}

qsizetype TableView::gapAt(int y) const
{
    const int inContent = y + verticalScrollBar()->value() + pitch() / 2;
    return std::clamp<qsizetype>(inContent / pitch(), 0, numberOfRows());
}

void TableView::dragEnterEvent(QDragEnterEvent* event)
{
    showDrop(*event);
}

void TableView::dragMoveEvent(QDragMoveEvent* event)
{
    showDrop(*event);
    const int y = event->position().toPoint().y();
    const int edge = pitch() / 2;
    m_scrollBy = y < edge ? -edge : y > viewport()->height() - edge ? edge : 0;
    if (m_scrollBy == 0)
        m_scrollTimer.stop();
    else if (!m_scrollTimer.isActive())
        m_scrollTimer.start(kScrollInterval, this);
}

void TableView::dragLeaveEvent(QDragLeaveEvent* /*event*/)
{
    hideDrop();
}

void TableView::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_scrollTimer.timerId())
        return QAbstractScrollArea::timerEvent(event);
    verticalScrollBar()->setValue(verticalScrollBar()->value() + m_scrollBy);
}

/// Says what a drop here would do, and shows where it would go.
void TableView::showDrop(QDropEvent& event)
{
    const qsizetype gap = gapAt(event.position().toPoint().y());
    const DraggingInfo info{*event.mimeData(), event.possibleActions()};
    const bool isText = m_dataSource && isEnabled() && event.mimeData()->hasFormat(kText);
    const Qt::DropAction action =
        isText ? m_dataSource->tableViewValidateDrop(*this, info, gap, DropOperation::Above) : Qt::IgnoreAction;
    event.setDropAction(action);
    event.setAccepted(action != Qt::IgnoreAction);
    m_dropIndicator->setGeometry(
        0, qMax(0, rowRect(gap).top() - kIndicatorHeight), viewport()->width(), kIndicatorHeight);
    m_dropIndicator->setVisible(event.isAccepted());
}

void TableView::hideDrop()
{
    m_scrollTimer.stop();
    m_dropIndicator->hide();
}

void TableView::dropEvent(QDropEvent* event)
{
    showDrop(*event);
    hideDrop();
    if (!event->isAccepted())
        return;
    const DraggingInfo info{*event->mimeData(), event->possibleActions()};
    const qsizetype gap = gapAt(event->position().toPoint().y());
    event->setAccepted(m_dataSource->tableViewAcceptDrop(*this, info, gap, DropOperation::Above));
}

void TableView::copySelection()
{
    auto text = std::make_unique<QMimeData>();
    if (m_dataSource && m_dataSource->tableViewWriteRows(*this, m_selection.rows(), *text))
        QGuiApplication::clipboard()->setMimeData(text.release());
}

void TableView::paste()
{
    const QMimeData* text = QGuiApplication::clipboard()->mimeData();
    if (!m_dataSource || !text || !text->hasFormat(kText))
        return;
    const qsizetype row = m_selection.current() < 0 ? numberOfRows() : m_selection.current() + 1;
    m_dataSource->tableViewAcceptDrop(*this, {*text, Qt::CopyAction}, row, DropOperation::Above);
}

} // namespace havrel
