// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include <functional>
#include <memory>

namespace Ui {
class CapturePreferencesWindow;
} // namespace Ui

class QButtonGroup;
class QIcon;

namespace havrel {

struct CapturePreferencesViewState;
struct LoadedItems;

/// The capture preferences window: the form "CapturePreferencesWindow" brought to life. Shows states, decides nothing.
///
/// Threads: the main thread only.
class CapturePreferencesWindow : public QWidget
{
    Q_OBJECT

public:
    CapturePreferencesWindow();
    ~CapturePreferencesWindow() override;
    CapturePreferencesWindow(const CapturePreferencesWindow&) = delete;
    CapturePreferencesWindow& operator=(const CapturePreferencesWindow&) = delete;
    CapturePreferencesWindow(CapturePreferencesWindow&&) = delete;
    CapturePreferencesWindow& operator=(CapturePreferencesWindow&&) = delete;

    /// The controls, by the names of the form.
    [[nodiscard]] Ui::CapturePreferencesWindow& outlets() noexcept { return *m_ui; }
    /// The six buttons; the id of each is its option.
    [[nodiscard]] QButtonGroup& optionButtons() noexcept { return *m_optionButtons; }

    /// Whose preferences they are.
    void showItems(const LoadedItems& loaded);
    /// Tells nobody.
    void showState(const CapturePreferencesViewState& state);
    /// Ends the editing of every field: what was typed and not yet told is told now.
    void commitEditing();

Q_SIGNALS:
    /// The user turned to the window.
    void activated();
    /// The window goes; it can still be asked.
    void closing();

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;  ///< the first one has the icon looked up after it
    void keyPressEvent(QKeyEvent* event) override; ///< Escape, when no control wants it, closes

private:
    void groupButtons();
    void fillScaleMenus();
    void calmWheels();
    void addShortcuts();
    void emphasizeName();
    void alignTexts();
    void showIcon();
    void showIgnoring(const CapturePreferencesViewState& state);
    void showScraping(const CapturePreferencesViewState& state);

    std::unique_ptr<Ui::CapturePreferencesWindow> m_ui;
    QButtonGroup* m_optionButtons;
    QButtonGroup* m_scrapeButtons;
    std::function<QIcon()> m_iconToShow; ///< empty once it is shown
};

} // namespace havrel
