// SPDX-License-Identifier: MIT
#include "platform/connected_applications.h"

#include "platform/bus_connection.h"

namespace havrel::platform {
namespace {

constexpr const char* kBus = "org.freedesktop.DBus";
constexpr std::chrono::seconds kLimit{5}; // the bus itself answers at once, or is stopped

QStringList textsOf(const QByteArrayList& uris)
{
    QStringList texts;
    for (const QByteArray& each : uris)
        texts.append(QString::fromUtf8(each));
    return texts;
}

BusVariant structureOf(const OpenRequest::Parameters& parameters)
{
    QVariantList items;
    for (const QByteArray& each : parameters.items)
        items.append(each);
    return {"(iaay)", QVariantList{parameters.number, QVariant(items)}};
}

} // namespace

QByteArray objectPathOfApplication(const QByteArray& id)
{
    return '/' + QByteArray(id).replace('.', '/').replace('-', '_');
}

QVariant ConnectedApplications::askBus(const char* member, const BusBody& body)
{
    const BusReply reply = m_bus.callAndWait({.destination = kBus,
                                              .path = "/org/freedesktop/DBus",
                                              .interface = kBus,
                                              .member = member,
                                              .body = body,
                                              .limit = kLimit});
    return reply.error == 0 ? reply.values.value(0) : QVariant();
}

int ConnectedApplications::send(const QByteArray& id, const char* member, const BusBody& body)
{
    return m_bus.send({.destination = id,
                       .path = objectPathOfApplication(id),
                       .interface = "org.freedesktop.Application",
                       .member = member,
                       .body = body});
}

bool ConnectedApplications::canReach(const QByteArray& id)
{
    const QString name = QString::fromUtf8(id);
    return askBus("NameHasOwner", {"s", {name}}).toBool() ||
           askBus("ListActivatableNames", {}).toStringList().contains(name);
}

int ConnectedApplications::activate(const QByteArray& id)
{
    return send(id, "Activate", {"a{sv}", {QVariantMap()}});
}

int ConnectedApplications::open(const QByteArray& id, const OpenRequest& request)
{
    const QVariantMap platformData{
        {QStringLiteral("com.havrel.parameters"), QVariant::fromValue(structureOf(request.parameters))}};
    return send(id, "Open", {"asa{sv}", {textsOf(request.uris), platformData}});
}

} // namespace havrel::platform
