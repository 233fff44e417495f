// SPDX-License-Identifier: MIT
#include "platform/folder_reader.h"

#include <algorithm>
#include <cerrno>
#include <functional>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace havrel::platform {

static_assert(alignof(dirent64) <= alignof(std::uint64_t));

int FolderReader::read(int descriptor)
{
    m_found.clear();
    m_names.clear();
    for (;;) {
        const ssize_t length = ::getdents64(descriptor, m_buffer.data(), m_buffer.size());
        if (length <= 0)
            return length == 0 ? 0 : errno;
        keep(descriptor, m_buffer.data(), m_buffer.data() + length);
    }
}

std::span<const WalkedItem> FolderReader::items()
{
    m_items.clear();
    for (const Found& each : m_found)
        if (each.kind != WalkedKind::Folder)
            m_items.push_back({nameOf(each), each.inode, each.kind});
    std::sort(m_items.begin(), m_items.end(), [](const WalkedItem& left, const WalkedItem& right) {
        return left.inode < right.inode;
    });
    return m_items;
}

std::vector<QByteArray> FolderReader::subfolders() const
{
    std::vector<QByteArray> names;
    for (const Found& each : m_found)
        if (each.kind == WalkedKind::Folder)
            names.push_back(nameOf(each).toByteArray());
    std::sort(names.begin(), names.end(), std::greater<>());
    return names;
}

QByteArrayView FolderReader::nameOf(const Found& found) const
{
    return QByteArrayView(m_names).sliced(found.start, found.length);
}

void FolderReader::keep(int descriptor, const char* next, const char* end)
{
    while (next < end) {
        const auto* entry = static_cast<const dirent64*>(static_cast<const void*>(next));
        next += entry->d_reclen;
        const QByteArrayView name(entry->d_name);
        if (name == "." || name == "..")
            continue;
        m_found.push_back({m_names.size(), name.size(), entry->d_ino, kindOf(descriptor, *entry)});
        m_names += name;
        m_names += '\0';
    }
}

WalkedKind FolderReader::kindOf(int descriptor, const dirent64& entry)
{
    if (entry.d_type != DT_UNKNOWN)
        return entry.d_type == DT_DIR   ? WalkedKind::Folder
               : entry.d_type == DT_REG ? WalkedKind::File
                                        : WalkedKind::Other;
    struct stat facts;
    if (::fstatat(descriptor, entry.d_name, &facts, AT_SYMLINK_NOFOLLOW) != 0)
        return WalkedKind::Other;
    return S_ISDIR(facts.st_mode) ? WalkedKind::Folder : S_ISREG(facts.st_mode) ? WalkedKind::File : WalkedKind::Other;
}

} // namespace havrel::platform
