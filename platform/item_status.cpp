// SPDX-License-Identifier: MIT
#include "platform/item_status.h"

#include "platform/item_calls.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

static_assert(kCompressedFlag == STATX_ATTR_COMPRESSED && kImmutableFlag == STATX_ATTR_IMMUTABLE &&
              kAppendOnlyFlag == STATX_ATTR_APPEND && kNoDumpFlag == STATX_ATTR_NODUMP &&
              kEncryptedFlag == STATX_ATTR_ENCRYPTED && kVerityFlag == STATX_ATTR_VERITY);

constexpr unsigned kAsked = STATX_BASIC_STATS | STATX_BTIME;
constexpr std::uint16_t kModeBits = 07777;
constexpr std::uint64_t kBlockSize = 512; // of stx_blocks, whatever the file system's own

std::size_t indexOf(ItemTime which)
{
    return static_cast<std::size_t>(which);
}

ItemStatus statusOf(const struct statx& found)
{
    ItemStatus status;
    status.type = typeOfMode(found.stx_mode);
    status.access = found.stx_mode & kModeBits;
    status.fileID = found.stx_ino;
    status.device = makedev(found.stx_dev_major, found.stx_dev_minor);
    status.logicalSize = found.stx_size;
    status.physicalSize = found.stx_blocks * kBlockSize;
    status.ownerID = found.stx_uid;
    status.groupID = found.stx_gid;
    status.fileFlags = static_cast<std::uint32_t>(found.stx_attributes) & kKnownFileFlags;
    status.linkCount = status.type == ItemType::Directory ? 1 : found.stx_nlink;
    status.isMountRoot = (found.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    if ((found.stx_mask & STATX_BTIME) != 0)
        status.setTime(ItemTime::Created, found.stx_btime.tv_sec, found.stx_btime.tv_nsec);
    status.setTime(ItemTime::Modified, found.stx_mtime.tv_sec, found.stx_mtime.tv_nsec);
    status.setTime(ItemTime::AttributeChanged, found.stx_ctime.tv_sec, found.stx_ctime.tv_nsec);
    return status;
}

} // namespace

timespec ItemStatus::time(ItemTime which) const
{
    const std::size_t index = indexOf(which);
    return {.tv_sec = m_seconds.at(index), .tv_nsec = m_nanoseconds.at(index)};
}

void ItemStatus::setTime(ItemTime which, std::int64_t seconds, std::uint32_t nanoseconds)
{
    m_seconds.at(indexOf(which)) = seconds;
    m_nanoseconds.at(indexOf(which)) = nanoseconds;
}

int readStatus(const QByteArray& path, ItemStatus& status)
{
    return path.contains('\0') ? EINVAL : readStatus(AT_FDCWD, path.constData(), status);
}

int readStatus(int folder, const char* name, ItemStatus& status)
{
    struct statx found;
    if (itemCalls().statx(folder, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, kAsked, &found) != 0)
        return errno;
    status = statusOf(found);
    return 0;
}

std::uint16_t effectiveAccess(const QByteArray& path)
{
    int granted = 0;
    if (path.contains('\0'))
        return 0;
    for (const int bit : {R_OK, W_OK, X_OK})
        if (::faccessat(AT_FDCWD, path.constData(), bit, AT_EACCESS | AT_SYMLINK_NOFOLLOW) == 0)
            granted |= bit;
    return static_cast<std::uint16_t>(granted);
}

} // namespace havrel::platform
