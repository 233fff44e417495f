// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/observer.h"

#include <vector>

// Observation in one line, by blocks that end by themselves. The first argument is the owner of the observation: any
// object; one that is no QObject holds an Observable as its last member and names that. The target is an Observable, or
// any other object whose property has a NOTIFY signal. An observation lasts until the owner or the target dies or one
// of the removal operations ends it. Every operation that registers throws HVException "Bug" when the key path names a
// property that its object does not have, or that does not tell of its changes; nothing is registered then.
// What blocks are told, where they run and what they may do stands at MTKObserver.
//
// Threads: one thread at a time, for the owner and the target together.

namespace havrel {

using KeyPaths = std::vector<KeyPath>;

/// A set of bits.
enum class ObservationOptions : unsigned {
    None = 0, ///< the block is also called once now, with the current value as both old and new
    NoInitialCall = 1U << 0,
};

[[nodiscard]] constexpr bool hasOption(ObservationOptions options, ObservationOptions option) noexcept
{
    return (static_cast<unsigned>(options) & static_cast<unsigned>(option)) != 0;
}

/// Observes one key path of the owner itself.
/// \selector observeProperty:withBlock:
void observeProperty(QObject& owner, KeyPath keyPath, const SettingBlock& block);
/// \selector observeProperty:options:withBlock:
void observeProperty(QObject& owner, KeyPath keyPath, ObservationOptions options, const SettingBlock& block);

/// Observes each key path of the owner itself, with one observer each.
/// \selector observeProperties:withBlock:
void observeProperties(QObject& owner, const KeyPaths& keyPaths, const SettingBlock& block);
/// \selector observeProperties:options:withBlock:
void observeProperties(QObject& owner, const KeyPaths& keyPaths, ObservationOptions options, const SettingBlock& block);

/// The observer of \p keyPath of \p object for \p owner: the one that is there, so that several blocks of one owner
/// share one registration, else a new one, attached, which ends when the owner dies. Never null. \selector
/// mtk_observerForKeyPath:owner:
[[nodiscard]] std::shared_ptr<MTKObserver>
mtk_observerForKeyPath(QObject& object, KeyPath keyPath, QObject& owner); // NOLINT(readability-identifier-naming)

} // namespace havrel
