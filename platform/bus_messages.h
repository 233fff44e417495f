// SPDX-License-Identifier: MIT
#pragma once

#include "platform/bus_body.h"

#include <QString>

#include <chrono>
#include <functional>
#include <optional>

namespace havrel::platform {

/// The bus of the user's session, or that of the whole machine.
enum class BusKind { Session, System };

/// A call of a method of an object elsewhere.
struct BusCall
{
    QByteArray destination; ///< a well-known or a unique name
    QByteArray path;
    QByteArray interface;
    QByteArray member;
    BusBody body = {};
    std::optional<std::chrono::milliseconds> limit = {}; ///< how long the answer may take; none: for ever
    bool startsService = true;                           ///< whether the bus may start what owns the well-known name
};

/// What came back.
struct BusReply
{
    int error = 0;             ///< 0 or an errno value: ETIMEDOUT, ECONNRESET when the bus went away, ...
    QByteArray errorName = {}; ///< "org.freedesktop.DBus.Error.ServiceUnknown"; empty when no peer sent the error
    QString errorText = {};    ///< the peer's explanation
    QVariantList values = {};  ///< of the types that the peer chose: look before use
};

using BusReplyHandler = std::function<void(const BusReply& reply)>;

/// A signal that a match caught.
struct BusSignal
{
    QByteArray sender;
    QByteArray path;
    QByteArray interface;
    QByteArray member;
    QVariantList values; ///< of the types that the sender chose: look before use
};

/// A signal for everybody who listens.
struct BusBroadcast
{
    QByteArray path;
    QByteArray interface;
    QByteArray member;
    BusBody body = {};
};

using BusSignalHandler = std::function<void(const BusSignal& signal)>;

} // namespace havrel::platform
