// SPDX-License-Identifier: MIT
#include "messaging/interface_description.h"

#include "messaging/bus_names.h"
#include "messaging/protocol.h"

namespace havrel {
namespace {

constexpr const char* kHeader =
    "<!DOCTYPE node PUBLIC \"-//freedesktop//DTD D-BUS Object Introspection 1.0//EN\"\n"
    "                      \"http://www.freedesktop.org/standards/dbus/1.0/introspect.dtd\">\n";
constexpr const char* kLicence = "<!-- SPDX-License-Identifier: MIT -->\n";

QByteArray argument(const QByteArray& name, const QByteArray& type, const char* direction)
{
    return "      <arg name=\"" + name + "\" type=\"" + type + "\" direction=\"" + direction + "\"/>\n";
}

/// Arguments are named by their keywords.
QByteArray arguments(const ProtocolMessage& message)
{
    const QByteArrayList keywords = message.keywordName.split(':');
    QByteArray result;
    for (qsizetype i = 0; i < message.takes.size(); ++i)
        result += argument(keywords[i], message.takes[i], "in");
    if (!message.answers)
        return result + "      <annotation name=\"org.freedesktop.DBus.Method.NoReply\" value=\"true\"/>\n";
    for (const QByteArray& type : *message.answers)
        result += argument(keywords[message.takes.size()], type, "out");
    return result;
}

QByteArray method(const ProtocolMessage& message)
{
    const QByteArray name = "    <method name=\"" + bus_names::ofMessage(message.keywordName) + '"';
    const QByteArray inside = arguments(message);
    return inside.isEmpty() ? name + "/>\n" : name + ">\n" + inside + "    </method>\n";
}

QByteArray interface(const Protocol& protocol)
{
    QByteArray result = "  <interface name=\"" + bus_names::ofProtocol(protocol.name()) + "\">\n";
    for (const Protocol* each : protocol.adopted())
        result += "    <!-- objects that show it also show " + bus_names::ofProtocol(each->name()) + " -->\n";
    for (const ProtocolMessage& each : protocol.messages())
        result += method(each);
    return result + "  </interface>\n";
}

QByteArray interfaces(const Protocol& protocol)
{
    QByteArray result;
    for (const Protocol* each : protocol.adopted())
        result += interfaces(*each);
    return result + interface(protocol);
}

} // namespace

QByteArray interfaceDescriptionOf(const Protocol& protocol)
{
    return QByteArray(kHeader) + kLicence + "<node>\n" + interface(protocol) + "</node>\n";
}

QByteArray introspectionOf(const Protocol& protocol)
{
    return QByteArray(kHeader) + "<node>\n" + interfaces(protocol) + "</node>\n";
}

} // namespace havrel
