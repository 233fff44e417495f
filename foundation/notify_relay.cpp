// SPDX-License-Identifier: MIT
#include "foundation/notify_relay.h"

#include "foundation/observation_hub.h"
#include "foundation/property_access.h"

#include <QMetaProperty>

#include <utility>

namespace havrel {

NotifyRelay::NotifyRelay(QObject& object, const QMetaProperty& property, KeyPath name, ObservationHub& hub)
    : m_object(object)
    , m_name(name)
    , m_hub(hub)
    , m_value(valueAtKeyPath(object, name))
{
    const QMetaMethod slot = staticMetaObject.method(staticMetaObject.indexOfSlot("relay()"));
    connect(&object, property.notifySignal(), this, slot, Qt::DirectConnection);
}

void NotifyRelay::relay()
{
    const QVariant now = valueAtKeyPath(m_object, m_name);
    const QVariant before = std::exchange(m_value, now);
    if (before != now)
        m_hub.report(m_name, {.kind = ChangeKind::Setting, .oldValue = before, .newValue = now}); // may delete this
}

} // namespace havrel
