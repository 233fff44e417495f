// SPDX-License-Identifier: MIT
#include "platform/items.h"

#include "platform/file_system_types.h"
#include "platform/item_calls.h"
#include "platform/owned_descriptor.h"
#include "platform/volume_bits.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

int answer(int result)
{
    return result == 0 ? 0 : errno;
}

bool namesAnItem(const QByteArray& path)
{
    return !path.contains('\0');
}

int renameWithFlags(const QByteArray& from, const QByteArray& to, unsigned flags)
{
    if (!namesAnItem(from) || !namesAnItem(to))
        return EINVAL;
    return answer(itemCalls().renameat2(from.constData(), to.constData(), flags));
}

/// The text of a link, of any length; none when it cannot be read.
std::optional<QByteArray> linkText(const QByteArray& path)
{
    for (qsizetype size = 256;; size *= 2) {
        QByteArray text(size, Qt::Uninitialized);
        const ssize_t length = itemCalls().readlink(path.constData(), text.data(), static_cast<std::size_t>(size));
        if (length < 0)
            return std::nullopt;
        if (length < size)
            return text.first(length);
    }
}

/// The kernel marks the path of an item that has been removed meanwhile, and cannot give that of an item outside of
/// this process's root: only a text that leads back to the item is its path.
bool leadsTo(const QByteArray& path, int descriptor)
{
    struct stat open;
    struct stat found;
    return ::fstat(descriptor, &open) == 0 && itemCalls().lstat(path.constData(), &found) == 0 &&
           open.st_dev == found.st_dev && open.st_ino == found.st_ino;
}

/// What the C library says of the types that it does not know, tmpfs and overlay among them, and what is true of them.
constexpr long kGuessedFileSizeBits = 32;
constexpr std::int64_t kFileSizeBits = 64;

bool holdsLongFiles(const QByteArray& path)
{
    struct statfs statistics;
    if (itemCalls().statfs(path.constData(), &statistics) != 0)
        return false;
    const auto& type = fileSystemTypeNamed(typeNameOfMagic(static_cast<std::uint64_t>(statistics.f_type)));
    return (type.format & ~type.unsettledFormat & VOL_CAP_FMT_2TB_FILESIZE) != 0;
}

bool isMountRoot(int folder, const char* name, int flags)
{
    struct statx status;
    return ::statx(folder, name, flags, 0, &status) == 0 && (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
}

} // namespace

int renameItem(const QByteArray& from, const QByteArray& to)
{
    if (!namesAnItem(from) || !namesAnItem(to))
        return EINVAL;
    return answer(itemCalls().rename(from.constData(), to.constData()));
}

int renameItemExclusively(const QByteArray& from, const QByteArray& to)
{
    const int error = renameWithFlags(from, to, RENAME_NOREPLACE);
    if (error != EINVAL && error != ENOSYS)
        return error;
    // Not every file system knows the flag.
    if (const int missing = findName(to); missing != ENOENT)
        return missing == 0 ? EEXIST : missing;
    return renameItem(from, to);
}

int exchangeItems(const QByteArray& one, const QByteArray& other)
{
    return renameWithFlags(one, other, RENAME_EXCHANGE);
}

bool itemExists(const QByteArray& path)
{
    struct stat status;
    return namesAnItem(path) && itemCalls().stat(path.constData(), &status) == 0;
}

int findName(const QByteArray& path)
{
    struct stat status;
    return namesAnItem(path) ? answer(itemCalls().lstat(path.constData(), &status)) : EINVAL;
}

std::optional<QByteArray> realPath(const QByteArray& path)
{
    if (!namesAnItem(path))
        return std::nullopt;
    const std::unique_ptr<char, decltype(&std::free)> resolved(itemCalls().realpath(path.constData(), nullptr),
                                                               &std::free);
    return resolved ? std::optional(QByteArray(resolved.get())) : std::nullopt;
}

std::optional<QByteArray> canonicalPath(const QByteArray& path)
{
    if (!namesAnItem(path))
        return std::nullopt;
    const OwnedDescriptor item(itemCalls().openat(AT_FDCWD, path.constData(), O_PATH, 0));
    if (!item.isOpen())
        return std::nullopt;
    const auto text = linkText("/proc/self/fd/" + QByteArray::number(item.get()));
    return text && leadsTo(*text, item.get()) ? text : std::nullopt;
}

std::optional<std::uint64_t> deviceId(const QByteArray& path)
{
    struct stat status;
    if (!namesAnItem(path) || itemCalls().lstat(path.constData(), &status) != 0)
        return std::nullopt;
    return status.st_dev;
}

bool isMountPoint(const QByteArray& path)
{
    return namesAnItem(path) && isMountRoot(AT_FDCWD, path.constData(), AT_SYMLINK_NOFOLLOW);
}

bool isMountPoint(int parent, const char* name)
{
    return isMountRoot(parent, name, AT_SYMLINK_NOFOLLOW);
}

bool isMountPoint(int folder)
{
    return isMountRoot(folder, "", AT_EMPTY_PATH);
}

std::int64_t pathLimit(const QByteArray& path, PathLimit limit)
{
    static constexpr std::array<int, 3> kNames{_PC_REC_MIN_XFER_SIZE, _PC_REC_MAX_XFER_SIZE, _PC_FILESIZEBITS};
    if (!namesAnItem(path))
        return -1;
    const long value = itemCalls().pathconf(path.constData(), kNames.at(static_cast<std::size_t>(limit)));
    const bool isGuess = limit == PathLimit::FileSizeBits && value == kGuessedFileSizeBits;
    return isGuess && holdsLongFiles(path) ? kFileSizeBits : value;
}

OwnedDescriptor openFolder(const QByteArray& path)
{
    if (!namesAnItem(path))
        return {};
    return OwnedDescriptor(itemCalls().openat(AT_FDCWD, path.constData(), O_RDONLY | O_NOFOLLOW | O_DIRECTORY, 0));
}

int createFolder(const QByteArray& path, mode_t mode)
{
    return namesAnItem(path) ? answer(itemCalls().mkdirat(AT_FDCWD, path.constData(), mode)) : EINVAL;
}

int unmountVolume(const QByteArray& mountPoint, bool forcibly)
{
    return namesAnItem(mountPoint) ? answer(itemCalls().umount2(mountPoint.constData(), forcibly ? MNT_FORCE : 0))
                                   : EINVAL;
}

int touchItem(const QByteArray& path)
{
    if (!namesAnItem(path))
        return EINVAL;
    return answer(itemCalls().utimensat(AT_FDCWD, path.constData(), nullptr, 0));
}

} // namespace havrel::platform
