// SPDX-License-Identifier: MIT
#include "messaging/reply_queue.h"

#include "foundation/dispatch.h"
#include "foundation/thread_annotations.h"
#include "messaging/reply_threads.h"

#include <deque>

namespace havrel {

struct ReplyQueue::State : std::enable_shared_from_this<ReplyQueue::State>
{
    using Block = std::function<void()>;

    void drain();
    [[nodiscard]] bool take(Block& block) HAVREL_EXCLUDES(lock);
    void runIfNeeded() HAVREL_REQUIRES(lock);

    static thread_local const State* t_current; // of the queue whose block this thread runs

    Mutex lock;
    std::deque<Block> blocks HAVREL_GUARDED_BY(lock);
    int suspensions HAVREL_GUARDED_BY(lock) = 0;
    bool running HAVREL_GUARDED_BY(lock) = false; // a thread has it, or will
};

thread_local const ReplyQueue::State* ReplyQueue::State::t_current = nullptr;

void ReplyQueue::State::runIfNeeded()
{
    if (running || suspensions > 0 || blocks.empty())
        return;
    running = true;
    ReplyThreads::shared().run([self = shared_from_this()] { self->drain(); });
}

void ReplyQueue::State::drain()
{
    t_current = this;
    for (Block block; take(block); block = nullptr)
        runAtWall(block);
    t_current = nullptr;
}

bool ReplyQueue::State::take(Block& block)
{
    const MutexLock guard(lock);
    running = suspensions == 0 && !blocks.empty();
    if (!running)
        return false;
    block = std::move(blocks.front());
    blocks.pop_front();
    return true;
}

ReplyQueue::ReplyQueue()
    : m_state(std::make_shared<State>())
{
}

void ReplyQueue::async(std::function<void()> block)
{
    const MutexLock guard(m_state->lock);
    m_state->blocks.push_back(std::move(block));
    m_state->runIfNeeded();
}

void ReplyQueue::suspend()
{
    const MutexLock guard(m_state->lock);
    ++m_state->suspensions;
}

void ReplyQueue::resume()
{
    const MutexLock guard(m_state->lock);
    --m_state->suspensions;
    m_state->runIfNeeded();
}

bool ReplyQueue::isCurrent() const noexcept
{
    return State::t_current == m_state.get();
}

bool ReplyQueue::isAnyCurrent() noexcept
{
    return State::t_current != nullptr;
}

} // namespace havrel
