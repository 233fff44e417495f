// SPDX-License-Identifier: MIT
#include "components/component_starter.h"

#include "components/component.h"
#include "messaging/protocols.h"
#include "tests/messaging/bus_world.h"
#include "tests/support/in_process_transport.h"
#include "tests/support/recording_logr.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

using namespace Qt::Literals::StringLiterals;
using std::chrono::milliseconds;

const QString kScheduler = u"com.havrel.scheduler"_s;
const QString kSchedulersName = u"com.havrel.Scheduler"_s;

class EveryComponent final : public Component
{
};

class ComponentStarter : public ::testing::Test
{
protected:
    [[nodiscard]] std::unique_ptr<XPCListener> serve()
    {
        auto listener = m_transport.listenerForService(kSchedulersName, xpc_options::kNone);
        listener->setAcceptor([this](const XPCConnectionPtr& connection) {
            connection->setExportedInterface(std::make_shared<const XPCInterface>(protocols::componentServing()));
            connection->setExportedObject(m_component);
            return true;
        });
        EXPECT_EQ(listener->resume(), 0);
        return listener;
    }
    [[nodiscard]] QStringList logged() { return m_logr->lines().filter(u"cannot start com.havrel.Scheduler: "_s); }

    const std::shared_ptr<EveryComponent> m_component = std::make_shared<EveryComponent>();
    std::shared_ptr<tests::RecordingLogr> m_logr = std::make_shared<tests::RecordingLogr>();
    tests::SharedLoggerScope m_sharedLogger{m_logr};
    tests::InProcessTransport m_transport;
};

TEST_F(ComponentStarter, KnowsTheNamesByWhichComponentsAreStarted)
{
    EXPECT_EQ(starterOf(kScheduler), kSchedulersName);
    EXPECT_EQ(starterOf(u"com.havrel.monitor"_s), u"com.havrel.Monitor"_s);
    for (const QString& each : {u"com.havrel.switchboard"_s, kSchedulersName, u"com.example.echo"_s, QString()})
        EXPECT_TRUE(starterOf(each).isNull()) << qPrintable(each);
}

TEST_F(ComponentStarter, WaitsUntilTheComponentAnswers)
{
    const auto listener = serve();

    startComponent(m_transport, kScheduler);

    EXPECT_EQ(m_transport.connectionsMade(kSchedulersName), 1);
    EXPECT_EQ(logged(), QStringList());
}

TEST_F(ComponentStarter, GivesUpAtOnceWhatCannotBeStarted)
{
    startComponent(m_transport, kScheduler);

    EXPECT_EQ(logged().size(), 1);
}

TEST_F(ComponentStarter, DoesNotWaitForEverForOneThatHangs)
{
    const auto listener = serve();
    m_transport.setStopped(kSchedulersName, true);

    startComponent(m_transport, kScheduler, milliseconds(1));

    ASSERT_EQ(logged().size(), 1);
    EXPECT_TRUE(logged().constFirst().contains(u"it does not answer"_s));
    m_transport.setStopped(kSchedulersName, false);
}

TEST_F(ComponentStarter, LeavesOthersAlone)
{
    const auto listener = serve();

    startComponent(m_transport, u"com.example.echo"_s);

    EXPECT_EQ(m_transport.connectionsMade(kSchedulersName), 0);
    EXPECT_EQ(logged(), QStringList());
}

TEST_F(ComponentStarter, TellsOfAProgramThatTheBusCannotStart)
{
    tests::BusWorld world;
    world.bus().addService("com.havrel.Scheduler", "/bin/false");

    startComponent(world.caller(), kScheduler);

    EXPECT_EQ(logged().size(), 1);
}

} // namespace
} // namespace havrel
