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
#include "filters/capture_preferences_attribute.h"
#include "fs/path.h"

#include <QScopedValueRollback>

#include <cerrno>

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
    m_written = {};
    m_watch.stop();
    const EditedPatterns edited = editedPatterns(*patternTableController());
    const auto count = static_cast<qsizetype>(m_loaded.paths.size());
    qsizetype written = 0;
    const ItemPass pass{.text = tr("Writing the capture preferences of %1 items...").arg(count),
                        .count = count,
                        .perform = [&](qsizetype index) {
                            givePatterns(static_cast<std::size_t>(index), edited.patterns, edited.keepsOwn);
                            const bool isWritten = writeItem(static_cast<std::size_t>(index));
                            written += isWritten;
                            return isWritten;
                        }};
    const PassEnd end = runPass(pass, window(), m_timers);
    if (end == PassEnd::Cancelled)
        m_failure = tr("stopped after %1 of %2 items").arg(written).arg(count);
    if (end == PassEnd::Finished) {
        m_foreign = {};
        m_loaded.unreadable.clear();
    }
    showStatus();
    return end == PassEnd::Finished;
}

void CapturePreferencesController::givePatterns(std::size_t index, const PatternFilterDefs& edited, bool keepsOwn)
{
    if (!m_loaded.originalPatterns[index])
        return;
    const PatternFilterDefs& own = m_loaded.ownPatterns[index];
    const PatternSet& common = m_loaded.commonPatterns.patterns();
    m_loaded.prefs.all()[index].setExcludeFilterDefs(keepsOwn ? withOwnPatterns(edited, own, common) : edited);
}

bool CapturePreferencesController::writeItem(std::size_t index)
{
    const JNPath& path = *m_loaded.paths[index];
    const platform::AttributeValue before = capture_preferences_attribute::valueFrom(path.cPath());
    try {
        noteWritten(index, before, m_loaded.prefs.all()[index].setPreferencesAtPath(path));
    } catch (...) {
        const Exception exception = Exception::fromCurrent();
        Logr::logNewException(exception);
        reportFailure(index, reasonOf(exception));
        return false;
    }
    return true;
}

/// What another program wrote, and what is the same now, was not lost: nor is what was written for the same item given
/// twice.
void CapturePreferencesController::noteWritten(std::size_t index,
                                               const platform::AttributeValue& before,
                                               const QByteArray& record)
{
    platform::AttributeValue now = valueOfRecord(record);
    if (!areSameValues(before, m_loaded.seen[index]) && !areSameValues(before, now))
        m_written.overOthers.push_back(index);
    if (now.error == ERANGE)
        m_written.tooLong.push_back(index);
    m_loaded.seen[index] = std::move(now);
}

void CapturePreferencesController::reportFailure(std::size_t index, const QString& reason)
{
    m_failure = item_texts::notWritten(m_loaded, index, reason);
    m_alerts.beginSheet(item_texts::writeAlert(*m_loaded.paths[index], reason), window(), {});
}

} // namespace havrel
