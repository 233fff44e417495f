// SPDX-License-Identifier: MIT
#pragma once

#include "platform/extended_attributes.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

namespace havrel {

class Timer;
class Timers;
struct LoadedItems;

/// What others did to the items of a window since it last read or wrote them, by the places of the items.
struct ForeignChanges
{
    std::vector<std::size_t> changed;  ///< their preferences are others now, or gone
    std::vector<std::size_t> vanished; ///< the items are not there any more
};

/// What reading the attribute gives after \p record was written; of an empty record, after it was removed.
///
/// Threads: any thread.
[[nodiscard]] platform::AttributeValue valueOfRecord(const QByteArray& record);

/// Whether two readings of an attribute say the same; one without a byte says the same as none at all.
///
/// Threads: any thread.
[[nodiscard]] bool areSameValues(const platform::AttributeValue& one, const platform::AttributeValue& other);

/// Looks for foreign changes in short pieces between events, so that no window stands still on a slow disk.
///
/// Threads: the main thread only.
class ForeignChangesWatch
{
public:
    /// \param items and \p timers must outlive it. \param found is told when all items were looked at.
    ForeignChangesWatch(const LoadedItems& items, Timers& timers, std::function<void(const ForeignChanges&)> found);
    ~ForeignChangesWatch();
    ForeignChangesWatch(const ForeignChangesWatch&) = delete;
    ForeignChangesWatch& operator=(const ForeignChangesWatch&) = delete;
    ForeignChangesWatch(ForeignChangesWatch&&) = delete;
    ForeignChangesWatch& operator=(ForeignChangesWatch&&) = delete;

    /// Soon, and from the first item on; gives up a look that is under way.
    void look();
    /// To be called before the items become others.
    void stop();

private:
    void lookOn();
    void lookAt(std::size_t place);

    const LoadedItems& m_items;
    Timers& m_timers;
    std::function<void(const ForeignChanges&)> m_told;
    std::unique_ptr<Timer> m_timer;
    std::size_t m_next = 0;
    ForeignChanges m_found;
};

} // namespace havrel
