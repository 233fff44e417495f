// SPDX-License-Identifier: MIT
#include "app/archive_row_delegate.h"

#include "app/archive_picker_table_cell_view.h"
#include "app/archive_picker_view_controller.h"
#include "app/item_field.h"
#include "capture_prefs_ui/leading_text.h"

#include <QLabel>
#include <QLayout>
#include <QListView>
#include <QPainter>
#include <QStyleOptionFocusRect>

namespace havrel {
namespace {

void setDirection(QWidget& view, Qt::LayoutDirection direction)
{
    view.setLayoutDirection(direction);
    for (QLabel* each : view.findChildren<QLabel*>())
        if (!each->alignment().testFlag(Qt::AlignHCenter))
            alignAtLeadingEdge(*each);
}

/// A view that is in no window takes everything from the list.
void dress(QWidget& view, const QStyleOptionViewItem& option)
{
    setDirection(view, option.direction);
    view.setFont(option.font);
    QPalette palette = option.palette;
    // The view has no window, whose keyboard would make its colours the active ones.
    palette.setCurrentColorGroup(option.state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive);
    for (const auto role : {QPalette::Highlight, QPalette::HighlightedText, QPalette::Text})
        palette.setColor(QPalette::All, role, palette.color(role));
    view.setPalette(palette);
}

/// At the edges only: some styles tint the whole rectangle, the text with it.
void drawFocus(QPainter& painter, const QStyleOptionViewItem& option, const QWidget& table)
{
    constexpr int kEdge = 1;
    const QRegion inside(option.rect.adjusted(kEdge, kEdge, -kEdge, -kEdge));
    painter.setClipRegion(QRegion(option.rect) - inside, Qt::IntersectClip);
    QStyleOptionFocusRect focus;
    focus.QStyleOption::operator=(option);
    focus.state |= QStyle::State_KeyboardFocusChange | QStyle::State_Item;
    focus.backgroundColor = option.palette.color(QPalette::Highlight);
    table.style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, &table);
}

} // namespace

ArchiveRowDelegate::ArchiveRowDelegate(const ArchivePickerViewController& controller, QListView& table)
    : QAbstractItemDelegate(&table)
    , m_controller(controller)
    , m_table(table)
{
}

void ArchiveRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const bool isGroup = m_controller.tableViewIsGroupRow(index.row());
    QWidget* view = m_controller.tableViewView(isGroup ? std::nullopt : std::optional(index.column()), index.row());
    if (!view)
        return;
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    dress(*view, option);
    if (const auto* cell = qobject_cast<ArchivePickerTableCellView*>(view))
        cell->field()->setHighlighted(isSelected);
    if (isSelected)
        painter->fillRect(option.rect, view->palette().color(QPalette::Highlight));
    view->resize(option.rect.size());
    painter->save();
    painter->translate(option.rect.topLeft());
    view->render(painter, {}, {}, QWidget::DrawChildren);
    painter->translate(-option.rect.topLeft());
    if (option.state.testFlag(QStyle::State_HasFocus))
        drawFocus(*painter, option, m_table);
    painter->restore();
}

/// Is asked for every row, in sight or not: so the archive itself is not looked at.
QSize ArchiveRowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QWidget* view = m_controller.rowViewOf(index.row());
    if (!view)
        return {};
    view->setFont(option.font);
    const int width = m_table.width() - 2 * m_table.frameWidth(); // is up to date before that of the viewport
    const bool isFlowing = view->layout() && view->layout()->hasHeightForWidth();
    return {0, isFlowing ? view->layout()->totalHeightForWidth(width) : view->sizeHint().height()};
}

} // namespace havrel
