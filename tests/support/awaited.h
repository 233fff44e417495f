// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"

#include <chrono>
#include <optional>
#include <utility>
#include <vector>

namespace havrel::tests {

/// What another thread tells a test, which waits for it with a deadline.
template<typename Value>
class Awaited
{
public:
    void tell(Value value)
    {
        const MutexLock lock(m_mutex);
        m_values.push_back(std::move(value));
        m_told.notifyAll();
    }
    /// The first \p count values; fewer when they do not come.
    std::vector<Value> first(std::size_t count)
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        const MutexLock lock(m_mutex);
        while (m_values.size() < count)
            if (!m_told.waitUntil(m_mutex, deadline))
                break;
        return m_values;
    }
    /// The first one; none when it does not come.
    std::optional<Value> one()
    {
        const std::vector<Value> values = first(1);
        return values.empty() ? std::nullopt : std::optional(values.front());
    }
    std::size_t count()
    {
        const MutexLock lock(m_mutex);
        return m_values.size();
    }

private:
    Mutex m_mutex;
    ConditionVariable m_told;
    std::vector<Value> m_values HAVREL_GUARDED_BY(m_mutex);
};

} // namespace havrel::tests
