// SPDX-License-Identifier: MIT
#include "platform/item_access.h"

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

} // namespace havrel::platform
