// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/capture_preferences_controller.h"

#include "capture_prefs_ui/alert.h"
#include "capture_prefs_ui/capture_preferences_view_state.h"
#include "capture_prefs_ui/capture_preferences_window.h"
#include "capture_prefs_ui/item_pass.h"
#include "capture_prefs_ui/item_texts.h"
#include "capture_prefs_ui/pattern_table_cell_view.h"
#include "capture_prefs_ui/pattern_table_view_controller.h"
#include "capture_prefs_ui/table_view.h"
#include "capture_prefs_ui/table_width_constraint.h"
#include "capture_prefs_ui/timers.h"
#include "capture_prefs_ui/window_frames.h"
#include "foundation/dispatch.h"
#include "foundation/notification_center.h"
#include "foundation/observing.h"

#include <ui_CapturePreferencesWindow.h>

namespace havrel {

CapturePreferencesController::CapturePreferencesController(AlertPresenter& alerts,
                                                           std::function<void()> busy,
                                                           Timers& timers)
    : m_alerts(alerts)
    , m_busy(std::move(busy))
    , m_timers(timers)
    , m_autoWriteTimer(timers.makeTimer([this] { runAtWall([this] { autoWriteTime(); }); }))
    , m_statusTimer(timers.makeTimer([this] { showStatus(); }))
    , m_watch(m_loaded, timers, [this](const ForeignChanges& found) { foreignChangesFound(found); })
{
}

CapturePreferencesController::CapturePreferencesController(AlertPresenter& alerts, std::function<void()> busy)
    : CapturePreferencesController(alerts, std::move(busy), Timers::ofEventLoop())
{
}

CapturePreferencesController::~CapturePreferencesController()
{
    removeAllObservations(*this); // the table goes with the window
    if (m_window)                 // a field that is being edited ends that as it goes, and would tell
        for (QObject* each : m_window->findChildren<QObject*>())
            each->disconnect(this);
    m_autoWriteTimer->stop();
    m_statusTimer->stop();
}

CapturePreferencesWindow& CapturePreferencesController::window()
{
    if (!m_window) {
        m_window = std::make_unique<CapturePreferencesWindow>();
        connectControls();
        observePatterns();
    }
    return *m_window;
}

PatternTableViewController* CapturePreferencesController::patternTableController() const
{
    return m_window ? &m_window->outlets().patternTable->controller() : nullptr;
}

const TableWidthConstraint* CapturePreferencesController::patternTableWidthConstraint() const noexcept
{
    return m_patternTableWidthConstraint.get();
}

void CapturePreferencesController::setWindowFrameAutosaveName(const QString& name)
{
    m_frameName = name;
    window_frames::restore(window(), name);
}

bool CapturePreferencesController::prepareWithItems(const QList<QUrl>& urls)
{
    LoadedItems loaded;
    const ItemPass pass{.text = tr("Reading the capture preferences of %1 items...").arg(urls.size()),
                        .count = urls.size(),
                        .perform = [&loaded, &urls](qsizetype index) {
                            loaded.add(urls[index]);
                            return true;
                        }};
    if (runPass(pass, window(), m_timers) == PassEnd::Cancelled)
        return false;
    showRefusedSoon(loaded.refused, !loaded.items.isEmpty());
    if (loaded.items.isEmpty())
        return false;
    loaded.findOwnPatterns();
    m_watch.stop();
    m_loaded = std::move(loaded);
    window().showItems(m_loaded);
    showPatterns();
    updateView();
    m_dirty = false;
    m_failure.clear();
    m_written = {};
    m_foreign = {};
    showStatus();
    return true;
}

void CapturePreferencesController::showRefusedSoon(const QList<RefusedItem>& refused, bool onWindow)
{
    if (refused.isEmpty())
        return;
    const Alert alert = item_texts::permissionAlert(refused);
    onMainQueue([controller = QPointer(this), alert, onWindow] {
        if (!controller)
            return;
        if (onWindow)
            controller->m_alerts.beginSheet(alert, controller->window(), {});
        else
            static_cast<void>(controller->m_alerts.runModal(alert));
    });
}

void CapturePreferencesController::showPatterns()
{
    PatternTableViewController& table = *patternTableController();
    table.setEnabled(m_loaded.atLeastOneContainer);
    PatternFilterDefs patterns = m_loaded.commonPatterns.patterns().inOrder();
    if (m_loaded.commonPatterns.differ())
        patterns.append(PatternFilterDef::filterDefPlaceholder());
    table.setFilterDefs(patterns);
}

void CapturePreferencesController::observePatterns()
{
    m_patternTableWidthConstraint = std::make_unique<TableWidthConstraint>(
        *m_window->outlets().patternTable, m_window->outlets().patternTable->sizeHint().width(), kWeakestPriority);
    observeProperty(*this,
                    "patternTableController.filterDefs",
                    ObservationOptions::NoInitialCall,
                    [this](QObject*, QObject*, const QVariant&, const QVariant&) { patternsChanged(); });
    observeNotification(*this,
                        QString(kPatternTableCellValueChanged),
                        m_window->outlets().patternTable->tableView(),
                        [this](QObject*, const Notification&) { makeDirty(); });
}

void CapturePreferencesController::patternsChanged()
{
    makeDirty();
    const int priority = patternTableController()->filterDefs().isEmpty() ? kWeakestPriority : kRequiredPriority;
    if (priority != m_patternTableWidthConstraint->priority())
        *m_patternTableWidthConstraint = m_patternTableWidthConstraint->withPriority(priority);
}

void CapturePreferencesController::showWindow()
{
    CapturePreferencesWindow& shown = window();
    shown.show();
    shown.raise();
    shown.activateWindow();
}

void CapturePreferencesController::updateView()
{
    window().showState(viewStateOf(m_loaded.prefs, m_loaded.allContainers));
}

void CapturePreferencesController::updateViewAndMakeDirty()
{
    updateView();
    makeDirty();
}

PreferencesPtrs CapturePreferencesController::prefsForOptions(OptionRange range)
{
    return m_loaded.prefs.forOptions(range);
}

ButtonState CapturePreferencesController::buttonStateForOption(CaptureOption option) const
{
    return m_loaded.prefs.stateForOption(option);
}

ButtonState CapturePreferencesController::buttonStateForKey(PreferenceKey key, const PreferencesPtrs& ofPrefs) const
{
    return m_loaded.prefs.stateForKey(key, ofPrefs);
}

bool CapturePreferencesController::homogenousValuesForKey(PreferenceKey key, const PreferencesPtrs& ofPrefs) const
{
    return m_loaded.prefs.areHomogenous(key, ofPrefs);
}

void CapturePreferencesController::windowWillClose()
{
    if (!m_frameName.isEmpty())
        window_frames::save(window(), m_frameName);
    m_watch.stop();
    commitEditingAndWrite();
}

} // namespace havrel
