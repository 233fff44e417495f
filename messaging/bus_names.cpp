// SPDX-License-Identifier: MIT
#include "messaging/bus_names.h"

#include <QByteArrayList>

namespace havrel::bus_names {
namespace {

constexpr const char* kPrefix = "com.havrel.";
constexpr const char* kEndpoints = "/com/havrel/endpoint";
constexpr const char* kSystemEndpoints = "/com/havrel/system/endpoint";

bool beginsWithDigit(const QByteArray& element)
{
    return !element.isEmpty() && element[0] >= '0' && element[0] <= '9';
}

} // namespace

QByteArray ofService(const QString& logicalName)
{
    QByteArrayList elements = logicalName.toUtf8().split('.');
    for (QByteArray& each : elements)
        if (beginsWithDigit(each))
            each.prepend('_');
    return elements.join('.');
}

QByteArray ofStarter(const QString& logicalName)
{
    QByteArrayList elements = logicalName.toUtf8().split('.');
    if (elements.size() < 3 || !beginsWithDigit(elements.takeLast()))
        return {};
    elements.last() = elements.constLast().left(1).toUpper() + elements.constLast().mid(1);
    return elements.join('.');
}

QByteArray pathOfService(const QString& logicalName)
{
    return QByteArray(kConnections) + '/' + ofService(logicalName).replace('.', '_').replace('-', '_');
}

QByteArray endpointsOn(platform::BusKind kind)
{
    return kind == platform::BusKind::System ? kSystemEndpoints : kEndpoints;
}

platform::BusKind busOfEndpoint(const QByteArray& pathPrefix)
{
    const bool isSystem = pathPrefix.startsWith(QByteArray(kSystemEndpoints) + '/');
    return isSystem ? platform::BusKind::System : platform::BusKind::Session;
}

QByteArray ofProtocol(const QByteArray& protocolName)
{
    return kPrefix + protocolName;
}

std::optional<QByteArray> protocolOf(const QByteArray& interface)
{
    return interface.startsWith(kPrefix) ? std::optional(interface.sliced(QByteArrayView(kPrefix).size()))
                                         : std::nullopt;
}

QByteArray ofMessage(const QByteArray& keywordName)
{
    return QByteArray(keywordName).replace(':', '_');
}

QByteArray keywordNameOf(const QByteArray& member)
{
    return QByteArray(member).replace('_', ':');
}

} // namespace havrel::bus_names
