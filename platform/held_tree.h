// SPDX-License-Identifier: MIT
#pragma once

#include "platform/bus_loop.h"
#include "platform/bus_tree.h"

namespace havrel::platform {

/// What is served below a path, as long as it lasts.
///
/// Threads: one thread at a time.
class HeldTree final : public BusHeld
{
public:
    HeldTree(std::weak_ptr<BusLoop> loop, BusTree tree);

    /// \return 0 or an errno value
    [[nodiscard]] int serve(sd_bus* bus);

private:
    static int called(sd_bus_message* message, void* self, sd_bus_error* error);

    const std::weak_ptr<BusLoop> m_loop;
    const std::shared_ptr<const BusTree> m_tree;
    OwnedBusSlot m_slot;
};

} // namespace havrel::platform
