// SPDX-License-Identifier: MIT
#pragma once

#include "app/component_connections.h"
#include "foundation/dispatch.h"
#include "tests/app/told_archives.h"
#include "tests/messaging/connection_fixture.h"
#include "tests/messaging/scripted_xpc_connection.h"

namespace havrel::tests {

/// A component that does what the test says; it cannot be reached before the test lets it.
class ScriptedComponent
{
public:
    explicit ScriptedComponent(SerialQueue& replies)
        : m_replies(replies)
    {
    }
    /// The end that answers from now on.
    ScriptedXPCConnection& begin()
    {
        m_end = std::make_shared<ScriptedXPCConnection>(QStringLiteral("component"), m_replies);
        m_connection->disconnect();
        m_connection->attempts = {{m_end}};
        return *m_end;
    }
    [[nodiscard]] ScriptedXPCConnection& end() const { return *m_end; }
    [[nodiscard]] const std::shared_ptr<ScriptedConnection>& connection() const { return m_connection; }
    /// The messages that it got, without barriers.
    [[nodiscard]] std::vector<ScriptedXPCConnection::Message> messages() const
    {
        std::vector<ScriptedXPCConnection::Message> messages = m_end->messages();
        std::erase_if(messages, [](const auto& each) { return each.keywordName == "barrierWithCompletion:"; });
        return messages;
    }

private:
    SerialQueue& m_replies;
    std::shared_ptr<ScriptedConnection> m_connection = std::make_shared<ScriptedConnection>();
    ScriptedXPCConnectionPtr m_end;
};

/// A monitor and a scheduler.
class ScriptedComponents
{
public:
    ScriptedComponents() = default;
    ~ScriptedComponents()
    {
        // What connections post about themselves keeps them.
        monitor.connection()->disconnect();
        scheduler.connection()->disconnect();
        QCoreApplication::sendPostedEvents();
        m_replies.barrier();
        QCoreApplication::sendPostedEvents();
    }
    Q_DISABLE_COPY_MOVE(ScriptedComponents)

    [[nodiscard]] ComponentConnections connections() const
    {
        return {.monitor = [connection = monitor.connection()] { return connection; },
                .scheduler = [connection = scheduler.connection()] { return connection; }};
    }
    /// The monitor can be reached and knows these archives.
    void tell(const QList<QVariantMap>& ofItems, const QList<QVariantMap>& recent = {})
    {
        ScriptedXPCConnection& end = monitor.begin();
        end.reply("queryRepositoriesForItems:withReply:", {QVariant(QVariantList(ofItems.cbegin(), ofItems.cend()))});
        end.reply("queryRecentlyCapturedRepositoriesWithReply:",
                  {QVariant(QVariantList(recent.cbegin(), recent.cend()))});
    }

private:
    SerialQueue m_replies{QStringLiteral("replies")};

public:
    ScriptedComponent monitor{m_replies};
    ScriptedComponent scheduler{m_replies};
};

} // namespace havrel::tests
