// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/property_watcher.h"
#include "foundation/thread_annotations.h"

#include <memory>
#include <vector>

class QObject;

namespace havrel {

class MTKDeallocator;
class NotificationRegistration;
class NotifyRelay;

/// What observation keeps for one object, as a target and as an owner. Made with the first need, gone with the object;
/// an object that takes no part in observation has none. Finding and making one may be done on any thread.
///
/// Threads: one thread at a time.
class ObservationHub
{
public:
    /// The hub of \p object, made if there is none. Not for an object that is dying.
    [[nodiscard]] static ObservationHub& of(QObject& object);
    /// The hub of \p object, or null.
    [[nodiscard]] static ObservationHub* find(const QObject& object) noexcept;

    explicit ObservationHub(QObject& object);
    /// The object dies: ends what it owns and its observers, runs its deallocation callbacks, then tells the key paths
    /// that lead through it. No block is told of the object from here on.
    ~ObservationHub();
    ObservationHub(const ObservationHub&) = delete;
    ObservationHub& operator=(const ObservationHub&) = delete;
    ObservationHub(ObservationHub&&) = delete;
    ObservationHub& operator=(ObservationHub&&) = delete;

    /// Made with the first call.
    [[nodiscard]] MTKDeallocator& deallocator();

    /// Whether anyone listens to \p name.
    [[nodiscard]] bool isObserved(KeyPath name) const noexcept;
    /// Tells each watcher of \p name in the order they came; those that are added meanwhile hear of the next change.
    /// The object, and with it this hub, may be gone afterwards.
    void report(KeyPath name, const ObservedChange& change);

    /// \throws HVException "Bug" when the object has no such property, or none that tells of its changes; the watcher
    ///         is not added.
    void add(std::shared_ptr<PropertyWatcher> watcher);
    void remove(const PropertyWatcher& watcher);
    /// The observer of \p keyPath for \p owner, or null.
    [[nodiscard]] std::shared_ptr<MTKObserver> observer(KeyPath keyPath, const QObject* owner) const;
    /// A copy, so that they may be ended one by one. \selector mtk_keyPathBlockObservers
    [[nodiscard]] std::vector<std::shared_ptr<MTKObserver>> observers() const;

    /// Observers of other objects that end with this one.
    void own(std::shared_ptr<MTKObserver> observer);
    void disown(const MTKObserver& observer);
    [[nodiscard]] std::vector<std::shared_ptr<MTKObserver>> ownedObservers() const { return m_owned; }
    /// A notification registration that ends with this one.
    void own(NotificationRegistration registration);
    /// The owner's notification registrations, or only those about \p sender, which end when the result goes.
    ///
    /// \selector mtk_notificationBlockObservers
    [[nodiscard]] std::vector<NotificationRegistration> takeNotificationRegistrations(const QObject* sender = nullptr);

    /// Detaches every observer of the object and ends its notification registrations.
    ///
    /// \selector internalRemoveAllObservations
    void internalRemoveAllObservations();

private:
    class Reporting;

    void relayIfNeeded(KeyPath name);
    void forgetRemoved();

    static Mutex s_deallocatorLock; // one for all hubs: held only while one is made

    QObject& m_object;
    std::vector<std::shared_ptr<PropertyWatcher>> m_watchers; // null where one was removed during a report
    Reporting* m_reporting = nullptr;                         // innermost report under way
    bool m_someRemoved = false;                               // while one was
    std::unique_ptr<MTKDeallocator> m_deallocator HAVREL_GUARDED_BY(s_deallocatorLock);
    std::vector<std::unique_ptr<NotifyRelay>> m_relays; // one for each observed property that tells by a signal
    std::vector<std::shared_ptr<MTKObserver>> m_owned;
    std::vector<NotificationRegistration> m_registrations;
};

} // namespace havrel
