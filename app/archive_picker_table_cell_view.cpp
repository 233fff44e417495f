// SPDX-License-Identifier: MIT
#include "app/archive_picker_table_cell_view.h"

#include "app/item_field.h"

#include <QChildEvent>

namespace havrel {

ArchivePickerTableCellView::ArchivePickerTableCellView(QWidget* parent)
    : QWidget(parent)
{
}

QWidget* ArchivePickerTableCellView::hitTest(const QPoint& /*point*/)
{
    return this;
}

ItemField* ArchivePickerTableCellView::field() const
{
    return findChild<ItemField*>(QString(), Qt::FindDirectChildrenOnly);
}

/// The toolkit then looks past them for whom a click is for.
void ArchivePickerTableCellView::childEvent(QChildEvent* event)
{
    if (event->added() && event->child()->isWidgetType())
        static_cast<QWidget*>(event->child())->setAttribute(Qt::WA_TransparentForMouseEvents);
    QWidget::childEvent(event);
}

} // namespace havrel
