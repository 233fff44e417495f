// SPDX-License-Identifier: MIT
#include "platform/folder_stack.h"

#include "platform/item_calls.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace havrel::platform {
namespace {

/// Folders that stay open. Deeper ones close the outermost.
constexpr std::size_t kMostOpenFolders = 64;
constexpr int kOpenFolder = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

} // namespace

int FolderStack::enter(int parent, const char* name)
{
    OwnedDescriptor opened(itemCalls().openat(parent, name, kOpenFolder, 0));
    struct stat status;
    if (!opened.isOpen() || ::fstat(opened.get(), &status) != 0)
        return errno == ELOOP ? ENOTDIR : errno;
    m_folders.push_back({std::move(opened), identityOf(status)});
    if (m_folders.size() > kMostOpenFolders)
        m_folders[m_folders.size() - kMostOpenFolders - 1].descriptor.reset();
    return 0;
}

int FolderStack::openAbove()
{
    if (m_folders.size() < 2)
        return 0;
    Folder& above = m_folders[m_folders.size() - 2];
    if (above.descriptor.isOpen())
        return 0;
    OwnedDescriptor opened(itemCalls().openat(last(), "..", kOpenFolder, 0));
    struct stat status;
    if (!opened.isOpen() || ::fstat(opened.get(), &status) != 0)
        return errno;
    if (identityOf(status) != above.identity)
        return ENOENT;
    above.descriptor = std::move(opened);
    return 0;
}

void FolderStack::leave()
{
    m_folders.pop_back();
}

int FolderStack::aboveLast(int outside) const noexcept
{
    return m_folders.size() < 2 ? outside : m_folders[m_folders.size() - 2].descriptor.get();
}

} // namespace havrel::platform
