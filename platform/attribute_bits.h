// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// The bits that stand for the attributes of items and volumes, in requests, in the sets that a volume supports, and in
/// what is logged. The values are those of the attribute-list calls of the BSD systems, which other programs know too.
///
/// \source sys/attr.h of the BSD systems, getattrlist(2)
namespace havrel::platform {

// NOLINTBEGIN(readability-identifier-naming): the names that everybody knows

// Every item.
inline constexpr std::uint32_t ATTR_CMN_NAME = 0x00000001;
inline constexpr std::uint32_t ATTR_CMN_DEVID = 0x00000002;
inline constexpr std::uint32_t ATTR_CMN_FSID = 0x00000004;
inline constexpr std::uint32_t ATTR_CMN_OBJTYPE = 0x00000008;
inline constexpr std::uint32_t ATTR_CMN_SCRIPT = 0x00000100;
inline constexpr std::uint32_t ATTR_CMN_CRTIME = 0x00000200;
inline constexpr std::uint32_t ATTR_CMN_MODTIME = 0x00000400;
inline constexpr std::uint32_t ATTR_CMN_CHGTIME = 0x00000800;
inline constexpr std::uint32_t ATTR_CMN_ACCTIME = 0x00001000;
inline constexpr std::uint32_t ATTR_CMN_BKUPTIME = 0x00002000;
inline constexpr std::uint32_t ATTR_CMN_FNDRINFO = 0x00004000;
inline constexpr std::uint32_t ATTR_CMN_OWNERID = 0x00008000;
inline constexpr std::uint32_t ATTR_CMN_GRPID = 0x00010000;
inline constexpr std::uint32_t ATTR_CMN_ACCESSMASK = 0x00020000;
inline constexpr std::uint32_t ATTR_CMN_FLAGS = 0x00040000;
inline constexpr std::uint32_t ATTR_CMN_USERACCESS = 0x00200000;
inline constexpr std::uint32_t ATTR_CMN_EXTENDED_SECURITY = 0x00400000;
inline constexpr std::uint32_t ATTR_CMN_FILEID = 0x02000000;
inline constexpr std::uint32_t ATTR_CMN_PARENTID = 0x04000000;
inline constexpr std::uint32_t ATTR_CMN_FULLPATH = 0x08000000;
inline constexpr std::uint32_t ATTR_CMN_RETURNED_ATTRS = 0x80000000;

// Volumes.
inline constexpr std::uint32_t ATTR_VOL_FSTYPE = 0x00000001;
inline constexpr std::uint32_t ATTR_VOL_SIZE = 0x00000004;
inline constexpr std::uint32_t ATTR_VOL_SPACEFREE = 0x00000008;
inline constexpr std::uint32_t ATTR_VOL_SPACEAVAIL = 0x00000010;
inline constexpr std::uint32_t ATTR_VOL_IOBLOCKSIZE = 0x00000080;
inline constexpr std::uint32_t ATTR_VOL_OBJCOUNT = 0x00000100;
inline constexpr std::uint32_t ATTR_VOL_MAXOBJCOUNT = 0x00000800;
inline constexpr std::uint32_t ATTR_VOL_MOUNTPOINT = 0x00001000;
inline constexpr std::uint32_t ATTR_VOL_NAME = 0x00002000;
inline constexpr std::uint32_t ATTR_VOL_MOUNTFLAGS = 0x00004000;
inline constexpr std::uint32_t ATTR_VOL_MOUNTEDDEVICE = 0x00008000;
inline constexpr std::uint32_t ATTR_VOL_CAPABILITIES = 0x00020000;
inline constexpr std::uint32_t ATTR_VOL_UUID = 0x00040000;
inline constexpr std::uint32_t ATTR_VOL_ATTRIBUTES = 0x40000000;
inline constexpr std::uint32_t ATTR_VOL_INFO = 0x80000000;

// Directories.
inline constexpr std::uint32_t ATTR_DIR_LINKCOUNT = 0x00000001;
inline constexpr std::uint32_t ATTR_DIR_ENTRYCOUNT = 0x00000002;
inline constexpr std::uint32_t ATTR_DIR_MOUNTSTATUS = 0x00000004;

/// Of the mount status: a file system is mounted on the directory.
inline constexpr std::uint32_t DIR_MNTSTATUS_MNTPOINT = 0x00000001;

// Files.
inline constexpr std::uint32_t ATTR_FILE_LINKCOUNT = 0x00000001;
inline constexpr std::uint32_t ATTR_FILE_TOTALSIZE = 0x00000002;
inline constexpr std::uint32_t ATTR_FILE_ALLOCSIZE = 0x00000004;
inline constexpr std::uint32_t ATTR_FILE_DATALENGTH = 0x00000200;
inline constexpr std::uint32_t ATTR_FILE_DATAALLOCSIZE = 0x00000400;

// NOLINTEND(readability-identifier-naming)

} // namespace havrel::platform
