// SPDX-License-Identifier: MIT
#pragma once

#include "capture_prefs_ui/foreign_changes.h"
#include "capture_prefs_ui/loaded_items.h"
#include "capture_prefs_ui/written_items.h"
#include "foundation/observable.h"

#include <QList>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>

class QAbstractButton;
class QComboBox;
class QTimeEdit;

namespace havrel {

class AlertPresenter;
class CapturePreferencesWindow;
class DurationField;
class MixedCheckBox;
class PatternTableViewController;
class StatusLine;
class TableWidthConstraint;
class Timer;
class Timers;

/// Edits the capture preferences of one or more items in a window.
///
/// Shows the items' preferences as one set of controls, gives every change to all items for which it means something,
/// and writes the items 6 seconds after the last change and when the window closes. Lives longer than its window is on
/// screen, and may be closed and shown again.
///
/// Actions are called by their controls; each reads the control that it is given.
///
/// Threads: the main thread only.
class CapturePreferencesController : public Observable
{
    Q_OBJECT
    Q_MOC_INCLUDE("capture_prefs_ui/pattern_table_view_controller.h")
    Q_PROPERTY(havrel::PatternTableViewController* patternTableController READ patternTableController)

public:
    /// \param alerts must outlive the controller.
    /// \param busy   is told each time that a write of edited preferences is scheduled.
    /// \param timers must outlive the controller.
    CapturePreferencesController(AlertPresenter& alerts, std::function<void()> busy, Timers& timers);
    CapturePreferencesController(AlertPresenter& alerts, std::function<void()> busy);
    ~CapturePreferencesController() override;
    CapturePreferencesController(const CapturePreferencesController&) = delete;
    CapturePreferencesController& operator=(const CapturePreferencesController&) = delete;
    CapturePreferencesController(CapturePreferencesController&&) = delete;
    CapturePreferencesController& operator=(CapturePreferencesController&&) = delete;

    /// Loads the items and fills the window. Blocks on the disk; events are handled meanwhile when that takes long.
    /// Items that may not be changed are left out, and an alert that comes soon after names them. May be called again;
    /// what was loaded and changed before stays when nothing can be edited.
    ///
    /// \selector prepareWithItems:
    /// \param urls of files and folders; others count as items that may not be changed.
    /// \return whether at least one item can be edited; else, or when the user stopped it, there is nothing to show.
    [[nodiscard]] bool prepareWithItems(const QList<QUrl>& urls);
    /// Puts the window on screen, in front and active. \selector showWindow:
    void showWindow();
    /// The window, made when it is first asked for.
    [[nodiscard]] CapturePreferencesWindow& window();
    /// The name under which the frame of the window is kept; gives the window the frame that was kept last.
    /// \selector setWindowFrameAutosaveName:
    void setWindowFrameAutosaveName(const QString& name);

    /// Takes over what is being typed, and writes what is not yet written: for when the process must go. Called in an
    /// event of a write under way, it writes every item, because that write may never go on.
    /// \return no when something could not be written.
    bool commitEditingAndWrite();

    void setOption(QAbstractButton& sender);                  ///< \selector setOption:
    void setAllArchives(const MixedCheckBox& sender);         ///< \selector setAllArchives:
    void setIgnoreDuration(const DurationField& sender);      ///< empty: 0. \selector setIgnoreDuration:
    void setIgnoreScale(const QComboBox& sender);             ///< \selector setIgnoreScale:
    void setIgnoreBetween(const MixedCheckBox& sender);       ///< \selector setIgnoreBetween:
    void setIgnoreFromTime(const QTimeEdit& sender);          ///< \selector setIgnoreFromTime:
    void setIgnoreToTime(const QTimeEdit& sender);            ///< \selector setIgnoreToTime:
    void setScrapeImmediately(const QAbstractButton& sender); ///< \selector setScrapeImmediately:
    void setScrapeAfter(const QAbstractButton& sender);       ///< \selector setScrapeAfter:
    void setScrapeDuration(const DurationField& sender);      ///< empty: 0. \selector setScrapeDuration:
    void setScrapeScale(const QComboBox& sender);             ///< \selector setScrapeScale:
    void openHelp();                                          ///< in the user's browser. \selector openHelp:

