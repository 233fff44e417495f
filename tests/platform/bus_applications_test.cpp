// SPDX-License-Identifier: MIT
#include "platform/bus_applications.h"

#include "platform/bus_connection.h"
#include "tests/support/awaited.h"
#include "tests/support/private_bus.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace havrel::tests {
namespace {

using platform::BusConnection;
using platform::BusInterface;
using platform::BusMethod;
using platform::BusRequest;
using platform::ConnectedBusApplications;

constexpr const char* kName = "com.havrel.test-client";
constexpr const char* kPath = "/com/havrel/test_client";

/// An application on a bus, and the way to it from another connection.
class BusApplications : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(m_bus.open(), 0); }

    void serve()
    {
        ASSERT_EQ(m_client.open(), 0);
        ASSERT_EQ(m_client.exportInterface(kPath, applicationInterface(), m_registration), 0);
        ASSERT_EQ(m_client.requestName(kName), 0);
    }

    PrivateBus m_daemon;
    Awaited<QVariantList> m_activated;
    Awaited<QVariantList> m_opened;
    BusConnection m_client{{.address = m_daemon.address()}};
    platform::BusRegistration m_registration;
    BusConnection m_bus{{.address = m_daemon.address()}};
    ConnectedBusApplications m_applications{m_bus};

private:
    static BusMethod noting(const char* name, const char* takes, Awaited<QVariantList>& noted)
    {
        return {.name = name, .takes = takes, .call = [&noted](BusRequest request) {
                    noted.tell(request.values());
                    EXPECT_EQ(request.reply(), 0);
                }};
    }
    BusInterface applicationInterface()
    {
        BusInterface declared{.name = "org.freedesktop.Application", .methods = {}};
        declared.methods.push_back(noting("Activate", "a{sv}", m_activated));
        declared.methods.push_back(noting("Open", "asa{sv}", m_opened));
        return declared;
    }
};

TEST_F(BusApplications, AreReachedWhenTheyRun)
{
    EXPECT_FALSE(m_applications.canReach(kName));
    serve();
    EXPECT_TRUE(m_applications.canReach(kName));
}

TEST_F(BusApplications, AreReachedWhenTheBusCanStartThem)
{
    const PrivateBus daemon;
    daemon.addService(kName, "/bin/false");
    BusConnection bus({.address = daemon.address()});
    ASSERT_EQ(bus.open(), 0);
    // The bus has listed its services by then.
    ASSERT_EQ(bus.callAndWait({.destination = "org.freedesktop.DBus",
                               .path = "/org/freedesktop/DBus",
                               .interface = "org.freedesktop.DBus",
                               .member = "ReloadConfig"})
                  .error,
              0);
    EXPECT_TRUE(ConnectedBusApplications(bus).canReach(kName));
    EXPECT_FALSE(ConnectedBusApplications(bus).canReach("com.havrel.other"));
}

TEST_F(BusApplications, AreActivated)
{
    serve();
    EXPECT_EQ(m_applications.activate(kName), 0);
    EXPECT_EQ(m_activated.one(), QVariantList{QVariantMap()});
}

TEST_F(BusApplications, OpenWhatTheyAreGiven)
{
    serve();
    const platform::OpenRequest request{{"file:///my%20own.zephra"}, {1, {"/a", "/bad\xff"}}};
    EXPECT_EQ(m_applications.open(kName, request), 0);
    const QVariantList items{QByteArray("/a"), QByteArray("/bad\xff")};
    const QVariantList parameters{1LL, QVariant(items)};
    EXPECT_EQ(m_opened.one(),
              (QVariantList{QStringList{QStringLiteral("file:///my%20own.zephra")},
                            QVariantMap{{QStringLiteral("com.havrel.parameters"), QVariant(parameters)}}}));
}

TEST_F(BusApplications, AreOutOfReachWithoutABus)
{
    m_daemon.end();
    EXPECT_FALSE(m_applications.canReach(kName));
    BusConnection closed;
    EXPECT_EQ(ConnectedBusApplications(closed).activate(kName), ENOTCONN);
    EXPECT_EQ(ConnectedBusApplications(closed).open(kName, {}), ENOTCONN);
}

} // namespace
} // namespace havrel::tests
