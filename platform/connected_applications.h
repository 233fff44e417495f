// SPDX-License-Identifier: MIT
#pragma once

#include "platform/applications.h"

namespace havrel::platform {

class BusConnection;
struct BusBody;

/// Applications on the bus of a connection. None can be reached where that is not open.
///
/// Threads: the main thread only.
class ConnectedApplications final : public BusApplications
{
public:
    /// \param bus must live longer.
    explicit ConnectedApplications(BusConnection& bus)
        : m_bus(bus)
    {
    }

    [[nodiscard]] bool canReach(const QByteArray& id) override;
    [[nodiscard]] int activate(const QByteArray& id) override;
    [[nodiscard]] int open(const QByteArray& id, const OpenRequest& request) override;

private:
    [[nodiscard]] QVariant askBus(const char* member, const BusBody& body);
    [[nodiscard]] int send(const QByteArray& id, const char* member, const BusBody& body);

    BusConnection& m_bus;
};

/// The object path at which the application \p id is served: "/com/havrel/client" for "com.havrel.client".
///
/// \source Desktop Entry Specification 1.5, "D-Bus Activation"
///
/// Threads: any thread.
[[nodiscard]] QByteArray objectPathOfApplication(const QByteArray& id);

} // namespace havrel::platform
