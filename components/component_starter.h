// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace havrel {

class XPCTransport;

/// The name under which the message bus can start the component that publishes \p identifier: "com.havrel.Scheduler"
/// for "com.havrel.scheduler". Null for one that it cannot start.
///
/// Threads: any thread.
[[nodiscard]] QString starterOf(const QString& identifier);

/// Has the bus start that component, if it can, and waits until it has published its endpoint, or has failed to start.
///
/// Threads: any thread but the main one, and none of that component's connections.
void startComponent(XPCTransport& transport, const QString& identifier);

} // namespace havrel
