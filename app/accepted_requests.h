// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"

namespace havrel {

/// How many requests were accepted and have not begun, and whether further ones are accepted: so that none is accepted
/// by a process that ends.
///
/// Threads: any thread.
class AcceptedRequests
{
public:
    /// \return false once it is closed: the request is then for somebody else.
    [[nodiscard]] bool accept();
    /// One that was accepted begins.
    void begin();
    /// Accepts no more, unless some that were accepted have not begun. \return whether it is closed.
    [[nodiscard]] bool close();

private:
    Mutex m_mutex;
    int m_waiting HAVREL_GUARDED_BY(m_mutex) = 0;
    bool m_closed HAVREL_GUARDED_BY(m_mutex) = false;
};

} // namespace havrel
