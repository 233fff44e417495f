// SPDX-License-Identifier: MIT
#pragma once

#include <QLineEdit>

namespace havrel {

/// A field for a path or a pattern, as wide as its text; while it is edited, as wide as its parent lets it be. It has
/// no frame, only a line below. Patterns run from left to right in every language.
///
/// Threads: the main thread only.
class ResizingPatternTextField : public QLineEdit
{
    Q_OBJECT

public:
    explicit ResizingPatternTextField(QWidget* parent = nullptr);

    /// The size that the field wants. Edited: the width of its parent (0 without one). Else, if it can be edited: the
    /// width of the text and 7 more, rounded up. Else, and the height always: the toolkit's own. In device-independent
    /// pixels. \selector intrinsicContentSize
    [[nodiscard]] QSize intrinsicContentSize() const;
    [[nodiscard]] QSize sizeHint() const override { return intrinsicContentSize(); }
    [[nodiscard]] QSize minimumSizeHint() const override; ///< wide enough to be hit, and for the placeholder

    /// Has the keyboard, or gets it back when a menu closes or the window comes to the front again.
    [[nodiscard]] bool isEdited() const noexcept { return m_isEdited; }

Q_SIGNALS:
    /// The keyboard went elsewhere, or Return was pressed.
    void editingEnded();
    /// Escape was pressed: what was typed is not wanted.
    void editingCancelled();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void setEdited(bool isEdited);

    bool m_isEdited = false;
};

} // namespace havrel
