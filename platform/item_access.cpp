// SPDX-License-Identifier: MIT
#include "platform/item_access.h"

#include "platform/item_calls.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace havrel::platform {

int checkWritable(const QByteArray& path)
{
    if (path.contains('\0'))
        return EINVAL;
    return ::faccessat(AT_FDCWD, path.constData(), W_OK, AT_EACCESS | AT_SYMLINK_NOFOLLOW) == 0 ? 0 : errno;
}

int checkAttributesWritable(const QByteArray& path)
{
    if (const int error = checkWritable(path); error != 0)
        return error;
    struct stat status;
    if (itemCalls().lstat(path.constData(), &status) != 0)
        return errno;
    const bool isSticky = S_ISDIR(status.st_mode) && (status.st_mode & S_ISVTX) != 0;
    const uid_t user = ::geteuid();
    return isSticky && user != 0 && user != status.st_uid ? EPERM : 0;
}

} // namespace havrel::platform
