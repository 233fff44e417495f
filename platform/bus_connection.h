// SPDX-License-Identifier: MIT
#pragma once

#include "platform/bus_messages.h"
#include "platform/bus_registration.h"
#include "platform/bus_request.h"
#include "platform/bus_tree.h"

#include <QByteArray>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include <sys/types.h>

namespace havrel::platform {

class BusLoop;

/// How to open a connection.
struct BusSettings
{
    QByteArray address = {}; ///< "unix:path=/..."; empty: that of the kind
    BusKind kind = BusKind::Session;
    std::chrono::milliseconds limit{10'000}; ///< how long the bus may take to greet
    /// Told once, on the event thread, when the bus goes away after it was opened. Not told of the connection's own
    /// end.
    std::function<void()> disconnected = {};
};

/// A connection to a message bus, with an event thread of its own that reads, writes and calls handlers. Handlers must
/// neither wait nor throw. Everything is in order: what one peer sends arrives as it was sent, answers included.
///
/// Members that wait answer EDEADLK on the event thread. Members of a connection that is not open answer ENOTCONN.
///
/// The end of a connection answers what still waits with ECANCELED, and drops messages that the bus has not yet taken:
/// `barrier` first.
///
/// Threads: any thread, as long as it is open; opening and ending, one thread at a time.
class BusConnection
{
public:
    explicit BusConnection(BusSettings settings = {});
    ~BusConnection();
    BusConnection(const BusConnection&) = delete;
    BusConnection& operator=(const BusConnection&) = delete;
    BusConnection(BusConnection&&) = delete;
    BusConnection& operator=(BusConnection&&) = delete;

    /// Connects and waits for the bus's greeting. Called once.
    ///
    /// \return 0 or an errno value: ENOSYS without libsystemd, ENOMEDIUM where there is no session, ENOENT or
    ///         ECONNREFUSED where nothing listens, ETIMEDOUT, ...
    [[nodiscard]] int open();

    /// ":1.42"; empty before it is open.
    [[nodiscard]] QByteArray uniqueName() const;

    /// Serves \p declared at \p path as long as \p registration lives. The bus's own interfaces (introspection, ping)
    /// are served beside it. Waits for the event thread, not for the bus.
    ///
    /// \return 0 or an errno value: EINVAL for names or signatures that are none, EEXIST when it is served already.
    [[nodiscard]] int exportInterface(const QByteArray& path, BusInterface declared, BusRegistration& registration);

    /// Serves \p tree as long as \p registration lives. Waits for the event thread, not for the bus.
    ///
    /// \return 0 or an errno value: EINVAL for a prefix that is no path.
    [[nodiscard]] int serveTree(BusTree tree, BusRegistration& registration);

    /// Asks for the well-known \p name and waits for the answer, for 25 s at most. Does not queue for it. Export first:
    /// calls may arrive before the answer.
    ///
    /// \return 0, EEXIST when somebody else owns it, or another errno value.
    [[nodiscard]] int requestName(const QByteArray& name);
    /// Gives \p name up and waits for the answer, for 25 s at most. All calls that the bus has routed here by that name
    /// have reached their handlers by then.
    ///
    /// \return 0 or an errno value; ENOENT when it was not ours.
    [[nodiscard]] int releaseName(const QByteArray& name);

    /// Sends \p call; \p handler is called once, on the event thread, with what comes back (at once and on the calling
    /// thread when the connection is not open).
    void call(const BusCall& call, BusReplyHandler handler);
    /// Sends \p call and waits for what comes back.
    [[nodiscard]] BusReply callAndWait(const BusCall& call);
    /// Sends \p call and asks for no answer. What it meets is never known. Waits for the event thread, not for the bus.
    ///
    /// \return 0 or an errno value of making it.
    [[nodiscard]] int send(const BusCall& call);
    /// The same without waiting for anything: \p failed is called on the event thread with the errno value when the
    /// message cannot be made (at once and on the calling thread when the connection is not open).
    void post(const BusCall& call, std::function<void(int error)> failed);
    /// Sends \p signal to everybody who listens. Waits for the event thread, not for the bus.
    ///
    /// \return 0 or an errno value of making it.
    [[nodiscard]] int broadcast(const BusBroadcast& signal);
    /// Waits until the bus has taken everything that was sent before.
    /// \return 0 or an errno value.
    [[nodiscard]] int barrier(std::chrono::milliseconds limit);

    /// Calls \p handler on the event thread with each signal that matches \p rule, as long as \p registration lives.
    /// Waits until the bus has taken the rule.
    ///
    /// \return 0 or an errno value: EINVAL for a rule that is none.
    [[nodiscard]] int match(const QByteArray& rule, BusSignalHandler handler, BusRegistration& registration);
    /// Calls \p handler with the old and the new owner (unique names; empty: none) each time \p name changes hands.
    [[nodiscard]] int watchOwner(const QByteArray& name,
                                 std::function<void(const QByteArray& before, const QByteArray& now)> handler,
                                 BusRegistration& registration);
    /// Asks the bus for the effective user of the peer \p name, and waits, as long as the bus is stopped too.
    ///
    /// \return 0 or an errno value.
    [[nodiscard]] int userOf(const QByteArray& name, uid_t& user);
    /// The same without waiting: \p handler is called once, on the event thread, with 0 and the user or an errno value
    /// (at once and on the calling thread when the connection is not open). Answers come in the order of the questions.
    void userOf(const QByteArray& name, std::function<void(int error, uid_t user)> handler);

    /// Asks the bus who owns \p name, and waits, as long as the bus is stopped too.
    ///
    /// \param owner a unique name; empty: nobody
    /// \return 0 or an errno value.
    [[nodiscard]] int ownerOf(const QByteArray& name, QByteArray& owner);
    /// Has the bus start what owns the well-known \p name, and waits until it owns it, without a time limit of ours.
    ///
    /// \return 0 or an errno value: nothing starts it, it does not start, ...
    [[nodiscard]] int startService(const QByteArray& name);
    /// Ends the connection before its owner does.
    void close();

private:
    std::chrono::milliseconds m_limit;
    BusKind m_kind;
    QByteArray m_address;
    std::shared_ptr<BusLoop> m_loop;

    using BusLimit = std::optional<std::chrono::milliseconds>;

    [[nodiscard]] BusReply askBus(const QByteArray& member, const BusBody& body, BusLimit limit = std::nullopt);
};

} // namespace havrel::platform
