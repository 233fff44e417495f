// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <cstdint>
#include <optional>
#include <vector>

namespace havrel::platform {

/// Whom an entry of an access list is about; the values are those of the stored form.
enum class AccessTag : std::uint16_t { Owner = 1, User = 2, OwningGroup = 4, Group = 8, Mask = 16, Others = 32 };

/// One entry of an access list.
struct AccessEntry
{
    AccessTag tag = AccessTag::Others;
    std::uint16_t permissions = 0; ///< read 4, write 2, execute 1
    std::uint32_t id = 0;          ///< of a User or Group; 0 otherwise

    friend bool operator==(const AccessEntry&, const AccessEntry&) = default;
};

/// Who may do what with an item, beyond its mode, in the order in which the file system keeps it.
using AccessList = std::vector<AccessEntry>;

/// The list that is stored as \p bytes; none when they are not one.
///
/// \source linux/posix_acl_xattr.h: version 2, then eight bytes an entry, in little-endian order
///
/// Threads: any thread.
[[nodiscard]] std::optional<AccessList> parseAccessList(QByteArrayView bytes);

/// The stored form of a list; parseAccessList gives it back.
///
/// Threads: any thread.
[[nodiscard]] QByteArray bytesOfAccessList(const AccessList& list);

/// The access list of the item itself; none for a link, for an item without one, and where the file system keeps none.
/// Blocks on the disk.
///
/// \source acl(5), the extended attribute "system.posix_acl_access"
///
/// Threads: any thread.
[[nodiscard]] std::optional<AccessList> accessListOf(const QByteArray& path);

} // namespace havrel::platform
