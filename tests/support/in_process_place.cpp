// SPDX-License-Identifier: MIT
#include "tests/support/in_process_place.h"

#include "foundation/dispatch.h"
#include "tests/support/in_process_connection.h"

#include <algorithm>

#include <unistd.h>

namespace havrel::tests {

bool InProcessPlace::listen(std::shared_ptr<XPCListener::Acceptor> acceptor)
{
    const MutexLock guard(m_lock);
    if (m_acceptor)
        return false;
    m_acceptor = std::move(acceptor);
    m_refusing = false;
    return true;
}

void InProcessPlace::stopListening()
{
    const MutexLock guard(m_lock);
    m_acceptor = nullptr;
}

std::shared_ptr<InProcessConnection> InProcessPlace::admit(const std::shared_ptr<InProcessConnection>& caller)
{
    const MutexLock guard(m_lock);
    if (m_refusing || !m_acceptor)
        return nullptr;
    const auto other = std::make_shared<InProcessConnection>(shared_from_this(), QString());
    other->accept(caller);
    if (m_stopped)
        other->replyQueue().suspend();
    ++m_made;
    m_accepted.push_back(other);
    m_queue.async([other, acceptor = m_acceptor] {
        bool isWelcome = false;
        runAtWall([&] { isWelcome = *acceptor && (*acceptor)(other); });
        if (isWelcome)
            other->resume();
        else
            other->invalidate();
    });
    return other;
}

void InProcessPlace::setRefusing(bool refusing)
{
    const MutexLock guard(m_lock);
    m_refusing = refusing;
}

void InProcessPlace::addFault(const QByteArray& keywordName, Fault fault)
{
    const MutexLock guard(m_lock);
    m_faults.emplace_back(keywordName, fault);
}

std::optional<Fault> InProcessPlace::takeFault(const QByteArray& keywordName)
{
    const MutexLock guard(m_lock);
    const auto found =
        std::find_if(m_faults.begin(), m_faults.end(), [&](const auto& each) { return each.first == keywordName; });
    if (found == m_faults.end())
        return std::nullopt;
    const Fault fault = found->second;
    m_faults.erase(found);
    return fault;
}

void InProcessPlace::setStopped(bool stopped)
{
    const MutexLock guard(m_lock);
    if (std::exchange(m_stopped, stopped) == stopped)
        return;
    const auto change = stopped ? &ReplyQueue::suspend : &ReplyQueue::resume;
    (m_queue.*change)();
    for (const auto& each : alive())
        (each->replyQueue().*change)();
}

void InProcessPlace::setUser(uid_t user)
{
    const MutexLock guard(m_lock);
    m_user = user;
}

uid_t InProcessPlace::user()
{
    const MutexLock guard(m_lock);
    return m_user.value_or(::geteuid());
}

std::vector<std::shared_ptr<InProcessConnection>> InProcessPlace::alive()
{
    std::vector<std::shared_ptr<InProcessConnection>> result;
    std::erase_if(m_accepted, [](const auto& each) { return each.expired(); });
    for (const auto& weak : m_accepted)
        if (auto each = weak.lock())
            result.push_back(std::move(each));
    return result;
}

std::vector<std::shared_ptr<InProcessConnection>> InProcessPlace::accepted()
{
    const MutexLock guard(m_lock);
    auto result = alive();
    std::erase_if(result, [](const auto& each) { return each->isEnded(); });
    return result;
}

int InProcessPlace::made()
{
    const MutexLock guard(m_lock);
    return m_made;
}

} // namespace havrel::tests
