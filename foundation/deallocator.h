// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"

#include <functional>
#include <vector>

class QObject;

namespace havrel {

/// What is to be done when an object dies. Attached to the object, and gone with it.
///
/// Threads: any thread.
class MTKDeallocator
{
public:
    /// Told the object. Its own class is gone by then: only good for comparing. Must not throw: what leaves a callback
    /// is logged at Debug and ends there.
    using Callback = std::function<void(QObject* owner)>;

    /// \param owner only handed on. \selector initWithOwner:
    explicit MTKDeallocator(QObject* owner);
    /// Invokes the callbacks that were not invoked yet.
    ~MTKDeallocator();
    MTKDeallocator(const MTKDeallocator&) = delete;
    MTKDeallocator& operator=(const MTKDeallocator&) = delete;
    MTKDeallocator(MTKDeallocator&&) = delete;
    MTKDeallocator& operator=(MTKDeallocator&&) = delete;

    /// An empty one is ignored. \selector addCallback:
    void addCallback(Callback callback) HAVREL_EXCLUDES(m_lock);
    /// Empties the list, then runs each callback of it in the order they were added: none ever runs twice.
    ///
    /// \selector invokeCallbacks
    void invokeCallbacks() HAVREL_EXCLUDES(m_lock);

private:
    QObject* m_owner;
    Mutex m_lock;
    std::vector<Callback> m_callbacks HAVREL_GUARDED_BY(m_lock);
};

/// Has \p callback run when \p object dies: at the end of its destruction, when only its base is left. An empty one is
/// ignored. Synchronised on the object, which must not be dying meanwhile.
///
/// Threads: any thread.
/// \selector mtk_addDeallocationCallback:
void mtk_addDeallocationCallback(QObject& object, MTKDeallocator::Callback callback);

/// Makes sure that the death of \p object is noticed. An `Observable` tells by itself; from any other object its signal
/// destroyed() is asked for, once. The other operations of observation do this for themselves.
///
/// Threads: any thread.
/// \selector swizzleDeallocIfNeeded
void swizzleDeallocIfNeeded(QObject& object);

} // namespace havrel
