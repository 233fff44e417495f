// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/xpc_interface.h"
#include "messaging/xpc_proxy.h"

#include <QString>

#include <optional>

#include <sys/types.h>

namespace havrel {

class Error;
struct XPCEndpoint;

/// A message that came from the other end.
struct XPCMessage
{
    QByteArray keywordName;
    QVariantList values; ///< as many as the protocol says, of its types
    XPCReply reply{};    ///< to be called once, on any thread; empty for messages without a reply block
};

/// What one end shows to the other.
///
/// Threads: `received` is called on the connection's reply queue.
class XPCExportedObject
{
public:
    XPCExportedObject() = default;
    virtual ~XPCExportedObject();
    XPCExportedObject(const XPCExportedObject&) = delete;
    XPCExportedObject& operator=(const XPCExportedObject&) = delete;
    XPCExportedObject(XPCExportedObject&&) = delete;
    XPCExportedObject& operator=(XPCExportedObject&&) = delete;

    /// A message of the exported interface, in the order of their sending. What is thrown is logged and goes no
    /// further.
    virtual void received(const XPCMessage& message) = 0;
};

/// Options of a connection.
namespace xpc_options {
inline constexpr quint32 kNone = 0;
inline constexpr quint32 kPrivileged = 0x1000; ///< the service is one of the whole machine
} // namespace xpc_options

/// One conversation with another process (or, in tests, with another object of this one). Everything that belongs to it
/// (messages to the exported object, replies, errors, the end) is handled in order on its own reply queue.
///
/// Threads: any thread.
class XPCConnection
{
public:
    using ErrorHandler = std::function<void(const Error& error)>;

    XPCConnection() = default;
    virtual ~XPCConnection();
    XPCConnection(const XPCConnection&) = delete;
    XPCConnection& operator=(const XPCConnection&) = delete;
    XPCConnection(XPCConnection&&) = delete;
    XPCConnection& operator=(XPCConnection&&) = delete;

    /// What may be sent to the other end.
    virtual void setRemoteObjectInterface(XPCInterfacePtr interface) = 0;
    /// What the other end may send, and who gets it; null: nobody.
    virtual void setExportedInterface(XPCInterfacePtr interface) = 0;
    virtual void setExportedObject(std::shared_ptr<XPCExportedObject> object) = 0;

    /// Called once, on the reply queue, when the connection has become invalid, whoever ended it; at once when that has
    /// happened already. An empty function: nobody.
    virtual void setInvalidationHandler(std::function<void()> handler) = 0;

    /// Begins: before it, nothing is sent nor received.
    virtual void resume() = 0;
    /// Ends it for good and tells the other end. Messages that wait for a reply get an error.
    virtual void invalidate() = 0;

    /// The other end, with what is to be called for each message to it that fails: the connection has ended, the other
    /// process does not know the message, ...
    [[nodiscard]] virtual XPCProxyPtr remoteObjectProxyWithErrorHandler(ErrorHandler handler) = 0;

    /// The name as it was given when the connection was made by name; null for one made by an endpoint.
    [[nodiscard]] virtual QString serviceName() const = 0;
    /// The effective user of the process at the other end, as the message bus vouches for it.
    ///
    /// \return none before the other end is known, and after it has gone
    [[nodiscard]] virtual std::optional<uid_t> effectiveUserIdentifier() const = 0;
    /// For logs.
    [[nodiscard]] virtual QString description() const = 0;
};

using XPCConnectionPtr = std::shared_ptr<XPCConnection>;

/// The side that waits for connections. Its end leaves the connections that it has accepted alone.
///
/// Threads: one thread at a time.
class XPCListener
{
public:
    /// Called on the listener's own queue for each new connection, before any of its messages is handled: prepares it
    /// (exported interface and object, invalidation handler) and answers whether it may begin; the listener resumes
    /// and keeps it until it becomes invalid.
    using Acceptor = std::function<bool(const XPCConnectionPtr& connection)>;

    XPCListener() = default;
    virtual ~XPCListener();
    XPCListener(const XPCListener&) = delete;
    XPCListener& operator=(const XPCListener&) = delete;
    XPCListener(XPCListener&&) = delete;
    XPCListener& operator=(XPCListener&&) = delete;

    virtual void setAcceptor(Acceptor acceptor) = 0;
    /// Begins to listen.
    ///
    /// \return 0 or an errno value: EEXIST when another process serves the name, ...
    [[nodiscard]] virtual int resume() = 0;
    virtual void invalidate() = 0;
    /// To be handed to others; valid once it listens.
    [[nodiscard]] virtual XPCEndpoint endpoint() const = 0;
};

/// Makes connections: on the message bus in the product, within the process in tests.
///
/// Threads: any thread.
class XPCTransport
{
public:
    XPCTransport() = default;
    virtual ~XPCTransport();
    XPCTransport(const XPCTransport&) = delete;
    XPCTransport& operator=(const XPCTransport&) = delete;
    XPCTransport(XPCTransport&&) = delete;
    XPCTransport& operator=(XPCTransport&&) = delete;

    /// To the service of that logical name ("com.havrel.switchboard.1000"). Does not wait: that the service is not
    /// there comes out with the first message.
    ///
    /// \param options xpc_options
    [[nodiscard]] virtual XPCConnectionPtr connectionToService(const QString& name, quint32 options) = 0;
    /// To the listener that the endpoint is of.
    [[nodiscard]] virtual XPCConnectionPtr connectionToEndpoint(const XPCEndpoint& endpoint) = 0;

    /// Serves connections to the service of that logical name.
    ///
    /// \param options xpc_options
    [[nodiscard]] virtual std::unique_ptr<XPCListener> listenerForService(const QString& name, quint32 options) = 0;
    /// Serves connections to an endpoint of its own.
    [[nodiscard]] virtual std::unique_ptr<XPCListener> anonymousListener() = 0;

    /// Tells every process of this user, and the services of the whole machine, this one included, that \p name has
    /// happened to \p object.
    virtual void postDistributedNotification(const QString& name, const QString& object) = 0;
    /// Calls \p block on the main queue with the object of each such notification that a process of this user or of
    /// root posts, as long as what is answered lives.
    [[nodiscard]] virtual std::shared_ptr<void>
    addDistributedObserver(const QString& name, std::function<void(const QString& object)> block) = 0;

    /// The one that the process uses: the message bus, unless a test has put another one there.
    [[nodiscard]] static XPCTransport& shared();
    /// \param transport null: the message bus again. Outlives its use.
    static void setShared(XPCTransport* transport);
};

} // namespace havrel
