// SPDX-License-Identifier: MIT
#pragma once

#include "capture_prefs_ui/pattern_table_cell_view.h"

#include <memory>

namespace Ui {
class PatternTableExpertCell;
} // namespace Ui

namespace havrel {

/// The row of a definition in complete form, which is edited as one line and stays in that form.
///
/// Threads: the main thread only.
class PatternTableExpertCellView : public PatternTableCellView
{
    Q_OBJECT

public:
    explicit PatternTableExpertCellView(QWidget* parent = nullptr);
    ~PatternTableExpertCellView() override;
    PatternTableExpertCellView(const PatternTableExpertCellView&) = delete;
    PatternTableExpertCellView& operator=(const PatternTableExpertCellView&) = delete;
    PatternTableExpertCellView(PatternTableExpertCellView&&) = delete;
    PatternTableExpertCellView& operator=(PatternTableExpertCellView&&) = delete;

    [[nodiscard]] QStringList editableFilterProperties() const override;
    [[nodiscard]] ResizingPatternTextField* textField() const override; ///< the line

    void validateFields() override;
    [[nodiscard]] QList<QWidget*> editors() const override;
    [[nodiscard]] QString spokenText() const override;

private:
    std::unique_ptr<Ui::PatternTableExpertCell> m_form;
};

} // namespace havrel
