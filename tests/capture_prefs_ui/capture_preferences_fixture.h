// SPDX-License-Identifier: MIT
#pragma once

#include "capture_prefs_ui/capture_preferences_controller.h"
#include "capture_prefs_ui/capture_preferences_window.h"
#include "fs/path.h"
#include "tests/support/attribute_folder.h"
#include "tests/support/fake_timers.h"
#include "tests/support/recording_alerts.h"

#include <QStringList>

namespace havrel::tests {

/// Temporary items with attributes, and a controller whose clock and alerts belong to the test.
class WithController : public WithAttributes
{
protected:
    [[nodiscard]] JNPathPtr pathOf(std::string_view entry) const { return JNPath::withCPath(m_tree.bytes(entry)); }
    [[nodiscard]] QUrl urlOf(std::string_view entry) const { return pathOf(entry)->url(); }

    [[nodiscard]] QList<QUrl> urlsOf(std::initializer_list<std::string_view> entries) const
    {
        QList<QUrl> urls;
        for (const std::string_view each : entries)
            urls.append(urlOf(each));
        return urls;
    }

    /// Stores preferences with the option and patterns on an item, which is made if it ends in a slash or not.
    void store(std::string_view entry, const FileCapturePreferences& preferences) const
    {
        preferences.setPreferencesAtPath(*pathOf(entry));
    }

    /// What is stored on the item; the defaults when nothing is.
    [[nodiscard]] FileCapturePreferences stored(std::string_view entry) const
    {
        return FileCapturePreferences::capturePreferencesForPath(*pathOf(entry)).value_or(FileCapturePreferences());
    }

    template<class Control>
    [[nodiscard]] Control& control(const char* name)
    {
        auto* found = m_controller.window().findChild<Control*>(QLatin1String(name));
        if (found == nullptr)
            throw std::runtime_error(std::string("no control ") + name);
        return *found;
    }

    int m_busy = 0;
    FakeTimers m_timers;
    RecordingAlerts m_alerts;
    CapturePreferencesController m_controller{m_alerts, [this] { ++m_busy; }, m_timers};
};

} // namespace havrel::tests
