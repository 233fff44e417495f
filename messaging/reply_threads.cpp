// SPDX-License-Identifier: MIT
#include "messaging/reply_threads.h"

#include <chrono>
#include <memory>
#include <system_error>
#include <thread>

namespace havrel {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kStartedAtOnce = 4;
constexpr std::chrono::milliseconds kStalled{5}; // nothing taken for so long: everybody waits for something
constexpr std::chrono::seconds kIdle{5};
constexpr std::chrono::seconds kLongestLeave{2};

} // namespace

ReplyThreads& ReplyThreads::shared()
{
    static ReplyThreads* const s_shared = std::make_unique<ReplyThreads>().release();
    return *s_shared;
}

void ReplyThreads::run(Job job)
{
    const MutexLock guard(m_lock);
    if (m_left)
        return;
    m_jobs.push_back(std::move(job));
    if (m_idle >= m_jobs.size())
        m_came.notifyOne();
    else if (m_threads < kStartedAtOnce)
        start();
    else if (!m_watched)
        startWatch();
}

void ReplyThreads::leave()
{
    const MutexLock guard(m_lock);
    m_left = true;
    m_came.notifyAll();
    const auto deadline = Clock::now() + kLongestLeave;
    while (m_threads > 0 && m_gone.waitUntil(m_lock, deadline)) {
    }
}

void ReplyThreads::start()
{
    try {
        std::thread([this] { work(); }).detach();
        ++m_threads;
    } catch (const std::system_error&) {
        return; // no more threads for now: those that there are take it
    }
}

void ReplyThreads::startWatch()
{
    try {
        std::thread([this] { watch(); }).detach();
        m_watched = true;
    } catch (const std::system_error&) {
        return;
    }
}

void ReplyThreads::work()
{
    for (Job job; take(job); job = nullptr)
        job();
}

/// \return false when there has been nothing to do for a while
bool ReplyThreads::take(Job& job)
{
    const MutexLock guard(m_lock);
    ++m_idle;
    const auto deadline = Clock::now() + kIdle;
    bool inTime = true;
    while (m_jobs.empty() && inTime && !m_left)
        inTime = m_came.waitUntil(m_lock, deadline);
    --m_idle;
    if (m_jobs.empty() || m_left) {
        --m_threads;
        m_gone.notifyAll();
        return false;
    }
    job = std::move(m_jobs.front());
    m_jobs.pop_front();
    ++m_taken;
    return true;
}

void ReplyThreads::watch()
{
    const MutexLock guard(m_lock);
    while (!m_jobs.empty() && !m_left) {
        const quint64 before = m_taken;
        const auto deadline = Clock::now() + kStalled;
        while (m_watch.waitUntil(m_lock, deadline)) {
        }
        if (!m_jobs.empty() && m_taken == before && !m_left)
            start();
    }
    m_watched = false;
}

} // namespace havrel
