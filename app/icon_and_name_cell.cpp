// SPDX-License-Identifier: MIT
#include "app/icon_and_name_cell.h"

#include <QPainter>
#include <QStyle>
#include <QWidget>

#include <algorithm>

namespace havrel {
namespace {

constexpr int kImagePartMargin = 6; // pixels that the part is wider than the image
constexpr int kImageOffset = 4;     // pixels from the edge to the image
constexpr int kVerticalMargin = 3;  // pixels above and below what is highest
constexpr int kTextMargin = 2;      // pixels that any text cell keeps free before and after its text

/// Half of \p difference, rounded up, also where it is negative.
int halfRoundedUp(int difference)
{
    return difference > 0 ? (difference + 1) / 2 : difference / 2;
}

} // namespace

IconAndNameGeometry IconAndNameGeometry::of(const QRect& frame, const QSize& imageSize, Qt::LayoutDirection direction)
{
    if (imageSize.isEmpty())
        return {{}, {}, frame};
    const QRect part(frame.topLeft(), QSize(imageSize.width() + kImagePartMargin, frame.height()));
    const QPoint corner = part.topLeft() + QPoint(kImageOffset, halfRoundedUp(part.height() - imageSize.height()));
    const QRect rest = frame.adjusted(part.width(), 0, 0, 0);
    return {QStyle::visualRect(direction, frame, part),
            QStyle::visualRect(direction, frame, QRect(corner, imageSize)),
            QStyle::visualRect(direction, frame, rest)};
}

IconAndNameCell::~IconAndNameCell() = default;

void IconAndNameCell::setObjectValue(const QVariant& value)
{
    m_value = value;
    m_text = value.toString();
}

void IconAndNameCell::drawInteriorWithFrame(QPainter& painter, const QRect& frame, const QWidget& view) const
{
    const QIcon icon = cellImage();
    const QSize size = icon.isNull() ? QSize() : imageSize(view);
    const IconAndNameGeometry places = IconAndNameGeometry::of(frame, size, view.layoutDirection());
    if (!icon.isNull()) {
        if (m_isHighlighted)
            painter.fillRect(places.imagePart, view.palette().color(QPalette::Highlight));
        icon.paint(&painter, places.image);
    }
    painter.setFont(view.font());
    painter.setPen(view.palette().color(m_isHighlighted ? QPalette::HighlightedText : QPalette::Text));
    // At the leading edge of the window, whatever the direction of the text itself, which paths keep.
    const Qt::Alignment side = view.isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft;
    const int direction = m_text.isRightToLeft() ? Qt::TextForceRightToLeft : Qt::TextForceLeftToRight;
    const int flags = static_cast<int>(side | Qt::AlignAbsolute | Qt::AlignVCenter) | direction | Qt::TextSingleLine;
    const QRect text = places.text.adjusted(kTextMargin, 0, -kTextMargin, 0);
    painter.drawText(text, flags, view.fontMetrics().elidedText(m_text, Qt::ElideMiddle, text.width()));
}

QSize IconAndNameCell::cellSize(const QWidget& view) const
{
    const QSize image = cellImage().isNull() ? QSize(0, 0) : imageSize(view) + QSize(kImagePartMargin, 0);
    const QFontMetrics metrics = view.fontMetrics();
    const int height = std::max(imageSize(view).height(), metrics.height());
    return {image.width() + metrics.horizontalAdvance(m_text) + 2 * kTextMargin, height + 2 * kVerticalMargin};
}

QSize IconAndNameCell::imageSize(const QWidget& view)
{
    const int side =
        std::max(view.style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, &view), view.fontMetrics().height());
    return {side, side};
}

} // namespace havrel
