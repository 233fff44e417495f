// SPDX-License-Identifier: MIT
#include "app/endable_alerts.h"

#include "diagnostics/logr.h"

#include <algorithm>
#include <utility>

namespace havrel {

int EndableAlerts::runModal(const Alert& alert)
{
    if (!m_ended)
        return m_presenter.runModal(alert);
    log(alert);
    return kAlertFirstButtonReturn + std::max(0, static_cast<int>(alert.buttons.size()) - 1); // as if it was closed
}

void EndableAlerts::beginSheet(const Alert& alert, QWidget& window, std::function<void(int)> ended)
{
    if (!m_ended)
        m_presenter.beginSheet(alert, window, std::move(ended));
    else
        log(alert);
}

void EndableAlerts::log(const Alert& alert)
{
    Logr::log(LogClassification::Warning, alert.messageText + u' ' + alert.informativeText);
}

} // namespace havrel
