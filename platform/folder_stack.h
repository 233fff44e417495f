// SPDX-License-Identifier: MIT
#pragma once

#include "platform/item_place.h"
#include "platform/owned_descriptor.h"

#include <vector>

namespace havrel::platform {

/// The open folders from the top of a tree down to where some work on it is. Needs neither stack nor descriptors in
/// proportion to the depth: only the innermost folders stay open, the others are opened again on the way back.
///
/// Threads: one thread at a time.
class FolderStack
{
public:
    /// Opens the folder \p name in \p parent for reading, never through a link, and goes into it.
    /// \return 0 or an errno value, ENOTDIR when it is no folder.
    [[nodiscard]] int enter(int parent, const char* name);
    /// Makes sure that the folder above the last one is open. Needed before the last one's mode changes, because the
    /// way back leads through it.
    /// \return 0 or an errno value: ENOENT when the last folder has been moved elsewhere meanwhile.
    [[nodiscard]] int openAbove();
    /// Leaves the last folder, after openAbove().
    void leave();

    [[nodiscard]] bool isEmpty() const noexcept { return m_folders.empty(); }
    [[nodiscard]] int last() const noexcept { return m_folders.back().descriptor.get(); }
    /// The folder above the last; \p outside when there is none.
    [[nodiscard]] int aboveLast(int outside) const noexcept;
    [[nodiscard]] ItemIdentity identityOfLast() const noexcept { return m_folders.back().identity; }

private:
    struct Folder
    {
        OwnedDescriptor descriptor;
        ItemIdentity identity;
    };
    std::vector<Folder> m_folders;
};

} // namespace havrel::platform
