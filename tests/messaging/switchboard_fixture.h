// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/dispatch.h"
#include "foundation/notification_center.h"
#include "foundation/process.h"
#include "messaging/published_connection.h"
#include "messaging/shared_connections.h"
#include "messaging/switchboard_connection.h"
#include "messaging/switchboard_names.h"
#include "tests/messaging/test_switchboard.h"
#include "tests/support/awaited.h"
#include "tests/support/handled_events.h"
#include "tests/support/in_process_transport.h"
#include "tests/support/recording_logr.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <utility>

namespace havrel::tests {

inline const QString kScheduler = QStringLiteral("com.havrel.scheduler");
inline const QString kSystemWidePlace = QStringLiteral("!com.havrel.switchboard");

/// Switchboards within the process, as the shared transport reaches them.
class SwitchboardFixture : public ::testing::Test
{
protected:
    SwitchboardFixture()
        : m_application(m_argumentCount, m_arguments.data())
    {
        XPCTransport::setShared(&m_transport);
        m_posts = NotificationCenter::defaultCenter().addObserver(
            {}, {}, {}, [this](const Notification& each) { m_posted << each.name; });
    }
    ~SwitchboardFixture() override
    {
        m_connection.reset();
        runMainQueue();
        SharedConnections::all().forget();
        XPCTransport::setShared(nullptr);
    }
    Q_DISABLE_COPY_MOVE(SwitchboardFixture)

    [[nodiscard]] std::shared_ptr<TestSwitchboard> serveUser()
    {
        return TestSwitchboard::serving(m_transport.listenerForService(m_userService, xpc_options::kNone));
    }
    [[nodiscard]] std::shared_ptr<TestSwitchboard> serveMachine()
    {
        return TestSwitchboard::serving(
            m_transport.listenerForService(switchboard_names::kSystemWideService, xpc_options::kPrivileged));
    }
    static void runMainQueue()
    {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
    [[nodiscard]] QStringList posted()
    {
        runMainQueue();
        return std::exchange(m_posted, {});
    }
    [[nodiscard]] qsizetype logged(const char* text)
    {
        return m_logr->lines().filter(QLatin1StringView(text).toString()).size();
    }
    /// The connections to \p place, as the far side has it, end; this side has heard of it when this returns.
    void lose(HVConnection& connection, const QString& place)
    {
        m_transport.invalidateFromFarSide(place);
        EXPECT_TRUE(handleEventsUntil([&] { return !connection.connected(); }));
    }
    /// What \p switchboard has been told since it was asked last, when it has handled all of it.
    [[nodiscard]] QStringList told(TestComponent& switchboard)
    {
        EXPECT_TRUE(m_connection->ping());
        QStringList result = switchboard.told();
        switchboard.forgetTold();
        return result;
    }
    [[nodiscard]] QString setUser() const { return QStringLiteral("setUser: (%1)").arg(Process::userID()); }

    const QString m_userService = switchboard_names::perUserService();
    int m_argumentCount = 1;
    std::array<char, 5> m_program{"test"};
    std::array<char*, 2> m_arguments{m_program.data(), nullptr};
    QCoreApplication m_application;
    std::shared_ptr<RecordingLogr> m_logr = std::make_shared<RecordingLogr>();
    SharedLoggerScope m_sharedLogger{m_logr};
    InProcessTransport m_transport;
    QStringList m_posted;
    NotificationRegistration m_posts;
    std::shared_ptr<HVSwitchboardConnection> m_connection = std::make_shared<HVSwitchboardConnection>();
};

} // namespace havrel::tests
