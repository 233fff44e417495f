// SPDX-License-Identifier: MIT
#include "integrations/catalogue.h"
#include "integrations/entry_files.h"
#include "integrations/key_file.h"

namespace havrel::integrations {

namespace {

/// For what takes items as arguments only: their absolute paths.
QByteArray commandLine(const MenuCommand& command)
{
    return QByteArray("havrel ") + command.words + " -- %F";
}

} // namespace

QList<EntryFile> desktopEntry()
{
    QByteArray actions;
    for (const MenuCommand& each : menuCommands())
        actions += QByteArray(each.id) + ';';
    KeyFile file;
    file.group("Desktop Entry")
        .set("Type", "Application")
        .set("Version", "1.4")
        .set("Name", kApplicationName)
        .set("Comment", kApplicationSummary)
        .set("Keywords", kKeywords)
        .set("Icon", kApplicationId)
        .set("Exec", "havrel-service")
        .set("StartupWMClass", "havrel-service") // on X11, the toolkit names windows after the program
        .set("Categories", "Utility;Archiving;")
        .set("DBusActivatable", "true")
        .set("StartupNotify", "true")
        .set("NoDisplay", "true") // there is nothing to see before something is selected
        .set("Actions", actions);
    for (const MenuCommand& each : menuCommands())
        file.group(QByteArray("Desktop Action ") + each.id)
            .set("Name", each.title)
            .set("Icon", kApplicationId)
            .set("Exec", commandLine(each));
    return {{QByteArray("applications/") + kApplicationId + ".desktop", file.text()}};
}

QList<EntryFile> dolphinServiceMenu()
{
    QByteArray actions;
    for (const MenuCommand& each : menuCommands())
        actions += QByteArray(each.id) + ';';
    KeyFile file;
    file.group("Desktop Entry")
        .set("Type", "Service")
        .set("MimeType", "all/all;")
        .set("X-KDE-Protocols", "file")
        .set("X-KDE-Submenu", kMenuTitle)
        .set("X-KDE-Priority", "TopLevel")
        .set("Icon", kApplicationId)
        .set("Actions", actions);
    for (const MenuCommand& each : menuCommands())
        file.group(QByteArray("Desktop Action ") + each.id)
            .set("Name", each.title)
            .set("Icon", kApplicationId)
            .set("TryExec", "havrel")
            .set("Exec", commandLine(each));
    return {{"kio/servicemenus/havrel.desktop", file.text()}};
}

QList<EntryFile> nemoActions()
{
    // Only there, and in the user's folder, does Nemo look for extensions, wherever this file is.
    const QByteArray extension = "/usr/share/" + nemoExtension().constFirst().path;
    QList<EntryFile> files;
    for (const MenuCommand& each : menuCommands()) {
        KeyFile file;
        file.group("Nemo Action")
            .set("Name", each.title)
            .set("Comment", each.hint)
            .set("Icon-Name", kApplicationId)
            .set("Exec", commandLine(each))
            .set("Selection", "notnone")
            .set("Extensions", "any;")
            .set("UriScheme", "file")
            .set("Quote", "double")
            .set("Dependencies", "havrel;!" + extension + ';');
        files.append({QByteArray("nemo/actions/havrel-") + each.id + ".nemo_action", file.text()});
    }
    return files;
}

QList<EntryFile> fileManagerActions()
{
    const QByteArray folder = "file-manager/actions/";
    QByteArray items;
    QList<EntryFile> files;
    for (const MenuCommand& each : menuCommands()) {
        const QByteArray id = QByteArray("havrel-") + each.id;
        KeyFile file;
        file.group("Desktop Entry")
            .set("Type", "Action")
            .set("Name", each.title)
            .set("Tooltip", each.hint)
            .set("Icon", kApplicationId)
            .set("Profiles", "main;")
            .group("X-Action-Profile main")
            .set("Name", kMenuTitle)
            .set("TryExec", "havrel")
            .set("Exec", commandLine(each))
            .set("MimeTypes", "*;"); // no Schemes: PCManFM crashes on it
        files.append({folder + id + ".desktop", file.text()});
        items += id + ';';
    }
    KeyFile menu;
    menu.group("Desktop Entry")
        .set("Type", "Menu")
        .set("Name", kMenuTitle)
        .set("Tooltip", kMenuTitle) // which PCManFM shows as the title
        .set("Icon", kApplicationId)
        .set("ItemsList", items);
    files.append({folder + "havrel-menu.desktop", menu.text()});
    return files;
}

} // namespace havrel::integrations
