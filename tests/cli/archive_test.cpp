// SPDX-License-Identifier: MIT
#include "components/archive_file.h"
#include "components/archive_registry.h"
#include "components/capture_engine.h"
#include "platform/extended_attributes.h"
#include "platform/file_contents.h"
#include "platform/items.h"
#include "platform/programs.h"
#include "tests/support/environment_value.h"
#include "tests/support/outside_program.h"
#include "tests/support/program_run.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace havrel::tests {
namespace {

/// A user in a folder with an item.
class Archive : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_FALSE(platform::programOfName("restic").isEmpty())
            << "restic is not installed (scripts/setup installs it)";
        m_tree.write("items/one", "1");
        m_tree.write("items/n\xff\n", "2");
    }

    [[nodiscard]] RunResult archive(const QByteArrayList& arguments) const
    {
        return run(QByteArrayList{"archive"} + arguments, {.workingFolder = m_tree.bytes(".")});
    }
    void create() const
    {
        const RunResult result = archive({"create", "Home.zephra", "--repository", "repository"});
        ASSERT_EQ(result.status, 0) << result.errors.constData();
    }
    [[nodiscard]] ArchiveFile file() const { return ArchiveFile::readFrom(m_tree.bytes("Home.zephra")); }
    void capture(const QByteArrayList& items) const { (void)engineOf(file())->capture(items, {}); }
    /// What Python makes of one line of JSON.
    [[nodiscard]] static QByteArray fromJson(const QByteArray& json, const QByteArray& expression)
    {
        return outputOfPython(
            ("import json, os, sys\nit = json.load(sys.stdin)\nsys.stdout.buffer.write((" + expression + "))")
                .constData(),
            json);
    }

    const TemporaryTree m_tree{"items/"};
    const EnvironmentValue m_home{"HOME", m_tree.bytes("home")};
    const EnvironmentValue m_data{"XDG_DATA_HOME", m_tree.bytes("data")};
    const EnvironmentValue m_cache{"XDG_CACHE_HOME", m_tree.bytes("cache")};
    const EnvironmentValue m_zone{"TZ", "UTC"};
    const QByteArray m_items = m_tree.bytes("items");
};

TEST_F(Archive, IsMadeWithItsRepositoryAndItsKey)
{
    const RunResult made = archive({"create", "Home.zephra", "--repository", "repository"});

    EXPECT_EQ(made.status, 0);
    EXPECT_EQ(made.errors, "");
    const QByteArray key = m_tree.bytes("data/Havrel/keys/") + file().identifier.toLatin1();
    EXPECT_EQ(made.output,
              "The key is in " + key + ": without it, nothing comes back from the archive. Keep a copy elsewhere.\n");
    EXPECT_TRUE(platform::itemExists(key));
    EXPECT_EQ(file().repository, m_tree.bytes("repository"));
    EXPECT_EQ(archive({"list"}).output, m_tree.bytes("Home.zephra") + ": captured never\n");
    capture({m_items});
}

TEST_F(Archive, LeavesNothingBehindWhenItCannotBeMade)
{
    m_tree.write("file", "not a folder");
    const RunResult made = archive({"create", "Home.zephra", "--repository", "file/below"});

    EXPECT_EQ(made.status, 1);
    EXPECT_TRUE(made.errors.startsWith("havrel: Home.zephra: ")) << made.errors.constData();
    EXPECT_FALSE(platform::itemExists(m_tree.bytes("Home.zephra")));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_tree.path("data/Havrel/keys")), {}), 0);
    EXPECT_EQ(archive({"list"}).output, "");
}

TEST_F(Archive, IsNeverMadeOverAnything)
{
    create();
    const QByteArray before = platform::readFile(m_tree.bytes("Home.zephra")).bytes;
    const RunResult again = archive({"create", "Home.zephra", "--repository", "other"});

    EXPECT_EQ(again.status, 1);
    EXPECT_EQ(again.errors, "havrel: Home.zephra: cannot make the archive file: File exists\n");
    EXPECT_EQ(platform::readFile(m_tree.bytes("Home.zephra")).bytes, before);
    const RunResult same = archive({"create", "Other.zephra", "--repository", "repository"});
    EXPECT_EQ(same.status, 1);
    EXPECT_TRUE(same.errors.startsWith("havrel: Other.zephra: an archive is kept at that place already ("))
        << same.errors.constData();
    capture({m_items});
}

