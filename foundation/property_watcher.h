// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/key_path.h"
#include "foundation/observed_change.h"

#include <memory>

namespace havrel {

class MTKObserver;

/// Whoever wants to hear from one object about one of its properties.
///
/// Threads: one thread at a time.
class PropertyWatcher : public std::enable_shared_from_this<PropertyWatcher>
{
public:
    explicit PropertyWatcher(KeyPath name)
        : m_name(name)
    {
    }
    virtual ~PropertyWatcher() = default;
    PropertyWatcher(const PropertyWatcher&) = delete;
    PropertyWatcher& operator=(const PropertyWatcher&) = delete;
    PropertyWatcher(PropertyWatcher&&) = delete;
    PropertyWatcher& operator=(PropertyWatcher&&) = delete;

    /// What it listens to. A path of several names is never reported: such a one only waits for the object's death.
    [[nodiscard]] KeyPath name() const noexcept { return m_name; }

    /// The property has changed. May delete the object and everything else; whoever calls keeps the watcher alive.
    virtual void changed(const ObservedChange& change) = 0;
    /// The object is dying and has forgotten the watcher already.
    virtual void objectGone() = 0;
    /// Itself if it is an observer, else null.
    [[nodiscard]] virtual MTKObserver* asObserver() noexcept { return nullptr; }

private:
    KeyPath m_name;
};

} // namespace havrel
