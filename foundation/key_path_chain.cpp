// SPDX-License-Identifier: MIT
#include "foundation/key_path_chain.h"

#include "foundation/observation_hub.h"
#include "foundation/observer.h"
#include "foundation/property_access.h"

#include <QPointer>
#include <QVariantList>

#include <utility>

namespace havrel {

/// One object on the way, and the name under which it holds the next.
class KeyPathChain::Link final : public PropertyWatcher
{
public:
    Link(KeyPathChain& chain, std::size_t index, QObject& object)
        : PropertyWatcher(chain.m_names[index])
        , m_chain(&chain)
        , m_index(index)
        , m_object(&object)
    {
    }

    [[nodiscard]] std::size_t index() const noexcept { return m_index; }
    [[nodiscard]] QVariant value() const { return m_object ? valueAtKeyPath(*m_object, name()) : QVariant(); }

    void leave()
    {
        m_chain = nullptr;
        if (ObservationHub* hub = m_object ? ObservationHub::find(*m_object) : nullptr)
            hub->remove(*this);
    }

    void changed(const ObservedChange& change) override
    {
        if (m_chain)
            m_chain->linkChanged(*this, change);
    }

    void objectGone() override
    {
        if (m_chain)
            m_chain->linkGone(*this);
    }

private:
    KeyPathChain* m_chain; // null once the chain goes another way
    std::size_t m_index;
    QPointer<QObject> m_object;
};

KeyPathChain::KeyPathChain(MTKObserver& observer)
    : m_observer(observer)
    , m_names(observer.keyPath().names())
{
    try {
        follow(observer.target());
    } catch (...) {
        cut(0);
        throw;
    }
}

KeyPathChain::~KeyPathChain()
{
    cut(0);
}

void KeyPathChain::follow(QObject* object)
{
    QVariantList holders; // a getter may hand out the only reference to a shared object
    m_value = QVariant();
    while (object) {
        const auto link = std::make_shared<Link>(*this, m_links.size(), *object);
        ObservationHub::of(*object).add(link);
        m_links.push_back(link);
        const QVariant value = link->value();
        if (m_links.size() == m_names.size()) {
            m_value = value;
            return;
        }
        object = objectIn(value);
        holders.push_back(value);
    }
}

void KeyPathChain::cut(std::size_t from)
{
    while (m_links.size() > from) {
        const std::shared_ptr<Link> link = std::move(m_links.back());
        m_links.pop_back();
        link->leave();
    }
}

void KeyPathChain::linkChanged(const Link& link, const ObservedChange& change)
{
    // The property is read again, because a block that ran before may have changed it once more.
    if (link.index() + 1 == m_names.size()) {
        m_value = link.value();
        deliver(change);
        return;
    }
    const QVariant before = m_value;
    cut(link.index() + 1);
    follow(objectIn(link.value()));
    deliver({.kind = ChangeKind::Setting, .oldValue = before, .newValue = m_value});
}

void KeyPathChain::linkGone(const Link& link)
{
    if (link.index() == 0)
        return; // the observer itself hears of its target's death
    const QVariant before = std::exchange(m_value, QVariant());
    cut(link.index());
    deliver({.kind = ChangeKind::Setting, .oldValue = before, .newValue = {}});
}

void KeyPathChain::deliver(const ObservedChange& change)
{
    const auto keep = m_observer.shared_from_this(); // a block may end the observation, and this chain with it
    m_observer.changed(change);
}

} // namespace havrel
