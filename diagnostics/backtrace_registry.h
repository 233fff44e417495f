// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/log_date.h"
#include "foundation/thread_annotations.h"
#include "platform/backtrace.h"

#include <cstdint>
#include <map>

namespace havrel {

/// Remembers which backtraces were written in full, so that each stands in the log at most once in six hours.
///
/// Threads: any thread.
class BacktraceRegistry
{
public:
    struct Tag
    {
        std::uintptr_t key = 0;   ///< the same for equal backtraces as long as they are remembered
        bool writeFrames = false; ///< whether it is new, or was written in full more than six hours ago
    };

    /// The tag of \p addresses: their sum, or the next number that no other backtrace has. Counts as written in full
    /// at \p date when the answer says so; a new one makes those older than six hours forgotten.
    [[nodiscard]] Tag tagFor(const platform::ReturnAddresses& addresses, LogDate date) HAVREL_EXCLUDES(m_lock);

private:
    struct Written
    {
        platform::ReturnAddresses addresses;
        LogDate date; // when it was last written in full
    };

    Mutex m_lock;
    std::map<std::uintptr_t, Written> m_taggedBacktraces HAVREL_GUARDED_BY(m_lock);
};

} // namespace havrel
