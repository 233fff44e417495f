// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/queued_block.h"

#include <QString>

#include <functional>
#include <memory>

class QThreadPool;

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

/// The threads behind onGlobalQueue: the toolkit's, or ours once the toolkit has given its own up with the application
/// object.
///
/// Threads: any thread.
[[nodiscard]] QThreadPool& globalQueuePool();

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
    /// Queues \p block and returns at once: takes a lock that is never held while a block runs, allocates nothing for a
    /// block of at most 120 bytes, and enters the kernel only when the queue is idle. While the queue ends, only its
    /// own blocks still get blocks queued; others are dropped.
    void async(const QueuedBlock::Source& block);
    /// Runs \p block after everything queued before and waits for it; on the queue itself it runs at once.
    /// What the block throws comes out here.
    void sync(const std::function<void()>& block);
    /// Waits until everything queued before has run; nothing on the queue itself.
    void barrier();

private:
    friend class QueueReference;

    struct State;
    std::shared_ptr<State> m_state;
};

/// The queue on which some code ran, kept to come back to it. Does not keep a serial queue from ending.
///
/// Threads: any thread.
class QueueReference
{
public:
    /// No queue.
    QueueReference() = default;
    /// The serial queue whose block is running, else the main queue on the thread of the core application object, else
    /// none.
    [[nodiscard]] static QueueReference current();

    [[nodiscard]] bool isNone() const noexcept { return m_kind == Kind::None; }
    /// Whether the calling code runs on it.
    [[nodiscard]] bool isCurrent() const noexcept;
    /// Queues \p block there and returns at once.
    /// \return false when there is no queue, or none any more; the block is then dropped.
    [[nodiscard]] bool async(std::function<void()> block) const;

private:
    enum class Kind { None, Main, Serial };

    Kind m_kind = Kind::None;
    std::weak_ptr<SerialQueue::State> m_serial;
};

} // namespace havrel
