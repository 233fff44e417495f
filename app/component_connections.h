// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

namespace havrel {

class HVConnection;

/// The ways to the components that the services need. One that is empty, or answers null, is to a component that cannot
/// be reached.
struct ComponentConnections
{
    std::function<std::shared_ptr<HVConnection>()> monitor{};   ///< which knows the archives
    std::function<std::shared_ptr<HVConnection>()> scheduler{}; ///< which captures
};

/// Those that the process shares, found by the switchboard.
///
/// Threads: the main thread only.
[[nodiscard]] ComponentConnections sharedComponentConnections();

} // namespace havrel
