// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/connection.h"

namespace havrel {

/// A connection to a service by its name.
///
/// Threads: any thread.
class HVMachServiceConnection : public HVConnection
{
public:
    /// \selector initWithMachServiceName:options:protocol:
    HVMachServiceConnection(const QString& name, quint32 options, const Protocol& protocol);
    /// \param options xpc_options. \selector initWithMachServiceName:options:interface:
    HVMachServiceConnection(const QString& name, quint32 options, XPCInterfacePtr interface);
    ~HVMachServiceConnection() override;
    HVMachServiceConnection(const HVMachServiceConnection&) = delete;
    HVMachServiceConnection& operator=(const HVMachServiceConnection&) = delete;
    HVMachServiceConnection(HVMachServiceConnection&&) = delete;
    HVMachServiceConnection& operator=(HVMachServiceConnection&&) = delete;

    /// The name that it was made with. \selector identifier
    [[nodiscard]] QString identifier() const override;
    /// The name of the service that it is connected to; while disconnected, the one it was made with.
    /// \selector machServiceName
    [[nodiscard]] QString machServiceName() const;

protected:
    [[nodiscard]] XPCConnectionPtr makeConnection() override; ///< \selector makeConnection

private:
    const QString m_configuredServiceName;
};

} // namespace havrel
