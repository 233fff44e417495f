// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

namespace havrel {

/// Puts the label's text at the leading edge of the window, whatever the direction of the text itself: names of files
/// are often written the other way than the user's language. To be called again when the direction of the window
/// changes.
///
/// Threads: the main thread only.
inline void alignAtLeadingEdge(QLabel& label)
{
    const Qt::Alignment side = label.isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft;
    label.setAlignment(side | Qt::AlignAbsolute | Qt::AlignVCenter);
}

} // namespace havrel
