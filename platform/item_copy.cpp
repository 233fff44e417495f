// SPDX-License-Identifier: MIT
#include "platform/item_copy.h"

#include "platform/folder_search.h"
#include "platform/item_calls.h"
#include "platform/item_place.h"
#include "platform/item_removal.h"
#include "platform/items.h"
#include "platform/tree_copy.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

constexpr int kOpenToRead = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;

bool leadsTo(const ItemPlace& link, const ItemIdentity& item)
{
    struct stat status;
    return link.lookThrough(status) == 0 && identityOf(status) == item;
}

int openToRead(const ItemPlace& place)
{
    const OwnedDescriptor item(itemCalls().openat(place.folder(), place.name(), kOpenToRead, 0));
    return item.isOpen() ? 0 : errno;
}

/// Writes what the file system of a folder still holds in memory to its disk.
int flushVolume(const ItemPlace& place)
{
    const OwnedDescriptor folder(itemCalls().openat(place.folder(), ".", O_RDONLY | O_DIRECTORY, 0));
    if (folder.isOpen())
        return itemCalls().syncfs(folder.get()) == 0 ? 0 : errno;
    ::sync(); // a folder that may not be read
    return 0;
}

/// Whether an item can be removed from its folder at all: nothing is mounted on it, and the folder takes changes.
int refuseToRemove(const ItemPlace& place)
{
    if (isMountPoint(place.folder(), place.name()))
        return EBUSY;
    return ::faccessat(place.folder(), ".", W_OK | X_OK, AT_EACCESS) == 0 ? 0 : errno;
}

/// Whether the item \p holder, with that status, holds what is at \p held, whatever mounts they are seen through.
int refuseHoldingPlace(const ItemPlace& holder, const struct stat& status, const ItemPlace& held)
{
    struct stat folder;
    if (!S_ISDIR(status.st_mode))
        return 0;
    return ::fstat(held.folder(), &folder) == 0 ? refuseHolding(holder, identityOf(folder)) : errno;
}

} // namespace

int refuseToCopy(const ItemPlace& from, const ItemPlace& to)
{
    struct stat status;
    if (const int error = from.look(status); error != 0)
        return error;
    const bool folder = S_ISDIR(status.st_mode);
    if (folder || S_ISREG(status.st_mode))
        if (const int error = openToRead(from); error != 0)
            return error;
    return folder ? to.refuseInside(identityOf(status)) : 0;
}

int refuseToReplace(const ItemPlace& from, const ItemPlace& to)
{
    struct stat status;
    if (const int error = to.look(status); error != 0)
        return error == ENOENT ? 0 : error;
    if (leadsTo(from, identityOf(status)))
        return EINVAL;
    struct stat original;
    if (const int error = from.look(original); error != 0)
        return error;
    if (identityOf(original) == identityOf(status))
        return EINVAL;
    if (S_ISDIR(status.st_mode))
        if (const int error = from.refuseInside(identityOf(status)); error != 0)
            return error;
    if (!mayLieBehindTwoMounts(from, to))
        return 0;
    const int error = refuseHoldingPlace(to, status, from);
    return error != 0 ? error : refuseHoldingPlace(from, original, to);
}

AttributeOutcome copyItem(const ItemPlace& from, const ItemPlace& to, AttributeLoss loss)
{
    TreeCopy copy(to, loss);
    const AttributeOutcome outcome = copy.copy(from);
    if (outcome.error != 0)
        copy.takeBack();
    return outcome;
}

int moveAcross(const ItemPlace& from, const ItemPlace& to)
{
    int error = refuseToCopy(from, to);
    if (error == 0)
        error = refuseToRemove(from);
    if (error != 0)
        return error;
    TreeCopy copy(to, AttributeLoss::Refused);
    error = copy.copy(from).error;
    if (error == 0)
        error = flushVolume(to);
    if (error != 0) {
        copy.takeBack();
        return error;
    }
    return removeListed(from, copy.originals());
}

} // namespace havrel::platform
