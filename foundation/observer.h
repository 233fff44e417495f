// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/property_watcher.h"

#include <QPointer>

#include <forward_list>
#include <functional>
#include <memory>

namespace havrel {

class KeyPathChain;

/// Told the owner (null for an observer that has none, or whose owner was gone before the change), the observed object,
/// the value before and the value now; nil is an invalid value.
using SettingBlock =
    std::function<void(QObject* owner, QObject* object, const QVariant& oldValue, const QVariant& newValue)>;
/// Told the elements that came as a list, and where they are.
using InsertionBlock =
    std::function<void(QObject* owner, QObject* object, const QVariant& newValues, const IndexSet& indexes)>;
/// Told the elements that went as a list, and where they were.
using RemovalBlock =
    std::function<void(QObject* owner, QObject* object, const QVariant& oldValues, const IndexSet& indexes)>;
/// Told the elements that went and the ones that came in their places.
using ReplacementBlock = std::function<void(
    QObject* owner, QObject* object, const QVariant& oldValues, const QVariant& newValues, const IndexSet& indexes)>;

/// The observation of one key path on one target for one owner.
///
/// Holds both weakly. While attached it is kept alive by the target's side; it ends with the target by itself.
/// Blocks run on the thread that made the change, inside the setter, in the order they were added. A block may change
/// the property again (the inner change is delivered first, none is lost), add and remove observations (who was there
/// when the change was reported hears of it), and delete the target, the owner or both: then no further block runs.
/// What a block throws comes out of the setter, and the blocks after it are not run; where the change is the death of
/// an object on the way, it is logged at Debug and ends there.
///
/// Threads: one thread at a time.
class MTKObserver final : public PropertyWatcher
{
    struct Passkey
    {
    };

public:
    /// Not attached yet. \selector initWithTarget:keyPath:owner:
    [[nodiscard]] static std::shared_ptr<MTKObserver> withTarget(QObject& target, KeyPath keyPath, QObject* owner);
    MTKObserver(Passkey key, QObject& target, KeyPath keyPath, QObject* owner);
    ~MTKObserver() override;
    MTKObserver(const MTKObserver&) = delete;
    MTKObserver& operator=(const MTKObserver&) = delete;
    MTKObserver(MTKObserver&&) = delete;
    MTKObserver& operator=(MTKObserver&&) = delete;

    [[nodiscard]] QObject* target() const noexcept { return m_target; } ///< null when it is gone. \selector target
    [[nodiscard]] KeyPath keyPath() const noexcept { return name(); }   ///< \selector keyPath
    [[nodiscard]] QObject* owner() const noexcept { return m_owner; }   ///< null when it is gone. \selector owner
    [[nodiscard]] bool attached() const noexcept { return m_attached; } ///< \selector attached

    // The blocks of each kind in the order in which they were added.
    [[nodiscard]] const std::forward_list<SettingBlock>& afterSettingBlocks() const noexcept
    {
        return m_afterSettingBlocks;
    }
    [[nodiscard]] const std::forward_list<InsertionBlock>& afterInsertionBlocks() const noexcept
    {
        return m_afterInsertionBlocks;
    }
    [[nodiscard]] const std::forward_list<RemovalBlock>& afterRemovalBlocks() const noexcept
    {
        return m_afterRemovalBlocks;
    }
    [[nodiscard]] const std::forward_list<ReplacementBlock>& afterReplacementBlocks() const noexcept
    {
        return m_afterReplacementBlocks;
    }

    // Empty blocks are ignored.
    void addSettingObservationBlock(SettingBlock block);         ///< \selector addSettingObservationBlock:
    void addInsertionObservationBlock(InsertionBlock block);     ///< \selector addInsertionObservationBlock:
    void addRemovalObservationBlock(RemovalBlock block);         ///< \selector addRemovalObservationBlock:
    void addReplacementObservationBlock(ReplacementBlock block); ///< \selector addReplacementObservationBlock:

    /// Begins to listen; blocks that were added before are told the current value, with nil as the old one. Nothing
    /// when attached already, or when the target is gone.
    ///
    /// \selector attach
    /// \throws HVException "Bug" when an object on the path has no such property or does not tell of its changes; then
    ///         it is not attached.
    void attach() { setAttached(true); }
    /// Ceases to listen, and is forgotten by target and owner. \selector detach
    void detach() { setAttached(false); }
    /// attach or detach; the value that it has already does nothing. \selector setAttached:
    void setAttached(bool attached);

    /// What the key path leads to now.
    [[nodiscard]] QVariant currentValue() const;

    /// Runs the blocks that the kind of \p change asks for; a setting only when old and new differ. Ignores what comes
    /// from another object or key path, and changes that have not happened yet. Null objects count as nil.
    ///
    /// \selector observeValueForKeyPath:ofObject:change:context:
    void observeValueForKeyPath(KeyPath keyPath, const QObject* object, const ObservedChange& change);
    /// \selector executeAfterSettingBlocksOld:new:
    void executeAfterSettingBlocks(const QVariant& oldValue, const QVariant& newValue);
    /// \selector executeAfterInsertionBlocksNew:indexes:
    void executeAfterInsertionBlocks(const QVariant& newValues, const IndexSet& indexes);
    /// \selector executeAfterRemovalBlocksOld:indexes:
    void executeAfterRemovalBlocks(const QVariant& oldValues, const IndexSet& indexes);
    /// \selector executeAfterReplacementBlocksOld:new:indexes:
    void executeAfterReplacementBlocks(const QVariant& oldValues, const QVariant& newValues, const IndexSet& indexes);

    void changed(const ObservedChange& change) override;
    void objectGone() override;
    [[nodiscard]] MTKObserver* asObserver() noexcept override { return this; }

private:
    void listen();
    void beForgotten();
    void executeBlocks(const ObservedChange& change);
    template<class Block, class... Arguments>
    void run(const std::forward_list<Block>& blocks, const Arguments&... arguments);

    QPointer<QObject> m_target;
    QPointer<QObject> m_owner;
    std::unique_ptr<KeyPathChain> m_chain; // for a path of several names, while attached
    // Lists whose elements stay where they are: a block may add others while it runs.
    std::forward_list<SettingBlock> m_afterSettingBlocks;
    std::forward_list<InsertionBlock> m_afterInsertionBlocks;
    std::forward_list<RemovalBlock> m_afterRemovalBlocks;
    std::forward_list<ReplacementBlock> m_afterReplacementBlocks;
    bool m_attached = false;
};

} // namespace havrel
