// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/table_drop_indicator.h"

namespace havrel {

TableDropIndicator::TableDropIndicator(QWidget& viewport)
    : QWidget(&viewport)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Highlight);
    hide();
}

} // namespace havrel
