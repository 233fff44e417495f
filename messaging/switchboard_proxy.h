// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/component_proxy.h"
#include "messaging/xpc_endpoint.h"

#include <QString>

#include <functional>
#include <optional>

#include <sys/types.h>

namespace havrel {

/// What this program says to the switchboard (protocols::switchboardingPrivate).
///
/// Threads: any thread.
class SwitchboardProxy : public ComponentProxy
{
public:
    using ComponentProxy::ComponentProxy;

    /// \p reply gets, on the reply queue, where the component that has published \p identifier listens; none when
    /// nobody has. \selector queryEndpointForIdentifier:withReply:
    void queryEndpoint(const QString& identifier,
                       std::function<void(const std::optional<XPCEndpoint>& endpoint)> reply) const;
    /// For whom this process works. \selector setUser:
    void setUser(uid_t user) const;
    /// Asks for notifications of that name, to be forwarded to \p observer. The switchboard keeps one registration an
    /// observer, the latest. \selector addProxyObserver:forName:source:
    /// \param source who posts them; none: whoever
    void addProxyObserver(const QString& observer, const QString& name, const std::optional<QString>& source) const;
    void removeObserver(const QString& observer) const; ///< \selector removeObserver:
    void removeAllObservers() const;                    ///< \selector removeAllObservers
};

} // namespace havrel
