// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/alert.h"
#include "capture_prefs_ui/capture_preferences_controller.h"
#include "capture_prefs_ui/capture_preferences_window.h"
#include "capture_prefs_ui/item_pass.h"
#include "capture_prefs_ui/item_texts.h"
#include "capture_prefs_ui/pattern_table_view_controller.h"
#include "capture_prefs_ui/timers.h"
#include "diagnostics/exception.h"
#include "diagnostics/logr.h"
#include "fs/path.h"

#include <QScopedValueRollback>

#include <ui_CapturePreferencesWindow.h>

namespace havrel {
namespace {

using namespace std::chrono_literals;

/// How long after the last change the items are written.
constexpr auto kQuietTime = 6s;

struct EditedPatterns
{
    PatternFilterDefs patterns;
    bool keepsOwn; ///< the placeholder for each folder's own patterns is there
};

EditedPatterns editedPatterns(const PatternTableViewController& table)
{
    EditedPatterns edited{.patterns = table.filterDefs(), .keepsOwn = false};
    edited.keepsOwn = edited.patterns.removeIf(
                          [](const PatternFilterDefPtr& each) { return each->multiplePatternsPlaceholder(); }) > 0;
    return edited;
}

QString reasonOf(const Exception& exception)
{
    const QString told = exception.userInfo().value(QString(detail_key::kErrDescription)).toString();
    return told.isEmpty() ? exception.reason() : told;
}

} // namespace

void CapturePreferencesController::makeDirty()
{
    m_dirty = true;
    m_autoWriteTimer->start(kQuietTime);
    showStatus();
    m_busy();
}

void CapturePreferencesController::autoWriteTime()
{
    setModifiedPrefs();
}

bool CapturePreferencesController::commitEditingAndWrite()
{
    window().commitEditing();
    m_dirty = m_dirty || m_isWriting; // a pass that handles events just now may never go on
    return setModifiedPrefs();
}

void CapturePreferencesController::saveNow()
{
    window().commitEditing();
    m_dirty = true; // a write that failed is tried again
    setModifiedPrefs();
}

bool CapturePreferencesController::setModifiedPrefs()
{
    if (!m_dirty)
        return true;
    m_dirty = false;
    m_failure.clear();
    const QScopedValueRollback isWriting(m_isWriting, true);
    const EditedPatterns edited = editedPatterns(*patternTableController());
    const auto count = static_cast<qsizetype>(m_loaded.paths.size());
    qsizetype written = 0;
    const ItemPass pass{.text = tr("Writing the capture preferences of %1 items...").arg(count),
                        .count = count,
                        .perform = [&](qsizetype index) {
                            const bool isWritten =
                                writeItem(static_cast<std::size_t>(index), edited.patterns, edited.keepsOwn);
                            written += isWritten;
                            return isWritten;
                        }};
    const PassEnd end = runPass(pass, window(), m_timers);
    if (end == PassEnd::Cancelled)
        m_failure = tr("stopped after %1 of %2 items").arg(written).arg(count);
    showStatus();
    return end == PassEnd::Finished;
}

bool CapturePreferencesController::writeItem(std::size_t index, const PatternFilterDefs& edited, bool keepsOwn)
{
    FileCapturePreferences& preferences = m_loaded.prefs.all()[index];
    if (const std::optional<PatternFilterDefs>& own = m_loaded.originalPatterns[index]) {
        const PatternSet& common = m_loaded.commonPatterns.patterns();
        preferences.setExcludeFilterDefs(keepsOwn ? withOwnPatterns(edited, *own, common) : edited);
    }
    try {
        preferences.setPreferencesAtPath(*m_loaded.paths[index]);
    } catch (...) {
        const Exception exception = Exception::fromCurrent();
        Logr::logNewException(exception);
        reportFailure(index, reasonOf(exception));
        return false;
    }
    return true;
}

void CapturePreferencesController::reportFailure(std::size_t index, const QString& reason)
{
    m_failure = reason;
    m_alerts.beginSheet(item_texts::writeAlert(*m_loaded.paths[index], reason), window(), {});
}

void CapturePreferencesController::showStatus()
{
    StatusLine& line = *window().outlets().statusLine;
    if (m_dirty) {
        const auto remaining = m_autoWriteTimer->remaining();
        const auto seconds = std::chrono::ceil<std::chrono::seconds>(remaining);
        line.showSavingIn(static_cast<int>(seconds.count()));
        if (remaining > 0ms)
            m_statusTimer->start(remaining - (seconds - 1s) + 1ms);
        return;
    }
    m_statusTimer->stop();
    if (m_failure.isEmpty())
        line.showSaved();
    else
        line.showNotSaved(m_failure);
}

} // namespace havrel
