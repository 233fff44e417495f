// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>
#include <memory>

namespace havrel {

/// Queues \p block on the main thread's event loop: never run at once, even on the main thread. There is no main queue
/// before the core application object is made and after it has gone: then the block is dropped. An exception that
/// leaves the block is logged at Debug and thrown on, into the event loop's own wall (foundation/main_queue_wall.h).
///
/// Threads: any thread.
void onMainQueue(std::function<void()> block);

/// Queues \p block on the process's thread pool. An exception that leaves the block is logged at Debug and ends there,
/// at the pool thread's entry.
///
/// Threads: any thread.
void onGlobalQueue(std::function<void()> block);

/// Runs \p block now. An exception that leaves it is logged at Debug and ends here: for code that may not throw.
///
/// Threads: any thread.
void runAtWall(const std::function<void()>& block);

/// A queue whose blocks run one at a time, in the order they came, on a thread of the queue's own that starts with the
/// first block.
///
/// Destruction runs what is queued and ends the thread; it must not happen on the queue itself. Blocks must not throw:
/// what leaves a block is logged at Debug and ends there.
///
/// Threads: any thread.
class SerialQueue
{
public:
    /// \param name for debuggers; the first 15 bytes become the thread's name.
    explicit SerialQueue(const QString& name);
    ~SerialQueue();
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;
    SerialQueue(SerialQueue&&) = delete;
    SerialQueue& operator=(SerialQueue&&) = delete;

    [[nodiscard]] QString name() const;
    /// Whether the calling code runs on this queue.
    [[nodiscard]] bool isCurrent() const noexcept;
    /// Queues \p block and returns at once.
    void async(std::function<void()> block);
    /// Runs \p block after everything queued before and waits for it; on the queue itself it runs at once.
    /// What the block throws comes out here.
    void sync(const std::function<void()>& block);
    /// Waits until everything queued before has run; nothing on the queue itself.
    void barrier();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace havrel
