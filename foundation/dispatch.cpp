// SPDX-License-Identifier: MIT
#include "foundation/dispatch.h"

#include "diagnostics/logr.h"
#include "foundation/block_batch.h"
#include "foundation/main_queue_wall.h"
#include "foundation/thread_annotations.h"
#include "platform/file_names.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QRunnable>
#include <QScopeGuard>
#include <QThread>
#include <QThreadPool>

#include <exception>
#include <thread>
#include <utility>

#include <pthread.h>
#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

namespace havrel {
namespace {

thread_local std::exception_ptr t_thrownOn; // logged by the main queue, on its way to the wall

bool isMainThread()
{
    const QCoreApplication* application = QCoreApplication::instance();
    return application && application->thread() == QThread::currentThread();
}

void logEscapingException()
{
    Logr::logException(LogClassification::Debug, Exception::fromCurrent());
}

void runThrowingOn(const std::function<void()>& block)
{
    try {
        block();
    } catch (...) {
        logEscapingException();
        t_thrownOn = std::current_exception();
        throw;
    }
}

/// A block on its way to another thread through the toolkit, whose library is not built for the thread sanitizer, which
/// therefore does not see how its event queues and its pool hand things over: so it is told. What holds the block at
/// the end of its moves has been written by then.
class HandedBlock
{
public:
    explicit HandedBlock(std::function<void()> block)
        : m_block(std::move(block))
    {
        leave();
    }
    HandedBlock(HandedBlock&& other) noexcept
        : m_block(std::move(other.m_block))
    {
        leave();
    }
    ~HandedBlock() { arrive(); }
    HandedBlock(const HandedBlock&) = delete;
    HandedBlock& operator=(const HandedBlock&) = delete;
    HandedBlock& operator=(HandedBlock&&) = delete;

    /// Has \p run run it, on the other thread. Which of the two lets go of it last is not known.
    void runBy(void (*run)(const std::function<void()>& block))
    {
        arrive();
        const auto done = qScopeGuard([this] { leave(); });
        run(m_block);
    }

private:
    void leave()
    {
#ifdef __SANITIZE_THREAD__
        __tsan_release(this);
#endif
    }
    void arrive()
    {
#ifdef __SANITIZE_THREAD__
        __tsan_acquire(this);
#endif
    }

    std::function<void()> m_block;
};

/// A block on its way to the main queue.
class MainQueueBlock
{
public:
    explicit MainQueueBlock(std::function<void()> block)
        : m_handed(std::move(block))
    {
    }

    void operator()() { m_handed.runBy(runThrowingOn); }

private:
    HandedBlock m_handed;
};

/// A block on its way to a thread of the pool.
class PoolBlock : public QRunnable
{
public:
    explicit PoolBlock(std::function<void()> block)
        : m_handed(std::move(block))
    {
    }

    void run() override { m_handed.runBy(runAtWall); }

private:
    HandedBlock m_handed;
};

/// What a thread waits for until another one tells that it is done.
class Completion
{
public:
    void tell()
    {
        // Told under the lock: this may be gone as soon as the waiting thread sees it.
        const MutexLock guard(m_lock);
        m_done = true;
        m_told.notifyOne();
    }

    void wait()
    {
        const MutexLock guard(m_lock);
        while (!m_done)
            m_told.wait(m_lock);
    }

private:
    Mutex m_lock;
    ConditionVariable m_told;
    bool m_done HAVREL_GUARDED_BY(m_lock) = false;
};

} // namespace

void runAtWall(const std::function<void()>& block)
{
    try {
        block();
    } catch (...) {
        logEscapingException();
    }
}

void onMainQueue(std::function<void()> block)
{
    QMetaObject::invokeMethod(QCoreApplication::instance(), MainQueueBlock(std::move(block)), Qt::QueuedConnection);
}

void endAtMainQueueWall()
{
    const std::exception_ptr thrownOn = std::exchange(t_thrownOn, nullptr);
    if (std::current_exception() != thrownOn)
        Logr::logException(Exception::fromCurrent());
}

QThreadPool& globalQueuePool()
{
    if (QThreadPool* const toolkits = QThreadPool::globalInstance())
        return *toolkits;
    static QThreadPool* const s_own = std::make_unique<QThreadPool>().release(); // never destroyed: blocks may run
    return *s_own;
}

void onGlobalQueue(std::function<void()> block)
{
    globalQueuePool().start(std::make_unique<PoolBlock>(std::move(block)).release()); // the pool owns it
}

struct SerialQueue::State : std::enable_shared_from_this<SerialQueue::State>
{
    explicit State(const QString& queueName)
        : name(queueName)
    {
    }

