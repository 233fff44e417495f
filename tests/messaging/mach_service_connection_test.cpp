// SPDX-License-Identifier: MIT
#include "messaging/mach_service_connection.h"

#include "tests/messaging/switchboard_fixture.h"

namespace havrel {
namespace {

using namespace havrel::tests;

const QString kService = QStringLiteral("com.havrel.rotator");

class HVMachServiceConnectionFixture : public SwitchboardFixture
{
protected:
    [[nodiscard]] std::shared_ptr<TestComponent> serve(quint32 options = xpc_options::kNone)
    {
        return TestComponent::serving(m_transport.listenerForService(kService, options), protocols::componentServing());
    }
    [[nodiscard]] static std::shared_ptr<HVMachServiceConnection> make(quint32 options = xpc_options::kNone)
    {
        return std::make_shared<HVMachServiceConnection>(kService, options, protocols::componentServing());
    }
};

TEST_F(HVMachServiceConnectionFixture, ConnectsToTheServiceOfItsName)
{
    const auto component = serve();
    const auto connection = make();

    EXPECT_TRUE(connection->ping());

    EXPECT_EQ(connection->identifier(), kService);
    EXPECT_EQ(m_transport.connectionsMade(kService), 1);
}

TEST_F(HVMachServiceConnectionFixture, ConnectsWithItsOptions)
{
    const auto component = serve(xpc_options::kPrivileged);

    EXPECT_FALSE(make()->ping());
    EXPECT_TRUE(make(xpc_options::kPrivileged)->ping());
}

TEST_F(HVMachServiceConnectionFixture, NamesItsServiceWhetherConnectedOrNot)
{
    const auto component = serve();
    const auto connection = make();

    EXPECT_EQ(connection->machServiceName(), kService);
    EXPECT_TRUE(connection->ping());
    EXPECT_EQ(connection->machServiceName(), kService);
}

TEST_F(HVMachServiceConnectionFixture, TakesAnInterfaceAsItIs)
{
    const auto interface = std::make_shared<const XPCInterface>(protocols::monitoring());

    const auto connection = std::make_shared<HVMachServiceConnection>(kService, xpc_options::kNone, interface);

    EXPECT_EQ(connection->serviceInterface(), interface);
}

TEST_F(HVMachServiceConnectionFixture, LogsWhichServiceItCannotReachAndFailsAsInvalid)
{
    const auto connection = make();

    EXPECT_EQ(connection->syncReturningError().error, invalidConnectionError());

    EXPECT_EQ(logged("failed to verify connection com.havrel.rotator with "), 1);
}

TEST_F(HVMachServiceConnectionFixture, GoesUnderItsName)
{
    make().reset();

    EXPECT_EQ(logged("invalidating connection (com.havrel.rotator)"), 1);
}

} // namespace
} // namespace havrel
