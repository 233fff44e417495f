// SPDX-License-Identifier: MIT
#include "integrations/places.h"

#include "platform/file_names.h"
#include "platform/items.h"
#include "platform/programs.h"

#include <QDir>

#include <algorithm>

namespace havrel::integrations {
namespace {

QByteArrayList absoluteOf(const QByteArray& list)
{
    QByteArrayList folders;
    for (const QByteArray& each : list.split(':'))
        if (each.startsWith('/'))
            folders.append(each);
    return folders;
}

QByteArrayList foldersOf(const char* variable, const char* otherwise)
{
    const QByteArrayList folders = absoluteOf(qgetenv(variable));
    return folders.isEmpty() ? absoluteOf(otherwise) : folders;
}

QByteArray folderOf(const char* variable, const char* belowHome)
{
    const QByteArray folder = qgetenv(variable);
    return folder.startsWith('/') ? folder : qgetenv("HOME") + belowHome;
}

} // namespace

Places Places::ofThisProcess()
{
    return {.dataHome = folderOf("XDG_DATA_HOME", "/.local/share"),
            .configHome = folderOf("XDG_CONFIG_HOME", "/.config"),
            .dataFolders = foldersOf("XDG_DATA_DIRS", "/usr/local/share:/usr/share"),
            .configFolders = foldersOf("XDG_CONFIG_DIRS", "/etc/xdg"),
            .compiledInFolder = "/usr/share",
            .programFolders = foldersOf("PATH", "/usr/local/bin:/usr/bin:/bin"),
            .libraryFolders = {"/usr/local/lib", "/usr/lib64", "/usr/lib"}};
}

bool Places::hasProgram(const QByteArray& name) const
{
    return std::any_of(programFolders.begin(), programFolders.end(), [&name](const QByteArray& folder) {
        return platform::isExecutable(folder + '/' + name);
    });
}

bool Places::hasModule(const QByteArray& path) const
{
    for (const QByteArray& folder : libraryFolders) {
        if (platform::itemExists(folder + '/' + path))
            return true;
        const QDir libraries(platform::textOfFileName(folder));
        for (const QString& each : libraries.entryList({QStringLiteral("*-linux-*")}, QDir::Dirs))
            if (platform::itemExists(folder + '/' + platform::bytesOfFileName(each) + '/' + path))
                return true;
    }
    return false;
}

} // namespace havrel::integrations
