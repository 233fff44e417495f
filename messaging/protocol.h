// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <optional>
#include <vector>

namespace havrel {

/// One message of a protocol.
struct ProtocolMessage
{
    QByteArray keywordName;                  ///< "queryEndpointForIdentifier:withReply:"
    QByteArrayList takes{};                  ///< one complete bus type an argument, the reply block left out
    std::optional<QByteArrayList> answers{}; ///< types of what the reply block gets; none: there is no reply
    QByteArray signature{};                  ///< of all it takes; the protocol fills it in
};

/// What one side of a connection may be told: a table that both ends are checked against at run time.
///
/// Argument types are those of the message bus: "s" text, "ay" the bytes of a path, "a{sv}" a dictionary, "(so)" an
/// endpoint (XPCEndpoint), "v" any value. A value that may be absent is an array of none or one ("as", "a(so)").
///
/// Threads: const members any thread, others one at a time.
class Protocol
{
public:
    Protocol(QByteArray name, std::vector<const Protocol*> adopted, std::vector<ProtocolMessage> messages);

    [[nodiscard]] const QByteArray& name() const noexcept { return m_name; }
    [[nodiscard]] const std::vector<const Protocol*>& adopted() const noexcept { return m_adopted; }
    /// Its own, in the order of their declaration.
    [[nodiscard]] const std::vector<ProtocolMessage>& messages() const noexcept { return m_messages; }

    /// Of its own or of an adopted protocol; null when there is none of that name.
    [[nodiscard]] const ProtocolMessage* messageNamed(const QByteArray& keywordName) const;
    /// The protocol that declares the message: this one or an adopted one; null when there is none.
    [[nodiscard]] const Protocol* declarerOf(const QByteArray& keywordName) const;

private:
    QByteArray m_name;
    std::vector<const Protocol*> m_adopted;
    std::vector<ProtocolMessage> m_messages;
};

} // namespace havrel