    /// Shows the preferences as they are now; changes nothing. \selector updateView
    void updateView();
    /// There is something to write: in 6 seconds from now. \selector makeDirty
    void makeDirty();
    void updateViewAndMakeDirty(); ///< \selector updateViewAndMakeDirty
    /// Writes every item when something changed; nothing otherwise. Blocks on the disk; events are handled meanwhile
    /// when that takes long. The first item that cannot be written ends it and is told in a sheet on the window.
    ///
    /// \selector setModifiedPrefs
    /// \return whether all is written. When not, what was written stays, and nothing counts as changed any more.
    bool setModifiedPrefs();
    void autoWriteTime();   ///< The timer's. \selector autoWriteTime:
    void windowWillClose(); ///< \selector windowWillClose:

    /// The option that a button of the window stands for. \selector optionOfButton:
    [[nodiscard]] CaptureOption optionOfButton(QAbstractButton& button);
    /// Those whose option lies in the range. \selector prefsForOptions:
    [[nodiscard]] PreferencesPtrs prefsForOptions(OptionRange range);
    /// \selector buttonStateForOption:
    [[nodiscard]] ButtonState buttonStateForOption(CaptureOption option) const;
    /// \selector buttonStateForKey:ofPrefs:
    [[nodiscard]] ButtonState buttonStateForKey(PreferenceKey key, const PreferencesPtrs& ofPrefs) const;
    /// \selector homogenousValuesForKey:ofPrefs:
    [[nodiscard]] bool homogenousValuesForKey(PreferenceKey key, const PreferencesPtrs& ofPrefs) const;

    /// Those that may be changed, in the order given. \selector items
    [[nodiscard]] const QList<QUrl>& items() const noexcept { return m_loaded.items; }
    [[nodiscard]] bool dirty() const noexcept { return m_dirty; } ///< changes not yet written. \selector dirty
    /// \selector allContainers
    [[nodiscard]] bool allContainers() const noexcept { return m_loaded.allContainers; }
    /// \selector atLeastOneContainer
    [[nodiscard]] bool atLeastOneContainer() const noexcept { return m_loaded.atLeastOneContainer; }
    /// None before the window is made. \selector patternTableController
    [[nodiscard]] PatternTableViewController* patternTableController() const;
    /// Of the pattern table; none before the window is made. \selector patternTableWidthConstraint
    [[nodiscard]] const TableWidthConstraint* patternTableWidthConstraint() const noexcept;

private:
    void connectControls();
    void connectIgnoring();
    void connectScraping();
    void observePatterns();
    void showRefusedSoon(const QList<RefusedItem>& refused, bool onWindow);
    void showPatterns();
    void patternsChanged();
    template<class Value>
    void setOnPrefs(OptionRange range, Value FileCapturePreferences::*property, const Value& value);

    void givePatterns(std::size_t index, const PatternFilterDefs& edited, bool keepsOwn);
    [[nodiscard]] bool writeItem(std::size_t index);
    void noteWritten(std::size_t index, const platform::AttributeValue& before, const QByteArray& record);
    void reportFailure(std::size_t index, const QString& reason);
    void saveNow();

    void showStatus();
    void showCountdown(StatusLine& line);
    void lookForForeignChanges();
    void foreignChangesFound(const ForeignChanges& found);
    void reload();

    AlertPresenter& m_alerts;
    std::function<void()> m_busy;
    Timers& m_timers;
    std::unique_ptr<CapturePreferencesWindow> m_window;
    std::unique_ptr<TableWidthConstraint> m_patternTableWidthConstraint;
    QString m_frameName;

    LoadedItems m_loaded;
    bool m_dirty = false;
    bool m_isWriting = false; // in setModifiedPrefs, perhaps in the events that it handles
    std::unique_ptr<Timer> m_autoWriteTimer;
    std::unique_ptr<Timer> m_statusTimer; // counts the seconds down
    QString m_failure;                    // why the last write did not succeed; empty when it did
    WrittenItems m_written;               // by the last write
    ForeignChangesWatch m_watch;
    ForeignChanges m_foreign; // found last
};

} // namespace havrel
