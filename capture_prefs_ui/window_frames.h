// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QWidget;

namespace havrel {

/// Where windows stood when they were last closed, by name, in the file "Havrel/windows.ini" of the user's state folder
/// ($XDG_STATE_HOME, else ~/.local/state). It is state, not a preference: losing it costs nothing, so failures are
/// silent.
///
/// Threads: the main thread only.
namespace window_frames {

/// Gives the window the frame that was saved under \p name, moved onto a screen that is there, and down by the height
/// of a title bar (and as far to the trailing side) for each visible window that stands at the very place.
///
/// \return no, and the window is left as it is, when there is none.
bool restore(QWidget& window, const QString& name);

/// Keeps the window's frame under \p name: the last one that is saved counts.
void save(const QWidget& window, const QString& name);

} // namespace window_frames
} // namespace havrel
