// SPDX-License-Identifier: MIT
#pragma once

#include "capture_prefs_ui/alert.h"

#include <vector>

namespace havrel::tests {

/// Keeps the alerts that would be shown, and answers each with its first button.
class RecordingAlerts final : public AlertPresenter
{
public:
    struct Shown
    {
        Alert alert;
        QWidget* sheetOn; ///< null: modal
    };

    [[nodiscard]] int runModal(const Alert& alert) override
    {
        shown.push_back({alert, nullptr});
        return kAlertFirstButtonReturn;
    }

    void beginSheet(const Alert& alert, QWidget& window, std::function<void(int)> ended) override
    {
        shown.push_back({alert, &window});
        if (ended)
            ended(kAlertFirstButtonReturn);
    }

    std::vector<Shown> shown;
};

} // namespace havrel::tests
