// SPDX-License-Identifier: MIT
#include "foundation/deallocator.h"

#include "foundation/dispatch.h"
#include "foundation/observation_hub.h"

#include <utility>

namespace havrel {

MTKDeallocator::MTKDeallocator(QObject* owner)
    : m_owner(owner)
{
}

MTKDeallocator::~MTKDeallocator()
{
    invokeCallbacks();
}

void MTKDeallocator::addCallback(Callback callback)
{
    if (!callback)
        return;
    const MutexLock guard(m_lock);
    m_callbacks.push_back(std::move(callback));
}

void MTKDeallocator::invokeCallbacks()
{
    std::vector<Callback> callbacks;
    {
        const MutexLock guard(m_lock);
        callbacks.swap(m_callbacks);
    }
    for (const Callback& callback : callbacks)
        runAtWall([&] { callback(m_owner); });
}

void mtk_addDeallocationCallback(QObject& object, MTKDeallocator::Callback callback)
{
    ObservationHub::of(object).deallocator().addCallback(std::move(callback));
}

void swizzleDeallocIfNeeded(QObject& object)
{
    (void)ObservationHub::of(object);
}

} // namespace havrel
