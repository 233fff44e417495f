// SPDX-License-Identifier: MIT
#pragma once

#include "components/component.h"
#include "components/endpoint_registry.h"

#include <memory>

#include <sys/types.h>

namespace havrel {

class SwitchboardBoard;

/// What a switchboard shows to one connection (protocols::switchboardingPrivate).
///
/// Threads: messages on the connection's reply queue, the rest on any thread.
class SwitchboardClient final : public Component
{
public:
    /// \param user whom the message bus vouches for
    SwitchboardClient(std::shared_ptr<SwitchboardBoard> board, const XPCConnectionPtr& connection, uid_t user);

    [[nodiscard]] EndpointRegistry::Client number() const noexcept { return m_number; }

private:
    void handleEndpoints();
    void handleObservers();
    void publish(const QVariantList& values);
    void query(const XPCMessage& message);
    void post(const QVariantList& values);

    const std::shared_ptr<SwitchboardBoard> m_board;
    const uid_t m_user;
    const EndpointRegistry::Client m_number;
};

} // namespace havrel
