// SPDX-License-Identifier: MIT
#include "messaging/mach_service_connection.h"

#include <utility>

namespace havrel {

HVMachServiceConnection::HVMachServiceConnection(const QString& name, quint32 options, const Protocol& protocol)
    : HVMachServiceConnection(name, options, std::make_shared<const XPCInterface>(protocol))
{
}

HVMachServiceConnection::HVMachServiceConnection(const QString& name, quint32 options, XPCInterfacePtr interface)
    : HVConnection(options, std::move(interface))
    , m_configuredServiceName(name)
{
}

HVMachServiceConnection::~HVMachServiceConnection()
{
    dealloc();
}

QString HVMachServiceConnection::identifier() const
{
    return m_configuredServiceName;
}

QString HVMachServiceConnection::machServiceName() const
{
    const MutexLock guard(m_connectionLock);
    return liveConnection() ? liveConnection()->serviceName() : m_configuredServiceName;
}

XPCConnectionPtr HVMachServiceConnection::makeConnection()
{
    return XPCTransport::shared().connectionToService(m_configuredServiceName, connectionOptions());
}

} // namespace havrel
