// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/resizing_pattern_text_field.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace havrel {
namespace {

/// Around the text: the toolkit's own margins of a field without a frame, and the cursor.
constexpr qreal kAroundText = 7.0;
constexpr int kFewestCharacters = 10; // that a field has room for, whatever is in it

} // namespace

ResizingPatternTextField::ResizingPatternTextField(QWidget* parent)
    : QLineEdit(parent)
{
    setFrame(false);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed); // not Expanding, as fields usually are
    setLayoutDirection(Qt::LeftToRight);
    setInputMethodHints(Qt::ImhNoAutoUppercase | Qt::ImhNoPredictiveText);
    setAcceptDrops(false); // drops are the table's, but while it is edited
    connect(this, &QLineEdit::editingFinished, this, &ResizingPatternTextField::editingEnded);
    connect(this, &QLineEdit::textChanged, this, &QWidget::updateGeometry);
}

QSize ResizingPatternTextField::intrinsicContentSize() const
{
    const QSize own = QLineEdit::sizeHint();
    if (m_isEdited)
        return {parentWidget() ? parentWidget()->width() : 0, own.height()};
    if (isReadOnly())
        return own;
    const qreal width = QFontMetricsF(font()).horizontalAdvance(text()) + kAroundText;
    return {static_cast<int>(std::ceil(width)), own.height()};
}

QSize ResizingPatternTextField::minimumSizeHint() const
{
    const int fewest = kFewestCharacters * fontMetrics().averageCharWidth();
    const int width = std::max(fewest, fontMetrics().horizontalAdvance(placeholderText()));
    return {width + static_cast<int>(kAroundText), QLineEdit::minimumSizeHint().height()};
}

void ResizingPatternTextField::setEdited(bool isEdited)
{
    if (isEdited == m_isEdited)
        return;
    m_isEdited = isEdited;
    setAcceptDrops(isEdited);
    updateGeometry();
}

bool ResizingPatternTextField::event(QEvent* event)
{
    // With no typing to take back or to repeat, the keys for it are the table's.
    if (event->type() == QEvent::ShortcutOverride) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if ((key.matches(QKeySequence::Undo) && !isUndoAvailable()) ||
            (key.matches(QKeySequence::Redo) && !isRedoAvailable())) {
            event->ignore();
            return false;
        }
    }
    return QLineEdit::event(event);
}

void ResizingPatternTextField::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && isModified()) {
        Q_EMIT editingCancelled();
        return;
    }
    QLineEdit::keyPressEvent(event);
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        event->accept(); // it was for this field, not for a button of the window
}

void ResizingPatternTextField::focusInEvent(QFocusEvent* event)
{
    QLineEdit::focusInEvent(event);
    setEdited(!isReadOnly());
}

void ResizingPatternTextField::focusOutEvent(QFocusEvent* event)
{
    const bool comesBack = event->reason() == Qt::ActiveWindowFocusReason || event->reason() == Qt::PopupFocusReason;
    if (!comesBack)
        setEdited(false);
    QLineEdit::focusOutEvent(event);
}

void ResizingPatternTextField::paintEvent(QPaintEvent* event)
{
    QLineEdit::paintEvent(event);
    QPainter painter(this);
    const QPalette::ColorRole role = hasFocus() ? QPalette::Highlight : QPalette::PlaceholderText;
    painter.fillRect(0, height() - 1, width(), 1, palette().color(role));
}

} // namespace havrel
