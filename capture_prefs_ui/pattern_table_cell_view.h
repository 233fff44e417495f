// SPDX-License-Identifier: MIT
#pragma once

#include "capture_prefs_ui/pattern_problem_popover.h"
#include "capture_prefs_ui/table_cell_view.h"
#include "filters/pattern_filter_defs.h"

#include <QPointer>
#include <QStringList>

class QLineEdit;

namespace havrel {

class ResizingPatternTextField;
struct Validity;

/// Posted by a pattern table when a property of a pattern that it shows in a window is another now. The object is the
/// TableView. User info: "view" the row (QObject*), "obj" the definition (PatternFilterDefPtr), "path" the name of the
/// property, "old" its value before (the null object for nil).
inline constexpr QLatin1StringView kPatternTableCellValueChanged{"PatternTableCellValueChanged"};

/// The base of the rows of a pattern table; shows one definition.
///
/// What is typed is taken over when editing ends, valid or not; what is wrong is only told, in the popover.
///
/// Threads: the main thread only.
class PatternTableCellView : public TableCellView
{
    Q_OBJECT

public:
    using TableCellView::TableCellView;

    [[nodiscard]] PatternFilterDefPtr filterDef() const; ///< Null while it is not in use. \selector filterDef
    /// The properties of the definition that can be edited here; none. \selector editableFilterProperties
    [[nodiscard]] virtual QStringList editableFilterProperties() const { return {}; }
    [[nodiscard]] virtual ResizingPatternTextField* textField() const { return nullptr; } ///< \selector textField

    [[nodiscard]] PatternProblemPopover* popover() const noexcept { return m_popover; } ///< \selector popover
    void setPopover(PatternProblemPopover* popover); ///< Not owned. \selector setPopover:

    void autoEdit() override; ///< \selector autoEdit
    void commitEditing() override;
    [[nodiscard]] QString spokenText() const override;

    /// Checks what the fields hold, and tells what is wrong. \selector validateFields
    virtual void validateFields() {}
    /// \selector verifyFailureInField:withDescription:
    void verifyFailureInField(ResizingPatternTextField& field, const QString& description);
    void dismissFailure(); ///< \selector dismissFailure
    /// Takes over what the field holds and checks it. \selector controlTextDidEndEditing:
    void controlTextDidEndEditing(ResizingPatternTextField& field);
    /// Called after a property was reported as changed, for classes to come. \selector postDidChangeValueForKeyPath:
    virtual void postDidChangeValueForKeyPath(const QString& /*keyPath*/) {}

protected:
    /// The last thing that the constructor of a kind of row does. \selector awakeFromNib
    void awakeFromNib();
    /// Has the field show and change the text property \p name.
    void bind(ResizingPatternTextField& field, const char* name);
    /// Tells the result of checking \p field: the failure there, or that all is well.
    void tell(const Validity& validity, ResizingPatternTextField& field);
    /// Brings the fields up to date with the definition, but for the one that is being edited.
    virtual void showFilterDef();

private:
    struct Binding
    {
        ResizingPatternTextField* field;
        const char* property;
    };

    void valueChanged(const QString& property, const QVariant& before);
    void postValueChanged(const QString& property, const QVariant& before);
    void commit(const Binding& binding);
    void cancel(const Binding& binding);
    [[nodiscard]] QString boundText(const Binding& binding) const;

    QList<Binding> m_bindings;
    QPointer<PatternProblemPopover> m_popover;
};

} // namespace havrel