TEST_F(Archive, TakesItsKeyFromACommand)
{
    const RunResult made =
        archive({"create", "Home.zephra", "--repository", "repository", "--key-command", "echo 'a key'"});

    EXPECT_EQ(made.status, 0) << made.errors.constData();
    EXPECT_EQ(made.output, "");
    capture({m_items});
    EXPECT_EQ(
        archive({"create", "Second.zephra", "--repository", "repository", "--key-command", "echo 'a key'"}).status, 0)
        << "another file for the same repository";
    EXPECT_EQ(archive({"items", "Second.zephra"}).output.count('\n'), 3);
    EXPECT_EQ(archive({"create", "Third.zephra", "--repository", "repository", "--key-command", "echo wrong"}).status,
              1);
}

TEST_F(Archive, SaysThatItsEngineIsNotInstalled)
{
    create();
    const EnvironmentValue path("PATH", m_tree.bytes("items"));
    const char* const reason = ": the program that keeps the archive is not installed (restic: not found in PATH)\n";

    const RunResult made = archive({"create", "Other.zephra", "--repository", "other"});
    EXPECT_EQ(made.status, 1);
    EXPECT_EQ(made.errors, QByteArray("havrel: Other.zephra") + reason);
    EXPECT_FALSE(platform::itemExists(m_tree.bytes("Other.zephra")));
    for (const QByteArrayList& each : {QByteArrayList{"info"},
                                       QByteArrayList{"items"},
                                       QByteArrayList{"restore", "--into", "back", "--", "Home.zephra", "items/one"}}) {
        const RunResult result = archive(each.size() > 1 ? each : each + QByteArrayList{"Home.zephra"});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.errors, QByteArray("havrel: Home.zephra") + reason) << each.constFirst().constData();
    }
}

struct UsageRow
{
    QByteArrayList arguments;
    const char* reason;
};

TEST_F(Archive, SaysWhatIsWrongWithTheArguments)
{
    const UsageRow rows[] = {
        {{"create"}, "no archive given"},
        {{"create", "a.zephra", "b.zephra"}, "more than one archive given"},
        {{"create", "a", "--repository", "r"}, "the name of an archive ends in .zephra"},
        {{"create", ".zephra", "--repository", "r"}, "the name of an archive ends in .zephra"},
        {{"create", "a.zephra"}, "--repository is missing"},
        {{"create", "a.zephra", "--repository", ""}, "--repository is missing"},
        {{"create", "a.zephra", "--repository", "r", "--key-command", " "}, "is not the text of a command"},
        {{"create", "a.zephra", "--repository", "r", "--key-command", "\xff"}, "is not the text of a command"},
        {{"info"}, "no archive given"},
        {{"items"}, "no archive given"},
        {{"items", "a", "b"}, "more than one archive given"},
        {{"restore"}, "no archive given"},
        {{"restore", "a"}, "--into is missing"},
        {{"restore", "a", "--into", "x"}, "no item given"},
        {{"restore", "", "b", "--into", "x"}, "an empty name names no item"},
    };
    for (const UsageRow& row : rows) {
        const RunResult result = archive(row.arguments);
        EXPECT_EQ(result.status, 2) << row.arguments.join(' ').constData();
        EXPECT_TRUE(result.errors.contains(row.reason)) << result.errors.constData();
        EXPECT_EQ(result.output, "");
    }
}

TEST_F(Archive, ShowsWhatItIsAndWhatWasCaptured)
{
    create();
    capture({m_items});
    capture({m_items + "/n\xff\n"});

    const RunResult words = archive({"info", "Home.zephra", "missing.zephra"});
    EXPECT_EQ(words.status, 1);
    EXPECT_EQ(words.errors, "havrel: missing.zephra: cannot read the archive file: No such file or directory\n");
    EXPECT_TRUE(words.output.startsWith("engine      restic\nrepository  " + m_tree.bytes("repository") +
                                        "\nidentifier  " + file().identifier.toLatin1() + "\nmade        "))
        << words.output.constData();
    EXPECT_TRUE(words.output.contains("  " + m_items + '\n')) << words.output.constData();
    EXPECT_TRUE(words.output.endsWith("  " + m_items + "/n\\xff\\n\n")) << words.output.constData();
    const RunResult json = archive({"info", "--json", "Home.zephra"});
    EXPECT_EQ(fromJson(json.output, "b','.join(os.fsencode(i) for c in it['captures'] for i in c['items'])"),
              m_items + ',' + m_items + "/n\xff\n");
    EXPECT_EQ(fromJson(json.output, "it['repository'].encode()"), m_tree.bytes("repository"));

    ASSERT_EQ(platform::renameItem(m_tree.bytes("repository"), m_tree.bytes("away")), 0);
    const RunResult away = archive({"info", "--json", "Home.zephra"});
    EXPECT_EQ(away.status, 1);
    EXPECT_TRUE(away.output.endsWith("\"captures\":null}\n")) << away.output.constData();
    EXPECT_TRUE(
        away.errors.startsWith("havrel: Home.zephra: the archive is not at its place; is its disk connected? ("))
        << away.errors.constData();
}

