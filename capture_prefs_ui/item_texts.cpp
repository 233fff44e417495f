// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/item_texts.h"

#include "capture_prefs_ui/alert.h"
#include "capture_prefs_ui/foreign_changes.h"
#include "capture_prefs_ui/loaded_items.h"
#include "capture_prefs_ui/written_items.h"
#include "fs/path.h"

#include <QCoreApplication>
#include <QDir>

#include <algorithm>

namespace havrel::item_texts {
namespace {

/// The texts of the window belong to one context of the translations.
struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(CapturePreferences)
};

QString folders(qsizetype count)
{
    return count == 1 ? Texts::tr("1 folder") : Texts::tr("%1 folders").arg(count);
}

QString files(qsizetype count)
{
    return count == 1 ? Texts::tr("1 file") : Texts::tr("%1 files").arg(count);
}

/// Names come from files and may hold what looks like a place marker: all are put in at once.
QString namesOf(const QUrl& firstItem, const QUrl& lastItem, qsizetype count)
{
    const QString first = displayNameOf(firstItem);
    if (count == 1)
        return Texts::tr("'%1'").arg(first);
    if (count == 2)
        return Texts::tr("'%1' and '%2'").arg(first, displayNameOf(lastItem));
    return Texts::tr("'%1' and %2 other items").arg(first, QString::number(count - 1));
}

/// The name of one item, the number of several.
QString itemsAt(const std::vector<std::size_t>& places, const LoadedItems& loaded)
{
    if (places.size() == 1)
        return loaded.paths[places.front()]->name();
    return Texts::tr("%1 items").arg(places.size());
}

QString reasonFor(Refusal refusal)
{
    if (refusal == Refusal::Permission)
        return Texts::tr("You do not have permission to edit these preferences. Use the havrel "
                         "command-line tool (sudo havrel captureprefs ...) to set them.");
    return Texts::tr("Files and folders can carry capture preferences, but not links, devices and the like, nor "
                     "anything on a file system that keeps no extended attributes.");
}

/// Each once.
QString reasonsFor(const QList<RefusedItem>& refused)
{
    QStringList reasons;
    for (const Refusal each : {Refusal::Permission, Refusal::NoAttributes})
        if (std::any_of(refused.begin(), refused.end(), [each](const RefusedItem& item) { return item.why == each; }))
            reasons.append(reasonFor(each));
    return reasons.join(QStringLiteral("\n\n"));
}

} // namespace

QString withHomeShortened(const QString& path)
{
    const QString home = QDir::homePath();
    if (path == home)
        return QStringLiteral("~");
    return home != QLatin1StringView("/") && path.startsWith(home + u'/') ? u'~' + path.mid(home.size()) : path;
}

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

QString note(const LoadedItems& loaded, const ForeignChanges& foreign, const WrittenItems& written)
{
    if (!written.tooLong.empty())
        return Texts::tr("Saved, but too long to be read back: %1").arg(itemsAt(written.tooLong, loaded));
    if (!foreign.vanished.empty())
        return Texts::tr("No longer there: %1").arg(itemsAt(foreign.vanished, loaded));
    if (!foreign.changed.empty())
        return Texts::tr("Changed elsewhere: %1").arg(itemsAt(foreign.changed, loaded));
    if (!written.overOthers.empty())
        return Texts::tr("Saved, over changes made elsewhere: %1").arg(itemsAt(written.overOthers, loaded));
    if (!loaded.unreadable.empty())
        return Texts::tr("Cannot be read, and would be replaced: %1").arg(itemsAt(loaded.unreadable, loaded));
    return {};
}

QString notWritten(const LoadedItems& loaded, std::size_t first, const QString& reason)
{
    if (loaded.items.size() == 1)
        return reason;
    const auto place = static_cast<qsizetype>(first);
    const QString names = namesOf(loaded.items[place], loaded.items.last(), loaded.items.size() - place);
    return names + QStringLiteral(": ") + reason;
}

Alert permissionAlert(const QList<RefusedItem>& refused)
{
    return {.style = AlertStyle::Informational,
            .messageText =
                Texts::tr("%1 cannot be modifed").arg(namesOf(refused.first().url, refused.last().url, refused.size())),
            .informativeText = reasonsFor(refused)};
}

Alert writeAlert(const JNPath& path, const QString& reason)
{
    return {.style = AlertStyle::Warning,
            .messageText = Texts::tr("Unable to change the capture preferences for '%1'.").arg(path.name()),
            .informativeText = reason};
}

} // namespace havrel::item_texts
