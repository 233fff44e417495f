// SPDX-License-Identifier: MIT
#include "messaging/bus_names.h"

#include "messaging/protocol.h"
#include "messaging/protocols.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

struct Row
{
    const char* logical;
    const char* service;
    const char* starter;
    const char* path;
};

constexpr Row kRows[] = {
    {"com.havrel.switchboard.1000",
     "com.havrel.switchboard._1000",
     "com.havrel.Switchboard",
     "/com/havrel/connection/com_havrel_switchboard__1000"},
    {"com.havrel.switchboard.0",
     "com.havrel.switchboard._0",
     "com.havrel.Switchboard",
     "/com/havrel/connection/com_havrel_switchboard__0"},
    {"com.havrel.switchboard", "com.havrel.switchboard", "", "/com/havrel/connection/com_havrel_switchboard"},
    {"com.7up.x-y", "com._7up.x-y", "", "/com/havrel/connection/com__7up_x_y"},
};

TEST(BusNames, AreLegalOnTheBus)
{
    for (const Row& row : kRows) {
        const QString logical = QString::fromLatin1(row.logical);
        EXPECT_EQ(bus_names::ofService(logical), row.service);
        EXPECT_EQ(bus_names::ofStarter(logical), row.starter);
        EXPECT_EQ(bus_names::pathOfService(logical), row.path);
    }
}

TEST(BusNames, OfMessagesLeadBackToThem)
{
    EXPECT_EQ(bus_names::ofMessage("queryEndpointForIdentifier:withReply:"), "queryEndpointForIdentifier_withReply_");
    for (const Protocol* protocol : protocols::all()) {
        EXPECT_EQ(bus_names::protocolOf(bus_names::ofProtocol(protocol->name())), protocol->name());
        for (const ProtocolMessage& each : protocol->messages())
            EXPECT_EQ(bus_names::keywordNameOf(bus_names::ofMessage(each.keywordName)), each.keywordName);
    }
    EXPECT_EQ(bus_names::protocolOf("org.freedesktop.DBus.Peer"), std::nullopt);
}

TEST(BusNames, OfEndpointsTellTheirBus)
{
    using platform::BusKind;
    for (const BusKind kind : {BusKind::Session, BusKind::System})
        EXPECT_EQ(bus_names::busOfEndpoint(bus_names::endpointsOn(kind) + "/1"), kind);
}

} // namespace
} // namespace havrel
