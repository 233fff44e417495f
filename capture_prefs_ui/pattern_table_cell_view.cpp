// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/pattern_table_cell_view.h"

#include "capture_prefs_ui/pattern_problem_popover.h"
#include "capture_prefs_ui/resizing_pattern_text_field.h"
#include "capture_prefs_ui/table_view.h"
#include "filters/pattern_filter_def.h"
#include "foundation/dictionary_additions.h"
#include "foundation/notification_center.h"
#include "foundation/observing.h"

namespace havrel {
namespace {

/// The table is in a window that the system knows of, on screen or not.
bool isInWindow(const TableView& table)
{
    return table.window()->windowHandle() != nullptr;
}

} // namespace

PatternFilterDefPtr PatternTableCellView::filterDef() const
{
    return std::static_pointer_cast<PatternFilterDef>(sharedObjectValue());
}

void PatternTableCellView::setPopover(PatternProblemPopover* popover)
{
    m_popover = popover;
}

void PatternTableCellView::awakeFromNib()
{
    for (const QString& property : editableFilterProperties())
        observeProperty(*this,
                        KeyPath::fromText(QLatin1StringView("objectValue.") + property),
                        ObservationOptions::NoInitialCall,
                        [this, property](QObject*, QObject*, const QVariant& before, const QVariant&) {
                            valueChanged(property, before);
                        });
    connect(this, &TableCellView::objectValueChanged, this, [this] {
        if (m_popover && isAncestorOf(m_popover->field()))
            dismissFailure(); // it was about the object before
        showFilterDef();
    });
}

void PatternTableCellView::bind(ResizingPatternTextField& field, const char* name)
{
    const Binding binding{&field, name};
    m_bindings << binding;
    connect(&field, &ResizingPatternTextField::editingEnded, this, [this, &field] { controlTextDidEndEditing(field); });
    connect(&field, &ResizingPatternTextField::editingCancelled, this, [this, binding] { cancel(binding); });
}

QString PatternTableCellView::boundText(const Binding& binding) const
{
    return objectValue() ? objectValue()->property(binding.property).toString() : QString();
}

/// An absent text shows as an empty field, and an empty field that was empty before leaves it absent. A field that was
/// emptied says the same as one that was never filled: absent, but for a complete line, which would then be none.
void PatternTableCellView::commit(const Binding& binding)
{
    const QString text = binding.field->text();
    if (!objectValue() || text == boundText(binding))
        return;
    const bool isAbsent = text.isEmpty() && filterDef()->simple();
    objectValue()->setProperty(binding.property, isAbsent ? QString() : text);
}

void PatternTableCellView::cancel(const Binding& binding)
{
    binding.field->setText(boundText(binding));
    validateFields();
}

void PatternTableCellView::controlTextDidEndEditing(ResizingPatternTextField& field)
{
    for (const Binding& binding : std::as_const(m_bindings))
        if (binding.field == &field)
            commit(binding);
    if (tableView() && objectValue())
        validateFields();
}

void PatternTableCellView::commitEditing()
{
    for (const Binding& binding : std::as_const(m_bindings))
        commit(binding);
}

void PatternTableCellView::showFilterDef()
{
    for (const Binding& binding : std::as_const(m_bindings)) {
        const QString text = boundText(binding);
        if (binding.field->text() != text)
            binding.field->setText(text);
        binding.field->setCursorPosition(0);
    }
}

void PatternTableCellView::valueChanged(const QString& property, const QVariant& before)
{
    for (const Binding& binding : std::as_const(m_bindings))
        if (property == QLatin1StringView(binding.property) && binding.field->text() != boundText(binding))
            binding.field->setText(boundText(binding));
    postValueChanged(property, before);
}

void PatternTableCellView::postValueChanged(const QString& property, const QVariant& before)
{
    const QPointer<TableView> table = tableView();
    if (!table || !isInWindow(*table) || !objectValue())
        return;
    QVariantMap userInfo{{QStringLiteral("view"), QVariant::fromValue<QObject*>(this)},
                         {QStringLiteral("obj"), QVariant::fromValue(filterDef())},
                         {QStringLiteral("path"), property}};
    setObjectOrNil(userInfo, before, QStringLiteral("old"));
    const QPointer<PatternTableCellView> alive(this);
    NotificationCenter::defaultCenter().post(kPatternTableCellValueChanged, *table, userInfo);
    if (alive)
        postDidChangeValueForKeyPath(property);
}

void PatternTableCellView::autoEdit()
{
    if (ResizingPatternTextField* field = textField()) {
        field->setFocus(Qt::OtherFocusReason);
        field->selectAll();
    }
}

QString PatternTableCellView::spokenText() const
{
    return objectValue() ? filterDef()->canonicalPattern() : QString();
}

void PatternTableCellView::tell(const Validity& validity, ResizingPatternTextField& field)
{
    if (validity)
        dismissFailure();
    else
        verifyFailureInField(field, validity.error->localizedDescription());
}

void PatternTableCellView::verifyFailureInField(ResizingPatternTextField& field, const QString& description)
{
    if (!m_popover)
        return;
    m_popover->setProblemDescription(description);
    m_popover->showRelativeTo(field);
}

void PatternTableCellView::dismissFailure()
{
    if (m_popover)
        m_popover->dismiss();
}

} // namespace havrel
