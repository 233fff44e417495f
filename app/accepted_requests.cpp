// SPDX-License-Identifier: MIT
#include "app/accepted_requests.h"

namespace havrel {

bool AcceptedRequests::accept()
{
    const MutexLock lock(m_mutex);
    if (!m_closed)
        ++m_waiting;
    return !m_closed;
}

void AcceptedRequests::begin()
{
    const MutexLock lock(m_mutex);
    --m_waiting;
}

bool AcceptedRequests::close()
{
    const MutexLock lock(m_mutex);
    m_closed = m_closed || m_waiting == 0;
    return m_closed;
}

} // namespace havrel
