// SPDX-License-Identifier: MIT
#pragma once

#include "capture_prefs_ui/shared_preferences.h"

#include <QRadioButton>

namespace havrel {

/// A radio button that can stand for several items: on, off, or mixed, which is drawn as a dash and told to assistive
/// technology. A click on a mixed button turns it on.
///
/// Whoever owns the buttons of a group sets the states of all of them; that tells nobody, only clicks do.
///
/// Threads: the main thread only.
class MixedRadioButton : public QRadioButton
{
    Q_OBJECT

public:
    explicit MixedRadioButton(QWidget* parent = nullptr);

    [[nodiscard]] ButtonState state() const noexcept;
    void setState(ButtonState state);

protected:
    void paintEvent(QPaintEvent* event) override;
    void nextCheckState() override;

private:
    void paintDash(QPainter& painter, const QStyleOptionButton& option) const;

    bool m_isMixed = false;
};

} // namespace havrel
