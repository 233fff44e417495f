// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/pattern_table_simple_cell_view.h"

#include "filters/pattern_filter_def.h"
#include "foundation/observing.h"

#include <ui_PatternTableSimpleCell.h>

namespace havrel {

PatternTableSimpleCellView::PatternTableSimpleCellView(QWidget* parent)
    : PatternTableCellView(QStringLiteral("simple"), parent)
    , m_form(std::make_unique<Ui::PatternTableSimpleCell>())
{
    m_form->setupUi(this);
    m_form->typeLabel->setForegroundRole(QPalette::PlaceholderText);
    bind(*m_form->pathField, "anchorPath");
    bind(*m_form->textField, "singlePattern");
    connect(m_form->propogateButton, &QCheckBox::clicked, this, [this](bool isOn) {
        if (objectValue())
            filterDef()->setPropagateIndefinitely(isOn);
    });
    const SettingBlock showDepth = [this](QObject*, QObject*, const QVariant&, const QVariant& now) {
        m_form->propogateButton->setChecked(now.toBool());
    };
    observeProperty(*this, "objectValue.propagateIndefinitely", ObservationOptions::NoInitialCall, showDepth);
    observeProperty(
        *this, "objectValue.type", [this](QObject*, QObject*, const QVariant&, const QVariant&) { showType(); });
    awakeFromNib();
}

PatternTableSimpleCellView::~PatternTableSimpleCellView()
{
    removeAllObservations(*this); // the definition may go with the base, after the fields
}

QStringList PatternTableSimpleCellView::editableFilterProperties() const
{
    return {QStringLiteral("anchorPath"), QStringLiteral("singlePattern"), QStringLiteral("propagateIndefinitely")};
}

ResizingPatternTextField* PatternTableSimpleCellView::pathField() const
{
    return m_form->pathField;
}

ResizingPatternTextField* PatternTableSimpleCellView::textField() const
{
    return m_form->textField;
}

QCheckBox* PatternTableSimpleCellView::propogateButton() const
{
    return m_form->propogateButton;
}

QLabel* PatternTableSimpleCellView::typeLabel() const
{
    return m_form->typeLabel;
}

QString PatternTableSimpleCellView::readableType() const
{
    const bool isRegex = objectValue() && filterDef()->type() == PatternType::RegularExpression;
    return isRegex ? QStringLiteral("regex") : QStringLiteral("glob");
}

void PatternTableSimpleCellView::showType()
{
    m_form->typeLabel->setText(readableType());
    Q_EMIT readableTypeChanged();
}

void PatternTableSimpleCellView::showFilterDef()
{
    PatternTableCellView::showFilterDef();
    m_form->propogateButton->setChecked(objectValue() && filterDef()->propagateIndefinitely());
}

void PatternTableSimpleCellView::validateFields()
{
    const PatternFilterDefPtr definition = filterDef();
    const Validity anchor = definition->validateAnchorPath(pathField()->text());
    if (!anchor)
        return tell(anchor, *pathField());
    tell(definition->validateSinglePattern(textField()->text()), *textField());
}

QList<QWidget*> PatternTableSimpleCellView::editors() const
{
    return {m_form->pathField, m_form->textField, m_form->propogateButton};
}

QString PatternTableSimpleCellView::spokenText() const
{
    if (!objectValue())
        return {};
    const QString anchor = filterDef()->anchorPath();
    const QString pattern = filterDef()->singlePattern();
    return anchor.isEmpty() ? tr("leave out %1").arg(pattern) : tr("in %1 leave out %2").arg(anchor, pattern);
}

} // namespace havrel
