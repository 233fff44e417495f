// SPDX-License-Identifier: MIT
#include "messaging/bus_router.h"

#include "messaging/bus_names.h"
#include "messaging/bus_xpc_connection.h"
#include "messaging/reply_threads.h"
#include "messaging/xpc_error.h"

#include <algorithm>

namespace havrel {
namespace {

constexpr const char* kRoot = "/com/havrel";
constexpr const char* kIntrospection = "org.freedesktop.DBus.Introspectable";

Error invalid(const char* description)
{
    return xpcError(xpc_error::kConnectionInvalid, QString::fromLatin1(description));
}

void refuse(const platform::BusTreeCall& call)
{
    if (call.answer)
        call.answer->fail("org.freedesktop.DBus.Error.UnknownObject", QStringLiteral("There is no such connection"));
}

/// Ends \p router on a thread that may wait for its event thread, which the last owner may be.
void endElsewhere(BusRouter* router)
{
    ReplyThreads::shared().run([last = std::shared_ptr<BusRouter>(router)] {});
}

} // namespace

std::shared_ptr<BusRouter> BusRouter::opened(platform::BusSettings settings, std::weak_ptr<Buses> buses, int& error)
{
    // The settings want to know the router, which wants the settings.
    const auto known = std::make_shared<std::weak_ptr<BusRouter>>();
    settings.disconnected = [known] {
        if (const auto router = known->lock())
            router->lose();
    };
    const std::shared_ptr<BusRouter> router(
        std::make_unique<BusRouter>(std::move(settings), std::move(buses)).release(), endElsewhere);
    *known = router;
    error = router->start();
    return error == 0 ? router : nullptr;
}

BusRouter::BusRouter(platform::BusSettings settings, std::weak_ptr<Buses> buses)
    : m_kind(settings.kind)
    , m_buses(std::move(buses))
    , m_bus(std::move(settings))
{
}

BusRouter::~BusRouter() = default;

int BusRouter::start()
{
    if (const int error = m_bus.open(); error != 0)
        return error;
    return m_bus.serveTree({.prefix = kRoot,
                            .takes = takes,
                            .called =
                                [weak = weak_from_this()](const platform::BusTreeCall& call) {
                                    if (const auto self = weak.lock())
                                        self->arrived(call);
                                }},
                           m_tree);
}

void BusRouter::close()
{
    m_bus.close();
    lose();
}

// ---- what arrives, on the event thread

bool BusRouter::takes(const QByteArray& interface)
{
    return interface.isEmpty() || bus_names::protocolOf(interface) || interface == kIntrospection;
}

void BusRouter::arrived(const platform::BusTreeCall& call)
{
    if (call.interface == bus_names::kConnectionInterface && call.member == bus_names::kClosed)
        return closedByPeer(call);
    if (const auto connection = connectionFor(call))
        connection->arrived(call);
    else
        refuse(call);
}

std::shared_ptr<BusXPCConnection> BusRouter::connectionFor(const platform::BusTreeCall& call)
{
    const Route route(call.sender, call.path);
    const bool begins = call.interface != bus_names::kConnectionInterface && call.interface != kIntrospection;
    Listener listener;
    {
        const MutexLock guard(m_lock);
        if (const auto found = m_routes.find(route); found != m_routes.end()) {
            const End& end = found->second;
            return end.isClosing || isOfOtherService(end.names, call.destination) ? nullptr : end.connection.lock();
        }
        const Listener* asked = begins ? listenerFor(call) : nullptr;
        if (!asked)
            return nullptr;
        listener = *asked;
    }
    return newConnection(route, listener);
}

std::shared_ptr<BusXPCConnection> BusRouter::newConnection(const Route& route, const Listener& listener)
{
    auto connection = BusXPCConnection::accepted(shared_from_this(), route.first, route.second);
    addRoute(route.first, route.second, connection, listener.names);
    listener.newcomer(connection);
    return connection;
}

/// Below the prefix of a listener; what is straight below the place of all services goes to the one that is called.
const BusRouter::Listener* BusRouter::listenerFor(const platform::BusTreeCall& call) const
{
    for (const auto& [prefix, listener] : m_listeners)
        if (call.path.startsWith(prefix + '/'))
            return &listener;
    const QByteArray services = QByteArray(bus_names::kConnections) + '/';
    const bool isStraightBelow = call.path.startsWith(services) && !call.path.sliced(services.size()).contains('/');
    return isStraightBelow ? serviceCalled(call.destination) : nullptr;
}

/// Several services of one process are told apart by their names only.
const BusRouter::Listener* BusRouter::serviceCalled(const QByteArray& name) const
{
    const Listener* only = nullptr;
    int services = 0;
    for (const auto& [prefix, listener] : m_listeners) {
        if (listener.names.contains(name))
            return &listener;
        if (listener.names.isEmpty())
            continue;
        only = &listener;
        ++services;
    }
    return services == 1 ? only : nullptr;
}

/// A connection to one service is not continued by calls of another one.
bool BusRouter::isOfOtherService(const QByteArrayList& names, const QByteArray& name) const
{
    if (name.startsWith(':') || names.contains(name))
        return false;
    const auto isCalled = [&](const auto& each) { return each.second.names.contains(name); };
    return std::any_of(m_listeners.begin(), m_listeners.end(), isCalled);
}

/// The peer sends nothing more, so the path can be forgotten at once.
void BusRouter::closedByPeer(const platform::BusTreeCall& call)
{
    const auto connection = erase({call.sender, call.path});
    if (call.answer)
        call.answer->reply({});
    if (connection)
        connection->ended(invalid("the other end has ended the connection"));
}

void BusRouter::peerVanished(const QByteArray& peer)
{
    Connections ended;
    Peer vanished;
    {
        const MutexLock guard(m_lock);
        const auto first = m_routes.lower_bound({peer, QByteArray()});
        auto last = first;
        for (; last != m_routes.end() && last->first.first == peer; ++last)
            ended.push_back(last->second.connection.lock());
        m_routes.erase(first, last);
        if (auto node = m_peers.extract(peer); !node.empty())
            vanished = std::move(node.mapped());
    }
    for (const auto& each : ended)
        if (each)
            each->ended(invalid("the process at the other end has gone"));
}

void BusRouter::lose()
{
    m_lost = true;
    Connections ended;
    std::map<QByteArray, Peer> peers;
    {
        const MutexLock guard(m_lock);
        for (const auto& [route, end] : m_routes)
            ended.push_back(end.connection.lock());
        m_routes.clear();
        m_listeners.clear();
        peers.swap(m_peers);
    }
    for (const auto& each : ended)
        if (each)
            each->ended(invalid("the message bus has gone"));
}

// ---- listeners, peers and routes

bool BusRouter::listen(const QByteArray& prefix, const QByteArrayList& names, Newcomer newcomer)
{
    const MutexLock guard(m_lock);
    return m_listeners.emplace(prefix, Listener{std::move(newcomer), names}).second;
}

void BusRouter::stopListening(const QByteArray& prefix)
{
    const MutexLock guard(m_lock);
    m_listeners.erase(prefix);
}

std::optional<uid_t> BusRouter::knownUser(const QByteArray& peer)
{
    const MutexLock guard(m_lock);
    const auto found = m_peers.find(peer);
    return found != m_peers.end() && found->second.isWatched ? std::optional(found->second.user) : std::nullopt;
}

int BusRouter::watch(const QByteArray& peer, uid_t& user)
{
    if (const auto known = knownUser(peer)) {
        user = *known;
        return 0;
    }
    platform::BusRegistration registration; // ends without the lock, when another thread was first
    const auto changed = [weak = weak_from_this(), peer](const QByteArray&, const QByteArray& now) {
        if (const auto self = weak.lock(); self && now.isEmpty())
            self->peerVanished(peer);
    };
    if (const int error = m_bus.watchOwner(peer, changed, registration); error != 0)
        return error;
    if (const int error = m_bus.userOf(peer, user); error != 0) // asked after the watch began: else it has gone
        return error;
    const MutexLock guard(m_lock);
    const auto found = m_peers.find(peer);
    if (found == m_peers.end())
        return ESRCH;
    if (!std::exchange(found->second.isWatched, true)) {
        found->second.user = user;
        std::swap(found->second.watch, registration);
    }
    return 0;
}

QByteArray BusRouter::freshPath(const QByteArray& prefix)
{
    const QByteArray owner = m_bus.uniqueName().sliced(1).replace('.', '_');
    return prefix + '/' + owner + '_' + QByteArray::number(++m_lastPath);
}

void BusRouter::addRoute(const QByteArray& peer,
                         const QByteArray& path,
                         const std::shared_ptr<BusXPCConnection>& connection,
                         const QByteArrayList& names)
{
    const MutexLock guard(m_lock);
    ++m_peers[peer].routes;
    m_routes[{peer, path}] = {.connection = connection, .names = names};
}

/// \return the connection, when it has not ended
std::shared_ptr<BusXPCConnection> BusRouter::erase(const Route& route)
{
    Peer last; // ends without the lock
    const MutexLock guard(m_lock);
    auto node = m_routes.extract(route);
    if (node.empty())
        return nullptr;
    const auto peer = m_peers.find(route.first);
    if (peer != m_peers.end() && --peer->second.routes == 0) {
        last = std::move(peer->second);
        m_peers.erase(peer);
    }
    return node.mapped().isClosing ? nullptr : node.mapped().connection.lock();
}

void BusRouter::closeRoute(const QByteArray& peer, const QByteArray& path)
{
    {
        const MutexLock guard(m_lock);
        const auto found = m_routes.find({peer, path});
        if (found == m_routes.end())
            return;
        found->second.isClosing = true;
    }
    // Whatever comes back, even that nobody knows of it there: everything that was sent before has arrived.
    m_bus.call({.destination = peer,
                .path = path,
                .interface = bus_names::kConnectionInterface,
                .member = bus_names::kClosed,
                .startsService = false},
               [weak = weak_from_this(), peer, path](const platform::BusReply&) {
                   if (const auto self = weak.lock())
                       (void)self->erase({peer, path});
               });
}

std::size_t BusRouter::routeCount()
{
    const MutexLock guard(m_lock);
    return m_routes.size();
}

std::size_t BusRouter::peerCount()
{
    const MutexLock guard(m_lock);
    return m_peers.size();
}

} // namespace havrel
