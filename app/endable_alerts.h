// SPDX-License-Identifier: MIT
#pragma once

#include "capture_prefs_ui/alert.h"

namespace havrel {

/// Alerts of a process that may end at any time: from then on nobody can answer, so they are logged instead.
///
/// Threads: the main thread only.
class EndableAlerts final : public AlertPresenter
{
public:
    /// \param presenter shows the alerts until the end; must live longer.
    explicit EndableAlerts(AlertPresenter& presenter)
        : m_presenter(presenter)
    {
    }
    /// Nothing is shown from here on. What was shown before stays.
    void end() noexcept { m_ended = true; }

    [[nodiscard]] int runModal(const Alert& alert) override;
    void beginSheet(const Alert& alert, QWidget& window, std::function<void(int answer)> ended) override;

private:
    static void log(const Alert& alert);

    AlertPresenter& m_presenter;
    bool m_ended = false;
};

} // namespace havrel
