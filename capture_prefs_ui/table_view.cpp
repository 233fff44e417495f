// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/table_view.h"

#include "capture_prefs_ui/plain_tool_tip.h"
#include "capture_prefs_ui/table_cell_view.h"
#include "capture_prefs_ui/table_drop_indicator.h"
#include "capture_prefs_ui/table_view_accessibility.h"
#include "capture_prefs_ui/table_view_data_source.h"

#include <QApplication>
#include <QHelpEvent>
#include <QScrollBar>
#include <QStyle>
#include <QToolTip>

#include <algorithm>

namespace havrel {
namespace {

constexpr int kIntercellSpacing = 2; // pixels
constexpr qsizetype kRowsAround = 2; // out of sight at either end that have widgets, so that Tab finds them

} // namespace

TableView::TableView(QWidget* parent)
    : QAbstractScrollArea(parent)
    , m_dropIndicator(new TableDropIndicator(*viewport()))
{
    installTableViewAccessibility();
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setBackgroundRole(QPalette::Base);
    viewport()->setAcceptDrops(true);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { focusMoved(now); });
}

TableView::~TableView()
{
    disconnect(qApp, nullptr, this, nullptr); // the focus that the rows lose with it is nobody's news either
    for (const auto& [row, view] : m_views)
        view->setTableView(nullptr); // what they take over when they go is nobody's news
}

int TableView::intercellSpacing() const noexcept
{
    return kIntercellSpacing;
}

int TableView::gutter() const
{
    return fontMetrics().height();
}

void TableView::setRowSize(const QSize& minimum)
{
    if (minimum.height() == m_rowHeight && minimum.width() == m_minimumRowWidth)
        return;
    m_rowHeight = minimum.height();
    m_minimumRowWidth = minimum.width();
    updateGeometry();
    layoutRows();
}

int TableView::frameHeightForContentHeight(int height) const
{
    return height + 2 * frameWidth();
}

QSize TableView::minimumSizeHint() const
{
    const int scrollBar = verticalScrollBar()->sizeHint().width();
    return {gutter() + m_minimumRowWidth + scrollBar + 2 * frameWidth(), frameHeightForContentHeight(pitch())};
}

void TableView::reloadData()
{
    const std::vector<std::shared_ptr<QObject>> before = std::move(m_objects);
    m_objects.clear();
    m_rowsOfObjects.clear();
    const qsizetype count = m_dataSource ? m_dataSource->numberOfRowsInTableView(*this) : 0;
    m_objects.reserve(static_cast<std::size_t>(count));
    for (qsizetype row = 0; row < count; ++row) {
        m_objects.push_back(m_dataSource->tableViewObjectValue(*this, row));
        m_rowsOfObjects.insert(m_objects.back().get(), row);
    }
    keepViews();
    followObjects(before);
    describeEmptiness();
    layoutRows();
}

/// Keeps selected what was selected, wherever it stands now.
void TableView::followObjects(const std::vector<std::shared_ptr<QObject>>& before)
{
    const IndexSet selectedBefore = m_selection.rows();
    const auto rowNow = [this, &before](qsizetype row) {
        return m_rowsOfObjects.value(before[static_cast<std::size_t>(row)].get(), -1);
    };
    std::vector<qsizetype> rows;
    for (const IndexSet::Index row : selectedBefore)
        if (const qsizetype now = rowNow(static_cast<qsizetype>(row)); now >= 0)
            rows.push_back(now);
    std::sort(rows.begin(), rows.end());
    IndexSet selected;
    for (const qsizetype row : rows)
        selected.addIndex(static_cast<IndexSet::Index>(row));
    qsizetype current = m_selection.current();
    if (current >= 0)
        current = rowNow(current) >= 0 ? rowNow(current) : std::min(current, numberOfRows() - 1);
    m_selection.set(std::move(selected), current);
    selectionChanged(selectedBefore);
}

/// Gives each widget the row at which its object is now, and takes those away whose object is gone.
void TableView::keepViews()
{
    const Views before = std::move(m_views);
    m_views.clear();
    QList<TableCellView*> gone;
    for (const auto& [row, view] : before) {
        const qsizetype now = m_rowsOfObjects.value(view->objectValue(), -1);
        if (now < 0 || !m_views.emplace(now, view).second) // an object may stand in several rows
            gone << view;
    }
    for (TableCellView* view : gone)
        enqueue(*view);
}

void TableView::enqueue(TableCellView& view)
{
    view.setTableView(nullptr);
    if (isEdited(view))
        setFocus(Qt::OtherFocusReason);
    view.hide();
    view.setObjectValue(nullptr);
    m_queue[view.identifier()] << &view;
}

TableCellView* TableView::dequeueView(const QString& identifier)
{
    const auto queue = m_queue.find(identifier);
    return queue == m_queue.end() || queue->isEmpty() ? nullptr : queue->takeLast();
}

bool TableView::isEdited(const TableCellView& view) const
{
    const QWidget* focus = window()->focusWidget();
    return focus && view.isAncestorOf(focus);
}