TEST_F(Archive, ListsTheItemsOfACapture)
{
    create();
    EXPECT_EQ(archive({"items", "Home.zephra"}).errors, "havrel: Home.zephra: nothing was captured into it yet\n");
    capture({m_items});
    capture({m_items + "/one"});
    const QList<CaptureRecord> captures = engineOf(file())->captures();

    EXPECT_EQ(archive({"items", "Home.zephra"}).output, m_items + "/one\n");
    EXPECT_EQ(archive({"items", "Home.zephra", "--capture", captures[0].id.left(10).toLatin1()}).output,
              m_items + '\n' + m_items + "/n\\xff\\n\n" + m_items + "/one\n");
    EXPECT_EQ(archive({"items", "Home.zephra", "--capture", "abc"}).errors,
              "havrel: Home.zephra: it has no capture abc\n");
    const RunResult json = archive({"items", "--json", "Home.zephra"});
    EXPECT_TRUE(json.output.contains("\",\"type\":\"file\",\"size\":1,\"mode\":\"644\",\"modified\":\""))
        << json.output.constData();
}

TEST_F(Archive, BringsItemsBackFromTheNewestCapturesThatHoldThem)
{
    create();
    capture({m_items});
    m_tree.write("items/one", "newer");
    capture({m_items + "/one"});

    const RunResult back =
        archive({"restore", "Home.zephra", "items/one", "items/n\xff\n", "items/none", "--into", "back"});

    EXPECT_EQ(back.status, 1);
    EXPECT_EQ(back.errors, "havrel: " + m_items + "/none: no capture holds it\n");
    EXPECT_EQ(platform::readFile(m_tree.bytes("back/one")).bytes, "newer");
    EXPECT_EQ(platform::readFile(m_tree.bytes("back/n\xff\n")).bytes, "2");

    const QByteArray first = engineOf(file())->captures().constFirst().id.left(8).toLatin1();
    const RunResult whole = archive({"restore", "Home.zephra", m_items, "--into", "first", "--capture", first});
    EXPECT_EQ(whole.status, 0) << whole.errors.constData();
    EXPECT_EQ(platform::readFile(m_tree.bytes("first/items/one")).bytes, "1");
    const RunResult again = archive({"restore", "Home.zephra", m_items, "--into", "first", "--capture", first});
    EXPECT_EQ(again.status, 1);
    EXPECT_EQ(again.errors, "havrel: " + m_items + ": there is an item of that name already\n");
}

TEST_F(Archive, TakesNoCaptureWhereNoSchedulerIs)
{
    create();
    const EnvironmentValue bus("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + m_tree.bytes("none"));

    const RunResult result = run({"capture", "--to", "Home.zephra", "items"}, {.workingFolder = m_tree.bytes(".")});

    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.endsWith("havrel: scheduler: it cannot be reached: there is no session bus, or the "
                                       "components are not installed (havrel components run starts them)\n"))
        << result.errors.constData();
}

TEST_F(Archive, IsListedWithWhatWasCaptured)
{
    create();
    ArchiveRegistry().noteCapture(file(),
                                  m_tree.bytes("Home.zephra"),
                                  {m_items + "/n\xff\n"},
                                  QDateTime::fromSecsSinceEpoch(1'000'000'000, Qt::UTC));
    EXPECT_EQ(archive({"list"}).output, m_tree.bytes("Home.zephra") + ": captured 2001-09-09 01:46\n");
    const RunResult json = archive({"list", "--json"});
    EXPECT_EQ(fromJson(json.output, "os.fsencode(it['items'][0])"), m_items + "/n\xff\n");
    EXPECT_EQ(fromJson(json.output, "it['lastCapture'].encode()"), "2001-09-09T01:46:40.000Z");

    ASSERT_EQ(::unlink(m_tree.path("Home.zephra").c_str()), 0);
    EXPECT_TRUE(archive({"list"}).output.endsWith(", not there\n"));
    EXPECT_TRUE(archive({"list", "--json"}).output.contains("\"exists\":false"));
}

} // namespace
} // namespace havrel::tests
