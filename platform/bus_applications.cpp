// SPDX-License-Identifier: MIT
#include "platform/bus_applications.h"

#include "platform/bus_connection.h"

#include <chrono>

namespace havrel::platform {
namespace {

/// A bus answers in a fraction of a millisecond; one that does not is treated as none.
constexpr std::chrono::seconds kPatience(2);

BusCall callOfBus(const char* member, const BusBody& body)
{
    return {.destination = "org.freedesktop.DBus",
            .path = "/org/freedesktop/DBus",
            .interface = "org.freedesktop.DBus",
            .member = member,
            .body = body,
            .limit = kPatience};
}

BusCall callOfApplication(const QByteArray& id, const char* member, const BusBody& body)
{
    QByteArray path = '/' + id;
    path.replace('.', '/').replace('-', '_');
    return {
        .destination = id, .path = path, .interface = "org.freedesktop.Application", .member = member, .body = body};
}

QVariantList listOf(const QByteArrayList& items)
{
    return {items.cbegin(), items.cend()};
}

QVariantMap platformDataOf(const OpenRequest::Parameters& parameters)
{
    const QVariantList structure{parameters.number, QVariant(listOf(parameters.items))};
    return {{QStringLiteral("com.havrel.parameters"), QVariant::fromValue(BusVariant{"(iaay)", structure})}};
}

QStringList textsOf(const QByteArrayList& uris)
{
    QStringList texts;
    for (const QByteArray& each : uris)
        texts << QString::fromLatin1(each); // encoded: plain ASCII
    return texts;
}

} // namespace

bool ConnectedBusApplications::canReach(const QByteArray& id)
{
    const QString name = QString::fromLatin1(id);
    const BusReply owned = m_bus.callAndWait(callOfBus("NameHasOwner", {"s", {name}}));
    if (owned.error != 0)
        return false;
    if (owned.values.value(0).toBool())
        return true;
    const BusReply activatable = m_bus.callAndWait(callOfBus("ListActivatableNames", {}));
    return activatable.error == 0 && activatable.values.value(0).toStringList().contains(name);
}

int ConnectedBusApplications::activate(const QByteArray& id)
{
    return m_bus.send(callOfApplication(id, "Activate", {"a{sv}", {QVariantMap()}}));
}

int ConnectedBusApplications::open(const QByteArray& id, const OpenRequest& request)
{
    const BusBody body{"asa{sv}", {textsOf(request.uris), platformDataOf(request.parameters)}};
    return m_bus.send(callOfApplication(id, "Open", body));
}

} // namespace havrel::platform
