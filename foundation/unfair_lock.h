// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"

#include <atomic>
#include <cstdint>

namespace havrel {

/// A mutex of four bytes, for objects of which there are many: a Mutex takes forty. Whoever waits sleeps in the kernel;
/// nobody is promised a turn.
///
/// \source U. Drepper, "Futexes Are Tricky", mutex 2
///
/// Threads: any thread.
class HAVREL_CAPABILITY("mutex") UnfairLock
{
public:
    void lock() noexcept HAVREL_ACQUIRE()
    {
        std::uint32_t state = kFree;
        if (m_state.compare_exchange_strong(state, kTaken, std::memory_order_acquire))
            return;
        while (m_state.exchange(kAwaited, std::memory_order_acquire) != kFree)
            m_state.wait(kAwaited, std::memory_order_relaxed);
    }
    void unlock() noexcept HAVREL_RELEASE()
    {
        if (m_state.exchange(kFree, std::memory_order_release) == kAwaited)
            m_state.notify_one();
    }

private:
    static constexpr std::uint32_t kFree = 0;
    static constexpr std::uint32_t kTaken = 1;
    static constexpr std::uint32_t kAwaited = 2; // taken, and somebody may sleep until it is free

    std::atomic<std::uint32_t> m_state = kFree;
};

} // namespace havrel
