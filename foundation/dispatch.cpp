// SPDX-License-Identifier: MIT
#include "foundation/dispatch.h"

#include "diagnostics/logr.h"
#include "foundation/block_batch.h"
#include "foundation/main_queue_wall.h"
#include "platform/file_names.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>
#include <QThreadPool>

#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>

#include <pthread.h>

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
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [block = std::move(block)] { runThrowingOn(block); }, Qt::QueuedConnection);
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
    globalQueuePool().start([block = std::move(block)] { runAtWall(block); });
}

struct SerialQueue::State : std::enable_shared_from_this<SerialQueue::State>
{
    explicit State(const QString& queueName)
        : name(queueName)
    {
    }

    void run();
    void startThreadLocked();
    [[nodiscard]] bool async(const QueuedBlock::Source& block);

    static thread_local State* t_current; // of the queue whose thread this is

    const QString name;
    std::mutex lock;
    std::condition_variable arrived;
    BlockBatch waiting;   // guarded by lock
    bool idle = false;    // guarded by lock: the thread waits for a block
    bool started = false; // guarded by lock
    bool ending = false;  // guarded by lock
    std::thread thread;   // guarded by lock until ending
};

thread_local SerialQueue::State* SerialQueue::State::t_current = nullptr;

void SerialQueue::State::run()
{
    t_current = this;
    ::pthread_setname_np(::pthread_self(), platform::bytesOfFileName(name).left(15).constData());
    BlockBatch batch;
    std::unique_lock guard(lock);
    while (true) {
        idle = true;
        arrived.wait(guard, [this] { return !waiting.isEmpty() || ending; });
        idle = false;
        if (waiting.isEmpty())
            return;
        batch.swap(waiting);
        guard.unlock();
        batch.drain([](QueuedBlock& block) { runAtWall([&block] { block(); }); });
        guard.lock();
    }
}

void SerialQueue::State::startThreadLocked()
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
        const std::lock_guard guard(lock);
        if (ending && t_current != this)
            return false;
        if (!ending)
            startThreadLocked();
        waiting.push(block);
        wake = std::exchange(idle, false);
    }
    if (wake)
        arrived.notify_one();
    return true;
}

SerialQueue::SerialQueue(const QString& name)
    : m_state(std::make_shared<State>(name))
{
}

SerialQueue::~SerialQueue()
{
    std::thread thread;
    {
        const std::lock_guard guard(m_state->lock);
        m_state->ending = true;
        thread = std::move(m_state->thread);
    }
    m_state->arrived.notify_one();
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
    std::mutex lock;
    std::condition_variable done;
    bool finished = false;
    std::exception_ptr thrown;
    const bool queued = m_state->async([&] {
        try {
            block();
        } catch (...) {
            thrown = std::current_exception();
        }
        const std::lock_guard guard(lock);
        finished = true;
        done.notify_one();
    });
    if (!queued)
        return;
    std::unique_lock guard(lock);
    done.wait(guard, [&finished] { return finished; });
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
