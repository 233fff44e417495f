// SPDX-License-Identifier: MIT
#include "platform/desktop_entry.h"

#include <gtest/gtest.h>

namespace havrel::platform {
namespace {

struct EntryRow
{
    const char* label;
    QByteArray contents;
    DesktopEntry entry;
};

TEST(DesktopEntry, IsReadFromItsGroup)
{
    const EntryRow rows[] = {
        {"all_keys",
         "# comment\n\n[Desktop Entry]\nType=Application\nName=Client\nIcon=i\nExec=client %u\nTryExec=client\n"
         "Path=/srv\nHidden=true\nDBusActivatable=true\n",
         {.name = "Client",
          .icon = "i",
          .exec = "client %u",
          .tryExec = "client",
          .workingPath = "/srv",
          .hidden = true,
          .busActivatable = true,
          .isApplication = true}},
        {"other_groups",
         "[Other]\nName=no\n[Desktop Entry]\nName=yes\n[Desktop Action a]\nName=no\nExec=no\n",
         {.name = "yes"}},
        {"blanks_about_the_equals", "[Desktop Entry]\nExec =  a b \n", {.exec = "a b"}},
        {"escapes", "[Desktop Entry]\nName=a\\sb\\n\\t\\r\\\\s\\x\\\n", {.name = "a b\n\t\r\\s\\x\\"}},
        {"languages_are_other_keys", "[Desktop Entry]\nName=one\nName[de]=eins\n", {.name = "one"}},
        {"comment_with_an_equals", "[Desktop Entry]\n#Name=no\n=no\nno\n", {}},
        {"windows_line_ends", "[Desktop Entry]\r\nName=a\r\n", {.name = "a"}},
        {"no_newline_at_the_end", "[Desktop Entry]\nName=a", {.name = "a"}},
        {"last_one_counts", "[Desktop Entry]\nHidden=true\nHidden=false\n", {}},
        {"bytes_stay", "[Desktop Entry]\nName=\xff\xc3\xa9\n", {.name = "\xff\xc3\xa9"}},
        {"link", "[Desktop Entry]\nType=Link\n", {}},
    };
    for (const EntryRow& row : rows) {
        const auto entry = parseDesktopEntry(row.contents);
        ASSERT_TRUE(entry) << row.label;
        EXPECT_EQ(entry->name, row.entry.name) << row.label;
        EXPECT_EQ(entry->icon, row.entry.icon) << row.label;
        EXPECT_EQ(entry->exec, row.entry.exec) << row.label;
        EXPECT_EQ(entry->tryExec, row.entry.tryExec) << row.label;
        EXPECT_EQ(entry->workingPath, row.entry.workingPath) << row.label;
        EXPECT_EQ(entry->hidden, row.entry.hidden) << row.label;
        EXPECT_EQ(entry->busActivatable, row.entry.busActivatable) << row.label;
        EXPECT_EQ(entry->isApplication, row.entry.isApplication) << row.label;
    }
}

TEST(DesktopEntry, IsNotThereWithoutItsGroup)
{
    for (const char* contents : {"", "\n", "Name=a\n", "[Desktop  Entry]\nName=a\n", "[Other]\n"})
        EXPECT_FALSE(parseDesktopEntry(contents)) << contents;
}

struct CommandRow
{
    const char* exec;
    QByteArrayList words;
};

const QByteArrayList kUris{"file:///a%20b", "file:///bad%FF", "zephra:c"};

DesktopEntry entryWith(const char* exec)
{
    return {.file = "/d/e.desktop", .name = "The Name", .icon = "pic", .exec = exec};
}

TEST(DesktopEntry, GivesTheWordsOfItsCommand)
{
    const CommandRow rows[] = {
        {"p %U", {"p", "file:///a%20b", "file:///bad%FF", "zephra:c"}},
        {"p %F", {"p", "/a b", "/bad\xff", "zephra:c"}},
        {"p %u", {"p", "file:///a%20b"}},
        {"p %f x", {"p", "/a b", "x"}},
        {"p --open=%f %u", {"p", "--open=/a b", "file:///a%20b"}},
        {"p", {"p", "/a b", "/bad\xff", "zephra:c"}}, // no place: at the end
        {"p %%F %i %c %k -%k- %u",
         {"p", "%F", "--icon", "pic", "The Name", "/d/e.desktop", "-/d/e.desktop-", "file:///a%20b"}},
        {"p %d%D%n%N%v%m %m %u", {"p", "", "file:///a%20b"}},
        {"  p\t\"a  b\" %u ", {"p", "a  b", "file:///a%20b"}},
        {R"("/o p/q" "\"\`\$\\" "\n" %u)", {"/o p/q", "\"`$\\", "\\n", "file:///a%20b"}},
        {R"(p a\ b c"d e"f "" %u)", {"p", "a b", "cd ef", "", "file:///a%20b"}},
        {"p $HOME `x` ; %u", {"p", "$HOME", "`x`", ";", "file:///a%20b"}}, // no shell looks at it
        {"p \"%u\"", {"p", "file:///a%20b"}},
    };
    for (const CommandRow& row : rows) {
        const auto words = commandOf(entryWith(row.exec), kUris);
        ASSERT_TRUE(words) << row.exec;
        EXPECT_EQ(*words, row.words) << row.exec;
    }
}

TEST(DesktopEntry, LeavesThePlacesOfFilesOutWhenThereAreNone)
{
    const CommandRow rows[] = {{"p %U", {"p"}}, {"p %f", {"p"}}, {"p", {"p"}}, {"p x%ux", {"p", "xx"}}};
    for (const CommandRow& row : rows)
        EXPECT_EQ(commandOf(entryWith(row.exec), {}), row.words) << row.exec;
    DesktopEntry entry = entryWith("p %i");
    entry.icon.clear();
    EXPECT_EQ(commandOf(entry, {}), QByteArrayList{"p"});
}

TEST(DesktopEntry, HasNoCommandThatMakesNoSense)
{
    for (const char* exec : {"", "  ", "p \"open", "p \\", "p %", "p %x", "p a%F", "p %Ua", "p x%i", "\"\" a", "%i"}) {
        DesktopEntry entry = entryWith(exec);
        entry.icon.clear();
        EXPECT_FALSE(commandOf(entry, {})) << exec;
    }
}

} // namespace
} // namespace havrel::platform
