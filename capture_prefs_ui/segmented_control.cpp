// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/segmented_control.h"

#include <QAbstractButton>

namespace havrel {

void SegmentedControl::setSegments(const QList<QAbstractButton*>& buttons)
{
    m_segments = buttons;
    for (int index = 0; index < static_cast<int>(buttons.size()); ++index)
        connect(buttons[index], &QAbstractButton::clicked, this, [this, index] {
            m_selectedSegment = index;
            Q_EMIT segmentClicked();
        });
}

void SegmentedControl::setEnabled(bool isEnabled, int segment)
{
    if (QAbstractButton* button = this->segment(segment))
        button->setEnabled(isEnabled);
}

} // namespace havrel
