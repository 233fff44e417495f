// SPDX-License-Identifier: MIT
#include "platform/item_types.h"

#include "platform/item_calls.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include <sys/stat.h>

namespace havrel::platform {
namespace {

constexpr std::array<std::pair<mode_t, ItemType>, 7> kTypes{{
    {S_IFREG, ItemType::RegularFile},
    {S_IFDIR, ItemType::Directory},
    {S_IFBLK, ItemType::BlockDevice},
    {S_IFCHR, ItemType::CharacterDevice},
    {S_IFLNK, ItemType::SymbolicLink},
    {S_IFSOCK, ItemType::Socket},
    {S_IFIFO, ItemType::Fifo},
}};

} // namespace

ItemType typeOfMode(std::uint32_t mode)
{
    const auto row =
        std::find_if(kTypes.begin(), kTypes.end(), [mode](const auto& each) { return each.first == (mode & S_IFMT); });
    return row == kTypes.end() ? ItemType::Bad : row->second;
}

int probeType(const QByteArray& path, ItemType& type)
{
    if (path.contains('\0'))
        return EINVAL;
    struct stat status;
    if (itemCalls().lstat(path.constData(), &status) != 0)
        return errno;
    type = typeOfMode(status.st_mode);
    return 0;
}

int probeType(int descriptor, ItemType& type)
{
    struct stat status;
    if (::fstat(descriptor, &status) != 0)
        return errno;
    type = typeOfMode(status.st_mode);
    return 0;
}

} // namespace havrel::platform
