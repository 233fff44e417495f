// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace havrel::platform {

// Extended attributes of the item that a path names, never of what a link points to. Names are the kernel's, with their
// namespace ("user.com.havrel.prefs").
//
// What the errno values mean here (xattr(7), tried on Linux 6.18):
//   ENODATA  the item has no attribute of that name; also reading any user attribute of a link, pipe, socket or device
//   EPERM    writing one of those, or the item is immutable, append-only, or another's in a sticky folder
//   EACCES   no write permission; the owner of a read-only file gets it too
//   ENOTSUP  the file system keeps no attributes of users, or the name has no namespace
//   ENOSPC   no room for attributes on this item; the file system need not be full
//   E2BIG    longer than this file system takes; ERANGE: longer than the given limit, or the name is over 255 bytes
//   EINVAL   the path holds a NUL byte (answered here: the kernel would take what stands before it)

/// The longest value that the kernel takes on any file system, in bytes.
/// \source xattr(7), XATTR_SIZE_MAX
inline constexpr qsizetype kLongestAttribute = 65536;

struct AttributeValue
{
    int error = 0;    ///< 0 or an errno value
    QByteArray bytes; ///< empty unless error is 0; an empty value is legal
};

struct AttributeSize
{
    int error = 0;      ///< 0 or an errno value
    qsizetype size = 0; ///< in bytes
};

/// Reads the attribute with one system call; blocks on the disk. A value longer than \p limit bytes is ERANGE.
///
/// Threads: any thread.
[[nodiscard]] AttributeValue
readAttribute(const QByteArray& path, const char* name, qsizetype limit = kLongestAttribute);

/// The length of the attribute's value, however long it is.
///
/// Threads: any thread.
[[nodiscard]] AttributeSize sizeOfAttribute(const QByteArray& path, const char* name);

/// Makes or replaces the attribute in one step: readers see the old value or the new one.
///
/// \return 0 or an errno value; the old value then still stands.
///
/// Threads: any thread.
[[nodiscard]] int writeAttribute(const QByteArray& path, const char* name, QByteArrayView value);

/// \return 0 or an errno value, ENODATA when there was none.
///
/// Threads: any thread.
[[nodiscard]] int removeAttribute(const QByteArray& path, const char* name);

} // namespace havrel::platform
