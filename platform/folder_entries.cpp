// SPDX-License-Identifier: MIT
#include "platform/folder_entries.h"

#include "platform/item_calls.h"

#include <QByteArrayView>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include <dirent.h>

namespace havrel::platform {
namespace {

constexpr std::array<std::pair<unsigned char, ItemType>, 7> kTypes{{
    {DT_FIFO, ItemType::Fifo},
    {DT_CHR, ItemType::CharacterDevice},
    {DT_DIR, ItemType::Directory},
    {DT_BLK, ItemType::BlockDevice},
    {DT_REG, ItemType::RegularFile},
    {DT_LNK, ItemType::SymbolicLink},
    {DT_SOCK, ItemType::Socket},
}};

bool isFolderItself(QByteArrayView name)
{
    return name == "." || name == "..";
}

} // namespace

EntriesRead readEntries(int folder, std::span<char> buffer, std::vector<FolderEntry>& entries)
{
    entries.clear();
    const ssize_t length = itemCalls().getdents64(folder, buffer.data(), buffer.size());
    if (length <= 0)
        return {.error = length == 0 ? 0 : errno, .ended = length == 0};
    for (const char* next = buffer.data(); next < buffer.data() + length;) {
        const auto* entry = static_cast<const dirent64*>(static_cast<const void*>(next));
        next += entry->d_reclen;
        if (!isFolderItself(entry->d_name))
            entries.push_back({entry->d_name, entry->d_type});
    }
    return {};
}

ItemType typeOfEntry(std::uint8_t kind)
{
    const auto row =
        std::find_if(kTypes.begin(), kTypes.end(), [kind](const auto& each) { return each.first == kind; });
    return row == kTypes.end() ? ItemType::None : row->second;
}

} // namespace havrel::platform
