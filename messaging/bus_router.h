// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"
#include "platform/bus_connection.h"

#include <QByteArray>
#include <QByteArrayList>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <sys/types.h>

namespace havrel {

class BusXPCConnection;
class Buses;

/// One bus with all that is ours on it: which object paths are connections to whom, who is asked about new ones, and
/// which peers are watched.
///
/// A path belongs to its connection and peer until both have told each other that it is closed: a message that comes
/// late never makes a new connection of an old one. Each peer is watched once, however many connections go there.
///
/// Threads: any thread.
class BusRouter : public std::enable_shared_from_this<BusRouter>
{
public:
    /// Asked on the event thread, about a connection that a peer has begun: must not wait.
    using Newcomer = std::function<void(const std::shared_ptr<BusXPCConnection>& connection)>;

    /// Connects and waits for the bus. \return null and an errno value in \p error, when there is none
    [[nodiscard]] static std::shared_ptr<BusRouter>
    opened(platform::BusSettings settings, std::weak_ptr<Buses> buses, int& error);
    BusRouter(platform::BusSettings settings, std::weak_ptr<Buses> buses);
    ~BusRouter();
    BusRouter(const BusRouter&) = delete;
    BusRouter& operator=(const BusRouter&) = delete;
    BusRouter(BusRouter&&) = delete;
    BusRouter& operator=(BusRouter&&) = delete;

    [[nodiscard]] platform::BusConnection& bus() noexcept { return m_bus; }
    [[nodiscard]] platform::BusKind kind() const noexcept { return m_kind; }
    /// Those that it is one of; null when they have gone.
    [[nodiscard]] std::shared_ptr<Buses> buses() const { return m_buses.lock(); }
    /// Whether the bus has gone: there is no way back.
    [[nodiscard]] bool isLost() const noexcept { return m_lost; }
    /// Ends the bus and all connections on it.
    void close();

    /// Has \p newcomer asked about connections below \p prefix, and about those straight below the place of all
    /// services that are begun by a call of one of \p names, or by the unique name where this is the only service.
    ///
    /// \param names well-known names of the service; none: it is an endpoint
    /// \return false when somebody else is asked already
    [[nodiscard]] bool listen(const QByteArray& prefix, const QByteArrayList& names, Newcomer newcomer);
    void stopListening(const QByteArray& prefix);

    /// Watches \p peer, which has a route, and asks the bus for its effective user; waits.
    ///
    /// \return 0 or an errno value: the peer does not live any more, ...
    [[nodiscard]] int watch(const QByteArray& peer, uid_t& user);

    /// A path of a client's connection below \p prefix, never given before.
    [[nodiscard]] QByteArray freshPath(const QByteArray& prefix);
    void addRoute(const QByteArray& peer,
                  const QByteArray& path,
                  const std::shared_ptr<BusXPCConnection>& connection,
                  const QByteArrayList& names = {});
    /// The connection has ended. Tells the peer, and keeps the path until it answers.
    void closeRoute(const QByteArray& peer, const QByteArray& path);

    /// Connections, those that are being closed included, and peers that are watched: for tests that look for leaks.
    [[nodiscard]] std::size_t routeCount();
    [[nodiscard]] std::size_t peerCount();

private:
    using Route = std::pair<QByteArray, QByteArray>; // peer and path
    struct Peer
    {
        int routes = 0;
        bool isWatched = false;
        uid_t user = 0;
        platform::BusRegistration watch = {};
    };
    struct End // of a route, here
    {
        std::weak_ptr<BusXPCConnection> connection;
        bool isClosing = false;
        QByteArrayList names = {}; // of the service that it was begun with
    };
    struct Listener
    {
        Newcomer newcomer;
        QByteArrayList names;
    };
    using Connections = std::vector<std::shared_ptr<BusXPCConnection>>;

    [[nodiscard]] int start();
    [[nodiscard]] static bool takes(const QByteArray& interface);
    void arrived(const platform::BusTreeCall& call);
    [[nodiscard]] std::shared_ptr<BusXPCConnection> connectionFor(const platform::BusTreeCall& call);
    [[nodiscard]] std::shared_ptr<BusXPCConnection> newConnection(const Route& route, const Listener& listener);
    [[nodiscard]] const Listener* listenerFor(const platform::BusTreeCall& call) const HAVREL_REQUIRES(m_lock);
    [[nodiscard]] const Listener* serviceCalled(const QByteArray& name) const HAVREL_REQUIRES(m_lock);
    [[nodiscard]] bool isOfOtherService(const QByteArrayList& names, const QByteArray& name) const
        HAVREL_REQUIRES(m_lock);
    void closedByPeer(const platform::BusTreeCall& call);
    [[nodiscard]] std::shared_ptr<BusXPCConnection> erase(const Route& route) HAVREL_EXCLUDES(m_lock);
    [[nodiscard]] std::optional<uid_t> knownUser(const QByteArray& peer) HAVREL_EXCLUDES(m_lock);
    void peerVanished(const QByteArray& peer);
    void lose();

    const platform::BusKind m_kind;
    const std::weak_ptr<Buses> m_buses;
    platform::BusConnection m_bus;
    std::atomic<bool> m_lost = false;
    std::atomic<quint64> m_lastPath = 0;
    Mutex m_lock;
    std::map<QByteArray, Listener> m_listeners HAVREL_GUARDED_BY(m_lock);
    std::map<QByteArray, Peer> m_peers HAVREL_GUARDED_BY(m_lock);
    std::map<Route, End> m_routes HAVREL_GUARDED_BY(m_lock);
    platform::BusRegistration m_tree;
};

} // namespace havrel
