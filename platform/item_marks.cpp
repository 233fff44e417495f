// SPDX-License-Identifier: MIT
#include "platform/item_marks.h"

#include "platform/extended_attributes.h"
#include "platform/item_calls.h"
#include "platform/item_status.h"
#include "platform/owned_descriptor.h"

#include <QByteArrayList>

#include <algorithm>

#include <fcntl.h>
#include <sys/stat.h>

namespace havrel::platform {
namespace {

constexpr const char* kBackupAttribute = "user.xdg.robots.backup";
constexpr QByteArrayView kTagSignature = "Signature: 8a477f597d28d172789f06886806bc55";
constexpr qsizetype kLongestHiddenList = 1 << 20; // bytes; what comes after that hides nothing

/// The beginning of a regular file; nothing of anything else, which may block or have effects when it is read.
QByteArray beginningOf(const QByteArray& path, qsizetype longest)
{
    struct stat status;
    const OwnedDescriptor file(itemCalls().openat(AT_FDCWD, path.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY, 0));
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    QByteArray bytes(std::min<qsizetype>(longest, status.st_size), Qt::Uninitialized);
    const ssize_t length = itemCalls().pread(file.get(), bytes.data(), static_cast<std::size_t>(bytes.size()), 0);
    return bytes.first(std::max<ssize_t>(length, 0));
}

/// \p folder ends in "/", or is empty for the working folder.
bool isListed(const QByteArray& folder, const QByteArray& name)
{
    return beginningOf(folder + ".hidden", kLongestHiddenList).split('\n').contains(name);
}

} // namespace

ItemMark hiddenMark(const QByteArray& path)
{
    ItemStatus status;
    if (const int error = readStatus(path, status); error != 0)
        return {.error = error};
    QByteArray item = path;
    while (item.size() > 1 && item.endsWith('/'))
        item.chop(1);
    const qsizetype start = item.lastIndexOf('/') + 1;
    const QByteArray name = item.sliced(start);
    const bool isFolderItself = name.isEmpty() || name == "." || name == "..";
    return {.isSet = !isFolderItself && (name.startsWith('.') || isListed(item.first(start), name))};
}

ItemMark excludedFromBackupMark(const QByteArray& path)
{
    ItemStatus status;
    if (const int error = readStatus(path, status); error != 0)
        return {.error = error};
    if ((status.fileFlags & kNoDumpFlag) != 0 || readAttribute(path, kBackupAttribute).bytes == "false")
        return {.isSet = true};
    const bool isTagged = status.type == ItemType::Directory &&
                          beginningOf(path + "/CACHEDIR.TAG", kTagSignature.size()) == kTagSignature;
    return {.isSet = isTagged};
}

} // namespace havrel::platform
