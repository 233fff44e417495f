// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <sys/types.h>

namespace havrel::switchboard_names {

/// The switchboard of the whole machine.
inline constexpr QLatin1StringView kSystemWideService{"com.havrel.switchboard"};
/// Distributed when a switchboard has started; its object is the name of that one's service.
inline constexpr QLatin1StringView kDidStart{"com.havrel.switchboard.started"};

/// Posted when a component has published, or withdrawn, its endpoint: by kSwitchboard, with its identifier under kID.
inline constexpr QLatin1StringView kEndpointPublished{"SwitchboardEndpointPublished"};
inline constexpr QLatin1StringView kEndpointRedacted{"SwitchboardEndpointRedacted"};
inline constexpr QLatin1StringView kSwitchboard{"Switchboard"};
inline constexpr QLatin1StringView kID{"id"};

/// The switchboard of the user for whom this process works: "com.havrel.switchboard.1000". The same all the time.
///
/// Threads: any thread.
[[nodiscard]] const QString& perUserService();

/// The same for a process with these ids: that of the effective user, unless this is root; then that of the user whom
/// Process has captured.
///
/// Threads: any thread.
[[nodiscard]] QString perUserServiceFor(uid_t effective, uid_t captured);

} // namespace havrel::switchboard_names
