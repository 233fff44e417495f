// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
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
        const std::lock_guard lock(m_mutex);
        m_values.push_back(std::move(value));
        m_changed.notify_all();
    }
    /// The first \p count values; fewer when they do not come.
    std::vector<Value> first(std::size_t count)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, std::chrono::seconds(60), [&] { return m_values.size() >= count; });
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
        const std::lock_guard lock(m_mutex);
        return m_values.size();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<Value> m_values;
};

} // namespace havrel::tests
