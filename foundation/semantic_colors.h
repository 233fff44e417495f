// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QStringList>

#include <initializer_list>

namespace havrel {

// Colours by what they are for. A name is offered when it stands in the table of semantic_colors.cpp, which takes each
// from the application's palette (so it follows the desktop's theme at every call) or, for few, is a fixed colour.
//
// Threads: the main thread only.

/// The first of \p names that is offered, else the gray halfway between black and white. \selector bestSemanticColor:
[[nodiscard]] QColor bestSemanticColor(std::initializer_list<QStringView> names);
/// The same for a list. \selector bestSemanticColorList:
[[nodiscard]] QColor bestSemanticColorList(const QStringList& names);

/// Behind selected content. \selector selectedBackgroundColor
[[nodiscard]] QColor selectedBackgroundColor();
/// Around a progress bar. \selector progressBorderColor
[[nodiscard]] QColor progressBorderColor();
/// What is done, in a progress bar. \selector progressFillColor
[[nodiscard]] QColor progressFillColor();
/// What is done, in the progress bar of a search. \selector searchProgressFillColor
[[nodiscard]] QColor searchProgressFillColor();
/// What is to be done, in a progress bar: the colour under a page. \selector progressBackgroundColor
[[nodiscard]] QColor progressBackgroundColor();
/// Behind a window's contents, where something may shine through: the window colour, or a fixed light gray on systems
/// that offer none of use (before `Process::isMojaveOrLater`). \selector frostableWindowBackgroundColor
[[nodiscard]] QColor frostableWindowBackgroundColor();

} // namespace havrel
