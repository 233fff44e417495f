// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

namespace havrel {

/// A label of one line of plain text that gets by with any width: what does not fit is left out of what is shown, told
/// by a tool tip, and still the label's text.
///
/// Threads: the main thread only.
class ShortenedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ShortenedLabel(QWidget* parent = nullptr);

    /// Which part goes; the middle unless set: names differ at their ends.
    void setElideMode(Qt::TextElideMode mode);

    /// What is shown of the text.
    [[nodiscard]] QString shownText() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QString line() const;

    Qt::TextElideMode m_mode = Qt::ElideMiddle;
};

} // namespace havrel
