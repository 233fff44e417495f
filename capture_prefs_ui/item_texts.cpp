// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/item_texts.h"

#include "capture_prefs_ui/alert.h"
#include "capture_prefs_ui/loaded_items.h"
#include "fs/path.h"

#include <QCoreApplication>
#include <QDir>

namespace havrel::item_texts {
namespace {

/// The texts of the window belong to one context of the translations.
struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(CapturePreferences)
};

QString withHomeShortened(const QString& path)
{
    const QString home = QDir::homePath();
    if (path == home)
        return QStringLiteral("~");
    return home != QLatin1StringView("/") && path.startsWith(home + u'/') ? u'~' + path.mid(home.size()) : path;
}

QString folders(qsizetype count)
{
    return count == 1 ? Texts::tr("1 folder") : Texts::tr("%1 folders").arg(count);
}

QString files(qsizetype count)
{
    return count == 1 ? Texts::tr("1 file") : Texts::tr("%1 files").arg(count);
}

/// Names come from files and may hold what looks like a place marker: all are put in at once.
QString namesOf(const QList<QUrl>& refused)
{
    const QString first = displayNameOf(refused.first());
    if (refused.size() == 1)
        return Texts::tr("'%1'").arg(first);
    if (refused.size() == 2)
        return Texts::tr("'%1' and '%2'").arg(first, displayNameOf(refused.last()));
    return Texts::tr("'%1' and %2 other items").arg(first, QString::number(refused.size() - 1));
}

} // namespace

QString name(const LoadedItems& loaded)
{
    if (loaded.items.size() == 1)
        return displayNameOf(loaded.items.first());
    return Texts::tr("%1 Items").arg(loaded.items.size());
}

QString place(const LoadedItems& loaded)
{
    if (loaded.items.size() == 1)
        return Texts::tr("in %1").arg(withHomeShortened(loaded.paths.front()->parent()->path()));
    const qsizetype containers = loaded.containers();
    const qsizetype others = loaded.items.size() - containers;
    if (others == 0)
        return folders(containers);
    if (containers == 0)
        return files(others);
    return Texts::tr("%1, %2").arg(folders(containers), files(others));
}

QString patternsTitle(const LoadedItems& loaded)
{
    if (!loaded.atLeastOneContainer)
        return Texts::tr("Only folders can leave something out");
    return loaded.containers() == 1 ? Texts::tr("Leave out of this folder") : Texts::tr("Leave out of these folders");
}

Alert permissionAlert(const QList<QUrl>& refused)
{
    return {.style = AlertStyle::Informational,
            .messageText = Texts::tr("%1 cannot be modifed").arg(namesOf(refused)),
            .informativeText = Texts::tr("You do not have permission to edit these preferences. Use the havrel "
                                         "command-line tool (sudo havrel captureprefs ...) to set them.")};
}

Alert writeAlert(const JNPath& path, const QString& reason)
{
    return {.style = AlertStyle::Warning,
            .messageText = Texts::tr("Unable to change the capture preferences for '%1'.").arg(path.name()),
            .informativeText = reason};
}

} // namespace havrel::item_texts
