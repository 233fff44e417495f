// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/key_path.h"

#include <QVariant>

#include <memory>
#include <vector>

class QObject;

namespace havrel {

class MTKObserver;
struct ObservedChange;

/// Follows a path of several names for an observer: listens to each object on the way, goes over to the new object when
/// one is replaced, and takes the value for nil when one dies. (Its property may then still hold the dead object's
/// address; the chain does not look there again before the property is set.)
///
/// Threads: one thread at a time.
class KeyPathChain
{
public:
    /// Follows the observer's key path from its target.
    /// \throws HVException "Bug" when an object on the way has no such property or does not tell of its changes.
    explicit KeyPathChain(MTKObserver& observer);
    ~KeyPathChain();
    KeyPathChain(const KeyPathChain&) = delete;
    KeyPathChain& operator=(const KeyPathChain&) = delete;
    KeyPathChain(KeyPathChain&&) = delete;
    KeyPathChain& operator=(KeyPathChain&&) = delete;

    /// What the path leads to now; nil when it breaks off.
    [[nodiscard]] const QVariant& value() const noexcept { return m_value; }

private:
    class Link;

    void follow(QObject* object);
    void cut(std::size_t from);
    void linkChanged(const Link& link, const ObservedChange& change);
    void linkGone(const Link& link);
    void deliver(const ObservedChange& change);

    MTKObserver& m_observer;
    std::vector<KeyPath> m_names;
    std::vector<std::shared_ptr<Link>> m_links; // one for each object that the path reaches, the target first
    QVariant m_value;
};

} // namespace havrel
