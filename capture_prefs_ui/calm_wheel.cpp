// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/calm_wheel.h"

#include <QEvent>
#include <QWidget>

namespace havrel {

bool CalmWheel::eventFilter(QObject* object, QEvent* event)
{
    const auto* control = qobject_cast<QWidget*>(object);
    if (event->type() != QEvent::Wheel || control == nullptr || control->hasFocus())
        return QObject::eventFilter(object, event);
    event->ignore();
    return true;
}

} // namespace havrel
