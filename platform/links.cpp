// SPDX-License-Identifier: MIT
#include "platform/links.h"

#include "platform/item_calls.h"

#include <array>
#include <cerrno>
#include <climits>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

int takeOwnerAndTimes(const QByteArray& link, const struct stat& from)
{
    const std::array<timespec, 2> times{from.st_atim, from.st_mtim};
    if (::lchown(link.constData(), from.st_uid, from.st_gid) != 0 && ::geteuid() == 0)
        return errno;
    return ::utimensat(AT_FDCWD, link.constData(), times.data(), AT_SYMLINK_NOFOLLOW) == 0 ? 0 : errno;
}

} // namespace

std::optional<QByteArray> targetOfLink(const QByteArray& path)
{
    std::array<char, PATH_MAX> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the call
    const ssize_t length = ::readlink(path.constData(), buffer.data(), buffer.size());
    if (length < 0)
        return std::nullopt;
    return QByteArray(buffer.data(), length);
}

int readLink(const QByteArray& path, qsizetype longest, QByteArray& target)
{
    if (path.contains('\0'))
        return EINVAL;
    QByteArray read(longest, Qt::Uninitialized);
    const ssize_t length = itemCalls().readlink(path.constData(), read.data(), static_cast<std::size_t>(longest));
    if (length < 0)
        return errno;
    target = read.first(length);
    return 0;
}

int makeLink(const QByteArray& path, const QByteArray& target)
{
    if (path.contains('\0') || target.contains('\0'))
        return EINVAL;
    return itemCalls().symlinkat(target.constData(), AT_FDCWD, path.constData()) == 0 ? 0 : errno;
}

int retargetLink(const QByteArray& path, const QByteArray& target)
{
    struct stat status = {};
    if (::lstat(path.constData(), &status) != 0)
        return errno;
    if (!S_ISLNK(status.st_mode))
        return EINVAL;
    const QByteArray next = path.first(path.lastIndexOf('/') + 1) + ".havrel-" + QByteArray::number(::getpid());
    if (::symlink(target.constData(), next.constData()) != 0)
        return errno;
    int error = takeOwnerAndTimes(next, status);
    if (error == 0 && ::rename(next.constData(), path.constData()) != 0)
        error = errno;
    if (error != 0)
        ::unlink(next.constData());
    return error;
}

} // namespace havrel::platform
