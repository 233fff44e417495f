// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/local_observer.h"
#include "messaging/mach_service_connection.h"
#include "messaging/switchboard_proxy.h"

#include <functional>
#include <memory>
#include <optional>

namespace havrel {

class SwitchboardSubscriber;

/// What is to be called when a component comes and goes.
struct EndpointHandlers
{
    std::function<void()> isPublished{}; ///< empty: nobody wants to know
    std::function<void()> isRedacted{};
};

/// The connection to the switchboard: that of the user, else that of the whole machine. Observers of the switchboard's
/// notifications may be registered whether or not it can be reached; each connection has all of them.
///
/// Blocks of observers and handlers of endpoints run on the connection's reply queue: there they may send, but must not
/// wait for the switchboard, as connecting to a component does.
///
/// Threads: any thread.
class HVSwitchboardConnection : public HVMachServiceConnection
{
public:
    /// To the switchboard of the user. \selector init
    HVSwitchboardConnection();
    ~HVSwitchboardConnection() override;
    HVSwitchboardConnection(const HVSwitchboardConnection&) = delete;
    HVSwitchboardConnection& operator=(const HVSwitchboardConnection&) = delete;
    HVSwitchboardConnection(HVSwitchboardConnection&&) = delete;
    HVSwitchboardConnection& operator=(HVSwitchboardConnection&&) = delete;

    /// Connects if needed; nobody when that fails. \selector switchboardProxy
    [[nodiscard]] SwitchboardProxy switchboardProxy();

    // ---- notifications that the switchboard relays. Each connects if needed.

    /// Calls \p block for each notification of that name that \p source (none: whoever) posts. Replaces the observer
    /// of the same identifier.
    ///
    /// \param identifier none: one of its own, so that it goes only by prefix, or with all
    /// \selector addObserver:forName:source:usingBlock:
    void addObserver(const std::optional<QString>& identifier,
                     const QString& name,
                     const std::optional<QString>& source,
                     LocalObserver::Block block);
    /// From whoever posts it. \selector addObserver:forName:usingBlock:
    void addObserver(const std::optional<QString>& identifier, const QString& name, LocalObserver::Block block);
    void removeObserver(const QString& identifier); ///< \selector removeObserver:
    /// Every observer whose identifier begins with \p prefix. \selector removeObserversWithPrefix:
    void removeObserversWithPrefix(const QString& prefix);
    void removeAllObservers(); ///< \selector removeAllObservers

    /// Calls the handlers whenever the endpoint of that identifier is published, also if it is already, or redacted.
    /// \selector addObserver:whenName:isPublished:isRedacted:
    void addObserverWhenName(const std::optional<QString>& identifier,
                             const QString& endpoint,
                             const EndpointHandlers& handlers);
    /// Tells the switchboard that the handlers are of no interest any more; this process remembers them, and asks for
    /// them again with the next connection. \selector removePublishedObserver:forName:
    void removePublishedObserver(const std::optional<QString>& identifier, const QString& endpoint);

    /// A switchboard has started: sees to it that there is a connection, and that it is to the switchboard of the user
    /// if that is the one. Blocks.
    ///
    /// \param startedService name of its service. \selector switchboardDidStartNotification:
    void switchboardDidStartNotification(const QString& startedService);

protected:
    /// The switchboard of the user, then that of the whole machine. \selector makeConnections
    [[nodiscard]] std::vector<XPCConnectionPtr> makeConnections() override;
    /// \selector setupProxy:
    void setupProxy(const XPCProxyPtr& proxy) override HAVREL_REQUIRES(m_connectionLock);
    /// \selector disconnect_Internal
    void disconnect_Internal() override HAVREL_REQUIRES(m_connectionLock);

private:
    const std::shared_ptr<SwitchboardSubscriber> m_subscriber;
};

} // namespace havrel
