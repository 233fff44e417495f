// SPDX-License-Identifier: MIT
#pragma once

#include "app/archive_picker_view_controller.h"

#include <QDialog>

#include <memory>

namespace Ui {
class ArchivePickerPane;
} // namespace Ui

namespace havrel {

/// The window of the archive picker: the form "ArchivePickerPane" brought to life. Shows, decides nothing; Escape
/// closes it, Return is the action button.
///
/// Threads: the main thread only.
class ArchivePickerPane : public QDialog
{
    Q_OBJECT

public:
    ArchivePickerPane();
    ~ArchivePickerPane() override;
    ArchivePickerPane(const ArchivePickerPane&) = delete;
    ArchivePickerPane& operator=(const ArchivePickerPane&) = delete;
    ArchivePickerPane(ArchivePickerPane&&) = delete;
    ArchivePickerPane& operator=(ArchivePickerPane&&) = delete;

    /// The controls, by the names of the form.
    [[nodiscard]] Ui::ArchivePickerPane& outlets() noexcept { return *m_ui; }
    [[nodiscard]] ArchivePickerViewController& pickerViewController() noexcept { return *m_pickerViewController; }

    /// Gives the window, which is not on screen yet, the place and the width of the one that was closed last.
    void restoreFrame();
    void saveFrame() const; ///< For those to come.
    /// Gives the window, which is not on screen yet, the size that it will have there.
    void sizeToFit();

protected:
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    [[nodiscard]] ArchivePickerViewController::RowViews takeRowViews();
    void emphasizeTitle();
    void fitTable(int height);
    void growTo(int height);
    [[nodiscard]] int roomForTable(int others) const;

    std::unique_ptr<Ui::ArchivePickerPane> m_ui;
    std::unique_ptr<ArchivePickerViewController> m_pickerViewController;
    bool m_hasFrame = false; // that of an earlier one
};

} // namespace havrel
