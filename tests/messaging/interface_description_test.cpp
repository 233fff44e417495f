// SPDX-License-Identifier: MIT
#include "messaging/interface_description.h"

#include "messaging/protocol.h"
#include "messaging/protocols.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

namespace havrel {
namespace {

std::string contentsOf(const std::filesystem::path& path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::filesystem::path folder()
{
    return std::filesystem::path(HAVREL_SOURCES) / "resources/bus";
}

TEST(InterfaceDescription, IsWhatTheFilesForOtherProgramsSay)
{
    for (const Protocol* each : protocols::all()) {
        const auto path = folder() / ("com.havrel." + each->name().toStdString() + ".xml");
        EXPECT_EQ(contentsOf(path), interfaceDescriptionOf(*each).toStdString())
            << path << ": the target interface_descriptions writes it anew";
    }
}

TEST(InterfaceDescription, HasAFileForNothingElse)
{
    std::set<std::string> known{"com.havrel.Service.xml"}; // the service's own, written by hand
    for (const Protocol* each : protocols::all())
        known.insert("com.havrel." + each->name().toStdString() + ".xml");
    for (const auto& each : std::filesystem::directory_iterator(folder()))
        if (each.path().extension() == ".xml") {
            EXPECT_TRUE(known.contains(each.path().filename().string())) << each.path();
        }
}

constexpr const char* kShelf =
    R"xml(<!DOCTYPE node PUBLIC "-//freedesktop//DTD D-BUS Object Introspection 1.0//EN"
                      "http://www.freedesktop.org/standards/dbus/1.0/introspect.dtd">
<!-- SPDX-License-Identifier: MIT -->
<node>
  <interface name="com.havrel.Shelf">
    <!-- objects that show it also show com.havrel.HVComponentMessaging -->
    <method name="put_at_withReply_">
      <arg name="put" type="s" direction="in"/>
      <arg name="at" type="a(so)" direction="in"/>
      <arg name="withReply" type="b" direction="out"/>
    </method>
    <method name="clear">
      <annotation name="org.freedesktop.DBus.Method.NoReply" value="true"/>
    </method>
  </interface>
</node>
)xml";

TEST(InterfaceDescription, NamesArgumentsByTheirKeywords)
{
    const Protocol protocol("Shelf",
                            {&protocols::componentMessaging()},
                            {{"put:at:withReply:", {"s", "a(so)"}, QByteArrayList{"b"}}, {"clear"}});
    EXPECT_EQ(interfaceDescriptionOf(protocol), kShelf);
}

TEST(InterfaceDescription, OfAnObjectHasTheAdoptedProtocolsToo)
{
    const QByteArray text = introspectionOf(protocols::scheduling());
    for (const char* each : {"ZephronScheduling",
                             "HVComponentServing",
                             "HVComponentMessaging",
                             "HVComponentInstalling",
                             "HVComponentPreferencing",
                             "CommandListenerServiceProvider"})
        EXPECT_EQ(text.count("<interface name=\"com.havrel." + QByteArray(each) + "\">"), 1) << each;
}

} // namespace
} // namespace havrel
