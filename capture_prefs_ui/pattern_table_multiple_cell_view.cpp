// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/pattern_table_multiple_cell_view.h"

#include <ui_PatternTableMultipleCell.h>

namespace havrel {

PatternTableMultipleCellView::PatternTableMultipleCellView(QWidget* parent)
    : PatternTableCellView(QStringLiteral("multiple"), parent)
    , m_form(std::make_unique<Ui::PatternTableMultipleCell>())
{
    m_form->setupUi(this);
    awakeFromNib();
}

PatternTableMultipleCellView::~PatternTableMultipleCellView() = default;

QString PatternTableMultipleCellView::spokenText() const
{
    return m_form->label->text();
}

} // namespace havrel
