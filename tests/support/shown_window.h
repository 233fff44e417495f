// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QTest>
#include <QWidget>

namespace havrel::tests {

/// The window of the class \p Window that is on screen, waited for; null when none comes.
template<class Window>
[[nodiscard]] Window* shownWindow()
{
    const auto find = []() -> Window* {
        for (QWidget* each : QApplication::topLevelWidgets())
            if (auto* window = qobject_cast<Window*>(each); window != nullptr && window->isVisible())
                return window;
        return nullptr;
    };
    return QTest::qWaitFor([&find] { return find() != nullptr; }) ? find() : nullptr;
}

} // namespace havrel::tests
