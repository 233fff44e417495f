// SPDX-License-Identifier: MIT
#include "app/opening_bus.h"

#include "tests/support/awaited.h"
#include "tests/support/environment_value.h"
#include "tests/support/private_bus.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace havrel::tests {
namespace {

class OpeningBusTest : public testing::Test
{
protected:
    PrivateBus m_daemon;
    EnvironmentValue m_address{"DBUS_SESSION_BUS_ADDRESS", m_daemon.address()};
    Awaited<bool> m_lost;
};

TEST_F(OpeningBusTest, IsOpenWhenItSaysSo)
{
    OpeningBus bus;
    EXPECT_EQ(bus.opened(), 0);
    EXPECT_EQ(bus.opened(), 0);
    EXPECT_EQ(bus.connection().requestName("org.example.Name"), 0);
}

TEST_F(OpeningBusTest, EndsUnasked)
{
    for (int i = 0; i < 20; ++i)
        const OpeningBus bus;
}

TEST_F(OpeningBusTest, TellsWhyItCannotOpen)
{
    m_daemon.end();
    OpeningBus bus;
    EXPECT_EQ(bus.opened(), ECONNREFUSED);
}

TEST_F(OpeningBusTest, TellsOfItsLoss)
{
    OpeningBus bus;
    bus.whenLost([this] { m_lost.tell(true); });
    ASSERT_EQ(bus.opened(), 0);
    m_daemon.end();
    EXPECT_TRUE(m_lost.one());
}

TEST_F(OpeningBusTest, TellsOfALossThatWasBefore)
{
    OpeningBus bus;
    bus.whenLost([this] { m_lost.tell(true); });
    ASSERT_EQ(bus.opened(), 0);
    m_daemon.end();
    ASSERT_TRUE(m_lost.one());
    bus.whenLost([this] { m_lost.tell(true); });
    EXPECT_EQ(m_lost.first(2).size(), 2U);
}

TEST_F(OpeningBusTest, TellsNobodyWhoAskedToBeToldNoMore)
{
    OpeningBus bus;
    Awaited<bool> early;
    bus.whenLost([&early] { early.tell(true); });
    bus.whenLost({});
    bus.whenLost([this] { m_lost.tell(true); });
    ASSERT_EQ(bus.opened(), 0);
    m_daemon.end();
    ASSERT_TRUE(m_lost.one());
    EXPECT_EQ(early.count(), 0U);
}

} // namespace
} // namespace havrel::tests
