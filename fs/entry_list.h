// SPDX-License-Identifier: MIT
#pragma once

#include "fs/file_info.h"

#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <vector>

namespace havrel {

/// The entries of a folder, each of which keeps the next one alive: built at its end, read and taken from its start.
///
/// Threads: one thread at a time; the entries in it: any thread.
class EntryList
{
public:
    void append(JNFileInfoPtr entry);
    [[nodiscard]] const JNFileInfoPtr& first() const noexcept { return m_first; }
    [[nodiscard]] std::uint32_t count() const noexcept { return m_count; }

    /// The entries in their order.
    [[nodiscard]] std::vector<JNFileInfoPtr> entries() const;
    /// Puts the same entries in another order. Who walks the list meanwhile misses some, or meets some twice.
    void relink(const std::vector<JNFileInfoPtr>& entries);

    /// \p from or the first after it that is of the type; null when there is none.
    [[nodiscard]] static JNFileInfoPtr firstOfType(JNFileInfoPtr from, ItemType type);
    /// The same for files and links.
    [[nodiscard]] static JNFileInfoPtr firstContentFile(JNFileInfoPtr from);
    [[nodiscard]] static JNFileInfoPtr firstWith(JNFileInfoPtr from,
                                                 const std::function<bool(const JNFileInfo&)>& matches);

private:
    JNFileInfoPtr m_first;
    JNFileInfo* m_last = nullptr;
    std::uint32_t m_count = 0;
};

/// Goes from an entry to the next until there is none.
///
/// Threads: one thread at a time.
class EntryIterator
{
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = JNFileInfoPtr;
    using difference_type = std::ptrdiff_t;
    using pointer = const JNFileInfoPtr*;
    using reference = const JNFileInfoPtr&;

    EntryIterator() = default; ///< the end
    explicit EntryIterator(JNFileInfoPtr entry)
        : m_entry(std::move(entry))
    {
    }

    reference operator*() const noexcept { return m_entry; }
    pointer operator->() const noexcept { return &m_entry; }
    EntryIterator& operator++()
    {
        m_entry = m_entry->nextObj();
        return *this;
    }
    EntryIterator operator++(int)
    {
        EntryIterator before = *this;
        ++*this;
        return before;
    }
    friend bool operator==(const EntryIterator&, const EntryIterator&) = default;

private:
    JNFileInfoPtr m_entry;
};

} // namespace havrel
