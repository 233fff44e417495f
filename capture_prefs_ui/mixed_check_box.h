// SPDX-License-Identifier: MIT
#pragma once

#include "capture_prefs_ui/shared_preferences.h"

#include <QCheckBox>

namespace havrel {

/// A check box that can be shown as mixed, but never becomes so by a click: a click on a mixed box turns it on.
///
/// Threads: the main thread only.
class MixedCheckBox : public QCheckBox
{
    Q_OBJECT

public:
    using QCheckBox::QCheckBox;

    [[nodiscard]] ButtonState state() const;
    void setState(ButtonState state);

protected:
    void nextCheckState() override;
};

} // namespace havrel
