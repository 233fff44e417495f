// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// The bits that say how a volume is mounted and what it can do. The values are those of the BSD systems, which other
/// programs know too; what each means on this system is said beside it where that is not plain.
///
/// \source sys/attr.h and sys/mount.h of the BSD systems, getattrlist(2), statfs(2)
namespace havrel::platform {

// NOLINTBEGIN(readability-identifier-naming): the names that everybody knows

// Capabilities of the format.
inline constexpr std::uint32_t VOL_CAP_FMT_PERSISTENTOBJECTIDS = 0x00000001; ///< inode numbers outlive the mount
inline constexpr std::uint32_t VOL_CAP_FMT_SYMBOLICLINKS = 0x00000002;
inline constexpr std::uint32_t VOL_CAP_FMT_HARDLINKS = 0x00000004;
inline constexpr std::uint32_t VOL_CAP_FMT_JOURNAL = 0x00000008;
inline constexpr std::uint32_t VOL_CAP_FMT_JOURNAL_ACTIVE = 0x00000010;
inline constexpr std::uint32_t VOL_CAP_FMT_NO_ROOT_TIMES = 0x00000020; ///< the times of the root are made up
inline constexpr std::uint32_t VOL_CAP_FMT_SPARSE_FILES = 0x00000040;
inline constexpr std::uint32_t VOL_CAP_FMT_ZERO_RUNS = 0x00000080; ///< what was never written is not read from disk
inline constexpr std::uint32_t VOL_CAP_FMT_CASE_SENSITIVE = 0x00000100;
inline constexpr std::uint32_t VOL_CAP_FMT_CASE_PRESERVING = 0x00000200;
inline constexpr std::uint32_t VOL_CAP_FMT_FAST_STATFS = 0x00000400;  ///< statistics without asking another host
inline constexpr std::uint32_t VOL_CAP_FMT_2TB_FILESIZE = 0x00000800; ///< files beyond 4 GiB
inline constexpr std::uint32_t VOL_CAP_FMT_OPENDENYMODES = 0x00001000;
inline constexpr std::uint32_t VOL_CAP_FMT_HIDDEN_FILES = 0x00002000; ///< a flag of its own for hidden items
inline constexpr std::uint32_t VOL_CAP_FMT_PATH_FROM_ID = 0x00004000;
inline constexpr std::uint32_t VOL_CAP_FMT_NO_VOLUME_SIZES = 0x00008000;
inline constexpr std::uint32_t VOL_CAP_FMT_64BIT_OBJECT_IDS = 0x00020000;

// Capabilities of the interface.
inline constexpr std::uint32_t VOL_CAP_INT_ATTRLIST = 0x00000002;    ///< an item's attributes in one request
inline constexpr std::uint32_t VOL_CAP_INT_READDIRATTR = 0x00000008; ///< entries with attributes in one request
inline constexpr std::uint32_t VOL_CAP_INT_EXCHANGEDATA = 0x00000010;
inline constexpr std::uint32_t VOL_CAP_INT_ALLOCATE = 0x00000040;
inline constexpr std::uint32_t VOL_CAP_INT_VOL_RENAME = 0x00000080; ///< the label can be set while it is mounted
inline constexpr std::uint32_t VOL_CAP_INT_ADVLOCK = 0x00000100;
inline constexpr std::uint32_t VOL_CAP_INT_FLOCK = 0x00000200;
inline constexpr std::uint32_t VOL_CAP_INT_EXTENDED_SECURITY = 0x00000400; ///< access lists
inline constexpr std::uint32_t VOL_CAP_INT_USERACCESS = 0x00000800;
inline constexpr std::uint32_t VOL_CAP_INT_MANLOCK = 0x00001000;
inline constexpr std::uint32_t VOL_CAP_INT_EXTENDED_ATTR = 0x00004000; ///< extended attributes of users
inline constexpr std::uint32_t VOL_CAP_INT_CLONE = 0x00010000;
inline constexpr std::uint32_t VOL_CAP_INT_SNAPSHOT = 0x00020000;
inline constexpr std::uint32_t VOL_CAP_INT_RENAME_SWAP = 0x00040000;
inline constexpr std::uint32_t VOL_CAP_INT_RENAME_EXCL = 0x00080000;

// How it is mounted.
inline constexpr std::uint32_t MNT_RDONLY = 0x00000001;
inline constexpr std::uint32_t MNT_NOEXEC = 0x00000004;
inline constexpr std::uint32_t MNT_NOSUID = 0x00000008;
inline constexpr std::uint32_t MNT_NODEV = 0x00000010;
inline constexpr std::uint32_t MNT_LOCAL = 0x00001000;            ///< not another host's
inline constexpr std::uint32_t MNT_ROOTFS = 0x00004000;           ///< mounted on "/"
inline constexpr std::uint32_t MNT_DONTBROWSE = 0x00100000;       ///< not to be shown to people
inline constexpr std::uint32_t MNT_IGNORE_OWNERSHIP = 0x00200000; ///< owners and modes are made up

// NOLINTEND(readability-identifier-naming)

} // namespace havrel::platform
