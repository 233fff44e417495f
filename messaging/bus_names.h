// SPDX-License-Identifier: MIT
#pragma once

#include "platform/bus_messages.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace havrel {

/// How the names of services, protocols and messages are written on the message bus.
namespace bus_names {

inline constexpr const char* kConnections = "/com/havrel/connection"; ///< connections to named services are below
inline constexpr const char* kConnectionInterface = "com.havrel.Connection"; ///< what connections say of themselves
inline constexpr const char* kHandled = "handled"; ///< answered when everything before it has been handled
inline constexpr const char* kClosed = "closed";   ///< the sender has ended the connection

/// The well-known name of a service: as its logical name, but an element that begins with a digit, which the bus
/// forbids, gets a "_" before it: "com.havrel.switchboard.1000" is "com.havrel.switchboard._1000".
///
/// Threads: any thread.
[[nodiscard]] QByteArray ofService(const QString& logicalName);

/// A name with a user id cannot be in an installed activation file. The service that stands for one in such a file:
/// without the last element, and with a capital in the one before it ("com.havrel.Switchboard").
///
/// \return empty for names whose last element does not begin with a digit
///
/// Threads: any thread.
[[nodiscard]] QByteArray ofStarter(const QString& logicalName);

/// Where the connections of a named service are: one element below kConnections. What connects to an element of its
/// own choice straight below kConnections reaches the service whose name it calls, or the only one by the unique name.
///
/// Threads: any thread.
[[nodiscard]] QByteArray pathOfService(const QString& logicalName);

/// Where the endpoints of a process are; the path tells the bus.
///
/// Threads: any thread.
[[nodiscard]] QByteArray endpointsOn(platform::BusKind kind);
/// The bus of an endpoint with that path prefix.
///
/// Threads: any thread.
[[nodiscard]] platform::BusKind busOfEndpoint(const QByteArray& pathPrefix);

/// "com.havrel.HVComponentMessaging".
///
/// Threads: any thread.
[[nodiscard]] QByteArray ofProtocol(const QByteArray& protocolName);
/// \return none for an interface that is not one of ours
///
/// Threads: any thread.
[[nodiscard]] std::optional<QByteArray> protocolOf(const QByteArray& interface);

/// A keyword name with each ":" written "_": "queryEndpointForIdentifier_withReply_".
///
/// Threads: any thread.
[[nodiscard]] QByteArray ofMessage(const QByteArray& keywordName);
/// The other way round.
///
/// Threads: any thread.
[[nodiscard]] QByteArray keywordNameOf(const QByteArray& member);

} // namespace bus_names
} // namespace havrel
