// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/foreign_changes.h"

#include "capture_prefs_ui/loaded_items.h"
#include "capture_prefs_ui/timers.h"
#include "filters/capture_preferences_attribute.h"
#include "fs/path.h"

#include <cerrno>

namespace havrel {
namespace {

using namespace std::chrono_literals;
namespace attribute = capture_preferences_attribute;

/// How long the windows may stand still.
constexpr auto kPiece = 40ms;

bool isNone(const platform::AttributeValue& value)
{
    return value.error == 0 ? value.bytes.isEmpty() : attribute::stateOf(value.error) == attribute::State::Missing;
}

} // namespace

platform::AttributeValue valueOfRecord(const QByteArray& record)
{
    if (record.isEmpty())
        return {.error = ENODATA, .bytes = {}};
    if (record.size() > attribute::kMostBytesRead)
        return {.error = ERANGE, .bytes = {}};
    return {.error = 0, .bytes = record};
}

bool areSameValues(const platform::AttributeValue& one, const platform::AttributeValue& other)
{
    return (isNone(one) && isNone(other)) || (one.error == other.error && one.bytes == other.bytes);
}

ForeignChangesWatch::ForeignChangesWatch(const LoadedItems& items,
                                         Timers& timers,
                                         std::function<void(const ForeignChanges&)> found)
    : m_items(items)
    , m_timers(timers)
    , m_told(std::move(found))
    , m_timer(timers.makeTimer([this] { lookOn(); }))
{
}

ForeignChangesWatch::~ForeignChangesWatch() = default;

void ForeignChangesWatch::look()
{
    m_next = 0;
    m_found = {};
    m_timer->start(0ms);
}

void ForeignChangesWatch::stop()
{
    m_timer->stop();
}

void ForeignChangesWatch::lookOn()
{
    const auto begin = m_timers.elapsed();
    while (m_next < m_items.paths.size()) {
        lookAt(m_next++);
        if (m_timers.elapsed() - begin < kPiece)
            continue;
        m_timer->start(0ms);
        return;
    }
    m_told(m_found);
}

void ForeignChangesWatch::lookAt(std::size_t place)
{
    const platform::AttributeValue present = attribute::valueFrom(m_items.paths[place]->cPath());
    if (present.error == ENOENT || present.error == ENOTDIR)
        m_found.vanished.push_back(place);
    else if (!areSameValues(m_items.seen[place], present))
        m_found.changed.push_back(place);
}

} // namespace havrel
