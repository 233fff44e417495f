// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/observer.h"

#include <QStringList>
#include <QVariantList>

#include <vector>

// The operations of `MTKObserving`: observation in one line, by blocks that end by themselves. The first argument is
// the owner of the observation: any object; one that is no QObject holds an Observable as its last member and names
// that. The target is an Observable, or any other object whose property has a NOTIFY signal. An observation lasts until
// the owner or the target dies or one of the removal operations ends it. What blocks are told, where they run and what
// they may do stands at MTKObserver.
//
// Every operation that observes a property throws HVException "Bug" when the key path names one that its object does
// not have, or that does not tell of its changes; no observer is made then. Without options, or without the bit
// NoInitialCall, the block is called once before the operation returns, with the current value as both old and new.
// The forms with a selector call that method of the owner instead of a block.
//
// Owner and target belong to one thread.
//
// Threads: one thread at a time.

namespace havrel {

class Selector;
struct Notification;

using KeyPaths = std::vector<KeyPath>;

/// A set of bits.
enum class ObservationOptions : unsigned {
    None = 0,
    NoInitialCall = 1U << 0,
};

// Properties of the owner itself.

/// \selector observeProperty:withBlock:
void observeProperty(QObject& owner, KeyPath keyPath, const SettingBlock& block);
/// \selector observeProperty:options:withBlock:
void observeProperty(QObject& owner, KeyPath keyPath, ObservationOptions options, const SettingBlock& block);
/// Each key path with an observer of its own. \selector observeProperties:withBlock:
void observeProperties(QObject& owner, const KeyPaths& keyPaths, const SettingBlock& block);
/// \selector observeProperties:options:withBlock:
void observeProperties(QObject& owner, const KeyPaths& keyPaths, ObservationOptions options, const SettingBlock& block);

/// \selector observeProperty:withSelector:
void observeProperty(QObject& owner, KeyPath keyPath, const Selector& selector);
/// \selector observeProperty:options:withSelector:
void observeProperty(QObject& owner, KeyPath keyPath, ObservationOptions options, const Selector& selector);
/// \selector observeProperties:withSelector:
void observeProperties(QObject& owner, const KeyPaths& keyPaths, const Selector& selector);
/// \selector observeProperties:options:withSelector:
void observeProperties(QObject& owner, const KeyPaths& keyPaths, ObservationOptions options, const Selector& selector);

// Properties of another object.

/// For whom, and what object: observeObject({*this, book}, "title", block).
struct ObservedObject
{
    QObject& owner;
    QObject& object;
};

/// \selector observeObject:property:withBlock:
void observeObject(const ObservedObject& observed, KeyPath keyPath, const SettingBlock& block);
/// \selector observeObject:property:options:withBlock:
void observeObject(const ObservedObject& observed,
                   KeyPath keyPath,
                   ObservationOptions options,
                   const SettingBlock& block);
/// Each key path with an observer of its own. \selector observeObject:properties:withBlock:
void observeObject(const ObservedObject& observed, const KeyPaths& keyPaths, const SettingBlock& block);
/// \selector observeObject:properties:options:withBlock:
void observeObject(const ObservedObject& observed,
                   const KeyPaths& keyPaths,
                   ObservationOptions options,
                   const SettingBlock& block);

/// \selector observeObject:property:withSelector:
void observeObject(const ObservedObject& observed, KeyPath keyPath, const Selector& selector);
/// \selector observeObject:property:options:withSelector:
void observeObject(const ObservedObject& observed,
                   KeyPath keyPath,
                   ObservationOptions options,
                   const Selector& selector);
/// \selector observeObject:properties:withSelector:
void observeObject(const ObservedObject& observed, const KeyPaths& keyPaths, const Selector& selector);
/// \selector observeObject:properties:options:withSelector:
void observeObject(const ObservedObject& observed,
                   const KeyPaths& keyPaths,
                   ObservationOptions options,
                   const Selector& selector);

// To-many properties of the owner itself.

/// What is called for each kind of change. A missing insertion, removal or replacement block is replaced by the change
/// block, told nil as the old value and the whole list as the new one.
struct RelationshipBlocks
{
    SettingBlock change{}; ///< the whole list was set; also the first call
    InsertionBlock insertion{};
    RemovalBlock removal{};
    ReplacementBlock replacement{};
};

/// \selector observeRelationship:changeBlock:insertionBlock:removalBlock:replacementBlock:
void observeRelationship(QObject& owner, KeyPath keyPath, const RelationshipBlocks& blocks);
/// \selector observeRelationship:options:changeBlock:insertionBlock:removalBlock:replacementBlock:
void observeRelationship(QObject& owner, KeyPath keyPath, ObservationOptions options, const RelationshipBlocks& blocks);
/// Every kind of change reaches the one block. \selector observeRelationship:changeBlock:
void observeRelationship(QObject& owner, KeyPath keyPath, const SettingBlock& changeBlock);

// Properties of the owner that follow others.

using Transform = std::function<QVariant(const QVariant& value)>;

/// Keeps the property \p destination equal to the transformed value of \p source, beginning now; to the value as it is
/// without a transform. To-many edits of the source count as changes.
///
/// \selector map:to:transform:
/// \throws HVException "Bug" "cannot set property" when the destination does not take the value: now, and from the
///         setter of the source later.
void map(QObject& owner, KeyPath source, KeyPath destination, const Transform& transform);
/// map with a transform that puts \p substitute in the place of nil. \selector map:to:null:
void mapNull(QObject& owner, KeyPath source, KeyPath destination, const QVariant& substitute);

// Notifications of the process's own center.

using NotificationBlock = std::function<void(QObject* owner, const Notification& notification)>;

// The block runs on the queue that is current now, the main queue or a serial one: at once inside a post that is made
// on that queue, else queued there. Registered elsewhere it runs at once on the thread of the post. Ends with the
// owner, which lives where the block runs, and with the sender if that is a QObject.

/// Whoever posts it. \selector observeNotification:withBlock:
void observeNotification(QObject& owner, const QString& name, const NotificationBlock& block);
/// Posted by \p object: an object, a text, any value; nil: whoever. \selector observeNotification:fromObject:withBlock:
void observeNotification(QObject& owner, const QString& name, const QVariant& object, const NotificationBlock& block);
void observeNotification(QObject& owner, const QString& name, QObject& object, const NotificationBlock& block);
/// Each name from each object; no objects: whoever. \selector observeNotifications:fromObjects:withBlock:
void observeNotifications(QObject& owner,
                          const QStringList& names,
                          const QVariantList& objects,
                          const NotificationBlock& block);

// Ending observations before their time.

/// Ends every observation that the receiver owns, those of notifications too. \selector removeAllObservations
void removeAllObservations(QObject& owner);
/// Ends the receiver's observations of \p object, and of notifications that only it posts.
/// \selector removeAllObservationsOfObject:
void removeAllObservationsOfObject(QObject& owner, const QObject& object);
/// \selector removeObservationsOfObject:forKeyPath:
void removeObservationsOfObject(QObject& owner, const QObject& object, KeyPath keyPath);

// The observed object's side, under the operations' own names.
// NOLINTBEGIN(readability-identifier-naming)

/// The observer of \p keyPath of \p object for \p owner: the one that is there, so that several blocks of one owner
/// share one registration, else a new one, attached, which ends when the owner dies. Never null.
///
/// \selector mtk_observerForKeyPath:owner:
[[nodiscard]] std::shared_ptr<MTKObserver> mtk_observerForKeyPath(QObject& object, KeyPath keyPath, QObject& owner);
/// Detaches and forgets the observers of \p object for \p owner. \selector mtk_removeAllObservationsForOwner:
void mtk_removeAllObservationsForOwner(const QObject& object, const QObject& owner);
/// Only that of one key path. \selector mtk_removeObservationsForOwner:keyPath:
void mtk_removeObservationsForOwner(const QObject& object, const QObject& owner, KeyPath keyPath);

// NOLINTEND(readability-identifier-naming)

} // namespace havrel
