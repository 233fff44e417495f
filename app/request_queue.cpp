// SPDX-License-Identifier: MIT
#include "app/request_queue.h"

#include <utility>

namespace havrel {

RequestQueue::Arrival RequestQueue::arrive(platform::BusRequest& call, Waiting request)
{
    const MutexLock lock(m_mutex);
    if (m_state == State::Closed)
        return Arrival::Refused;
    if (m_state == State::Keeping) {
        m_rest.kept.push_back(std::move(call));
        return Arrival::Kept;
    }
    m_rest.accepted.push_back(std::move(request));
    return Arrival::Accepted;
}

std::optional<RequestQueue::Waiting> RequestQueue::begin()
{
    const MutexLock lock(m_mutex);
    if (m_state != State::Open || m_rest.accepted.empty())
        return std::nullopt;
    Waiting first = std::move(m_rest.accepted.front());
    m_rest.accepted.pop_front();
    return first;
}

void RequestQueue::keep()
{
    const MutexLock lock(m_mutex);
    if (m_state == State::Open)
        m_state = State::Keeping;
}

bool RequestQueue::closeUnlessSomeWait()
{
    const MutexLock lock(m_mutex);
    if (m_rest.accepted.empty() && m_rest.kept.empty())
        m_state = State::Closed;
    return m_state == State::Closed;
}

RequestQueue::Rest RequestQueue::close()
{
    const MutexLock lock(m_mutex);
    m_state = State::Closed;
    return std::exchange(m_rest, {});
}

} // namespace havrel