    void run();
    [[nodiscard]] bool waitForBlocks(BlockBatch& batch) HAVREL_EXCLUDES(lock);
    void startThread() HAVREL_REQUIRES(lock);
    [[nodiscard]] bool async(const QueuedBlock::Source& block) HAVREL_EXCLUDES(lock);
    [[nodiscard]] std::thread end() HAVREL_EXCLUDES(lock);

    static thread_local State* t_current; // of the queue whose thread this is

    const QString name;
    Mutex lock;
    ConditionVariable arrived;
    BlockBatch waiting HAVREL_GUARDED_BY(lock);
    bool idle HAVREL_GUARDED_BY(lock) = false; // the thread waits for a block
    bool started HAVREL_GUARDED_BY(lock) = false;
    bool ending HAVREL_GUARDED_BY(lock) = false;
    std::thread thread HAVREL_GUARDED_BY(lock);
};

thread_local SerialQueue::State* SerialQueue::State::t_current = nullptr;

void SerialQueue::State::run()
{
    t_current = this;
    ::pthread_setname_np(::pthread_self(), platform::bytesOfFileName(name).left(15).constData());
    BlockBatch batch;
    while (waitForBlocks(batch))
        batch.drain([](QueuedBlock& block) { runAtWall([&block] { block(); }); });
}

/// Moves what is waiting to \p batch, which is empty. \return whether there is anything: not when the queue ends.
bool SerialQueue::State::waitForBlocks(BlockBatch& batch)
{
    const MutexLock guard(lock);
    idle = true;
    while (waiting.isEmpty() && !ending)
        arrived.wait(lock);
    idle = false;
    batch.swap(waiting);
    return !batch.isEmpty();
}

void SerialQueue::State::startThread()
{
    // Not asked of the thread itself, which the destructor takes away while the last blocks may still queue others.
    if (started)
        return;
    thread = std::thread([this] { run(); });
    started = true;
}

bool SerialQueue::State::async(const QueuedBlock::Source& block)
{
    bool wake = false;
    {
        const MutexLock guard(lock);
        if (ending && t_current != this)
            return false;
        if (!ending)
            startThread();
        waiting.push(block);
        wake = std::exchange(idle, false);
    }
    if (wake)
        arrived.notifyOne();
    return true;
}

/// Lets the thread run what is waiting, and no more. \return the thread.
std::thread SerialQueue::State::end()
{
    std::thread ended;
    {
        const MutexLock guard(lock);
        ending = true;
        ended = std::move(thread);
    }
    arrived.notifyOne();
    return ended;
}

SerialQueue::SerialQueue(const QString& name)
    : m_state(std::make_shared<State>(name))
{
}

SerialQueue::~SerialQueue()
{
    std::thread thread = m_state->end();
    if (thread.joinable())
        thread.join();
}

QString SerialQueue::name() const
{
    return m_state->name;
}

bool SerialQueue::isCurrent() const noexcept
{
    return State::t_current == m_state.get();
}

void SerialQueue::async(const QueuedBlock::Source& block)
{
    (void)m_state->async(block);
}

void SerialQueue::sync(const std::function<void()>& block)
{
    if (isCurrent()) {
        block();
        return;
    }
    Completion completion;
    std::exception_ptr thrown;
    const bool queued = m_state->async([&] {
        try {
            block();
        } catch (...) {
            thrown = std::current_exception();
        }
        completion.tell();
    });
    if (!queued)
        return;
    completion.wait();
    if (thrown)
        std::rethrow_exception(thrown);
}

void SerialQueue::barrier()
{
    sync([] {});
}

QueueReference QueueReference::current()
{
    QueueReference result;
    if (SerialQueue::State* const serial = SerialQueue::State::t_current) {
        result.m_kind = Kind::Serial;
        result.m_serial = serial->weak_from_this();
    } else if (isMainThread()) {
        result.m_kind = Kind::Main;
    }
    return result;
}

bool QueueReference::isCurrent() const noexcept
{
    if (m_kind == Kind::Main)
        return isMainThread();
    const auto serial = m_serial.lock();
    return serial && serial.get() == SerialQueue::State::t_current;
}

bool QueueReference::async(std::function<void()> block) const
{
    if (m_kind == Kind::Main && QCoreApplication::instance()) {
        onMainQueue(std::move(block));
        return true;
    }
    const auto serial = m_serial.lock();
    return serial && serial->async(std::move(block));
}

} // namespace havrel
