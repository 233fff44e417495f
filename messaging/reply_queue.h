// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

namespace havrel {

/// A queue whose blocks run one at a time, in the order they came, on whichever of the reply threads is free: ten
/// thousand connections need no ten thousand threads. Blocks may wait for other queues. What leaves a block is logged
/// at Debug and ends there.
///
/// The end of the queue does not wait; what is queued still runs, unless the queue is suspended.
///
/// Threads: any thread.
class ReplyQueue
{
public:
    ReplyQueue();

    void async(std::function<void()> block);
    /// Runs no further block, until it is resumed as often as it was suspended.
    void suspend();
    void resume();

    /// Whether the calling code runs on this queue.
    [[nodiscard]] bool isCurrent() const noexcept;
    /// Whether the calling code runs on some reply queue.
    [[nodiscard]] static bool isAnyCurrent() noexcept;

private:
    struct State;
    std::shared_ptr<State> m_state;
};

} // namespace havrel
