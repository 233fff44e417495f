// SPDX-License-Identifier: MIT
#include "foundation/observing.h"

#include "foundation/observation_hub.h"

namespace havrel {
namespace {

struct Target
{
    QObject& owner;
    QObject& object;
};

void observe(const Target& target, KeyPath keyPath, ObservationOptions options, const SettingBlock& block)
{
    const auto observer = mtk_observerForKeyPath(target.object, keyPath, target.owner);
    observer->addSettingObservationBlock(block);
    if (hasOption(options, ObservationOptions::NoInitialCall))
        return;
    const QVariant value = observer->currentValue();
    block(&target.owner, &target.object, value, value);
}

void observeEach(const Target& target, const KeyPaths& keyPaths, ObservationOptions options, const SettingBlock& block)
{
    const QPointer<QObject> owner(&target.owner);
    const QPointer<QObject> object(&target.object);
    for (const KeyPath keyPath : keyPaths) {
        if (owner.isNull() || object.isNull())
            return; // the block has deleted them
        observe(target, keyPath, options, block);
    }
}

} // namespace

std::shared_ptr<MTKObserver>
mtk_observerForKeyPath(QObject& object, KeyPath keyPath, QObject& owner) // NOLINT(readability-identifier-naming)
{
    ObservationHub& hub = ObservationHub::of(object);
    if (auto present = hub.observer(keyPath, &owner))
        return present;
    auto observer = MTKObserver::withTarget(object, keyPath, &owner);
    observer->attach();
    if (&owner != &object)
        ObservationHub::of(owner).own(observer);
    return observer;
}

void observeProperty(QObject& owner, KeyPath keyPath, const SettingBlock& block)
{
    observeProperty(owner, keyPath, ObservationOptions::None, block);
}

void observeProperty(QObject& owner, KeyPath keyPath, ObservationOptions options, const SettingBlock& block)
{
    observe({owner, owner}, keyPath, options, block);
}

void observeProperties(QObject& owner, const KeyPaths& keyPaths, const SettingBlock& block)
{
    observeProperties(owner, keyPaths, ObservationOptions::None, block);
}

void observeProperties(QObject& owner, const KeyPaths& keyPaths, ObservationOptions options, const SettingBlock& block)
{
    observeEach({owner, owner}, keyPaths, options, block);
}

} // namespace havrel
