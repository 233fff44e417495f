// SPDX-License-Identifier: MIT
#include "platform/item_removal.h"

#include "platform/folder_reader.h"
#include "platform/folder_stack.h"
#include "platform/item_calls.h"
#include "platform/item_place.h"
#include "platform/items.h"

#include <algorithm>
#include <cerrno>
#include <tuple>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace havrel::platform {
namespace {

/// Removes all, and stops at the first failure.
class AllItems
{
public:
    [[nodiscard]] bool takes(int /*folder*/, const char* /*name*/) const { return true; }
    [[nodiscard]] bool goesOn() const { return false; }
    void prepare(int /*folder*/) const {}
};

bool isBefore(const CopiedItem& one, const CopiedItem& other)
{
    return one.identity < other.identity;
}

/// Removes what was copied and did not change since.
class CopiedItems
{
public:
    explicit CopiedItems(std::vector<CopiedItem> items)
        : m_items(std::move(items))
    {
        std::sort(m_items.begin(), m_items.end(), isBefore);
    }

    [[nodiscard]] bool takes(int folder, const char* name) const
    {
        struct stat status;
        return ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && takes(status);
    }
    [[nodiscard]] bool takes(const struct stat& status) const
    {
        const auto [first, last] = std::equal_range(m_items.begin(), m_items.end(), copiedItem(status), isBefore);
        // Of a file that was copied under several names every copy must be the newest.
        return first != last &&
               std::all_of(first, last, [&](const CopiedItem& item) { return item.isUnchanged(status); });
    }
    [[nodiscard]] bool goesOn() const { return false; }
    void prepare(int /*folder*/) const {}

private:
    std::vector<CopiedItem> m_items;
};

/// Removes what a copy made: opens its folders, and leaves what does not go.
class CreatedItems
{
public:
    explicit CreatedItems(std::vector<ino_t> inodes)
        : m_inodes(std::move(inodes))
    {
        std::sort(m_inodes.begin(), m_inodes.end());
    }

    [[nodiscard]] bool takes(int folder, const char* name) const
    {
        struct stat status;
        return ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
               std::binary_search(m_inodes.begin(), m_inodes.end(), status.st_ino);
    }
    [[nodiscard]] bool goesOn() const { return true; }
    void prepare(int folder) const { (void)::fchmod(folder, S_IRWXU); }

private:
    std::vector<ino_t> m_inodes;
};

int unlinkItem(int folder, const char* name, int flags)
{
    return itemCalls().unlinkat(folder, name, flags) == 0 ? 0 : errno;
}

template<class Selection>
class TreeRemoval
{
public:
    explicit TreeRemoval(Selection selection)
        : m_selection(std::move(selection))
    {
    }

    int remove(const ItemPlace& place)
    {
        m_place = place.folder();
        int error = removeEntry(m_place, place.name());
        while (error == 0 && !m_levels.empty())
            error = step();
        return error;
    }

private:
    struct Level
    {
        QByteArray name;                    // in the folder above
        std::vector<QByteArray> subfolders; // still to be removed
    };

    /// Removes what is no folder or an empty one, and goes into any other.
    int removeEntry(int parent, const char* name)
    {
        if (!m_selection.takes(parent, name))
            return 0;
        int error = unlinkItem(parent, name, 0);
        if (error == EISDIR)
            error = unlinkItem(parent, name, AT_REMOVEDIR);
        if (error == ENOTEMPTY || error == EEXIST)
            error = enter(parent, name);
        return m_selection.goesOn() ? 0 : error;
    }

    int enter(int parent, const char* name)
    {
        if (const int error = m_folders.enter(parent, name); error != 0)
            return error;
        if (isMountPoint(m_folders.last())) {
            m_folders.leave();
            return EBUSY;
        }
        m_selection.prepare(m_folders.last());
        m_levels.push_back({name, {}});
        return removeFiles();
    }

    int removeFiles()
    {
        if (const int error = m_reader.read(m_folders.last()); error != 0)
            return error;
        m_levels.back().subfolders = m_reader.subfolders();
        for (const WalkedItem& item : m_reader.items())
            if (const int error = removeFile(item.name.data()); error != 0)
                return error;
        return 0;
    }

    int removeFile(const char* name)
    {
        if (!m_selection.takes(m_folders.last(), name))
            return 0;
        const int error = unlinkItem(m_folders.last(), name, 0);
        if (error == EISDIR) // it has become a folder
            m_levels.back().subfolders.emplace_back(name);
        const bool gone = error == 0 || error == ENOENT || error == EISDIR;
        return gone || m_selection.goesOn() ? 0 : error;
    }

    int step()
    {
        std::vector<QByteArray>& subfolders = m_levels.back().subfolders;
        if (subfolders.empty())
            return leave();
        const QByteArray name = std::move(subfolders.back());
        subfolders.pop_back();
        const int error = removeEntry(m_folders.last(), name.constData());
        return error == ENOENT ? 0 : error;
    }

    int leave()
    {
        if (const int error = m_folders.openAbove(); error != 0)
            return error;
        const int error = unlinkItem(m_folders.aboveLast(m_place), m_levels.back().name.constData(), AT_REMOVEDIR);
        m_folders.leave();
        m_levels.pop_back();
        return error == ENOENT || m_selection.goesOn() ? 0 : error;
    }

    Selection m_selection;
    FolderReader m_reader;
    FolderStack m_folders;
    std::vector<Level> m_levels;
    int m_place = -1;
};

} // namespace

bool CopiedItem::isUnchanged(const struct stat& now) const
{
    if (identityOf(now) != identity)
        return false;
    const bool sameContents = std::tie(now.st_size, now.st_mtim.tv_sec, now.st_mtim.tv_nsec) ==
                              std::tie(size, modified.tv_sec, modified.tv_nsec);
    const bool sameItem =
        std::tie(now.st_ctim.tv_sec, now.st_ctim.tv_nsec) == std::tie(changed.tv_sec, changed.tv_nsec);
    return S_ISDIR(now.st_mode) || (sameContents && (severalNames || sameItem));
}

CopiedItem copiedItem(const struct stat& status)
{
    return {identityOf(status), status.st_size, status.st_mtim, status.st_ctim, status.st_nlink > 1};
}

int removeItem(const QByteArray& path)
{
    ItemPlace place;
    const int error = place.find(path);
    return error == 0 ? removeItem(place) : error;
}

int removeItem(const ItemPlace& place)
{
    return TreeRemoval(AllItems()).remove(place);
}

int removeListed(const ItemPlace& place, std::vector<CopiedItem> listed)
{
    CopiedItems items(std::move(listed));
    struct stat status;
    if (place.look(status) == 0 && !items.takes(status))
        return ESTALE;
    return TreeRemoval(std::move(items)).remove(place);
}

void removeCreated(const ItemPlace& place, std::vector<ino_t> created)
{
    (void)TreeRemoval(CreatedItems(std::move(created))).remove(place);
}

} // namespace havrel::platform
