// SPDX-License-Identifier: MIT
#include "integrations/places.h"

#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace havrel::integrations {
namespace {

/// Variables of the environment, as they were again afterwards.
class PlacesOf : public testing::Test
{
protected:
    PlacesOf()
    {
        for (const char* name : kNames)
            m_before.emplace_back(name, qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name)) : std::nullopt);
        for (const char* name : kNames)
            qunsetenv(name);
        qputenv("HOME", "/home/me");
    }
    ~PlacesOf() override
    {
        for (const auto& [name, value] : m_before)
            value ? qputenv(name, *value) : qunsetenv(name);
    }

    static constexpr std::array kNames{
        "HOME", "PATH", "XDG_DATA_HOME", "XDG_DATA_DIRS", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS"};
    std::vector<std::pair<const char*, std::optional<QByteArray>>> m_before;
};

TEST_F(PlacesOf, ABareEnvironmentAreThoseOfTheSpecification)
{
    const Places places = Places::ofThisProcess();
    EXPECT_EQ(places.dataHome, "/home/me/.local/share");
    EXPECT_EQ(places.configHome, "/home/me/.config");
    EXPECT_EQ(places.dataFolders, (QByteArrayList{"/usr/local/share", "/usr/share"}));
    EXPECT_EQ(places.configFolders, QByteArrayList{"/etc/xdg"});
}

TEST_F(PlacesOf, AnEnvironmentThatSaysThemAreThoseButNoRelativeOnes)
{
    qputenv("XDG_DATA_HOME", "/data");
    qputenv("XDG_CONFIG_HOME", "config");
    qputenv("XDG_DATA_DIRS", "/a:b::/c");
    qputenv("XDG_CONFIG_DIRS", ":");
    const Places places = Places::ofThisProcess();
    EXPECT_EQ(places.dataHome, "/data");
    EXPECT_EQ(places.configHome, "/home/me/.config");
    EXPECT_EQ(places.dataFolders, (QByteArrayList{"/a", "/c"}));
    EXPECT_EQ(places.configFolders, QByteArrayList{"/etc/xdg"});
}

TEST(Places, FindProgramsAndModules)
{
    const TemporaryTree tree({"bin/", "other/program", "other/text", "lib/i386-linux-gnu/a/b.so", "lib/c.so"});
    ::chmod(tree.path("other/program").c_str(), 0755);
    ::chmod(tree.path("other/text").c_str(), 0644);
    Places places;
    places.programFolders = {tree.bytes("bin"), tree.bytes("other")};
    places.libraryFolders = {tree.bytes("missing"), tree.bytes("lib")};
    EXPECT_TRUE(places.hasProgram("program"));
    EXPECT_FALSE(places.hasProgram("text"));
    EXPECT_FALSE(places.hasProgram("nothing"));
    EXPECT_TRUE(places.hasModule("a/b.so"));
    EXPECT_TRUE(places.hasModule("c.so"));
    EXPECT_FALSE(places.hasModule("b.so"));
}

} // namespace
} // namespace havrel::integrations
