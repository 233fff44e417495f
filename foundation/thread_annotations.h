// SPDX-License-Identifier: MIT
#pragma once

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
    std::mutex m_mutex;
};

/// Holds a Mutex from its construction to its end.
///
/// Threads: one thread at a time.
class HAVREL_SCOPED_CAPABILITY MutexLock
{
public:
    explicit MutexLock(Mutex& mutex) HAVREL_ACQUIRE(mutex)
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
    Mutex& m_mutex;
};

} // namespace havrel
