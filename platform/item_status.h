// SPDX-License-Identifier: MIT
#pragma once

#include "platform/item_types.h"

#include <QByteArray>

#include <array>
#include <cstdint>
#include <ctime>

namespace havrel::platform {

/// The times that are kept of an item.
enum class ItemTime : std::uint8_t { Created, Modified, AttributeChanged };

/// What the kernel tells of an item with one call. Laid out for small size: there is one for each entry of a folder.
///
/// Threads: const members any thread, others one at a time.
class ItemStatus
{
public:
    /// The creation time is 0 where the file system keeps none.
    [[nodiscard]] timespec time(ItemTime which) const;
    /// \p seconds since 1970 and \p nanoseconds after that, 0 to 999,999,999.
    void setTime(ItemTime which, std::int64_t seconds, std::uint32_t nanoseconds);

    std::uint64_t fileID = 0;
    std::uint64_t device = 0;       ///< that the item itself lies on, as in st_dev
    std::uint64_t logicalSize = 0;  ///< bytes
    std::uint64_t physicalSize = 0; ///< bytes on the disk
    std::uint32_t ownerID = 0;
    std::uint32_t groupID = 0;
    std::uint32_t fileFlags = 0; ///< those of kKnownFileFlags
    std::uint32_t linkCount = 0; ///< 1 for a folder, whose links are its own and those of its subfolders
    std::uint16_t access = 0;    ///< permissions, set-id and sticky bits
    ItemType type = ItemType::None;
    bool isMountRoot = false; ///< a file system, or a part of one, is mounted on it

private:
    std::array<std::int64_t, 3> m_seconds{}; // by ItemTime
    std::array<std::uint32_t, 3> m_nanoseconds{};
};

// The flags of an inode that statx tells without another call, with the values of FS_IOC_GETFLAGS.
//
// \source linux/fs.h, FS_*_FL; linux/stat.h, STATX_ATTR_*
inline constexpr std::uint32_t kCompressedFlag = 0x00000004;
inline constexpr std::uint32_t kImmutableFlag = 0x00000010;
inline constexpr std::uint32_t kAppendOnlyFlag = 0x00000020;
inline constexpr std::uint32_t kNoDumpFlag = 0x00000040;
inline constexpr std::uint32_t kEncryptedFlag = 0x00000800;
inline constexpr std::uint32_t kVerityFlag = 0x00100000;
inline constexpr std::uint32_t kKnownFileFlags =
    kCompressedFlag | kImmutableFlag | kAppendOnlyFlag | kNoDumpFlag | kEncryptedFlag | kVerityFlag;

/// Asks for an item itself, never for what a link points to, and mounts nothing; blocks on the disk.
///
/// \return 0 or an errno value: EINVAL for a path with a NUL byte inside; \p status is then unchanged.
/// \source statx(2)
///
/// Threads: any thread.
[[nodiscard]] int readStatus(const QByteArray& path, ItemStatus& status);
/// The same for the item \p name of an open folder.
[[nodiscard]] int readStatus(int folder, const char* name, ItemStatus& status);

/// What the process, as its effective user, may do with the item itself: R_OK, W_OK and X_OK. Nothing when there is no
/// item. Blocks on the disk. Asked of the kernel rather than told from the mode, which knows nothing of access lists,
/// capabilities and file systems mounted read-only.
///
/// \source faccessat2(2)
///
/// Threads: any thread.
[[nodiscard]] std::uint16_t effectiveAccess(const QByteArray& path);

} // namespace havrel::platform
