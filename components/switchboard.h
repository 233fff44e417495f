// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/xpc_connection.h"

#include <QString>

#include <functional>
#include <memory>

namespace havrel {

class SwitchboardBoard;

/// Which switchboard it is.
struct SwitchboardSettings
{
    QString serviceName;                  ///< "com.havrel.switchboard.1000"
    quint32 options = xpc_options::kNone; ///< kPrivileged: that of the whole machine

    /// Called with an identifier that somebody asks for and nobody has published, on the reply queue of the one who
    /// asks, who waits: may start the component, and returns when that has published its endpoint, or will not.
    std::function<void(const QString& identifier)> startComponent{};
};

/// Where the components of the product find each other. It keeps their endpoints, each until its publisher redacts it
/// or goes, and forwards notifications to those who asked for them by name and source. To all that comes and goes it
/// says so, with notifications of its own ("SwitchboardEndpointPublished", "SwitchboardEndpointRedacted").
///
/// - Who may connect: processes of the switchboard's own user; to that of the whole machine, everybody.
/// - Who may publish: processes of the switchboard's own user. What others publish, and notifications that pretend to
///   be the switchboard's, is logged and dropped.
/// - Who hears what: everybody hears the switchboard and processes of its user; others hear each other only within one
///   user.
///
/// A component that hangs holds nobody up: what is for it waits, up to the limit of its connection. All observers hear
/// notifications in one and the same order.
///
/// Its end leaves connections alone that it has accepted; they end with their other ends.
///
/// Threads: one thread at a time.
class Switchboard
{
public:
    Switchboard(XPCTransport& transport, SwitchboardSettings settings);
    ~Switchboard();
    Switchboard(const Switchboard&) = delete;
    Switchboard& operator=(const Switchboard&) = delete;
    Switchboard(Switchboard&&) = delete;
    Switchboard& operator=(Switchboard&&) = delete;

    /// Serves its name, then distributes that it has started ("com.havrel.switchboard.started").
    ///
    /// \return 0 or an errno value: EEXIST when another process serves the name, ...
    [[nodiscard]] int start();

private:
    XPCTransport& m_transport;
    const QString m_serviceName;
    const std::shared_ptr<SwitchboardBoard> m_board;
    const std::unique_ptr<XPCListener> m_listener;
};

} // namespace havrel
