// SPDX-License-Identifier: MIT
#include "components/published_component.h"

#include "components/component.h"
#include "components/switchboard.h"
#include "messaging/connection.h"
#include "messaging/shared_connections.h"
#include "messaging/switchboard_connection.h"
#include "messaging/switchboard_names.h"
#include "tests/components/switchboard_peer.h"
#include "tests/support/handled_events.h"
#include "tests/support/in_process_transport.h"

#include <QCoreApplication>

#include <array>
#include <atomic>
#include <cerrno>

#include <unistd.h>

namespace havrel {
namespace {

using namespace Qt::Literals::StringLiterals;
using tests::Awaited;
using tests::InProcessTransport;
using tests::SwitchboardPeer;

const QString kEcho = u"com.havrel.echo"_s;
const QString kEchosName = u"com.havrel.Echo"_s;

class EchoComponent final : public Component
{
};

/// The shared switchboard connection of this process, at a switchboard in this process.
class APublishedComponent : public ::testing::Test
{
protected:
    APublishedComponent() { XPCTransport::setShared(&m_transport); }
    ~APublishedComponent() override
    {
        m_published.reset();
        runMainQueue();
        SharedConnections::all().forget();
        XPCTransport::setShared(nullptr);
    }

    static void runMainQueue()
    {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
    void startSwitchboard()
    {
        m_switchboard.reset();
        m_switchboard = std::make_unique<Switchboard>(m_transport, SwitchboardSettings{.serviceName = m_service});
        ASSERT_EQ(m_switchboard->start(), 0);
    }
    /// As when its process is killed.
    void killSwitchboard()
    {
        m_switchboard.reset();
        m_transport.invalidateFromFarSide(m_service);
        const auto connection = HVConnection::switchboardConnection();
        ASSERT_TRUE(tests::handleEventsUntil([&] { return !connection->connected(); }));
    }
    /// And publishes, which the switchboard has handled when this returns.
    static void hearOfTheStart()
    {
        runMainQueue(); // connects
        runMainQueue(); // hears of that
        EXPECT_TRUE(HVConnection::switchboardConnection()->ping());
    }
    [[nodiscard]] int publish()
    {
        m_published = std::make_unique<PublishedComponent>(m_maker, m_settings);
        return m_published->start();
    }
    [[nodiscard]] std::unique_ptr<SwitchboardPeer> peer()
    {
        return std::make_unique<SwitchboardPeer>(m_transport, xpc_options::kNone, m_service);
    }
    /// Whether the component at the other end of \p connection answers.
    static bool answers(const XPCConnectionPtr& connection)
    {
        Awaited<bool> answer;
        connection->setRemoteObjectInterface(std::make_shared<const XPCInterface>(protocols::componentServing()));
        connection->resume();
        connection->remoteObjectProxyWithErrorHandler([&](const Error&) { answer.tell(false); })
            ->send("barrierWithCompletion:", {}, [&](const QVariantList&) { answer.tell(true); });
        const bool result = answer.one().value_or(false);
        connection->invalidate();
        return result;
    }
    [[nodiscard]] bool answersByName()
    {
        return answers(m_transport.connectionToService(kEchosName, xpc_options::kNone));
    }
    [[nodiscard]] bool answersAt(const std::optional<XPCEndpoint>& endpoint)
    {
        return endpoint && answers(m_transport.connectionToEndpoint(*endpoint));
    }

    int m_argumentCount = 1;
    std::array<char, 5> m_program{"test"};
    std::array<char*, 2> m_arguments{m_program.data(), nullptr};
    QCoreApplication m_application{m_argumentCount, m_arguments.data()};
    const QString m_service = switchboard_names::perUserService();
    InProcessTransport m_transport;
    std::unique_ptr<Switchboard> m_switchboard;
    std::atomic<int> m_made = 0;
    const PublishedComponent::Maker m_maker = [this] {
        ++m_made;
        return std::make_shared<EchoComponent>();
    };
    const PublicationSettings m_settings{
        .identifier = kEcho, .serviceName = kEchosName, .protocol = protocols::componentServing()};
    std::unique_ptr<PublishedComponent> m_published;
};

TEST_F(APublishedComponent, IsFoundAtTheSwitchboardAndByItsName)
{
    startSwitchboard();

    ASSERT_EQ(publish(), 0);

    EXPECT_TRUE(answersAt(peer()->query(kEcho)));
    EXPECT_TRUE(answersByName());
    EXPECT_EQ(m_made, 2) << "what is shown is made for each connection";
}

TEST_F(APublishedComponent, IsPublishedOnceAtASwitchboard)
{
    startSwitchboard();
    const auto watcher = peer();
    watcher->observe(u"p"_s, switchboard_names::kEndpointPublished);

    ASSERT_EQ(publish(), 0);
    runMainQueue(); // hears that it is connected
    EXPECT_TRUE(answersByName());
    EXPECT_TRUE(HVConnection::switchboardConnection()->ping());

    EXPECT_EQ(watcher->heard().size(), 1);
}

TEST_F(APublishedComponent, ServesItsNameWhileThereIsNoSwitchboard)
{
    EXPECT_EQ(publish(), 0);

    EXPECT_TRUE(answersByName());
}

TEST_F(APublishedComponent, IsPublishedWhenASwitchboardStarts)
{
    ASSERT_EQ(publish(), 0);

    startSwitchboard(); // which distributes it
    hearOfTheStart();

    EXPECT_TRUE(answersAt(peer()->query(kEcho)));
}

TEST_F(APublishedComponent, IsPublishedAgainAtEveryLaterSwitchboard)
{
    startSwitchboard();
    ASSERT_EQ(publish(), 0);
    for (int i = 0; i < 3; ++i) {
        killSwitchboard();
        startSwitchboard();
        hearOfTheStart();

        EXPECT_TRUE(answersAt(peer()->query(kEcho))) << i;
    }
}

/// Whoever has had it started by its name asks the switchboard next.
TEST_F(APublishedComponent, IsPublishedBeforeItAcceptsWhoComesByItsName)
{
    startSwitchboard();
    ASSERT_EQ(publish(), 0);
    killSwitchboard();
    startSwitchboard();
    EXPECT_EQ(peer()->query(kEcho), std::nullopt) << "its main queue has not run yet";

    EXPECT_TRUE(answersByName());

    EXPECT_TRUE(answersAt(peer()->query(kEcho)));
}

TEST_F(APublishedComponent, IsNotForOtherUsers)
{
    startSwitchboard();
    ASSERT_EQ(publish(), 0);
    const std::optional<XPCEndpoint> endpoint = peer()->query(kEcho);
    ASSERT_TRUE(endpoint);

    m_transport.setUser(kEchosName, ::geteuid() + 1);
    m_transport.setUser(QString::fromLatin1(endpoint->pathPrefix), ::geteuid() + 1);

    EXPECT_FALSE(answersByName());
    EXPECT_FALSE(answersAt(endpoint));
}

TEST_F(APublishedComponent, IsTheOnlyOneOfItsName)
{
    startSwitchboard();
    ASSERT_EQ(publish(), 0);
    PublishedComponent second(m_maker, m_settings);

    EXPECT_EQ(second.start(), EEXIST);
}

TEST_F(APublishedComponent, IsGoneWithItsOwner)
{
    startSwitchboard();
    ASSERT_EQ(publish(), 0);
    const std::optional<XPCEndpoint> endpoint = peer()->query(kEcho);

    m_published.reset();

    EXPECT_FALSE(answersByName());
    EXPECT_FALSE(answersAt(endpoint));
}

} // namespace
} // namespace havrel
