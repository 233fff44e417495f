// SPDX-License-Identifier: MIT
#include "components/archive_key.h"

#include "components/archive_file.h"
#include "components/data_folder.h"
#include "diagnostics/exception.h"
#include "platform/file_contents.h"
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
constexpr qsizetype kLongestCommand = qsizetype{1024} * 1024; // bytes, as of a whole archive file

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

QByteArray commandFileOf(const QString& identifier)
{
    return keyFileOf(identifier) + ".command";
}

[[noreturn]] void raiseFor(int error, const QByteArray& path)
{
    HVException::errnoWithName(error, kArchiveException, QStringLiteral("cannot keep the archive's key"))
        .setStrPath(platform::textOfFileName(path))
        .raise();
}

void keep(const QByteArray& path, const QByteArray& bytes)
{
    int error = platform::makeFolders(folderOfKeys(), kFolderOfOwnerAlone);
    if (error == 0)
        error = platform::replaceFile(path, bytes, kFileOfOwnerAlone);
    if (error != 0)
        raiseFor(error, path);
}

} // namespace

QByteArray keyFileOf(const QString& identifier)
{
    return folderOfKeys() + '/' + identifier.toLatin1();
}

void makeKeyFile(const QString& identifier)
{
    const QByteArray path = keyFileOf(identifier);
    if (platform::findName(path) == 0)
        raiseFor(EEXIST, path);
    keep(path, freshKey());
}

void allowKeyCommand(const QString& identifier, const QString& command)
{
    keep(commandFileOf(identifier), command.toUtf8());
}

bool isAllowedKeyCommand(const QString& identifier, const QString& command)
{
    const platform::FileContents kept = platform::readFile(commandFileOf(identifier), kLongestCommand);
    return kept.error == 0 && kept.bytes == command.toUtf8();
}

void removeKeyFile(const QString& identifier)
{
    (void)platform::removeItem(keyFileOf(identifier));
    (void)platform::removeItem(commandFileOf(identifier));
}

} // namespace havrel
