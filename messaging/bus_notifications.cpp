// SPDX-License-Identifier: MIT
#include "messaging/bus_notifications.h"

#include "foundation/dispatch.h"
#include "foundation/process.h"
#include "messaging/bus_router.h"
#include "messaging/buses.h"
#include "platform/identity.h"
#include "platform/random.h"

#include <algorithm>

namespace havrel {
namespace {

using platform::BusKind;

constexpr const char* kPath = "/com/havrel/Notifications";
constexpr const char* kInterface = "com.havrel.Notifications";
constexpr const char* kPosted = "posted";
constexpr const char* kSignature = "sass"; // name, object or none, mark
constexpr std::size_t kRememberedMarks = 64;
constexpr BusKind kBuses[] = {BusKind::Session, BusKind::System};

/// Texts of a match rule stand in single quotes; one inside ends them, is escaped, and begins them again.
/// \source the message bus specification, "Match Rules"
QByteArray quoted(const QString& text)
{
    return '\'' + text.toUtf8().replace('\'', "'\\''") + '\'';
}

QByteArray ruleFor(const QString& name)
{
    return QByteArray("type='signal',interface='") + kInterface + "',member='" + kPosted + "',arg0=" + quoted(name);
}

bool isHeeded(uid_t user)
{
    return user == 0 || user == platform::identity().effectiveUser() || user == Process::userID();
}

QString newMark()
{
    return QString::number(platform::random32(), 16) + QString::number(platform::random32(), 16);
}

} // namespace

BusNotifications::BusNotifications(std::shared_ptr<Buses> buses)
    : m_buses(std::move(buses))
{
}

void BusNotifications::post(const QString& name, const QString& object)
{
    const QStringList objects = object.isNull() ? QStringList() : QStringList{object};
    const platform::BusBroadcast signal{
        .path = kPath, .interface = kInterface, .member = kPosted, .body = {kSignature, {name, objects, newMark()}}};
    for (const BusKind kind : kBuses) {
        int error = 0;
        if (const auto router = m_buses->router(kind, error))
            (void)router->bus().broadcast(signal);
    }
}

std::shared_ptr<void> BusNotifications::addObserver(const QString& name, Block block)
{
    const auto observer = std::make_shared<Observer>(Observer{name, std::move(block)});
    bool isFirst = false;
    {
        const MutexLock guard(m_lock);
        std::erase_if(m_observers, [](const auto& each) { return each.expired(); });
        m_observers.push_back(observer);
        isFirst = m_names.insert(name).second;
    }
    for (const BusKind kind : kBuses) {
        int error = 0;
        const auto router = m_buses->router(kind, error); // a new one asks for it by itself, which does no harm
        if (router && isFirst)
            match(kind, *router, name);
    }
    return observer;
}

void BusNotifications::opened(BusKind kind, BusRouter& router)
{
    std::set<QString> names;
    {
        const MutexLock guard(m_lock);
        names = m_names;
    }
    for (const QString& each : names)
        match(kind, router, each);
}

void BusNotifications::match(BusKind kind, BusRouter& router, const QString& name)
{
    platform::BusRegistration registration; // what it replaces ends without the lock
    const auto caught = [weak = weak_from_this(), kind, from = router.weak_from_this()](const auto& signal) {
        const auto self = weak.lock();
        const auto bus = from.lock();
        if (self && bus)
            self->caught(kind, *bus, signal);
    };
    if (router.bus().match(ruleFor(name), caught, registration) != 0)
        return;
    const MutexLock guard(m_lock);
    std::swap(m_matches[{kind, name}], registration);
}

bool BusNotifications::isNew(const QString& mark)
{
    if (mark.isEmpty())
        return true;
    if (std::find(m_marks.begin(), m_marks.end(), mark) != m_marks.end())
        return false;
    if (m_marks.size() == kRememberedMarks)
        m_marks.erase(m_marks.begin());
    m_marks.push_back(mark);
    return true;
}

/// On the event thread, where the bus's answers come in order, so notifications stay in theirs.
void BusNotifications::caught(BusKind kind, BusRouter& router, const platform::BusSignal& signal)
{
    if (kind == BusKind::Session)
        return arrived(signal.values);
    router.bus().userOf(signal.sender, [weak = weak_from_this(), values = signal.values](int error, uid_t user) {
        const auto self = weak.lock();
        if (self && error == 0 && isHeeded(user))
            self->arrived(values);
    });
}

/// A signal of any shape: whoever is on the bus may send one.
void BusNotifications::arrived(const QVariantList& values)
{
    const QString name = values.value(0).toString();
    const QString object = values.value(1).toStringList().value(0);
    const MutexLock guard(m_lock);
    if (!isNew(values.value(2).toString()))
        return;
    for (const auto& weak : m_observers)
        if (const auto each = weak.lock(); each && each->name == name)
            onMainQueue([weak, object] {
                if (const auto observer = weak.lock())
                    observer->block(object);
            });
}

} // namespace havrel
