// SPDX-License-Identifier: MIT
#pragma once

#include "platform/applications.h"

namespace havrel::platform {

class BusConnection;

/// Applications on a message bus, by the interface org.freedesktop.Application.
///
/// \source Desktop Entry Specification 1.5, "D-Bus Activation"
///
/// Threads: the main thread only.
class ConnectedBusApplications final : public BusApplications
{
public:
    /// \param bus must live longer. One that is not open reaches nobody.
    explicit ConnectedBusApplications(BusConnection& bus)
        : m_bus(bus)
    {
    }

    [[nodiscard]] bool canReach(const QByteArray& id) override;
    [[nodiscard]] int activate(const QByteArray& id) override;
    [[nodiscard]] int open(const QByteArray& id, const OpenRequest& request) override;

private:
    BusConnection& m_bus;
};

} // namespace havrel::platform
