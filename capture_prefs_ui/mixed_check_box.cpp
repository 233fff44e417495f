// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/mixed_check_box.h"

namespace havrel {

ButtonState MixedCheckBox::state() const
{
    if (checkState() == Qt::PartiallyChecked)
        return ButtonState::Mixed;
    return isChecked() ? ButtonState::On : ButtonState::Off;
}

void MixedCheckBox::setState(ButtonState state)
{
    if (state == ButtonState::Mixed)
        setCheckState(Qt::PartiallyChecked);
    else
        setCheckState(state == ButtonState::On ? Qt::Checked : Qt::Unchecked);
}

void MixedCheckBox::nextCheckState()
{
    setCheckState(checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
}

} // namespace havrel
