// SPDX-License-Identifier: MIT
#include "platform/file_systems.h"

#include "platform/item_calls.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>

#include <linux/magic.h>
#include <sys/vfs.h>

namespace havrel::platform {
namespace {

constexpr std::uint64_t kXfsMagic = 0x58465342; // not in every version of the kernel's header
constexpr std::uint64_t kUbifsMagic = 0x24051905;

constexpr std::array<std::uint64_t, 9> kExchanging{
    EXT4_SUPER_MAGIC,
    kXfsMagic,
    BTRFS_SUPER_MAGIC,
    TMPFS_MAGIC,
    F2FS_SUPER_MAGIC,
    OVERLAYFS_SUPER_MAGIC,
    RAMFS_MAGIC,
    kUbifsMagic,
    MSDOS_SUPER_MAGIC,
};

} // namespace

int findFileSystem(const QByteArray& path, FileSystem& found)
{
    if (path.contains('\0'))
        return EINVAL;
    struct statfs statistics;
    if (itemCalls().statfs(path.constData(), &statistics) != 0)
        return errno;
    const auto words = std::bit_cast<std::array<std::uint32_t, 2>>(statistics.f_fsid);
    found.id = words[0] + (std::uint64_t(words[1]) << 32U);
    found.type = static_cast<std::uint64_t>(statistics.f_type);
    return 0;
}

bool exchangesItems(const FileSystem& fileSystem)
{
    return std::find(kExchanging.begin(), kExchanging.end(), fileSystem.type) != kExchanging.end();
}

} // namespace havrel::platform
