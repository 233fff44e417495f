// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/window_frames.h"

#include <QApplication>
#include <QDir>
#include <QScreen>
#include <QSettings>
#include <QStyle>
#include <QWidget>

#include <algorithm>

namespace havrel::window_frames {
namespace {

/// \source XDG base directory specification: a relative path counts as unset.
QString stateFolder()
{
    const QString given = qEnvironmentVariable("XDG_STATE_HOME");
    return QDir::isAbsolutePath(given) ? given : QDir::homePath() + QStringLiteral("/.local/state");
}

QString framesFile()
{
    return stateFolder() + QStringLiteral("/Havrel/windows.ini");
}

QString keyOf(const QString& name)
{
    return QStringLiteral("frames/") + name;
}

bool isTaken(const QPoint& place, const QWidget& by)
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    return std::any_of(windows.begin(), windows.end(), [&](const QWidget* each) {
        return each != &by && each->isVisible() && each->geometry().topLeft() == place;
    });
}

/// So that no window hides another one wholly. One that would leave the screen starts again at its corner.
void stepAside(QWidget& window)
{
    const QScreen* screen = QGuiApplication::screenAt(window.geometry().center());
    const QRect available = (screen ? screen : window.screen())->availableGeometry();
    const int height = window.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window);
    QRect frame = window.geometry(); // without its borders, which a window has only on screen
    // Each other window is in the way once at most, and the corner may be met twice.
    for (qsizetype left = QApplication::topLevelWidgets().size(); left >= 0 && isTaken(frame.topLeft(), window);
         --left) {
        frame.translate(window.isRightToLeft() ? -height : height, height);
        if (!available.contains(frame))
            frame.moveTopLeft(available.topLeft());
    }
    window.setGeometry(frame);
}

} // namespace

bool restore(QWidget& window, const QString& name)
{
    if (!window.restoreGeometry(QSettings(framesFile(), QSettings::IniFormat).value(keyOf(name)).toByteArray()))
        return false;
    if (!window.isMaximized() && !window.isFullScreen())
        stepAside(window);
    return true;
}

void save(const QWidget& window, const QString& name)
{
    QSettings(framesFile(), QSettings::IniFormat).setValue(keyOf(name), window.saveGeometry());
}

} // namespace havrel::window_frames
