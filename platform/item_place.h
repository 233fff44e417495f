// SPDX-License-Identifier: MIT
#pragma once

#include "platform/owned_descriptor.h"

#include <QByteArray>

#include <compare>

#include <sys/types.h>

struct stat;

namespace havrel::platform {

/// Which item it is, whatever its names.
struct ItemIdentity
{
    dev_t device = 0;
    ino_t inode = 0;

    friend auto operator<=>(const ItemIdentity&, const ItemIdentity&) = default; // NOLINT(modernize-use-nullptr)
};

[[nodiscard]] ItemIdentity identityOf(const struct stat& status);

/// Where an item is or is to be: its folder, held open, and its name there. What becomes of the names above the folder
/// does not matter any more.
///
/// Threads: const members any thread, others one at a time.
class ItemPlace
{
public:
    /// Opens the folder of \p path; a link at the end of the path is the item itself, also before a trailing slash.
    /// Blocks on the disk.
    ///
    /// \return 0 or an errno value: EINVAL for a path that ends in "." or ".." or holds a NUL, EBUSY for the root.
    [[nodiscard]] int find(const QByteArray& path);

    [[nodiscard]] int folder() const noexcept { return m_folder.get(); }
    [[nodiscard]] const char* name() const noexcept { return m_name.constData(); }

    /// What is there, links not followed. \return 0 or an errno value.
    [[nodiscard]] int look(struct stat& status) const;
    /// What is there, links followed. \return 0 or an errno value.
    [[nodiscard]] int lookThrough(struct stat& status) const;
    /// Whether \p folder is the place's folder or holds it at any depth.
    /// \return 0 when not, EINVAL when so, or the errno value why it cannot be told.
    [[nodiscard]] int refuseInside(const ItemIdentity& folder) const;

private:
    OwnedDescriptor m_folder;
    QByteArray m_name;
};

} // namespace havrel::platform
