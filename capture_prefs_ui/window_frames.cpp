// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/window_frames.h"

#include <QDir>
#include <QSettings>
#include <QWidget>

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

} // namespace

bool restore(QWidget& window, const QString& name)
{
    return window.restoreGeometry(QSettings(framesFile(), QSettings::IniFormat).value(keyOf(name)).toByteArray());
}

void save(const QWidget& window, const QString& name)
{
    QSettings(framesFile(), QSettings::IniFormat).setValue(keyOf(name), window.saveGeometry());
}

} // namespace havrel::window_frames
