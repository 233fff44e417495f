// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/xpc_connection.h"

#include <QByteArray>

#include <functional>
#include <map>

namespace havrel {

/// What a component shows to those who connect to it: a handler for each message of its protocol. Those that every
/// component has (protocols::componentServing) are there already: a barrier is answered when everything before it has
/// been handled; there is nothing to do at an installation.
///
/// A message without a handler is refused to its sender, by the connection.
///
/// Threads: `received` is called on reply queues, on several at once where there are several connections.
class Component : public XPCExportedObject
{
public:
    void received(const XPCMessage& message) final;

    /// Whether it does something with that message.
    [[nodiscard]] bool handles(const QByteArray& keywordName) const;

protected:
    using Handler = std::function<void(const XPCMessage& message)>;

    Component();

    /// For constructors of subclasses. Replaces the handler that is there.
    void on(const char* keywordName, Handler handler);
    /// A handler that answers with the same values each time.
    void answerAlways(const char* keywordName, const QVariantList& values);

private:
    std::map<QByteArray, Handler> m_handlers;
};

/// "0.1.0".
///
/// Threads: any thread.
[[nodiscard]] QString componentVersion();

/// The version as a number that grows: 10,000 for each major version, 100 for each minor one, 1 for each patch.
///
/// Threads: any thread.
[[nodiscard]] quint32 componentBuildNumber();

} // namespace havrel
