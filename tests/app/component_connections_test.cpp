// SPDX-License-Identifier: MIT
// The whole road of a request to components that are found by a switchboard: only their processes are missing.
#include "app/component_connections.h"

#include "messaging/shared_connections.h"
#include "messaging/switchboard_names.h"
#include "tests/app/archive_picker_fixture.h"
#include "tests/messaging/test_switchboard.h"
#include "tests/support/in_process_transport.h"

#include <QLabel>

namespace havrel::tests {
namespace {

class ComponentConnections : public WithPicker
{
protected:
    ComponentConnections()
    {
        XPCTransport::setShared(&m_transport);
        havrel::ServiceApplicationDelegate::setOfApplication(m_connectedDelegate);
        m_switchboard->publish(QStringLiteral("com.havrel.monitor"), m_monitor->endpoint());
        m_switchboard->publish(QStringLiteral("com.havrel.scheduler"), m_scheduler->endpoint());
        knows({"/b.zephra", "/bad\xff.zephra"}, {"/bad\xff.zephra", "/c.zephra"});
    }
    ~ComponentConnections() override
    {
        SharedConnections::all().forget();
        QCoreApplication::sendPostedEvents();
        XPCTransport::setShared(nullptr);
    }
    Q_DISABLE_COPY_MOVE(ComponentConnections)

    void knows(const QByteArrayList& ofItems, const QByteArrayList& recent)
    {
        const auto answer = [this](const QByteArray& message, const QByteArrayList& paths) {
            const QList<QVariantMap> archives = archivesAt(paths);
            m_monitor->answer(message, {QVariant(QVariantList(archives.cbegin(), archives.cend()))});
        };
        answer("queryRepositoriesForItems:withReply:", ofItems);
        answer("queryRecentlyCapturedRepositoriesWithReply:", recent);
    }
    [[nodiscard]] static QString placeOf(const TestComponent& component)
    {
        return QString::fromLatin1(component.endpoint().pathPrefix);
    }

    InProcessTransport m_transport;
    const std::shared_ptr<TestSwitchboard> m_switchboard = TestSwitchboard::serving(
        m_transport.listenerForService(switchboard_names::perUserService(), xpc_options::kNone));
    const std::shared_ptr<TestComponent> m_monitor =
        TestComponent::serving(m_transport.anonymousListener(), protocols::monitoring());
    const std::shared_ptr<TestComponent> m_scheduler =
        TestComponent::serving(m_transport.anonymousListener(), protocols::scheduling());
    const std::shared_ptr<havrel::ServiceApplicationDelegate> m_connectedDelegate =
        std::make_shared<havrel::ServiceApplicationDelegate>(
            havrel::ServiceApplicationDelegate::Surroundings{.alerts = m_alerts,
                                                             .applications = m_applications,
                                                             .timers = m_timers,
                                                             .registerServices = [] {},
                                                             .terminate = [this] { ++m_terminated; },
                                                             .components = sharedComponentConnections()});
};

TEST_F(ComponentConnections, LeadFromARequestToTheScheduler)
{
    services().captureToArchive(listOf({"file:///a", "file:///bad%FF"}));
    m_picker = picker();
    EXPECT_EQ(m_monitor->told().size(), 3);
    EXPECT_EQ(m_monitor->told().value(0), QStringLiteral("refreshRecentRepositoryCache ()"));
    EXPECT_TRUE(m_monitor->told().value(1).startsWith(QStringLiteral("queryRepositoriesForItems:withReply: ")));
    EXPECT_EQ(m_monitor->told().value(2), QStringLiteral("queryRecentlyCapturedRepositoriesWithReply: ()"));
    EXPECT_EQ(m_picker->pickerViewController().displayItems().size(), 5) << "two that hold them, one other";
    list().setCurrentIndex(list().model()->index(2, 0));
    m_picker->performArchiveAction();
    const QVariantList items{QByteArray("/a"), QByteArray("/bad\xff")};
    EXPECT_EQ(m_scheduler->told(),
              QStringList{QStringLiteral("quickCapture:toRepository: ") +
                          descriptionOf(QVariantList{QVariant(items), QByteArray("/bad\xff.zephra")})});
    EXPECT_TRUE(m_alerts.shown.isEmpty());
}

TEST_F(ComponentConnections, TellOfAMonitorThatDiesWhileItIsAsked)
{
    for (const char* message : {"refreshRecentRepositoryCache",
                                "queryRepositoriesForItems:withReply:",
                                "queryRecentlyCapturedRepositoriesWithReply:"}) {
        m_alerts.shown.clear();
        m_picker = havrel::ArchivePickerPaneController::makePickerPane();
        m_transport.atNextMessage(placeOf(*m_monitor), message, Fault::DeathBefore);
        m_picker->runWithArchivesForItems({"/a"});
        ASSERT_EQ(m_alerts.shown.size(), 1) << message;
        EXPECT_EQ(m_alerts.shown[0].messageText, QStringLiteral("Cannot connnect with Havrel monitor."));
        EXPECT_EQ(rows(), QStringList{QStringLiteral("none")});
        EXPECT_TRUE(m_picker->window().isVisible());
    }
}

TEST_F(ComponentConnections, TellOfASchedulerThatDiesBeforeItHasTheMessage)
{
    services().captureToArchive(listOf({"file:///a"}));
    m_transport.atNextMessage(placeOf(*m_scheduler), "quickCapture:toRepository:", Fault::DeathBefore);
    picker()->performArchiveAction();
    ASSERT_EQ(m_alerts.shown.size(), 1);
    EXPECT_EQ(m_alerts.shown[0].messageText, QStringLiteral("Cannot connnect with Havrel scheduler."));
    EXPECT_TRUE(m_scheduler->told().isEmpty());
}

TEST_F(ComponentConnections, TellThatThereIsNoSwitchboard)
{
    m_transport.setRefusing(switchboard_names::perUserService(), true);
    services().revealInArchive(listOf({"file:///a"}));
    ASSERT_EQ(m_alerts.shown.size(), 1);
    EXPECT_EQ(m_alerts.shown[0].messageText, QStringLiteral("Cannot connnect with Havrel monitor."));
}

} // namespace
} // namespace havrel::tests
