// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

/// What guards what, in words that clang's -Wthread-safety checks; other compilers see nothing.
///
/// \source https://clang.llvm.org/docs/ThreadSafetyAnalysis.html
#if defined(__clang__)
#define HAVREL_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define HAVREL_THREAD_ANNOTATION(x)
#endif

#define HAVREL_CAPABILITY(name) HAVREL_THREAD_ANNOTATION(capability(name))
#define HAVREL_SCOPED_CAPABILITY HAVREL_THREAD_ANNOTATION(scoped_lockable)
#define HAVREL_GUARDED_BY(mutex) HAVREL_THREAD_ANNOTATION(guarded_by(mutex))
#define HAVREL_PT_GUARDED_BY(mutex) HAVREL_THREAD_ANNOTATION(pt_guarded_by(mutex))
#define HAVREL_REQUIRES(...) HAVREL_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define HAVREL_EXCLUDES(...) HAVREL_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))
#define HAVREL_ACQUIRE(...) HAVREL_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define HAVREL_RELEASE(...) HAVREL_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define HAVREL_NO_THREAD_SAFETY_ANALYSIS HAVREL_THREAD_ANNOTATION(no_thread_safety_analysis)

namespace havrel {

/// A std::mutex that the thread-safety analysis knows.
///
/// Threads: any thread.
class HAVREL_CAPABILITY("mutex") Mutex
{
public:
    void lock() HAVREL_ACQUIRE() { m_mutex.lock(); }
    void unlock() HAVREL_RELEASE() { m_mutex.unlock(); }

private:
    friend class ConditionVariable;

    std::mutex m_mutex;
};

/// The same for a std::recursive_mutex: the thread that holds it may take it again, through a call that comes back.
///
/// Threads: any thread.
class HAVREL_CAPABILITY("mutex") RecursiveMutex
{
public:
    void lock() HAVREL_ACQUIRE() { m_mutex.lock(); }
    void unlock() HAVREL_RELEASE() { m_mutex.unlock(); }

private:
    std::recursive_mutex m_mutex;
};

/// Holds a mutex from its construction to its end.
///
/// Threads: one thread at a time.
template<class Lockable>
class HAVREL_SCOPED_CAPABILITY MutexLock
{
public:
    explicit MutexLock(Lockable& mutex) HAVREL_ACQUIRE(mutex)
        : m_mutex(mutex)
    {
        m_mutex.lock();
    }
    ~MutexLock() HAVREL_RELEASE() { m_mutex.unlock(); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;
    MutexLock(MutexLock&&) = delete;
    MutexLock& operator=(MutexLock&&) = delete;

private:
    Lockable& m_mutex;
};

/// A std::condition_variable that waits with a Mutex. The loop around the wait, which asks for what is waited for, is
/// the caller's: so the analysis sees that this is asked under the mutex.
///
/// Threads: any thread.
class ConditionVariable
{
public:
    /// Gives \p mutex up, waits to be notified, or for no reason at all, and takes \p mutex again.
    void wait(Mutex& mutex) HAVREL_REQUIRES(mutex)
    {
        std::unique_lock held(mutex.m_mutex, std::adopt_lock);
        m_condition.wait(held);
        held.release(); // it stays taken
    }

    /// The same, at most until \p deadline. \return whether that is still to come.
    [[nodiscard]] bool waitUntil(Mutex& mutex, std::chrono::steady_clock::time_point deadline) HAVREL_REQUIRES(mutex)
    {
        std::unique_lock held(mutex.m_mutex, std::adopt_lock);
        const std::cv_status status = m_condition.wait_until(held, deadline);
        held.release(); // it stays taken
        return status == std::cv_status::no_timeout;
    }

    /// The same by the system's clock, also when that is set meanwhile, or the system sleeps.
    [[nodiscard]] bool waitUntil(Mutex& mutex, std::chrono::system_clock::time_point deadline) HAVREL_REQUIRES(mutex)
    {
        std::unique_lock held(mutex.m_mutex, std::adopt_lock);
        const std::cv_status status = m_condition.wait_until(held, deadline);
        held.release(); // it stays taken
        return status == std::cv_status::no_timeout;
    }

    void notifyOne() noexcept { m_condition.notify_one(); }
    void notifyAll() noexcept { m_condition.notify_all(); }

private:
    std::condition_variable m_condition;
};

} // namespace havrel
