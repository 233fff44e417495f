// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <chrono>

namespace havrel::tests {

/// Handles the events of the main queue until one of them has made \p isDone true, or a minute has passed.
///
/// \return whether it is true
template<class IsDone>
[[nodiscard]] bool handleEventsUntil(const IsDone& isDone)
{
    QTimer deadline;
    deadline.setSingleShot(true);
    deadline.start(std::chrono::minutes(1));
    while (!isDone() && deadline.isActive())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return isDone();
}

} // namespace havrel::tests
