// SPDX-License-Identifier: MIT
#include "components/archive_key.h"

#include "components/archive_file.h"
#include "components/data_folder.h"
#include "diagnostics/exception.h"
#include "platform/file_names.h"
#include "platform/item_removal.h"
#include "platform/items.h"
#include "platform/random.h"
#include "platform/replaced_file.h"

#include <cerrno>

namespace havrel {
namespace {

constexpr mode_t kFolderOfOwnerAlone = 0700;
constexpr mode_t kFileOfOwnerAlone = 0600;

QByteArray folderOfKeys()
{
    return dataFolder() + "/keys";
}

QByteArray freshKey()
{
    QByteArray digits;
    for (int i = 0; i < 8; ++i)
        digits += QByteArray::number(platform::random32(), 16).rightJustified(8, '0');
    return digits + '\n';
}

} // namespace

QByteArray keyFileOf(const QString& identifier)
{
    return folderOfKeys() + '/' + identifier.toLatin1();
}

void makeKeyFile(const QString& identifier)
{
    const QByteArray path = keyFileOf(identifier);
    int error = platform::makeFolders(folderOfKeys(), kFolderOfOwnerAlone);
    if (error == 0 && platform::findName(path) == 0)
        error = EEXIST;
    if (error == 0)
        error = platform::replaceFile(path, freshKey(), kFileOfOwnerAlone);
    if (error != 0)
        HVException::errnoWithName(error, kArchiveException, QStringLiteral("cannot keep the archive's key"))
            .setStrPath(platform::textOfFileName(path))
            .raise();
}

void removeKeyFile(const QString& identifier)
{
    (void)platform::removeItem(keyFileOf(identifier));
}

} // namespace havrel
