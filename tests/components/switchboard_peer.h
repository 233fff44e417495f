// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/description.h"
#include "messaging/protocols.h"
#include "messaging/transport_connection.h"
#include "messaging/xpc_endpoint.h"
#include "tests/support/awaited.h"

#include <gtest/gtest.h>

namespace havrel::tests {

inline const QString kSwitchboardName = QStringLiteral("com.havrel.switchboard.4711");

/// A component at a switchboard, as plain as one can be. What it hears comes as
/// "observer: name from (source) {id = com.havrel.scheduler}".
class SwitchboardPeer
{
public:
    explicit SwitchboardPeer(XPCTransport& transport,
                             quint32 options = xpc_options::kNone,
                             const QString& switchboard = kSwitchboardName)
        : m_connection(transport.connectionToService(switchboard, options))
        , m_ears(std::make_shared<Ears>())
    {
        m_connection->setRemoteObjectInterface(
            std::make_shared<const XPCInterface>(protocols::switchboardingPrivate()));
        m_connection->setExportedInterface(std::make_shared<const XPCInterface>(protocols::switchboardSubscribing()));
        m_connection->setExportedObject(m_ears);
        m_connection->resume();
    }
    ~SwitchboardPeer() { end(); }
    SwitchboardPeer(const SwitchboardPeer&) = delete;
    SwitchboardPeer& operator=(const SwitchboardPeer&) = delete;
    SwitchboardPeer(SwitchboardPeer&&) = delete;
    SwitchboardPeer& operator=(SwitchboardPeer&&) = delete;

    /// As when the process dies. Nothing of it is handled any more when this returns.
    void end()
    {
        Awaited<bool> done;
        m_connection->invalidate();
        dynamic_cast<TransportConnection&>(*m_connection).replyQueue().async([&] { done.tell(true); });
        EXPECT_TRUE(done.one().has_value());
    }
    void send(const QByteArray& keywordName, const QVariantList& values = {})
    {
        m_connection->remoteObjectProxyWithErrorHandler({})->send(keywordName, values);
    }
    /// \return none when it fails
    std::optional<QVariantList> ask(const QByteArray& keywordName, const QVariantList& values = {})
    {
        Awaited<std::optional<QVariantList>> answer;
        m_connection->remoteObjectProxyWithErrorHandler([&](const Error&) { answer.tell(std::nullopt); })
            ->send(keywordName, values, [&](const QVariantList& each) { answer.tell(each); });
        return answer.one().value_or(std::nullopt);
    }
    bool barrier() { return ask("barrierWithCompletion:").has_value(); }

    void publish(const QString& identifier, const XPCEndpoint& endpoint)
    {
        send("publishEndpoint:forIdentifier:", {endpoint.asValue(), identifier});
    }
    std::optional<XPCEndpoint> query(const QString& identifier)
    {
        const auto answer = ask("queryEndpointForIdentifier:withReply:", {identifier});
        const QVariantList found = answer.value_or(QVariantList()).value(0).toList();
        return found.isEmpty() ? std::nullopt : XPCEndpoint::fromValue(found.constFirst());
    }
    void observe(const QString& observer, const QString& name, const QStringList& source = {})
    {
        send("addProxyObserver:forName:source:", {observer, name, source});
        EXPECT_TRUE(barrier());
    }
    void post(const QString& name, const QStringList& source = {}, const QVariantMap& info = {})
    {
        send("postNotificationName:source:userInfo:", {name, source, info});
        EXPECT_TRUE(barrier());
    }
    /// The first \p count that it has heard.
    QStringList heard(std::size_t count)
    {
        const std::vector<QString> all = m_ears->heard.first(count);
        return {all.cbegin(), all.cend()};
    }
    /// What it has heard, when everything sent to it until now has arrived.
    QStringList heard()
    {
        EXPECT_TRUE(barrier());
        return heard(0);
    }
    [[nodiscard]] XPCConnection& connection() { return *m_connection; }

private:
    struct Ears : XPCExportedObject
    {
        void received(const XPCMessage& message) override
        {
            const QVariantList& values = message.values;
            heard.tell(values[0].toString() + QStringLiteral(": ") + values[1].toString() + QStringLiteral(" from (") +
                       values[2].toStringList().join(u',') + QStringLiteral(") ") + flat(values[3].toMap()));
        }
        static QString flat(const QVariantMap& info)
        {
            QStringList parts;
            for (auto each = info.cbegin(); each != info.cend(); ++each)
                parts << each.key() + QStringLiteral(" = ") + descriptionOf(each.value());
            return u'{' + parts.join(QStringLiteral(", ")) + u'}';
        }
        Awaited<QString> heard;
    };

    const XPCConnectionPtr m_connection;
    const std::shared_ptr<Ears> m_ears;
};

} // namespace havrel::tests
