// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/connection.h"

namespace havrel {

/// A connection to a component that publishes its endpoint in the switchboard under a name. To connect, it asks the
/// shared switchboard connection and waits: so not on the reply queue of that.
///
/// Threads: any thread.
class HVPublishedConnection : public HVConnection
{
public:
    /// \selector initWithSwitchboardName:options:protocol:
    HVPublishedConnection(const QString& name, quint32 options, const Protocol& protocol);
    /// \param options xpc_options. \selector initWithSwitchboardName:options:interface:
    HVPublishedConnection(const QString& name, quint32 options, XPCInterfacePtr interface);
    ~HVPublishedConnection() override;
    HVPublishedConnection(const HVPublishedConnection&) = delete;
    HVPublishedConnection& operator=(const HVPublishedConnection&) = delete;
    HVPublishedConnection(HVPublishedConnection&&) = delete;
    HVPublishedConnection& operator=(HVPublishedConnection&&) = delete;

    [[nodiscard]] const QString& publishedName() const noexcept { return m_publishedName; } ///< \selector publishedName
    /// The published name. \selector identifier
    [[nodiscard]] QString identifier() const override;

protected:
    /// None when the switchboard cannot be reached, or nobody has published the name. \selector makeConnection
    [[nodiscard]] XPCConnectionPtr makeConnection() override;

private:
    const QString m_publishedName;
};

} // namespace havrel
