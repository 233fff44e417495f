// SPDX-License-Identifier: MIT
#pragma once

#include "platform/folder_reader.h"
#include "platform/folder_stack.h"
#include "platform/item_attributes.h"
#include "platform/item_place.h"
#include "platform/item_removal.h"

#include <QByteArray>

#include <map>
#include <optional>
#include <vector>

#include <sys/stat.h>

namespace havrel::platform {

/// One copy of an item with everything in it: what it made, and from what.
///
/// Threads: one thread at a time.
class TreeCopy
{
public:
    /// \param to where the copy is to be; outlives the object.
    TreeCopy(const ItemPlace& to, AttributeLoss loss);

    /// Copies; to be called once. An error leaves what was made until then.
    [[nodiscard]] AttributeOutcome copy(const ItemPlace& from);
    /// Removes what this copy made, and nothing else.
    void takeBack();
    /// Everything that was copied, as it was just before.
    [[nodiscard]] const std::vector<CopiedItem>& originals() const noexcept { return m_originals; }

private:
    struct Level
    {
        struct stat status;                 // of the original
        std::vector<QByteArray> subfolders; // still to be copied
        qsizetype pathLength;               // of the folder above, in m_path
    };
    /// An item and what is to be its copy.
    struct Pair
    {
        int fromFolder;
        const char* from;
        int toFolder;
        const char* to;
    };

    int copyOther(const Pair& pair, const struct stat& status);
    int makeOther(const Pair& pair, const struct stat& status);
    int copyFile(const Pair& pair, const struct stat& looked);
    int copyLink(const Pair& pair);
    int copyAttributesByName(const Pair& pair, const struct stat& status);
    int keepAttributes(int original, int copy, const struct stat& status);
    bool linkToCopy(const Pair& pair, const struct stat& status);
    [[nodiscard]] QByteArray pathOfCopy(const char* name) const;
    int noteCreated(int folder, const char* name);

    int enter(const Pair& pair);
    /// What has a mount on it could not be removed afterwards.
    [[nodiscard]] bool refusesMountPoints() const { return m_loss == AttributeLoss::Refused; }
    [[nodiscard]] int refuseLast() const;
    int makeFolder(const Pair& pair);
    int copyFiles();
    int copyChild(const char* name);
    int copySubfolder(const char* name);
    bool vanished(int error, const char* name) const;
    int step();
    int leave();

    const ItemPlace& m_place;
    const AttributeLoss m_loss;
    FolderReader m_reader;
    FolderStack m_from;
    FolderStack m_to;
    std::vector<Level> m_levels;
    QByteArray m_path;                          // of the last folder's copy, from the folder of the place
    std::map<ItemIdentity, QByteArray> m_links; // originals with several names, and the first copy's path
    std::optional<ItemIdentity> m_top;          // the first folder made
    std::vector<ino_t> m_created;
    std::vector<CopiedItem> m_originals;
    bool m_lost = false;
};

} // namespace havrel::platform
