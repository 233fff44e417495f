// SPDX-License-Identifier: MIT
#include "integrations/entry_files.h"
#include "integrations/file_manager.h"
#include "platform/replaced_file.h"

#include <cstdio>
#include <cstring>

namespace havrel::integrations {
namespace {

bool write(const QByteArray& folder, const QList<EntryFile>& files)
{
    for (const EntryFile& each : files) {
        const QByteArray path = folder + '/' + each.path;
        int error = platform::makeFolders(path.left(path.lastIndexOf('/')), 0755);
        if (error == 0)
            error = platform::replaceFile(path, each.contents, 0644);
        if (error != 0) {
            std::fprintf(stderr, "%s: %s\n", path.constData(), std::strerror(error));
            return false;
        }
    }
    return true;
}

bool writeAll(const QByteArray& folder)
{
    bool isDone = write(folder, desktopEntry()) && write(folder, metainfo());
    for (const FileManager& manager : fileManagers())
        for (const Way& way : manager.ways)
            isDone = isDone && (way.isSharedFile() || write(folder, way.files()));
    return isDone;
}

} // namespace
} // namespace havrel::integrations

/// Used by the build: writes the files to install below the folder that is named.
int main(int argc, char** argv)
{
    return argc == 2 && havrel::integrations::writeAll(argv[1]) ? 0 : 1;
}
