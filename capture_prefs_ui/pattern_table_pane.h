// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include <memory>

class QLabel;

namespace Ui {
class PatternTablePane;
} // namespace Ui

namespace havrel {

class PatternTableViewController;
class TableView;

/// The pattern table with its buttons, menu and popover, ready to be put into a window: in a form, promote a QWidget to
/// this class.
///
/// Threads: the main thread only.
class PatternTablePane : public QWidget
{
    Q_OBJECT

public:
    explicit PatternTablePane(QWidget* parent = nullptr);
    ~PatternTablePane() override;
    PatternTablePane(const PatternTablePane&) = delete;
    PatternTablePane& operator=(const PatternTablePane&) = delete;
    PatternTablePane(PatternTablePane&&) = delete;
    PatternTablePane& operator=(PatternTablePane&&) = delete;

    [[nodiscard]] PatternTableViewController& controller() const noexcept { return *m_controller; }
    /// What posts "PatternTableCellValueChanged"; a label's buddy.
    [[nodiscard]] TableView& tableView() const;
    /// One quiet line beside the buttons; empty.
    [[nodiscard]] QLabel& quietLine() const;
    /// Takes over what is being typed in a row; for a window that is about to read the list for good.
    void endEditing();

protected:
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void makeAddMenu();
    void connectControls();
    void addUndoActions();
    void showTexts();

    std::unique_ptr<Ui::PatternTablePane> m_form;
    std::unique_ptr<PatternTableViewController> m_controller;
};

} // namespace havrel
