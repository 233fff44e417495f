// SPDX-License-Identifier: MIT
#include "app/opening_bus.h"

#include <system_error>

namespace havrel {

OpeningBus::OpeningBus()
    : m_connection({.disconnected = [this] { tellOfLoss(); }})
{
    const auto open = [this] { return m_connection.open(); };
    try {
        m_opening = std::async(std::launch::async, open);
    } catch (const std::system_error&) { // no thread left: it opens when it is asked for
        m_opening = std::async(std::launch::deferred, open);
    }
}

OpeningBus::~OpeningBus()
{
    m_opening.wait();
    m_connection.close(); // tells of its loss no more, while the rest still stands
}

int OpeningBus::opened()
{
    return m_opening.get();
}

void OpeningBus::whenLost(std::function<void()> lost)
{
    const MutexLock lock(m_mutex);
    m_whenLost = std::move(lost);
    if (m_isLost && m_whenLost)
        m_whenLost();
}

/// Under the lock, so that nobody is told who has asked to be told no more.
void OpeningBus::tellOfLoss()
{
    const MutexLock lock(m_mutex);
    m_isLost = true;
    if (m_whenLost)
        m_whenLost();
}

} // namespace havrel
