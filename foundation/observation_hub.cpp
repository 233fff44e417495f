// SPDX-License-Identifier: MIT
#include "foundation/observation_hub.h"

#include "diagnostics/exception.h"
#include "foundation/deallocator.h"
#include "foundation/dispatch.h"
#include "foundation/notification_center.h"
#include "foundation/notify_relay.h"
#include "foundation/observable.h"
#include "foundation/observer.h"
#include "foundation/property_access.h"

#include <QMetaProperty>

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace havrel {
namespace {

/// The hubs of objects that have no place for one.
class ForeignHubs
{
public:
    static ForeignHubs& shared()
    {
        // Never destroyed: objects may die while the process ends.
        static ForeignHubs* const s_shared = std::make_unique<ForeignHubs>().release();
        return *s_shared;
    }

    ObservationHub* find(const QObject& object) noexcept
    {
        const MutexLock guard(m_lock);
        const auto found = m_hubs.find(&object);
        return found == m_hubs.end() ? nullptr : found->second.get();
    }

    ObservationHub& of(QObject& object)
    {
        const MutexLock guard(m_lock);
        std::unique_ptr<ObservationHub>& hub = m_hubs[&object];
        if (!hub) {
            hub = std::make_unique<ObservationHub>(object);
            QObject::connect(&object, &QObject::destroyed, [](QObject* dying) { shared().end(dying); });
        }
        return *hub;
    }

private:
    void end(const QObject* object)
    {
        std::unique_ptr<ObservationHub> hub; // goes outside the lock, because it runs foreign code
        const MutexLock guard(m_lock);
        if (const auto found = m_hubs.find(object); found != m_hubs.end()) {
            hub = std::move(found->second);
            m_hubs.erase(found);
        }
    }

    Mutex m_lock;
    std::unordered_map<const QObject*, std::unique_ptr<ObservationHub>> m_hubs HAVREL_GUARDED_BY(m_lock);
};

/// Whether \p object calls its own hub when \p property changes.
bool reportsItself(const QObject& object, const QMetaProperty& property)
{
    return qobject_cast<const Observable*>(&object) &&
           property.propertyIndex() >= Observable::staticMetaObject.propertyCount();
}

} // namespace

/// A report under way, on the stack of whoever reports. Knows when the hub is gone.
class ObservationHub::Reporting
{
public:
    explicit Reporting(ObservationHub& hub)
        : m_hub(&hub)
        , m_outer(std::exchange(hub.m_reporting, this))
    {
    }

    ~Reporting()
    {
        if (!m_hub)
            return;
        m_hub->m_reporting = m_outer;
        if (!m_outer && m_hub->m_someRemoved)
            m_hub->forgetRemoved();
    }

    Reporting(const Reporting&) = delete;
    Reporting& operator=(const Reporting&) = delete;
    Reporting(Reporting&&) = delete;
    Reporting& operator=(Reporting&&) = delete;

    [[nodiscard]] bool isHubGone() const noexcept { return !m_hub; }

    static void endAll(Reporting* innermost) noexcept
    {
        for (Reporting* each = innermost; each; each = each->m_outer)
            each->m_hub = nullptr;
    }

private:
    ObservationHub* m_hub;
    Reporting* m_outer;
};

Mutex ObservationHub::s_deallocatorLock;

ObservationHub* ObservationHub::find(const QObject& object) noexcept
{
    if (const auto* observable = qobject_cast<const Observable*>(&object))
        return observable->m_hub.load(std::memory_order_acquire);
    return ForeignHubs::shared().find(object);
}

ObservationHub& ObservationHub::of(QObject& object)
{
    auto* observable = qobject_cast<Observable*>(&object);
    if (!observable)
        return ForeignHubs::shared().of(object);
    if (ObservationHub* hub = observable->m_hub.load(std::memory_order_acquire))
        return *hub;
    auto made = std::make_unique<ObservationHub>(object);
    ObservationHub* present = nullptr;
    if (!observable->m_hub.compare_exchange_strong(present, made.get(), std::memory_order_acq_rel))
        return *present; // another thread was faster
    return *made.release();
}

ObservationHub::ObservationHub(QObject& object)
    : m_object(object)
{
}

ObservationHub::~ObservationHub()
{
    Reporting::endAll(m_reporting);
    // Foreign code comes last, and what the blocks hold goes after it: no block may reach an object without its class.
    const auto registrations = takeNotificationRegistrations();
    for (const NotificationRegistration& registration : registrations)
        registration.silence();
    const auto watchers = std::exchange(m_watchers, {});
    const auto owned = std::exchange(m_owned, {});
    for (const auto& observer : owned)
        observer->detach();
    for (const auto& watcher : watchers) {
        if (watcher && watcher->asObserver())
            watcher->objectGone();
    }
    m_deallocator.reset();
    for (const auto& watcher : watchers) {
        if (watcher && !watcher->asObserver())
            runAtWall([&] { watcher->objectGone(); });
    }
}

MTKDeallocator& ObservationHub::deallocator()
{
    const MutexLock guard(s_deallocatorLock);
    if (!m_deallocator)
        m_deallocator = std::make_unique<MTKDeallocator>(&m_object);
    return *m_deallocator;
}

bool ObservationHub::isObserved(KeyPath name) const noexcept
{
    return std::any_of(m_watchers.begin(), m_watchers.end(), [name](const auto& watcher) {
        return watcher && watcher->name() == name;
    });
}

void ObservationHub::report(KeyPath name, const ObservedChange& change)
{
    const Reporting reporting(*this);
    const std::size_t count = m_watchers.size();
    for (std::size_t i = 0; i < count && !reporting.isHubGone(); ++i) {
        if (const auto watcher = m_watchers[i]; watcher && watcher->name() == name)
            watcher->changed(change);
    }
}

void ObservationHub::add(std::shared_ptr<PropertyWatcher> watcher)
{
    if (!watcher->name().hasSeveralNames())
        relayIfNeeded(watcher->name());
    m_watchers.push_back(std::move(watcher));
}

void ObservationHub::remove(const PropertyWatcher& watcher)
{
    const auto found = std::find_if(
        m_watchers.begin(), m_watchers.end(), [&watcher](const auto& each) { return each.get() == &watcher; });
    if (found == m_watchers.end())
        return;
    const auto keep = std::exchange(*found, nullptr);
    m_someRemoved = true;
    if (!m_reporting)
        forgetRemoved();
}

void ObservationHub::forgetRemoved()
{
    std::erase(m_watchers, nullptr);
    std::erase_if(m_relays, [this](const auto& relay) { return !isObserved(relay->name()); });
    m_someRemoved = false;
}

void ObservationHub::relayIfNeeded(KeyPath name)
{
    const QMetaProperty property = propertyNamed(m_object, name);
    if (property.isConstant() || reportsItself(m_object, property))
        return;
    if (std::any_of(m_relays.begin(), m_relays.end(), [name](const auto& relay) { return relay->name() == name; }))
        return;
    if (!property.hasNotifySignal())
        propertyBug(QStringLiteral("property does not tell of its changes"), m_object, name).raise();
    m_relays.push_back(std::make_unique<NotifyRelay>(m_object, property, name, *this));
}

std::shared_ptr<MTKObserver> ObservationHub::observer(KeyPath keyPath, const QObject* owner) const
{
    for (const auto& watcher : m_watchers) {
        MTKObserver* const observer = watcher && watcher->name() == keyPath ? watcher->asObserver() : nullptr;
        if (observer && observer->owner() == owner)
            return {watcher, observer};
    }
    return nullptr;
}

std::vector<std::shared_ptr<MTKObserver>> ObservationHub::observers() const
{
    std::vector<std::shared_ptr<MTKObserver>> result;
    for (const auto& watcher : m_watchers) {
        if (MTKObserver* const observer = watcher ? watcher->asObserver() : nullptr)
            result.emplace_back(watcher, observer);
    }
    return result;
}

void ObservationHub::own(std::shared_ptr<MTKObserver> observer)
{
    m_owned.push_back(std::move(observer));
}

void ObservationHub::disown(const MTKObserver& observer)
{
    std::erase_if(m_owned, [&observer](const auto& each) { return each.get() == &observer; });
}

void ObservationHub::own(NotificationRegistration registration)
{
    std::erase_if(m_registrations, [](const auto& each) { return !each.isActive(); });
    m_registrations.push_back(std::move(registration));
}

std::vector<NotificationRegistration> ObservationHub::takeNotificationRegistrations(const QObject* sender)
{
    std::vector<NotificationRegistration> left;
    std::vector<NotificationRegistration> taken;
    for (NotificationRegistration& each : m_registrations)
        (sender && !each.isAbout(*sender) ? left : taken).push_back(std::move(each));
    m_registrations.swap(left);
    return taken;
}

void ObservationHub::internalRemoveAllObservations()
{
    const auto registrations = takeNotificationRegistrations(); // what all these hold goes last: it may be the object
    const auto all = observers();
    for (const auto& observer : all)
        observer->detach();
}

} // namespace havrel
