// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QWidget>

class QAbstractButton;

namespace havrel {

/// Buttons in a row that act as one control: it tells which of them was pressed last.
///
/// Threads: the main thread only.
class SegmentedControl : public QWidget
{
    Q_OBJECT

public:
    using QWidget::QWidget;

    void setSegments(const QList<QAbstractButton*>& buttons); ///< Its children, in order; once.
    [[nodiscard]] QAbstractButton* segment(int index) const { return m_segments.value(index); }
    [[nodiscard]] int selectedSegment() const noexcept { return m_selectedSegment; } ///< \selector selectedSegment
    void setSelectedSegment(int index) noexcept { m_selectedSegment = index; }       ///< \selector setSelectedSegment:
    void setEnabled(bool isEnabled, int segment); ///< \selector setEnabled:forSegment:
    using QWidget::setEnabled;

    /// A segment was pressed; it is the selected one now.
    Q_SIGNAL void segmentClicked();

private:
    QList<QAbstractButton*> m_segments;
    int m_selectedSegment = -1;
};

} // namespace havrel
