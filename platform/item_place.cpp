// SPDX-License-Identifier: MIT
#include "platform/item_place.h"

#include "platform/item_calls.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace havrel::platform {
namespace {

constexpr int kHoldFolder = O_PATH | O_DIRECTORY | O_CLOEXEC;

int statusOf(int folder, const char* name, int flags, struct stat& status)
{
    return itemCalls().fstatat(folder, name, &status, flags) == 0 ? 0 : errno;
}

} // namespace

ItemIdentity identityOf(const struct stat& status)
{
    return {status.st_dev, status.st_ino};
}

int ItemPlace::find(const QByteArray& path)
{
    if (path.contains('\0'))
        return EINVAL;
    qsizetype end = path.size();
    while (end > 0 && path[end - 1] == '/')
        --end;
    if (end == 0)
        return path.isEmpty() ? ENOENT : EBUSY;
    const qsizetype start = path.lastIndexOf('/', end - 1) + 1;
    m_name = path.sliced(start, end - start);
    if (m_name == "." || m_name == "..")
        return EINVAL;
    const QByteArray folder = start == 0 ? QByteArray(".") : path.first(start);
    m_folder = OwnedDescriptor(itemCalls().openat(AT_FDCWD, folder.constData(), kHoldFolder, 0));
    return m_folder.isOpen() ? 0 : errno;
}

int ItemPlace::look(struct stat& status) const
{
    return statusOf(folder(), name(), AT_SYMLINK_NOFOLLOW, status);
}

int ItemPlace::lookThrough(struct stat& status) const
{
    return statusOf(folder(), name(), 0, status);
}

int ItemPlace::refuseInside(const ItemIdentity& folder) const
{
    OwnedDescriptor current(itemCalls().openat(m_folder.get(), ".", kHoldFolder, 0));
    for (ItemIdentity last;;) {
        struct stat status;
        if (!current.isOpen() || ::fstat(current.get(), &status) != 0)
            return errno;
        const ItemIdentity here = identityOf(status);
        if (here == folder)
            return EINVAL;
        if (here == last) // the root is its own parent
            return 0;
        last = here;
        current = OwnedDescriptor(itemCalls().openat(current.get(), "..", kHoldFolder, 0));
    }
}

} // namespace havrel::platform
