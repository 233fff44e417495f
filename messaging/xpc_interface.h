// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QSet>

#include <map>
#include <memory>
#include <utility>

namespace havrel {

class Protocol;
class XPCInterface;
using XPCInterfacePtr = std::shared_ptr<const XPCInterface>;

/// A protocol with what it leaves open: which classes a reply may carry, and which reply is itself a remote object.
///
/// Threads: const members any thread, others one at a time.
class XPCInterface
{
public:
    /// A message and the index of an argument of its reply.
    using ReplyArgument = std::pair<QByteArray, int>;

    explicit XPCInterface(const Protocol& protocol)
        : m_protocol(protocol)
    {
    }

    [[nodiscard]] const Protocol& protocol() const noexcept { return m_protocol; }

    /// The names of the classes that a reply argument may carry; empty: whatever its type says. On the message bus the
    /// type of the argument is what admits values: it carries none of other classes.
    [[nodiscard]] QSet<QByteArray> classesFor(const ReplyArgument& argument) const;
    void setClasses(const QSet<QByteArray>& classes, const ReplyArgument& argument);

    /// The interface of the remote object that a reply argument is; null when it is a plain value. Who answers gives
    /// the endpoint of a listener that exports the object, or none, "a(so)". Who has asked gets an XPCProxyPtr with a
    /// connection of its own, which ends with the proxy; null for none. Its messages that fail are told to the error
    /// handler of the proxy that was asked.
    [[nodiscard]] XPCInterfacePtr interfaceFor(const ReplyArgument& argument) const;
    void setInterface(XPCInterfacePtr interface, const ReplyArgument& argument);

private:
    const Protocol& m_protocol;
    std::map<ReplyArgument, QSet<QByteArray>> m_classes;
    std::map<ReplyArgument, XPCInterfacePtr> m_interfaces;
};

} // namespace havrel
