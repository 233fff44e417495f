// SPDX-License-Identifier: MIT
#include "foundation/name_order.h"
#include "fs/directory.h"

#include <algorithm>
#include <utility>

namespace havrel {
namespace {

/// The right-hand one of two goes first only when the left-hand one is to come after it: equal ones stay. This order of
/// the arguments is what a stable sort asks with.
template<class Compare>
auto goesBefore(Compare compare)
{
    return [compare](const auto& right, const auto& left) { return compare(left, right) > 0; };
}

void sortEntries(std::vector<JNFileInfoPtr>& entries, const EntryComparison& compare)
{
    std::stable_sort(entries.begin(), entries.end(), goesBefore([&compare](const auto& left, const auto& right) {
                         return compare(*left, *right);
                     }));
}

/// As compareNames(), with the text of each name made once.
void sortByName(std::vector<JNFileInfoPtr>& entries)
{
    std::vector<std::pair<QString, JNFileInfoPtr>> named;
    named.reserve(entries.size());
    for (JNFileInfoPtr& each : entries) {
        QString name = each->name();
        named.emplace_back(std::move(name), std::move(each));
    }
    std::stable_sort(named.begin(), named.end(), goesBefore([](const auto& left, const auto& right) {
                         return finderLikeCompare(left.first, right.first);
                     }));
    std::transform(named.begin(), named.end(), entries.begin(), [](auto& each) { return std::move(each.second); });
}

} // namespace

JNDirectory::Snapshot JNDirectory::snapshot()
{
    lazyDirectoryRead();
    const MutexLock lock(m_listLock);
    return {.entries = m_list.entries(), .generation = m_generation, .isSorted = false};
}

/// Whether the list is still the one that was sorted: it then has the new order.
bool JNDirectory::relink(const Snapshot& sorted)
{
    const MutexLock lock(m_listLock);
    if (m_generation != sorted.generation)
        return false;
    m_list.relink(sorted.entries);
    ++m_generation;
    m_isSorted = sorted.isSorted && m_isRead; // what cannot be read yet is no order of what will be
    return true;
}

bool JNDirectory::isSorted() const
{
    const MutexLock lock(m_listLock);
    return m_isSorted;
}

void JNDirectory::sort()
{
    while (!isSorted()) {
        Snapshot sorted = snapshot();
        sorted.isSorted = true;
        sortByName(sorted.entries);
        if (relink(sorted))
            return;
    }
}

void JNDirectory::resortUsing(const EntryComparison& compare)
{
    Snapshot sorted;
    do {
        sorted = snapshot();
        sortEntries(sorted.entries, compare);
    } while (!relink(sorted));
}

} // namespace havrel
