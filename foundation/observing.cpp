// SPDX-License-Identifier: MIT
#include "foundation/observing.h"

#include "foundation/dispatch.h"
#include "foundation/notification_center.h"
#include "foundation/observation_hub.h"
#include "foundation/property_access.h"
#include "foundation/selector.h"

namespace havrel {
namespace {

constexpr bool wantsInitialCall(ObservationOptions options)
{
    return (static_cast<unsigned>(options) & static_cast<unsigned>(ObservationOptions::NoInitialCall)) == 0;
}

void callInitially(const MTKObserver& observer, const SettingBlock& block)
{
    if (!block)
        return;
    const QVariant value = observer.currentValue();
    block(observer.owner(), observer.target(), value, value);
}

/// A block that tells \p change of the whole current value, for a kind of change that has no block of its own.
template<class Block>
Block orWholeValue(const Block& block, const SettingBlock& change, const std::weak_ptr<MTKObserver>& observer)
{
    if (block || !change)
        return block;
    return [change, observer](QObject* owner, QObject* object, auto&&...) {
        if (const auto present = observer.lock())
            change(owner, object, {}, present->currentValue());
    };
}

std::vector<std::shared_ptr<MTKObserver>> observersFor(const QObject& object, const QObject& owner)
{
    const ObservationHub* const hub = ObservationHub::find(object);
    auto result = hub ? hub->observers() : std::vector<std::shared_ptr<MTKObserver>>();
    std::erase_if(result, [&owner](const auto& observer) { return observer->owner() != &owner; });
    return result;
}

void detach(const std::vector<std::shared_ptr<MTKObserver>>& observers)
{
    for (const auto& observer : observers)
        observer->detach();
}

} // namespace

void observeProperty(QObject& owner, KeyPath keyPath, const SettingBlock& block)
{
    observeProperty(owner, keyPath, ObservationOptions::None, block);
}

void observeProperty(QObject& owner, KeyPath keyPath, ObservationOptions options, const SettingBlock& block)
{
    observeObject({owner, owner}, keyPath, options, block);
}

void observeProperties(QObject& owner, const KeyPaths& keyPaths, const SettingBlock& block)
{
    observeProperties(owner, keyPaths, ObservationOptions::None, block);
}

void observeProperties(QObject& owner, const KeyPaths& keyPaths, ObservationOptions options, const SettingBlock& block)
{
    observeObject({owner, owner}, keyPaths, options, block);
}

void observeProperty(QObject& owner, KeyPath keyPath, const Selector& selector)
{
    observeProperty(owner, keyPath, selector.blockFor(owner));
}

void observeProperty(QObject& owner, KeyPath keyPath, ObservationOptions options, const Selector& selector)
{
    observeProperty(owner, keyPath, options, selector.blockFor(owner));
}

void observeProperties(QObject& owner, const KeyPaths& keyPaths, const Selector& selector)
{
    observeProperties(owner, keyPaths, selector.blockFor(owner));
}

void observeProperties(QObject& owner, const KeyPaths& keyPaths, ObservationOptions options, const Selector& selector)
{
    observeProperties(owner, keyPaths, options, selector.blockFor(owner));
}

void observeObject(const ObservedObject& observed, KeyPath keyPath, const SettingBlock& block)
{
    observeObject(observed, keyPath, ObservationOptions::None, block);
}

void observeObject(const ObservedObject& observed,
                   KeyPath keyPath,
                   ObservationOptions options,
                   const SettingBlock& block)
{
    const auto observer = mtk_observerForKeyPath(observed.object, keyPath, observed.owner);
    observer->addSettingObservationBlock(block);
    if (wantsInitialCall(options))
        callInitially(*observer, block);
}

void observeObject(const ObservedObject& observed, const KeyPaths& keyPaths, const SettingBlock& block)
{
    observeObject(observed, keyPaths, ObservationOptions::None, block);
}

void observeObject(const ObservedObject& observed,
                   const KeyPaths& keyPaths,
                   ObservationOptions options,
                   const SettingBlock& block)
{
    const QPointer<QObject> owner(&observed.owner);
    const QPointer<QObject> object(&observed.object);
    for (const KeyPath keyPath : keyPaths) {
        if (owner.isNull() || object.isNull())
            return; // the block has deleted it
        observeObject(observed, keyPath, options, block);
    }
}

void observeObject(const ObservedObject& observed, KeyPath keyPath, const Selector& selector)
{
    observeObject(observed, keyPath, selector.blockFor(observed.owner));
}

void observeObject(const ObservedObject& observed,
                   KeyPath keyPath,
                   ObservationOptions options,
                   const Selector& selector)
{
    observeObject(observed, keyPath, options, selector.blockFor(observed.owner));
}

void observeObject(const ObservedObject& observed, const KeyPaths& keyPaths, const Selector& selector)
{
    observeObject(observed, keyPaths, selector.blockFor(observed.owner));
}

void observeObject(const ObservedObject& observed,
                   const KeyPaths& keyPaths,
                   ObservationOptions options,
                   const Selector& selector)
{
    observeObject(observed, keyPaths, options, selector.blockFor(observed.owner));
}

void observeRelationship(QObject& owner, KeyPath keyPath, const RelationshipBlocks& blocks)
{
    observeRelationship(owner, keyPath, ObservationOptions::None, blocks);
}

void observeRelationship(QObject& owner, KeyPath keyPath, ObservationOptions options, const RelationshipBlocks& blocks)
{
    const auto observer = mtk_observerForKeyPath(owner, keyPath, owner);
    observer->addSettingObservationBlock(blocks.change);
    observer->addInsertionObservationBlock(orWholeValue(blocks.insertion, blocks.change, observer));
    observer->addRemovalObservationBlock(orWholeValue(blocks.removal, blocks.change, observer));
    observer->addReplacementObservationBlock(orWholeValue(blocks.replacement, blocks.change, observer));
    if (wantsInitialCall(options))
        callInitially(*observer, blocks.change);
}

void observeRelationship(QObject& owner, KeyPath keyPath, const SettingBlock& changeBlock)
{
    observeRelationship(owner, keyPath, RelationshipBlocks{.change = changeBlock});
}

void map(QObject& owner, KeyPath source, KeyPath destination, const Transform& transform)
{
    const auto carryOver = [destination, transform](QObject& receiver, const QVariant& value) {
        setValueAtKeyPath(receiver, destination, transform ? transform(value) : value);
    };
    // First, because nothing must be observed when the destination does not exist.
    carryOver(owner, valueAtKeyPath(owner, source));
    const SettingBlock change = [carryOver](QObject* receiver, QObject*, const QVariant&, const QVariant& now) {
        carryOver(*receiver, now);
    };
    observeRelationship(owner, source, ObservationOptions::NoInitialCall, {.change = change});
}

void mapNull(QObject& owner, KeyPath source, KeyPath destination, const QVariant& substitute)
{
    map(owner, source, destination, [substitute](const QVariant& value) {
        return value.isValid() ? value : substitute;
    });
}

void observeNotification(QObject& owner, const QString& name, const NotificationBlock& block)
{
    observeNotification(owner, name, QVariant(), block);
}

void observeNotification(QObject& owner, const QString& name, QObject& object, const NotificationBlock& block)
{
    observeNotification(owner, name, QVariant::fromValue(&object), block);
}

void observeNotification(QObject& owner, const QString& name, const QVariant& object, const NotificationBlock& block)
{
    if (!block)
        return;
    const auto telling = [receiver = &owner, block](const Notification& notification) {
        block(receiver, notification);
    };
    ObservationHub::of(owner).own(
        NotificationCenter::defaultCenter().addObserver(name, object, QueueReference::current(), telling));
}

void observeNotifications(QObject& owner,
                          const QStringList& names,
                          const QVariantList& objects,
                          const NotificationBlock& block)
{
    const QVariantList senders = objects.isEmpty() ? QVariantList{QVariant()} : objects;
    for (const QString& name : names) {
        for (const QVariant& sender : senders)
            observeNotification(owner, name, sender, block);
    }
}

void removeAllObservations(QObject& owner)
{
    ObservationHub* const hub = ObservationHub::find(owner);
    if (!hub)
        return;
    const auto registrations = hub->takeNotificationRegistrations(); // a block may hold the owner: it goes last
    const auto ofOthers = hub->ownedObservers();
    const auto ofItself = observersFor(owner, owner);
    detach(ofOthers);
    detach(ofItself);
}

void removeAllObservationsOfObject(QObject& owner, const QObject& object)
{
    ObservationHub* const hub = ObservationHub::find(owner);
    if (!hub)
        return;
    const auto registrations = hub->takeNotificationRegistrations(&object);
    detach(observersFor(object, owner));
}

void removeObservationsOfObject(QObject& owner, const QObject& object, KeyPath keyPath)
{
    mtk_removeObservationsForOwner(object, owner, keyPath);
}

// NOLINTBEGIN(readability-identifier-naming)

std::shared_ptr<MTKObserver> mtk_observerForKeyPath(QObject& object, KeyPath keyPath, QObject& owner)
{
    if (auto present = ObservationHub::of(object).observer(keyPath, &owner))
        return present;
    auto observer = MTKObserver::withTarget(object, keyPath, &owner);
    observer->attach();
    if (&owner != &object)
        ObservationHub::of(owner).own(observer);
    return observer;
}

void mtk_removeAllObservationsForOwner(const QObject& object, const QObject& owner)
{
    detach(observersFor(object, owner));
}

void mtk_removeObservationsForOwner(const QObject& object, const QObject& owner, KeyPath keyPath)
{
    const ObservationHub* const hub = ObservationHub::find(object);
    if (const auto observer = hub ? hub->observer(keyPath, &owner) : nullptr)
        observer->detach();
}

// NOLINTEND(readability-identifier-naming)

} // namespace havrel
