// SPDX-License-Identifier: MIT
#include "platform/desktop_entries.h"

#include "tests/support/environment_value.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace havrel::platform {
namespace {

using tests::EnvironmentValue;

constexpr std::string_view kEntry = "[Desktop Entry]\nType=Application\nExec=client %u\n";

/// Two data folders, "home" before "system", and an empty path for programs.
class DesktopEntries : public ::testing::Test
{
protected:
    void add(std::string_view folder, std::string_view contents) const
    {
        const std::string file = std::string(folder) + "/applications/c.desktop";
        m_tree.add(file);
        m_tree.write(file, contents);
    }
    void addProgram(std::string_view file) const
    {
        m_tree.add(file);
        std::filesystem::permissions(m_tree.path(file), std::filesystem::perms::owner_all);
    }
    [[nodiscard]] QByteArray found() const
    {
        const auto entry = findDesktopEntry("c");
        return entry ? entry->file : QByteArray();
    }
    [[nodiscard]] QByteArray fileIn(const char* folder) const
    {
        return m_tree.bytes(folder) + "/applications/c.desktop";
    }

    TemporaryTree m_tree{"bin/"};
    EnvironmentValue m_home{"XDG_DATA_HOME", m_tree.bytes("home")};
    EnvironmentValue m_dirs{"XDG_DATA_DIRS", "relative:" + m_tree.bytes("system") + ":" + m_tree.bytes("last")};
    EnvironmentValue m_path{"PATH", "relative::" + m_tree.bytes("bin")};
};

TEST_F(DesktopEntries, LieInTheDataFolders)
{
    EXPECT_EQ(dataFolders(), (QByteArrayList{m_tree.bytes("home"), m_tree.bytes("system"), m_tree.bytes("last")}));
}

TEST_F(DesktopEntries, LieInTheDefaultFoldersWithoutAnEnvironment)
{
    const EnvironmentValue user("HOME", "/h");
    const EnvironmentValue home("XDG_DATA_HOME", "");
    const EnvironmentValue dirs("XDG_DATA_DIRS", "");
    EXPECT_EQ(dataFolders(), (QByteArrayList{"/h/.local/share", "/usr/local/share", "/usr/share"}));
}

TEST_F(DesktopEntries, AreFoundInTheFirstFolderThatHasOne)
{
    EXPECT_EQ(found(), "");
    add("last", kEntry);
    EXPECT_EQ(found(), fileIn("last"));
    add("system", kEntry);
    EXPECT_EQ(found(), fileIn("system"));
    add("home", kEntry);
    EXPECT_EQ(found(), fileIn("home"));
}

TEST_F(DesktopEntries, HideThoseOfLaterFolders)
{
    add("system", kEntry);
    for (const char* contents :
         {"[Desktop Entry]\nType=Application\nHidden=true\n", "[Desktop Entry]\nType=Link\n", ""}) {
        add("home", contents);
        EXPECT_EQ(found(), "") << contents;
    }
}

TEST_F(DesktopEntries, CountOnlyWhenTheProgramThatTheyNeedIsThere)
{
    add("system", std::string(kEntry) + "TryExec=client\n");
    EXPECT_EQ(found(), "");
    m_tree.add("bin/client"); // not executable
    EXPECT_EQ(found(), "");
    addProgram("bin/client");
    EXPECT_EQ(found(), fileIn("system"));
}

TEST_F(DesktopEntries, FindProgramsByTheirPaths)
{
    addProgram("bin/client");
    m_tree.add("bin/folder/");
    EXPECT_EQ(findProgram("client"), m_tree.bytes("bin/client"));
    EXPECT_EQ(findProgram(m_tree.bytes("bin/client")), m_tree.bytes("bin/client"));
    for (const char* none : {"", "none", "folder", "./client", "/"})
        EXPECT_EQ(findProgram(none), "") << none;
    EXPECT_EQ(findProgram(QByteArray("client\0x", 8)), "");
}

} // namespace
} // namespace havrel::platform
