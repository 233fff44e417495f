// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/shortened_label.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

#include <algorithm>

namespace havrel {
namespace {

/// Wide enough for a name of usual length; the window grows no further for a longer one.
constexpr int kMostCharacters = 40;

} // namespace

ShortenedLabel::ShortenedLabel(QWidget* parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

void ShortenedLabel::setElideMode(Qt::TextElideMode mode)
{
    m_mode = mode;
    update();
}

/// Names of files may hold line breaks.
QString ShortenedLabel::line() const
{
    QString line = text();
    return line.replace(u'\n', u' ');
}

QString ShortenedLabel::shownText() const
{
    return fontMetrics().elidedText(line(), m_mode, contentsRect().width());
}

QSize ShortenedLabel::sizeHint() const
{
    const int most = kMostCharacters * fontMetrics().averageCharWidth();
    return {std::min(fontMetrics().horizontalAdvance(line()), most), fontMetrics().height()};
}

QSize ShortenedLabel::minimumSizeHint() const
{
    return {0, sizeHint().height()};
}

bool ShortenedLabel::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip || !toolTip().isEmpty())
        return QLabel::event(event);
    if (shownText() == line())
        QToolTip::hideText();
    else
        QToolTip::showText(static_cast<const QHelpEvent*>(event)->globalPos(), text().toHtmlEscaped(), this);
    return true;
}

void ShortenedLabel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const int direction = text().isRightToLeft() ? Qt::TextForceRightToLeft : Qt::TextForceLeftToRight;
    style()->drawItemText(&painter,
                          contentsRect(),
                          static_cast<int>(alignment()) | direction | Qt::TextSingleLine,
                          palette(),
                          isEnabled(),
                          shownText(),
                          foregroundRole());
}

} // namespace havrel
