// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <chrono>

namespace havrel {

class XPCTransport;

/// The name under which the message bus can start the component that publishes \p identifier: "com.havrel.Scheduler"
/// for "com.havrel.scheduler". Null for one that it cannot start.
///
/// Threads: any thread.
[[nodiscard]] QString starterOf(const QString& identifier);

/// How long a component may take to start; whoever asks for it waits as long. \source callers of the message bus wait
/// 25 seconds unless they say otherwise
inline constexpr std::chrono::seconds kLongestStart{25};

/// Has the bus start that component, if it can, and waits until it has published its endpoint, has failed to start, or
/// has not done so within \p limit, because it hangs. What goes wrong is logged.
///
/// Threads: any thread but the main one, and none of that component's connections.
void startComponent(XPCTransport& transport,
                    const QString& identifier,
                    std::chrono::milliseconds limit = kLongestStart);

} // namespace havrel
