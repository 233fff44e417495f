// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace havrel {

class Protocol;

/// The description of a protocol's own messages as an interface of the message bus, a file of its own: what other
/// programs are written against.
///
/// \source the message bus specification, "Introspection Data Format"
///
/// Threads: any thread.
[[nodiscard]] QByteArray interfaceDescriptionOf(const Protocol& protocol);

/// The same for an object that shows \p protocol, with the protocols that it adopts.
///
/// Threads: any thread.
[[nodiscard]] QByteArray introspectionOf(const Protocol& protocol);

} // namespace havrel
