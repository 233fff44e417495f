// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"
#include "messaging/local_observer.h"
#include "messaging/xpc_connection.h"

#include <QStringList>

#include <map>
#include <memory>

namespace havrel {

class SwitchboardProxy;

/// The observers of this process that the switchboard forwards notifications to (protocols::switchboardSubscribing):
/// the one record of who observes what, from which the switchboard's own is made anew with each connection.
///
/// Threads: any thread. Blocks of observers run on the thread of the message, without a lock.
class SwitchboardSubscriber : public XPCExportedObject
{
public:
    using Observer = std::shared_ptr<const LocalObserver>;

    /// A message of the switchboard.
    void received(const XPCMessage& message) override;

    /// Hands source and info to the observer of that identifier, if there is one. What the notification is called does
    /// not matter. \selector forwardToObserver:notification:fromSource:withInfo:
    void forwardToObserver(const QString& identifier,
                           const QString& notification,
                           const std::optional<QString>& source,
                           const QVariantMap& info);

    /// In place of the one of that identifier. \selector addObserver:withLocalObserver:
    void addObserver(const QString& identifier, Observer observer);
    void removeLocalObserver(const QString& identifier); ///< \selector removeLocalObserver:
    void removeAllLocalObservers();                      ///< \selector removeAllLocalObservers
    /// Every identifier at this moment, in order. \selector registeredObserverIDs
    [[nodiscard]] QStringList registeredObserverIDs() const;

    /// Asks the switchboard for the notifications of every observer. \selector reregisterObserversWithSwitchboard:
    void reregisterObserversWithSwitchboard(const SwitchboardProxy& switchboard);

private:
    [[nodiscard]] Observer observerOf(const QString& identifier) const;

    mutable RecursiveMutex m_observerLock;
    std::map<QString, Observer> m_observers HAVREL_GUARDED_BY(m_observerLock);
};

} // namespace havrel
