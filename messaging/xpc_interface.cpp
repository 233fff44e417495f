// SPDX-License-Identifier: MIT
#include "messaging/xpc_interface.h"

namespace havrel {
namespace {

template<class Map>
typename Map::mapped_type found(const Map& map, const XPCInterface::ReplyArgument& argument)
{
    const auto at = map.find(argument);
    return at == map.end() ? typename Map::mapped_type() : at->second;
}

} // namespace

QSet<QByteArray> XPCInterface::classesFor(const ReplyArgument& argument) const
{
    return found(m_classes, argument);
}

void XPCInterface::setClasses(const QSet<QByteArray>& classes, const ReplyArgument& argument)
{
    m_classes[argument] = classes;
}

XPCInterfacePtr XPCInterface::interfaceFor(const ReplyArgument& argument) const
{
    return found(m_interfaces, argument);
}

void XPCInterface::setInterface(XPCInterfacePtr interface, const ReplyArgument& argument)
{
    m_interfaces[argument] = std::move(interface);
}

} // namespace havrel
