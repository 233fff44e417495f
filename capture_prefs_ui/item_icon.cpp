// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/item_icon.h"

#include "capture_prefs_ui/archive_type.h"
#include "capture_prefs_ui/loaded_items.h"
#include "fs/item_resources.h"
#include "fs/path.h"

#include <QApplication>
#include <QIcon>
#include <QMimeDatabase>
#include <QStyle>

namespace havrel {
namespace {

QIcon themeIcon(const QStringList& names, QStyle::StandardPixmap otherwise)
{
    for (const QString& each : names)
        if (QIcon icon = QIcon::fromTheme(each); !icon.isNull())
            return icon;
    return QApplication::style()->standardIcon(otherwise);
}

QIcon folderIcon()
{
    return themeIcon({QStringLiteral("folder"), QStringLiteral("inode-directory")}, QStyle::SP_DirIcon);
}

/// Has the toolkit look into the program's own icons where the desktop's theme has no icon of a name: a program that is
/// not installed has nothing in the themes.
void offerOwnIcons()
{
    const QString folder = QStringLiteral(":/icons");
    if (const QStringList offered = QIcon::fallbackSearchPaths(); !offered.contains(folder))
        QIcon::setFallbackSearchPaths(offered + QStringList(folder));
}

QIcon archiveIcon()
{
    offerOwnIcons();
    return themeIcon({archive_type::kIconName, QStringLiteral("package-x-generic")}, QStyle::SP_DriveHDIcon);
}

/// By the name alone: looking into a file could block, and would read it.
QIcon fileIcon(const JNPath& path)
{
    if (path.extension().compare(archive_type::kExtension, Qt::CaseInsensitive) == 0)
        return archiveIcon();
    const QMimeType type = QMimeDatabase().mimeTypeForFile(path.name(), QMimeDatabase::MatchExtension);
    return themeIcon({type.iconName(), type.genericIconName(), QStringLiteral("text-x-generic")}, QStyle::SP_FileIcon);
}

QIcon severalIcon()
{
    return themeIcon(
        {QStringLiteral("document-multiple"), QStringLiteral("edit-copy"), QStringLiteral("text-x-generic")},
        QStyle::SP_FileIcon);
}

} // namespace

std::function<QIcon()> iconForItems(const LoadedItems& loaded)
{
    if (loaded.allContainers)
        return folderIcon;
    if (loaded.items.size() == 1)
        return [path = loaded.paths.front()] { return fileIcon(*path); };
    return severalIcon;
}

QIcon iconForItem(const JNPath& path)
{
    return itemResources(path).isContainer() ? folderIcon() : fileIcon(path);
}

} // namespace havrel
