// SPDX-License-Identifier: MIT
#include "platform/connected_applications.h"

#include "platform/bus_connection.h"
#include "tests/support/awaited.h"
#include "tests/support/private_bus.h"

#include <gtest/gtest.h>

namespace havrel::platform {
namespace {

using tests::Awaited;
using tests::PrivateBus;

constexpr const char* kClient = "com.havrel.client";

/// An application that keeps what it is asked.
class FakeApplication
{
public:
    explicit FakeApplication(const PrivateBus& bus)
        : m_bus({.address = bus.address()})
    {
        const auto keep = [this](BusRequest request) {
            asked.tell({request.origin().member, request.values()});
            (void)request.reply();
        };
        EXPECT_EQ(m_bus.open(), 0);
        EXPECT_EQ(m_bus.exportInterface("/com/havrel/client",
                                        {.name = "org.freedesktop.Application",
                                         .methods = {{.name = "Activate", .takes = "a{sv}", .call = keep},
                                                     {.name = "Open", .takes = "asa{sv}", .call = keep}}},
                                        m_export),
                  0);
        EXPECT_EQ(m_bus.requestName(kClient), 0);
    }

    Awaited<std::pair<QByteArray, QVariantList>> asked;

private:
    BusConnection m_bus;
    BusRegistration m_export;
};

TEST(ConnectedApplications, ReachesWhatHasAnOwnerAndWhatTheBusCanStart)
{
    const PrivateBus bus;
    bus.addService("com.havrel.startable", "/bin/true");
    BusConnection connection({.address = bus.address()});
    ConnectedApplications applications(connection);
    EXPECT_FALSE(applications.canReach(kClient)); // not open yet
    ASSERT_EQ(connection.open(), 0);
    EXPECT_FALSE(applications.canReach(kClient));
    // The bus hears of new files some time later, unless it is told to look.
    ASSERT_EQ(connection
                  .callAndWait({.destination = "org.freedesktop.DBus",
                                .path = "/org/freedesktop/DBus",
                                .interface = "org.freedesktop.DBus",
                                .member = "ReloadConfig"})
                  .error,
              0);
    EXPECT_TRUE(applications.canReach("com.havrel.startable"));
    const FakeApplication client(bus);
    EXPECT_TRUE(applications.canReach(kClient));
}

TEST(ConnectedApplications, HandsOverURIsAndParametersAsTheyAre)
{
    const PrivateBus bus;
    BusConnection connection({.address = bus.address()});
    ASSERT_EQ(connection.open(), 0);
    ConnectedApplications applications(connection);
    FakeApplication client(bus);
    EXPECT_EQ(applications.activate(kClient), 0);
    EXPECT_EQ(applications.open(kClient, {.uris = {"file:///archive"}, .parameters = {1, {"/a\xFF", "/b"}}}), 0);
    const auto asked = client.asked.first(2);
    ASSERT_EQ(asked.size(), 2U);
    EXPECT_EQ(asked[0].first, "Activate");
    EXPECT_EQ(asked[1].first, "Open");
    const QVariantList structure{qint64{1}, QVariantList{QByteArray("/a\xFF"), QByteArray("/b")}};
    const QVariantMap data{{QStringLiteral("com.havrel.parameters"), structure}};
    EXPECT_EQ(asked[1].second, (QVariantList{QStringList{QStringLiteral("file:///archive")}, data}));
}

TEST(ConnectedApplications, AreServedAtThePathThatTheirIdGives)
{
    EXPECT_EQ(objectPathOfApplication("com.havrel.client"), "/com/havrel/client");
    EXPECT_EQ(objectPathOfApplication("com.some-body.app"), "/com/some_body/app");
}

} // namespace
} // namespace havrel::platform
