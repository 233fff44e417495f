// SPDX-License-Identifier: MIT
#include "fs/entry_list.h"

#include <utility>

namespace havrel {

void EntryList::append(JNFileInfoPtr entry)
{
    JNFileInfo* const added = entry.get();
    if (m_last == nullptr)
        m_first = std::move(entry);
    else
        m_last->setNext(std::move(entry));
    m_last = added;
    ++m_count;
}

std::vector<JNFileInfoPtr> EntryList::entries() const
{
    std::vector<JNFileInfoPtr> entries;
    entries.reserve(m_count);
    for (JNFileInfoPtr each = m_first; each; each = each->nextObj())
        entries.push_back(each);
    return entries;
}

void EntryList::relink(const std::vector<JNFileInfoPtr>& entries)
{
    for (std::size_t i = 0; i + 1 < entries.size(); ++i)
        entries[i]->setNext(entries[i + 1]);
    if (entries.empty())
        return;
    entries.back()->setNext(nullptr);
    m_first = entries.front();
    m_last = entries.back().get();
}

JNFileInfoPtr EntryList::firstWith(JNFileInfoPtr from, const std::function<bool(const JNFileInfo&)>& matches)
{
    while (from && !matches(*from))
        from = from->nextObj();
    return from;
}

JNFileInfoPtr EntryList::firstOfType(JNFileInfoPtr from, ItemType type)
{
    return firstWith(std::move(from), [type](const JNFileInfo& each) { return each.type() == type; });
}

JNFileInfoPtr EntryList::firstContentFile(JNFileInfoPtr from)
{
    return firstWith(std::move(from),
                     [](const JNFileInfo& each) { return each.isRegularFile() || each.isSymbolicLink(); });
}

} // namespace havrel
