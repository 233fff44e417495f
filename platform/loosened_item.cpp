// SPDX-License-Identifier: MIT
#include "platform/loosened_item.h"

#include <array>
#include <cerrno>

#include <fcntl.h>

namespace havrel::platform {
namespace {

constexpr mode_t kPermissions = 07777;

} // namespace

LoosenedItem::LoosenedItem(const QByteArray& path)
    : m_path(path)
{
    if (::lstat(path.constData(), &m_status) != 0)
        m_error = errno;
    else if (!S_ISLNK(m_status.st_mode) && ::chmod(path.constData(), (m_status.st_mode & kPermissions) | S_IWUSR) != 0)
        m_error = errno;
}

LoosenedItem::~LoosenedItem()
{
    if (m_error != 0 || S_ISLNK(m_status.st_mode))
        return;
    const std::array<timespec, 2> times{m_status.st_atim, m_status.st_mtim};
    (void)::chmod(m_path.constData(), m_status.st_mode & kPermissions); // also what a write takes away, such as set-uid
    (void)::utimensat(AT_FDCWD, m_path.constData(), times.data(), AT_SYMLINK_NOFOLLOW);
}

} // namespace havrel::platform
