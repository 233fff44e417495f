// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <array>
#include <cstdint>
#include <span>
#include <vector>

struct dirent64;

namespace havrel::platform {

enum class WalkedKind : std::uint8_t { File, Folder, Other };

/// An entry of a folder that is being read.
struct WalkedItem
{
    QByteArrayView name; ///< a NUL follows it; valid until the next folder is read
    std::uint64_t inode = 0;
    WalkedKind kind = WalkedKind::Other;
};

/// Reads the entries of folders into buffers that serve one folder after the other.
///
/// Threads: one thread at a time.
class FolderReader
{
public:
    /// Reads all entries of an open folder but "." and "..", from where its descriptor stands; blocks on the disk.
    /// \return 0 or an errno value; what was read until then is kept.
    [[nodiscard]] int read(int descriptor);

    /// Everything but folders, in the order of the inodes, which is the order that disks read fastest. Valid until the
    /// next read.
    [[nodiscard]] std::span<const WalkedItem> items();

    /// The names of the folders, the greatest first.
    [[nodiscard]] std::vector<QByteArray> subfolders() const;

private:
    struct Found
    {
        qsizetype start, length; // of the name in m_names
        std::uint64_t inode;
        WalkedKind kind;
    };

    [[nodiscard]] QByteArrayView nameOf(const Found& found) const;
    void keep(int descriptor, const char* next, const char* end);
    static WalkedKind kindOf(int descriptor, const dirent64& entry);

    alignas(std::uint64_t) std::array<char, 65536> m_buffer;
    QByteArray m_names;
    std::vector<Found> m_found;
    std::vector<WalkedItem> m_items;
};

} // namespace havrel::platform
