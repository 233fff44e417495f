// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/notification_center.h"
#include "messaging/connection.h"
#include "messaging/protocols.h"
#include "tests/messaging/scripted_xpc_connection.h"
#include "tests/support/recording_logr.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <utility>
#include <vector>

namespace havrel::tests {

/// A connection whose candidates the test gives.
class ScriptedConnection : public HVConnection
{
public:
    using HVConnection::HVConnection;
    using HVConnection::makeConnections;

    ScriptedConnection()
        : HVConnection(xpc_options::kNone, protocols::componentServing())
    {
    }
    ~ScriptedConnection() override { dealloc(); }
    Q_DISABLE_COPY_MOVE(ScriptedConnection)

    /// Candidates of each attempt, the next one first; then none.
    std::deque<std::vector<XPCConnectionPtr>> attempts;
    QString name = QStringLiteral("com.havrel.scripted");
    int proxies = 0; ///< that were set up
    int madeConnections = 0;

    [[nodiscard]] QString identifier() const override { return name; }

protected:
    void setupProxy(const XPCProxyPtr& proxy) override HAVREL_REQUIRES(m_connectionLock)
    {
        HVConnection::setupProxy(proxy);
        ++proxies;
    }
    std::vector<XPCConnectionPtr> makeConnections() override
    {
        ++madeConnections;
        if (attempts.empty())
            return {};
        std::vector<XPCConnectionPtr> next = attempts.front();
        attempts.pop_front();
        return next;
    }
};

/// Connections, a logger and a main queue to look at.
class ConnectionFixture : public ::testing::Test
{
protected:
    ConnectionFixture()
        : m_application(m_argumentCount, m_arguments.data())
    {
        m_posts = NotificationCenter::defaultCenter().addObserver({}, {}, {}, [this](const Notification& each) {
            m_posted << each.name;
            m_posters.push_back(each.object.value<std::shared_ptr<HVConnection>>().get());
        });
    }

    ~ConnectionFixture() override
    {
        m_connection.reset();
        runMainQueue();
    }
    Q_DISABLE_COPY_MOVE(ConnectionFixture)

    [[nodiscard]] ScriptedXPCConnectionPtr candidate(const QString& name = QStringLiteral("first"),
                                                     const std::deque<Answer>& answers = {})
    {
        auto made = std::make_shared<ScriptedXPCConnection>(name, m_replies);
        made->answer(answers);
        return made;
    }
    /// Offers the candidates to one attempt to connect.
    void offer(const std::vector<XPCConnectionPtr>& candidates) { m_connection->attempts.push_back(candidates); }
    /// Runs what is queued on the main queue, and what that queues.
    static void runMainQueue()
    {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
    /// Waits until everything that is queued on the reply queue has run.
    void runReplies() { m_replies.barrier(); }
    /// What has been posted since it was asked last.
    [[nodiscard]] QStringList posted()
    {
        runMainQueue();
        return std::exchange(m_posted, {});
    }
    /// The lines of the log that hold \p text.
    [[nodiscard]] QStringList linesWith(const char* text)
    {
        return m_logr->lines().filter(QLatin1StringView(text).toString());
    }
    [[nodiscard]] qsizetype logged(const char* text) { return linesWith(text).size(); }

    int m_argumentCount = 1;
    std::array<char, 5> m_program{"test"};
    std::array<char*, 2> m_arguments{m_program.data(), nullptr};
    QCoreApplication m_application;
    std::shared_ptr<RecordingLogr> m_logr = std::make_shared<RecordingLogr>();
    SharedLoggerScope m_sharedLogger{m_logr};
    SerialQueue m_replies{QStringLiteral("replies")};
    QStringList m_posted;
    std::vector<HVConnection*> m_posters;
    NotificationRegistration m_posts;
    std::shared_ptr<ScriptedConnection> m_connection = std::make_shared<ScriptedConnection>();
};

inline const QString kDidConnect = QStringLiteral("HVConnectionDidConnect");
inline const QString kWasDisconnected = QStringLiteral("HVConnectionWasDisconnected");

} // namespace havrel::tests
