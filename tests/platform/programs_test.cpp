// SPDX-License-Identifier: MIT
#include "platform/programs.h"

#include "tests/support/environment_value.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace havrel::platform {
namespace {

using namespace std::chrono_literals;

TEST(Programs, TellSinceWhenTheyRun)
{
    const auto now = std::chrono::system_clock::now();
    const auto beginning = beginningOfProgram("platform_tests");
    ASSERT_TRUE(beginning.has_value());
    EXPECT_LE(*beginning, now);
    const TemporaryTree tree({"file"});
    EXPECT_GT(changeOfItem(tree.bytes("file")), beginning) << "made after this program began";
    EXPECT_EQ(beginningOfProgram("no-such-program"), std::nullopt);
    EXPECT_EQ(beginningOfProgram(""), std::nullopt);
}

TEST(Programs, AreWhatMayBeExecuted)
{
    const TemporaryTree tree({"program", "text"});
    ASSERT_EQ(::chmod(tree.path("program").c_str(), 0755), 0);
    ASSERT_EQ(::chmod(tree.path("text").c_str(), 0644), 0);
    tree.addLink("link", "program");
    EXPECT_TRUE(isExecutable(tree.bytes("program")));
    EXPECT_TRUE(isExecutable(tree.bytes("link")));
    EXPECT_FALSE(isExecutable(tree.bytes("text")));
    EXPECT_FALSE(isExecutable(tree.bytes("missing")));
}

TEST(Programs, AreFoundByTheirNamesInTheOrderOfThePath)
{
    const TemporaryTree tree({"one/tool/", "two/tool", "two/text", "three/tool"});
    ASSERT_EQ(::chmod(tree.path("two/tool").c_str(), 0755), 0);
    ASSERT_EQ(::chmod(tree.path("three/tool").c_str(), 0755), 0);
    const tests::EnvironmentValue path(
        "PATH", "three:" + tree.bytes("one") + ':' + tree.bytes("two") + ':' + tree.bytes("three"));
    EXPECT_EQ(programOfName("tool"), tree.bytes("two/tool")) << "neither a folder nor relative to anything";
    EXPECT_EQ(programOfName("text"), "");
    EXPECT_EQ(programOfName("missing"), "");
}

TEST(Items, TellWhenTheyChanged)
{
    const TemporaryTree tree({"file"});
    const auto change = changeOfItem(tree.bytes("file"));
    ASSERT_TRUE(change.has_value());
    EXPECT_LT(std::chrono::abs(std::chrono::system_clock::now() - *change), 1h);
    EXPECT_EQ(changeOfItem(tree.bytes("missing")), std::nullopt);
}

} // namespace
} // namespace havrel::platform
