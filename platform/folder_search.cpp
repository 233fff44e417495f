// SPDX-License-Identifier: MIT
#include "platform/folder_search.h"

#include "platform/folder_reader.h"
#include "platform/folder_stack.h"
#include "platform/items.h"

#include <cerrno>
#include <optional>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>

namespace havrel::platform {
namespace {

std::optional<std::uint64_t> mountOf(int folder)
{
    struct statx status;
    if (::statx(folder, "", AT_EMPTY_PATH, STATX_MNT_ID, &status) != 0 || (status.stx_mask & STATX_MNT_ID) == 0)
        return std::nullopt;
    return status.stx_mnt_id;
}

bool hasSubvolumes(int folder)
{
    struct statfs statistics;
    return ::fstatfs(folder, &statistics) == 0 && statistics.f_type == BTRFS_SUPER_MAGIC;
}

bool mayShareFileSystem(int one, int other)
{
    struct stat first;
    struct stat second;
    if (::fstat(one, &first) != 0 || ::fstat(other, &second) != 0)
        return true;
    return first.st_dev == second.st_dev || (hasSubvolumes(one) && hasSubvolumes(other));
}

class FolderSearch
{
public:
    explicit FolderSearch(const ItemIdentity& wanted)
        : m_wanted(wanted)
    {
    }

    int run(const ItemPlace& place)
    {
        int error = enter(place.folder(), place.name());
        while (error == 0 && !m_folders.isEmpty())
            error = step();
        return error;
    }

private:
    int enter(int parent, const char* name)
    {
        if (m_folders.enter(parent, name) != 0)
            return 0;
        if (isMountPoint(m_folders.last())) {
            m_folders.leave();
            return 0;
        }
        if (m_folders.identityOfLast() == m_wanted)
            return EINVAL;
        (void)m_reader.read(m_folders.last()); // what was read until a failure is kept
        m_subfolders.push_back(m_reader.subfolders());
        return 0;
    }

    int step()
    {
        std::vector<QByteArray>& names = m_subfolders.back();
        if (names.empty())
            return leave();
        const QByteArray name = std::move(names.back());
        names.pop_back();
        return enter(m_folders.last(), name.constData());
    }

    int leave()
    {
        const int error = m_folders.openAbove();
        m_folders.leave();
        m_subfolders.pop_back();
        return error;
    }

    const ItemIdentity m_wanted;
    FolderReader m_reader;
    FolderStack m_folders;
    std::vector<std::vector<QByteArray>> m_subfolders; // still to be looked into, of each folder on the stack
};

} // namespace

bool mayLieBehindTwoMounts(const ItemPlace& one, const ItemPlace& other)
{
    const auto first = mountOf(one.folder());
    const auto second = mountOf(other.folder());
    return (!first || first != second) && mayShareFileSystem(one.folder(), other.folder());
}

int refuseHolding(const ItemPlace& place, const ItemIdentity& wanted)
{
    return FolderSearch(wanted).run(place);
}

} // namespace havrel::platform
