// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/pattern_problem_popover.h"

#include <QEvent>
#include <QPainter>
#include <QScreen>

#include <algorithm>

#include <ui_PatternProblemPopover.h>

namespace havrel {
namespace {

constexpr int kArrow = 8; // height of the arrow, and half its width, in pixels

} // namespace

PatternProblemPopover::PatternProblemPopover(QWidget* parent)
    : QFrame(parent, Qt::ToolTip)
    , m_form(std::make_unique<Ui::PatternProblemPopover>())
{
    m_form->setupUi(this);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFocusPolicy(Qt::NoFocus);
    m_form->descriptionLabel->setForegroundRole(QPalette::ToolTipText);
    m_form->descriptionLabel->setTextFormat(Qt::PlainText); // it quotes what people type
}

PatternProblemPopover::~PatternProblemPopover()
{
    unwatch();
}

QString PatternProblemPopover::problemDescription() const
{
    return m_form->descriptionLabel->text();
}

QLabel& PatternProblemPopover::descriptionLabel() const
{
    return *m_form->descriptionLabel;
}

void PatternProblemPopover::setProblemDescription(const QString& text)
{
    m_form->descriptionLabel->setText(text);
    if (!m_field)
        return;
    m_field->setAccessibleDescription(text);
    place();
}

void PatternProblemPopover::showRelativeTo(QWidget& field)
{
    if (m_field != &field) {
        dismiss();
        m_field = &field;
        watch();
    }
    field.setAccessibleDescription(problemDescription());
    place();
    showIfFieldIsSeen();
}

/// A field that was scrolled away, or whose window is not in front, has nothing to point at.
void PatternProblemPopover::showIfFieldIsSeen()
{
    setVisible(m_field && m_field->isVisible() && !m_field->visibleRegion().isEmpty());
}

void PatternProblemPopover::dismiss()
{
    unwatch();
    if (m_field)
        m_field->setAccessibleDescription({});
    m_field.clear();
    hide();
}

void PatternProblemPopover::watch()
{
    for (QWidget* each = m_field; each; each = each->isWindow() ? nullptr : each->parentWidget()) {
        each->installEventFilter(this);
        m_watched << each;
    }
    connect(m_field, &QObject::destroyed, this, &PatternProblemPopover::dismiss);
}

void PatternProblemPopover::unwatch()
{
    if (m_field)
        disconnect(m_field, &QObject::destroyed, this, nullptr);
    for (const QPointer<QWidget>& each : std::as_const(m_watched))
        if (each)
            each->removeEventFilter(this);
    m_watched.clear();
}

bool PatternProblemPopover::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
        place();
        if (isVisible() || m_field->isActiveWindow())
            showIfFieldIsSeen();
        break;
    case QEvent::WindowDeactivate:
        hide();
        break;
    case QEvent::WindowActivate:
        showIfFieldIsSeen();
        break;
    case QEvent::Hide:
    case QEvent::ParentChange:
        dismiss();
        break;
    default:
        break;
    }
    return QFrame::eventFilter(watched, event);
}

void PatternProblemPopover::place()
{
    if (!m_field)
        return;
    const QRect at(m_field->mapToGlobal(QPoint()), m_field->size());
    const QRect screen = m_field->screen()->availableGeometry();
    m_form->layout->setContentsMargins(kArrow, 2 * kArrow, kArrow, 2 * kArrow);
    const QSize size = sizeHint();
    m_isAbove = at.bottom() + size.height() > screen.bottom() && at.top() - size.height() >= screen.top();
    const int from = layoutDirection() == Qt::RightToLeft ? at.right() - size.width() : at.left();
    const int left = std::max(screen.left(), std::min(from, screen.right() - size.width()));
    setGeometry(QRect({left, m_isAbove ? at.top() - size.height() : at.bottom() + 1}, size));
    m_arrowAt = std::clamp(at.center().x() - left, 2 * kArrow, std::max(2 * kArrow, size.width() - 2 * kArrow));
    setMask(QRegion(outline())); // no translucency: without a compositor it would be black
    update();
}

/// The box and its arrow.
QPolygon PatternProblemPopover::outline() const
{
    const QRect box = rect().adjusted(0, m_isAbove ? 0 : kArrow, -1, m_isAbove ? -kArrow : -1);
    QPolygon shape(QList<QPoint>{box.topLeft()});
    if (!m_isAbove)
        shape << QPoint(m_arrowAt - kArrow, box.top()) << QPoint(m_arrowAt, 0) << QPoint(m_arrowAt + kArrow, box.top());
    shape << box.topRight() << box.bottomRight();
    if (m_isAbove)
        shape << QPoint(m_arrowAt + kArrow, box.bottom()) << QPoint(m_arrowAt, height() - 1)
              << QPoint(m_arrowAt - kArrow, box.bottom());
    return shape << box.bottomLeft() << box.topLeft();
}

void PatternProblemPopover::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setBrush(palette().brush(QPalette::ToolTipBase));
    painter.setPen(palette().color(QPalette::ToolTipText));
    painter.drawPolygon(outline());
}

} // namespace havrel
