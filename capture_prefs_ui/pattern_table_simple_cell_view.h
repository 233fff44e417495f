// SPDX-License-Identifier: MIT
#pragma once

#include "capture_prefs_ui/pattern_table_cell_view.h"

#include <memory>

class QCheckBox;
class QLabel;

namespace Ui {
class PatternTableSimpleCell;
} // namespace Ui

namespace havrel {

/// The row of a definition in simple form: an anchor path, a pattern, and how deep it reaches.
///
/// Threads: the main thread only.
class PatternTableSimpleCellView : public PatternTableCellView
{
    Q_OBJECT
    Q_PROPERTY(QString readableType READ readableType NOTIFY readableTypeChanged)

public:
    explicit PatternTableSimpleCellView(QWidget* parent = nullptr);
    ~PatternTableSimpleCellView() override;
    PatternTableSimpleCellView(const PatternTableSimpleCellView&) = delete;
    PatternTableSimpleCellView& operator=(const PatternTableSimpleCellView&) = delete;
    PatternTableSimpleCellView(PatternTableSimpleCellView&&) = delete;
    PatternTableSimpleCellView& operator=(PatternTableSimpleCellView&&) = delete;

    [[nodiscard]] QStringList editableFilterProperties() const override;
    [[nodiscard]] ResizingPatternTextField* pathField() const;          ///< \selector pathField
    [[nodiscard]] ResizingPatternTextField* textField() const override; ///< the pattern
    [[nodiscard]] QCheckBox* propogateButton() const;                   ///< \selector propogateButton
    [[nodiscard]] QLabel* typeLabel() const;                            ///< \selector typeLabel
    /// "regex" for regular expressions, else "glob". \selector readableType
    [[nodiscard]] QString readableType() const;

    void validateFields() override;
    [[nodiscard]] QList<QWidget*> editors() const override;
    [[nodiscard]] QString spokenText() const override;

    Q_SIGNAL void readableTypeChanged();

protected:
    void showFilterDef() override;

private:
    void showType();

    std::unique_ptr<Ui::PatternTableSimpleCell> m_form;
};

} // namespace havrel
