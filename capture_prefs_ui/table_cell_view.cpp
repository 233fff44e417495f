// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/table_cell_view.h"

#include <utility>

namespace havrel {

TableCellView::TableCellView(const QString& identifier, QWidget* parent)
    : QWidget(parent)
    , m_identifier(identifier)
{
}

void TableCellView::setObjectValue(std::shared_ptr<QObject> object)
{
    if (object == m_objectValue)
        return;
    const std::shared_ptr<QObject> before = std::exchange(m_objectValue, std::move(object));
    Q_EMIT objectValueChanged();
}

} // namespace havrel
