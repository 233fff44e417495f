// SPDX-License-Identifier: MIT
#pragma once

#include "capture_prefs_ui/pattern_table_cell_view.h"

#include <memory>

namespace Ui {
class PatternTableMultipleCell;
} // namespace Ui

namespace havrel {

/// The row of the placeholder: says that there are other patterns, not the same in each folder.
///
/// Threads: the main thread only.
class PatternTableMultipleCellView : public PatternTableCellView
{
    Q_OBJECT

public:
    explicit PatternTableMultipleCellView(QWidget* parent = nullptr);
    ~PatternTableMultipleCellView() override;
    PatternTableMultipleCellView(const PatternTableMultipleCellView&) = delete;
    PatternTableMultipleCellView& operator=(const PatternTableMultipleCellView&) = delete;
    PatternTableMultipleCellView(PatternTableMultipleCellView&&) = delete;
    PatternTableMultipleCellView& operator=(PatternTableMultipleCellView&&) = delete;

    [[nodiscard]] QString spokenText() const override;

private:
    std::unique_ptr<Ui::PatternTableMultipleCell> m_form;
};

} // namespace havrel
