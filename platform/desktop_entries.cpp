// SPDX-License-Identifier: MIT
#include "platform/desktop_entries.h"

#include "platform/file_contents.h"

#include <QtGlobal>

#include <sys/stat.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

QByteArray environmentOr(const char* name, const QByteArray& otherwise)
{
    const QByteArray value = qgetenv(name);
    return value.isEmpty() ? otherwise : value;
}

bool isProgram(const QByteArray& path)
{
    struct stat status
    {
    };
    return !path.contains('\0') && ::stat(path.constData(), &status) == 0 && S_ISREG(status.st_mode) &&
           ::access(path.constData(), X_OK) == 0;
}

bool isInstalled(const DesktopEntry& entry)
{
    return entry.isApplication && !entry.hidden && (entry.tryExec.isEmpty() || !findProgram(entry.tryExec).isEmpty());
}

} // namespace

QByteArrayList dataFolders()
{
    QByteArrayList folders{environmentOr("XDG_DATA_HOME", qgetenv("HOME") + "/.local/share")};
    folders += environmentOr("XDG_DATA_DIRS", "/usr/local/share:/usr/share").split(':');
    folders.removeIf([](const QByteArray& each) { return !each.startsWith('/'); });
    return folders;
}

std::optional<DesktopEntry> findDesktopEntry(const QByteArray& id)
{
    for (const QByteArray& folder : dataFolders()) {
        const QByteArray path = folder + "/applications/" + id + ".desktop";
        const FileContents file = readFile(path);
        if (file.error != 0)
            continue;
        std::optional<DesktopEntry> entry = parseDesktopEntry(file.bytes);
        if (!entry || !isInstalled(*entry))
            return std::nullopt;
        entry->file = path;
        return entry;
    }
    return std::nullopt;
}

QByteArray findProgram(const QByteArray& name)
{
    if (name.contains('/'))
        return isProgram(name) ? name : QByteArray();
    const QByteArrayList folders = environmentOr("PATH", "/usr/local/bin:/usr/bin:/bin").split(':');
    for (const QByteArray& folder : folders)
        if (const QByteArray path = folder + '/' + name; folder.startsWith('/') && !name.isEmpty() && isProgram(path))
            return path;
    return {};
}

} // namespace havrel::platform
