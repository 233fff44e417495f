// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/visible_indicators.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>

namespace havrel {
namespace {

const QString kToolkitStyle = QStringLiteral("fusion");

bool isDark(const QColor& colour)
{
    return colour.lightness() < 128;
}

/// Half way between the window and its texts.
QColor edgeColour(const QPalette& palette)
{
    const QColor window = palette.color(QPalette::Window);
    const QColor text = palette.color(QPalette::WindowText);
    return {(window.red() + text.red()) / 2, (window.green() + text.green()) / 2, (window.blue() + text.blue()) / 2};
}

/// The style marks the control that has the focus itself.
bool needsEdge(const QStyleOption& option)
{
    const bool isMarked =
        option.state.testFlag(QStyle::State_HasFocus) && option.state.testFlag(QStyle::State_KeyboardFocusChange);
    return isDark(option.palette.color(QPalette::Window)) && !isMarked;
}

/// Where the style draws its own.
void drawEdge(bool isRound, const QStyleOption& option, QPainter& painter)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(edgeColour(option.palette));
    painter.setBrush(Qt::NoBrush);
    const QRectF edge = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (isRound)
        painter.drawEllipse(edge);
    else
        painter.drawRect(edge);
    painter.restore();
}

} // namespace

VisibleIndicators::VisibleIndicators()
    : QProxyStyle(kToolkitStyle)
{
}

void VisibleIndicators::install()
{
    if (QApplication::style()->name() == kToolkitStyle)
        QApplication::setStyle(new VisibleIndicators); // the application owns it
}

void VisibleIndicators::drawPrimitive(PrimitiveElement element,
                                      const QStyleOption* option,
                                      QPainter* painter,
                                      const QWidget* widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const bool isRound = element == PE_IndicatorRadioButton;
    if ((isRound || element == PE_IndicatorCheckBox) && needsEdge(*option))
        drawEdge(isRound, *option, *painter);
}

} // namespace havrel
