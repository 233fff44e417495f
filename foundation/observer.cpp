// SPDX-License-Identifier: MIT
#include "foundation/observer.h"

#include "foundation/description.h"
#include "foundation/key_path_chain.h"
#include "foundation/observation_hub.h"
#include "foundation/property_access.h"

#include <iterator>
#include <utility>

namespace havrel {
namespace {

template<class Block>
void append(std::forward_list<Block>& blocks, Block block)
{
    if (!block)
        return;
    auto last = blocks.before_begin();
    while (std::next(last) != blocks.end())
        ++last;
    blocks.insert_after(last, std::move(block));
}

const QVariant& nullObjectAsNil(const QVariant& value)
{
    static const QVariant s_nil;
    return isNullObject(value) ? s_nil : value;
}

} // namespace

std::shared_ptr<MTKObserver> MTKObserver::withTarget(QObject& target, KeyPath keyPath, QObject* owner)
{
    return std::make_shared<MTKObserver>(Passkey{}, target, keyPath, owner);
}

MTKObserver::MTKObserver(Passkey /*key*/, QObject& target, KeyPath keyPath, QObject* owner)
    : PropertyWatcher(keyPath)
    , m_target(&target)
    , m_owner(owner)
{
}

MTKObserver::~MTKObserver() = default;

void MTKObserver::addSettingObservationBlock(SettingBlock block)
{
    append(m_afterSettingBlocks, std::move(block));
}

void MTKObserver::addInsertionObservationBlock(InsertionBlock block)
{
    append(m_afterInsertionBlocks, std::move(block));
}

void MTKObserver::addRemovalObservationBlock(RemovalBlock block)
{
    append(m_afterRemovalBlocks, std::move(block));
}

void MTKObserver::addReplacementObservationBlock(ReplacementBlock block)
{
    append(m_afterReplacementBlocks, std::move(block));
}

void MTKObserver::setAttached(bool attached)
{
    if (attached == m_attached || m_target.isNull())
        return;
    const auto keep = shared_from_this();
    if (attached)
        listen();
    else
        beForgotten();
}

void MTKObserver::listen()
{
    ObservationHub::of(*m_target).add(shared_from_this());
    m_attached = true;
    try {
        if (keyPath().hasSeveralNames())
            m_chain = std::make_unique<KeyPathChain>(*this);
    } catch (...) {
        beForgotten();
        throw;
    }
    if (!m_afterSettingBlocks.empty())
        executeAfterSettingBlocks({}, currentValue());
}

void MTKObserver::beForgotten()
{
    m_attached = false;
    m_chain.reset();
    if (ObservationHub* hub = m_target ? ObservationHub::find(*m_target) : nullptr)
        hub->remove(*this);
    if (ObservationHub* hub = m_owner ? ObservationHub::find(*m_owner) : nullptr)
        hub->disown(*this);
}

QVariant MTKObserver::currentValue() const
{
    if (m_chain)
        return m_chain->value();
    return m_target ? valueAtKeyPath(*m_target, keyPath()) : QVariant();
}

void MTKObserver::changed(const ObservedChange& change)
{
    executeBlocks(change);
}

void MTKObserver::objectGone()
{
    beForgotten();
}

void MTKObserver::observeValueForKeyPath(KeyPath keyPath, const QObject* object, const ObservedChange& change)
{
    if (object && object == m_target && keyPath == name())
        executeBlocks(change);
}

void MTKObserver::executeBlocks(const ObservedChange& change)
{
    if (change.isPrior)
        return;
    const QVariant& oldValue = nullObjectAsNil(change.oldValue);
    const QVariant& newValue = nullObjectAsNil(change.newValue);
    switch (change.kind) {
    case ChangeKind::Setting:
        executeAfterSettingBlocks(oldValue, newValue);
        break;
    case ChangeKind::Insertion:
        executeAfterInsertionBlocks(newValue, change.indexes);
        break;
    case ChangeKind::Removal:
        executeAfterRemovalBlocks(oldValue, change.indexes);
        break;
    case ChangeKind::Replacement:
        executeAfterReplacementBlocks(oldValue, newValue, change.indexes);
        break;
    }
}

void MTKObserver::executeAfterSettingBlocks(const QVariant& oldValue, const QVariant& newValue)
{
    if (oldValue != newValue)
        run(m_afterSettingBlocks, oldValue, newValue);
}

void MTKObserver::executeAfterInsertionBlocks(const QVariant& newValues, const IndexSet& indexes)
{
    run(m_afterInsertionBlocks, newValues, indexes);
}

void MTKObserver::executeAfterRemovalBlocks(const QVariant& oldValues, const IndexSet& indexes)
{
    run(m_afterRemovalBlocks, oldValues, indexes);
}

void MTKObserver::executeAfterReplacementBlocks(const QVariant& oldValues,
                                                const QVariant& newValues,
                                                const IndexSet& indexes)
{
    run(m_afterReplacementBlocks, oldValues, newValues, indexes);
}

template<class Block, class... Arguments>
void MTKObserver::run(const std::forward_list<Block>& blocks, const Arguments&... arguments)
{
    const bool owned = !m_owner.isNull();
    auto left = std::distance(blocks.begin(), blocks.end()); // not those that are added meanwhile
    for (auto block = blocks.begin(); left > 0; ++block, --left) {
        if (m_target.isNull() || (owned && m_owner.isNull()))
            return;
        (*block)(m_owner, m_target, arguments...);
    }
}

} // namespace havrel
