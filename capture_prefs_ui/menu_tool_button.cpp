// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/menu_tool_button.h"

#include <QStyleOptionToolButton>

namespace havrel {

void MenuToolButton::initStyleOption(QStyleOptionToolButton* option) const
{
    QToolButton::initStyleOption(option);
    option->features |= QStyleOptionToolButton::HasMenu;
}

} // namespace havrel
