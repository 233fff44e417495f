// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/key_path.h"

#include <QObject>
#include <QVariant>

class QMetaProperty;

namespace havrel {

class ObservationHub;

/// Turns a property's NOTIFY signal, which only says that something changed, into reports with the old and the new
/// value. A signal that comes without a change is not passed on.
///
/// Threads: one thread at a time.
class NotifyRelay : public QObject
{
    Q_OBJECT

public:
    /// \param property one with a NOTIFY signal. \param hub the object's; must outlive the relay.
    NotifyRelay(QObject& object, const QMetaProperty& property, KeyPath name, ObservationHub& hub);

    [[nodiscard]] KeyPath name() const noexcept { return m_name; }

private:
    Q_SLOT void relay();

    QObject& m_object;
    KeyPath m_name;
    ObservationHub& m_hub;
    QVariant m_value; // as it was last seen
};

} // namespace havrel
