// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/table_cell_box_view.h"

namespace havrel {

TableCellBoxView::TableCellBoxView(QWidget* parent)
    : QFrame(parent)
{
    setFrameShape(QFrame::NoFrame);
    setContentsMargins({});
    setAutoFillBackground(false);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

} // namespace havrel
