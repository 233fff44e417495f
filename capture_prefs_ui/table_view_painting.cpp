// SPDX-License-Identifier: MIT
// How a table paints what lies behind and between its rows.
#include "capture_prefs_ui/table_view.h"

#include <QPainter>
#include <QPaintEvent>
#include <QStyleOptionFocusRect>

namespace havrel {
namespace {

constexpr float kTint = 0.3F; // of the selection's colour, so that texts and fields on it stay legible

QColor selectionTint(const QPalette& palette)
{
    QColor tint = palette.color(QPalette::Highlight);
    tint.setAlphaF(kTint);
    return tint;
}

/// Six dots that one can take hold of.
void paintGrip(QPainter& painter, const QRect& place, const QColor& colour)
{
    const int dot = qMax(2, place.width() / 8);
    const QPoint corner = place.center() - QPoint(3 * dot / 2, 5 * dot / 2);
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 2; ++column)
            painter.fillRect(corner.x() + 2 * column * dot, corner.y() + 2 * row * dot, dot, dot, colour);
}

} // namespace

void TableView::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    if (m_objects.empty())
        return paintEmptyText(painter);
    const qsizetype last = rowAt(event->rect().bottom());
    for (qsizetype row = qMax<qsizetype>(0, rowAt(event->rect().top())); row < numberOfRows(); ++row) {
        paintRow(painter, row);
        if (row == last)
            return;
    }
}

void TableView::paintRow(QPainter& painter, qsizetype row) const
{
    const QRect place = rowRect(row);
    if (m_selection.contains(row))
        painter.fillRect(place, selectionTint(palette()));
    QRect grip = place;
    grip.setWidth(gutter());
    paintGrip(painter,
              QStyle::visualRect(layoutDirection(), viewport()->rect(), grip),
              palette().color(QPalette::PlaceholderText));
    if (row != m_selection.current() || !hasFocus())
        return;
    QStyleOptionFocusRect option;
    option.initFrom(viewport());
    option.rect = place;
    option.backgroundColor = palette().color(QPalette::Base);
    option.state |= QStyle::State_KeyboardFocusChange;
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}

void TableView::paintEmptyText(QPainter& painter) const
{
    if (!isEnabled())
        return;
    const int margin = gutter() / 2;
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(
        viewport()->rect().adjusted(margin, 0, -margin, 0), Qt::AlignCenter | Qt::TextWordWrap, m_emptyText);
}

} // namespace havrel
