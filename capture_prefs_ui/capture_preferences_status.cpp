// SPDX-License-Identifier: MIT
// What the quiet line of the window says.
#include "capture_prefs_ui/capture_preferences_controller.h"
#include "capture_prefs_ui/capture_preferences_window.h"
#include "capture_prefs_ui/item_texts.h"
#include "capture_prefs_ui/timers.h"

#include <ui_CapturePreferencesWindow.h>

namespace havrel {

using namespace std::chrono_literals;

void CapturePreferencesController::showStatus()
{
    StatusLine& line = *window().outlets().statusLine;
    line.offerReloading(!m_foreign.changed.empty());
    if (m_dirty)
        return showCountdown(line);
    m_statusTimer->stop();
    if (!m_failure.isEmpty())
        line.showNotSaved(m_failure);
    else if (const QString note = item_texts::note(m_loaded, m_foreign, m_written); !note.isEmpty())
        line.showNote(note);
    else
        line.showSaved();
}

void CapturePreferencesController::showCountdown(StatusLine& line)
{
    const auto remaining = m_autoWriteTimer->remaining();
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(remaining);
    line.showSavingIn(static_cast<int>(seconds.count()), !m_foreign.changed.empty());
    if (remaining > 0ms)
        m_statusTimer->start(remaining - (seconds - 1s) + 1ms);
}

void CapturePreferencesController::lookForForeignChanges()
{
    if (!m_loaded.items.isEmpty())
        m_watch.look();
}

void CapturePreferencesController::foreignChangesFound(const ForeignChanges& found)
{
    m_foreign = found;
    showStatus();
}

void CapturePreferencesController::reload()
{
    static_cast<void>(prepareWithItems(QList<QUrl>(m_loaded.items)));
}

} // namespace havrel
