// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/pattern_table_expert_cell_view.h"

#include "filters/pattern_filter_def.h"
#include "foundation/observing.h"

#include <ui_PatternTableExpertCell.h>

namespace havrel {

PatternTableExpertCellView::PatternTableExpertCellView(QWidget* parent)
    : PatternTableCellView(QStringLiteral("complete"), parent)
    , m_form(std::make_unique<Ui::PatternTableExpertCell>())
{
    m_form->setupUi(this);
    m_form->typeLabel->setForegroundRole(QPalette::PlaceholderText);
    bind(*m_form->textField, "completePattern");
    awakeFromNib();
}

PatternTableExpertCellView::~PatternTableExpertCellView()
{
    removeAllObservations(*this); // the definition may go with the base, after the fields
}

QStringList PatternTableExpertCellView::editableFilterProperties() const
{
    return {QStringLiteral("completePattern")};
}

ResizingPatternTextField* PatternTableExpertCellView::textField() const
{
    return m_form->textField;
}

void PatternTableExpertCellView::validateFields()
{
    tell(filterDef()->validateCompletePattern(textField()->text()), *textField());
}

QList<QWidget*> PatternTableExpertCellView::editors() const
{
    return {m_form->textField};
}

QString PatternTableExpertCellView::spokenText() const
{
    return objectValue() ? filterDef()->completePattern() : QString();
}

} // namespace havrel