void TableView::layoutRows()
{
    updateScrollBar();
    if (isVisible() && makeViews())
        orderRows();
    placeRows();
    viewport()->update();
}

/// \return whether rows came or went.
bool TableView::makeViews()
{
    const int top = verticalScrollBar()->value();
    const qsizetype first = std::max<qsizetype>(0, top / pitch() - kRowsAround);
    const qsizetype last = std::min(numberOfRows() - 1, (top + viewport()->height()) / pitch() + kRowsAround);
    QList<TableCellView*> gone;
    for (auto each = m_views.begin(); each != m_views.end();) {
        const bool isKept = (each->first >= first && each->first <= last) || isEdited(*each->second);
        if (!isKept)
            gone << each->second;
        each = isKept ? std::next(each) : m_views.erase(each);
    }
    for (TableCellView* view : gone)
        enqueue(*view);
    bool isNew = false;
    for (qsizetype row = first; row <= last; ++row)
        if (!m_views.contains(row)) {
            makeView(row);
            isNew = true;
        }
    return isNew || !gone.isEmpty();
}

void TableView::makeView(qsizetype row)
{
    TableCellView* view = m_delegate->tableViewView(*this, row);
    if (view->parentWidget() != viewport())
        view->setParent(viewport());
    view->setObjectValue(m_objects[static_cast<std::size_t>(row)]);
    view->setTableView(this); // last: showing another object is no change of it
    m_views.emplace(row, view);
}

/// Children and the way of the Tab key are in the order of the rows.
void TableView::orderRows()
{
    QWidget* before = this;
    for (const auto& [row, view] : m_views) {
        view->raise();
        for (QWidget* editor : view->editors()) {
            setTabOrder(before, editor);
            before = editor;
        }
    }
    m_dropIndicator->raise();
}

void TableView::placeRows()
{
    for (const auto& [row, view] : m_views) {
        QRect place = rowRect(row);
        place.setLeft(gutter());
        view->setGeometry(QStyle::visualRect(layoutDirection(), viewport()->rect(), place));
        view->show();
    }
}

void TableView::updateScrollBar()
{
    const int content = static_cast<int>(numberOfRows()) * pitch();
    verticalScrollBar()->setRange(0, std::max(0, content - viewport()->height()));
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setSingleStep(pitch());
}

QRect TableView::rowRect(qsizetype row) const
{
    const int top = static_cast<int>(row) * pitch() + kIntercellSpacing / 2 - verticalScrollBar()->value();
    return {0, top, viewport()->width(), m_rowHeight};
}

qsizetype TableView::rowAt(int y) const
{
    const int inContent = y + verticalScrollBar()->value();
    const qsizetype row = inContent < 0 ? -1 : inContent / pitch();
    return row < numberOfRows() ? row : -1;
}

void TableView::scrollRowToVisible(qsizetype row)
{
    const int top = static_cast<int>(row) * pitch();
    QScrollBar& bar = *verticalScrollBar();
    bar.setValue(std::clamp(bar.value(), std::max(0, top + pitch() - viewport()->height()), top));
}

TableCellView* TableView::viewAtRow(qsizetype row) const
{
    const auto view = m_views.find(row);
    return view == m_views.end() ? nullptr : view->second;
}

qsizetype TableView::rowForView(const QWidget* widget) const
{
    for (const auto& [row, view] : m_views)
        if (view == widget || view->isAncestorOf(widget))
            return row;
    return -1;
}

void TableView::setEmptyText(const QString& text)
{
    m_emptyText = text;
    describeEmptiness();
    viewport()->update();
}

void TableView::describeEmptiness()
{
    setAccessibleDescription(m_objects.empty() && isEnabled() ? m_emptyText : QString());
}

bool TableView::viewportEvent(QEvent* event)
{
    if (event->type() != QEvent::ToolTip || !m_delegate)
        return QAbstractScrollArea::viewportEvent(event);
    const auto& help = static_cast<const QHelpEvent&>(*event);
    const qsizetype row = rowAt(help.pos().y());
    const QString text = row < 0 ? QString() : m_delegate->tableViewToolTip(*this, row);
    QToolTip::showText(help.globalPos(), plainToolTip(text), viewport(), rowRect(row));
    return true;
}

void TableView::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    layoutRows();
}

void TableView::showEvent(QShowEvent* event)
{
    QAbstractScrollArea::showEvent(event);
    layoutRows();
}

void TableView::changeEvent(QEvent* event)
{
    QAbstractScrollArea::changeEvent(event);
    const QEvent::Type type = event->type();
    if (type == QEvent::FontChange || type == QEvent::StyleChange)
        Q_EMIT metricsChanged();
    if (type == QEvent::EnabledChange)
        describeEmptiness();
    if (type == QEvent::FontChange || type == QEvent::StyleChange || type == QEvent::LayoutDirectionChange)
        layoutRows();
}

void TableView::scrollContentsBy(int /*dx*/, int /*dy*/)
{
    layoutRows();
}

} // namespace havrel
