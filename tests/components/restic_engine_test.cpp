// SPDX-License-Identifier: MIT
#include "components/restic_engine.h"

#include "platform/extended_attributes.h"
#include "tests/components/archive_fixture.h"
#include "tests/components/described_tree.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace havrel::tests {
namespace {

using platform::ItemType;
using platform::Proceed;

class ResticEngineRoundTrip : public WithArchive
{
protected:
    void file(const char* name, const QByteArray& contents, mode_t mode = 0644)
    {
        m_tree.write(name, contents.toStdString());
        ASSERT_EQ(::chmod(m_tree.path(name).c_str(), mode), 0);
    }
    void date(const char* name, time_t seconds, long nanoseconds)
    {
        const timespec times[] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
        ASSERT_EQ(::utimensat(AT_FDCWD, m_tree.path(name).c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
    }
    void attribute(const char* item, const char* name, const QByteArray& value)
    {
        ASSERT_EQ(platform::writeAttribute(m_tree.bytes(item), name, value), 0)
            << "the folder for temporary files keeps no attributes";
    }

    /// Something of everything that lies in people's folders.
    void makeMixedItems()
    {
        m_tree.add("items/folder/below/");
        m_tree.add("items/empty folder/");
        file("items/text", "a\nb\n");
        file("items/empty", "");
        file("items/program", "#!/bin/sh\n", 04755);
        file("items/read-only", "keep", 0444);
        file("items/new\nline \t\"quoted\\", "newline");
        file("items/n\xff\xfe\x80", "bytes");
        file("items/\xEF\xBF\xBD", "a true replacement character");
        file("items/*[a-z]?\\", "pattern");
        file("items/folder/\xC3\xBC\xF0\x9F\x8E\x89", "unicode");
        file("items/folder/below/a\xff: b", "deep");
        m_tree.addLink("items/link", "text");
        m_tree.addLink("items/dangling", "no\nwhere");
        m_tree.addLink("items/folder/l\xfd", "n\xff\xfe\x80");
        ASSERT_EQ(::link(m_tree.path("items/text").c_str(), m_tree.path("items/folder/same text").c_str()), 0);
        ASSERT_EQ(::mkfifo(m_tree.path("items/pipe").c_str(), 0600), 0);
        file("items/sparse", "begins");
        ASSERT_EQ(::truncate(m_tree.path("items/sparse").c_str(), off_t{8} << 20), 0);
        attribute("items/text", "user.com.havrel.prefs", QByteArray("bplist00\0\xff", 10));
        attribute("items/folder/below", "user.com.havrel.prefs", "of a folder");
        attribute("items/n\xff\xfe\x80", "user.empty", "");
        ASSERT_EQ(::chmod(m_tree.path("items/empty folder").c_str(), 0555), 0);
        date("items/n\xff\xfe\x80", 981173106, 123456789);
        date("items/dangling", -86400, 1);
        date("items/folder/l\xfd", 1012709106, 987654321);
        date("items/sparse", 4102444800, 999999999);
        date("items/folder/below", 946684800, 5);
        date("items/folder", 946684801, 6);
        date("items", 946684802, 7);
    }
};

TEST_F(ResticEngineRoundTrip, BringsEverythingBackAsItWasAtEachCapture)
{
    makeMixedItems();
    const auto before = descriptionsOf(m_items);
    EXPECT_TRUE(capture({m_items}).problems.isEmpty());

    file("items/text", "changed", 0600);
    file("items/new", "one more");
    ASSERT_EQ(::unlink(m_tree.path("items/program").c_str()), 0);
    attribute("items/folder", "user.later", "1");
    const auto after = descriptionsOf(m_items);
    const CaptureSummary second = capture({m_items});
    EXPECT_TRUE(second.problems.isEmpty());
    EXPECT_EQ(second.filesNew, 1);
    EXPECT_GE(second.filesUnmodified, 5);

    const QList<CaptureRecord> captures = m_engine->captures();
    ASSERT_EQ(captures.size(), 2);
    EXPECT_TRUE(m_engine->restore(captures[0], {m_items}, m_tree.bytes("first")).isEmpty());
    EXPECT_TRUE(m_engine->restore(captures[1], {m_items}, m_tree.bytes("second")).isEmpty());

    EXPECT_EQ(descriptionsOf(m_tree.bytes("first/items")), before);
    EXPECT_EQ(descriptionsOf(m_tree.bytes("second/items")), after);
    struct stat sparse = {};
    ASSERT_EQ(::lstat(m_tree.path("second/items/sparse").c_str(), &sparse), 0);
    EXPECT_LE(sparse.st_blocks * 512, 65536) << "holes are holes again";
    struct stat one = {};
    struct stat other = {};
    ASSERT_EQ(::lstat(m_tree.path("first/items/text").c_str(), &one), 0);
    ASSERT_EQ(::lstat(m_tree.path("first/items/folder/same text").c_str(), &other), 0);
    EXPECT_EQ(one.st_ino, other.st_ino);
    EXPECT_EQ(descriptionsOf(m_tree.bytes("first")).size(), before.size() + 1) << "nothing else is left there";
}

TEST_F(ResticEngineRoundTrip, BringsSingleItemsBackWhateverTheirNames)
{
    makeMixedItems();
    const char* const names[] = {
        "new\nline \t\"quoted\\", "n\xff\xfe\x80", "*[a-z]?\\", "folder", "dangling", "sparse"};
    QByteArrayList items;
    for (const char* name : names)
        items.append(m_items + '/' + name);
    EXPECT_TRUE(capture(items).problems.isEmpty());
    EXPECT_EQ(QSet<QByteArray>(items.begin(), items.end()), [&] {
        const QByteArrayList known = m_engine->captures().constLast().items;
        return QSet<QByteArray>(known.begin(), known.end());
    }());

    EXPECT_TRUE(restore(items).isEmpty());

    for (const char* name : names)
        EXPECT_EQ(descriptionsOf(m_tree.bytes("back") + '/' + name), descriptionsOf(m_items + '/' + name)) << name;
    EXPECT_TRUE(restore({m_items + "/folder/l\xfd", m_items + "/folder/below/a\xff: b"}, "deep").isEmpty());
    EXPECT_EQ(descriptionOf(m_tree.bytes("deep/l\xfd")), descriptionOf(m_items + "/folder/l\xfd"));
    EXPECT_EQ(descriptionOf(m_tree.bytes("deep/a\xff: b")), descriptionOf(m_items + "/folder/below/a\xff: b"));
}

TEST_F(ResticEngineRoundTrip, ListsItemsWithTheBytesOfTheirNames)
{
    makeMixedItems();
    capture({m_items});
    const QString id = m_engine->captures().constLast().id;
    std::map<std::string, CapturedItem> listed;
    m_engine->listItems(id, {}, [&](const CapturedItem& item) {
        if (item.path.startsWith(m_items))
            listed[item.path.mid(m_items.size()).toStdString()] = item;
    });

    std::vector<std::string> wanted;
    for (const auto& [name, description] : descriptionsOf(m_items))
        wanted.push_back(name);
    std::vector<std::string> got;
    for (const auto& [name, item] : listed)
        got.push_back(name);
    EXPECT_EQ(got, wanted);
    EXPECT_EQ(listed["/sparse"].size, off_t{8} << 20);
    EXPECT_EQ(listed["/dangling"].type, ItemType::SymbolicLink);
    EXPECT_EQ(listed["/pipe"].type, ItemType::Fifo);
    EXPECT_EQ(listed["/folder"].type, ItemType::Directory);
    EXPECT_EQ(listed["/read-only"].mode, 0444U);
    EXPECT_EQ(listed["/n\xff\xfe\x80"].modified, QDateTime::fromMSecsSinceEpoch(981173106123, Qt::UTC));

    QByteArrayList below;
    m_engine->listItems(id, {m_items + "/folder"}, [&](const CapturedItem& item) { below.append(item.path); });
    EXPECT_EQ(below,
              QByteArrayList({m_items + "/folder",
                              m_items + "/folder/below",
                              m_items + "/folder/l\xfd",
                              m_items + "/folder/same text",
                              m_items + "/folder/\xC3\xBC\xF0\x9F\x8E\x89"}));
}

TEST_F(ResticEngineRoundTrip, ReadsNothingAgainThatHasNotChangedWhateverItsName)
{
    file("items/n\xff", "bytes");
    m_tree.add("items/f\xfe/below/");
    file("items/f\xfe/below/\x80", "more bytes");
    file("items/plain", "text");
    const QByteArrayList items{m_items + "/n\xff", m_items + "/f\xfe", m_items + "/plain"};
    EXPECT_EQ(capture(items).filesNew, 3);
    EXPECT_EQ(capture({m_items + "/n\xff"}).filesNew, 1) << "of other items, so there is none to compare with";
    file("items/plain", "changed");

    const CaptureSummary again = capture(items);

    EXPECT_EQ(again.filesNew, 0);
    EXPECT_EQ(again.filesChanged, 1);
    EXPECT_EQ(again.filesUnmodified, 2);
    EXPECT_TRUE(restore({m_items + "/f\xfe"}).isEmpty());
    EXPECT_EQ(descriptionsOf(m_tree.bytes("back/f\xfe")), descriptionsOf(m_items + "/f\xfe"));
}

TEST_F(ResticEngineRoundTrip, BringsAccessListsBack)
{
    // A list of the version 2: owner rw-, user 4711 r--, group r--, mask r--, others ---. \source acl(5), xattr(7)
    const QByteArray list = QByteArray::fromHex("02000000"
                                                "01000600ffffffff"
                                                "0200040067120000"
                                                "04000400ffffffff"
                                                "10000400ffffffff"
                                                "20000000ffffffff");
    file("items/listed", "1");
    attribute("items/listed", "system.posix_acl_access", list);
    file("items/read-only", "2");
    attribute("items/read-only", "system.posix_acl_access", list);
    ASSERT_EQ(::chmod(m_tree.path("items/read-only").c_str(), 0440), 0);
    const auto before = descriptionsOf(m_items);
    ASSERT_NE(before.at("/listed").find("system.posix_acl_access"), std::string::npos);
    EXPECT_TRUE(capture({m_items}).problems.isEmpty());

    EXPECT_TRUE(restore({m_items}).isEmpty());

    EXPECT_EQ(descriptionsOf(m_tree.bytes("back/items")), before);
}

class ResticEngine : public ResticEngineRoundTrip
{
};

TEST_F(ResticEngine, TellsHowFarItIs)
{
    for (int i = 0; i < 200; ++i)
        file(("items/" + std::to_string(i)).c_str(), QByteArray(5000, 'x') + QByteArray::number(i));
    QList<EngineProgress> progress;
    const CaptureSummary summary = m_engine->capture({m_items}, [&](const EngineProgress& each) {
        progress.append(each);
        return Proceed::Yes;
    });

    ASSERT_FALSE(progress.isEmpty());
    for (const EngineProgress& each : progress) {
        EXPECT_GE(each.fraction, 0);
        EXPECT_LE(each.fraction, 1);
        EXPECT_LE(each.filesDone, 201);
    }
    EXPECT_EQ(summary.filesNew, 200);
    EXPECT_GT(summary.bytesProcessed, 200 * 5000);
    EXPECT_GT(summary.bytesAdded, 0);
    EXPECT_TRUE(m_engine->captures().constLast().id.startsWith(summary.capture));
}

TEST_F(ResticEngine, FindsTheNewestCapturesThatHoldItems)
{
    file("items/one", "1");
    capture({m_items});
    file("items/two", "2");
    capture({m_items + "/two"});
    ASSERT_EQ(::unlink(m_tree.path("items/one").c_str()), 0);
    capture({m_items});
    const QList<CaptureRecord> captures = m_engine->captures();
    ASSERT_EQ(captures.size(), 3);

    const QHash<QByteArray, CaptureRecord> newest =
        m_engine->newestHolding({m_items + "/one", m_items + "/two", m_items, m_items + "/never", "/elsewhere"});
    EXPECT_EQ(newest.size(), 3);
    EXPECT_EQ(newest.value(m_items + "/one").id, captures[0].id);
    EXPECT_EQ(newest.value(m_items + "/two").id, captures[2].id);
    EXPECT_EQ(newest.value(m_items).id, captures[2].id);
}

TEST_F(ResticEngine, NeverRestoresOverAnything)
{
    file("items/one", "1");
    file("items/two", "2");
    capture({m_items});
    m_tree.add("back/");
    m_tree.write("back/one", "mine");

    const QList<EngineProblem> problems = restore({m_items + "/one", m_items + "/two", m_items + "/three", "/"});

    EXPECT_EQ(problems,
              QList<EngineProblem>(
                  {{QStringLiteral("/"), QStringLiteral("it has no name; restore what is in it")},
                   {QString::fromUtf8(m_items + "/one"), QStringLiteral("there is an item of that name already")},
                   {QString::fromUtf8(m_items + "/three"), QStringLiteral("the capture does not hold it")}}));
    EXPECT_EQ(platform::readFile(m_tree.bytes("back/one")).bytes, "mine");
    EXPECT_EQ(platform::readFile(m_tree.bytes("back/two")).bytes, "2");
    EXPECT_EQ(descriptionsOf(m_tree.bytes("back")).size(), 3U);
}

TEST_F(ResticEngine, RestoresAnItemInsideOfAnotherWithIt)
{
    m_tree.add("items/a/");
    file("items/a/b", "1");
    capture({m_items});

    EXPECT_TRUE(restore({m_items + "/a/b", m_items + "/a", m_items + "/a"}).isEmpty());

    EXPECT_EQ(descriptionsOf(m_tree.bytes("back")).size(), 3U);
    EXPECT_EQ(platform::readFile(m_tree.bytes("back/a/b")).bytes, "1");
}

TEST_F(ResticEngine, CapturesAnItemInsideOfAnotherOnce)
{
    m_tree.add("items/a/");
    file("items/a/b", "1");
    const auto before = descriptionsOf(m_items);

    const CaptureSummary summary = capture({m_items + "/a/b", m_items, m_items + "/a", m_items});

    EXPECT_EQ(summary.filesNew, 1);
    EXPECT_TRUE(summary.problems.isEmpty());
    EXPECT_TRUE(restore({m_items}).isEmpty());
    EXPECT_EQ(descriptionsOf(m_tree.bytes("back/items")), before);
}

TEST_F(ResticEngine, OpensWithTheKeyThatACommandPrints)
{
    ArchiveFile other = m_archive;
    other.key.command = QStringLiteral("cat '%1'").arg(QString::fromUtf8(keyFileOf(m_archive.identifier)));
    allowKeyCommand(other.identifier, other.key.command);
    const auto engine = engineOf(other);

    engine->makeRepository(); // takes over the one that is there, because the key opens it
    EXPECT_TRUE(engine->captures().isEmpty());
}

TEST_F(ResticEngine, HeedsNothingThatTheEnvironmentTellsRestic)
{
    const EnvironmentValue repository("RESTIC_REPOSITORY_FILE", "/nowhere");
    const EnvironmentValue password("RESTIC_PASSWORD_COMMAND", "false");

    EXPECT_TRUE(m_engine->captures().isEmpty());
}

} // namespace
} // namespace havrel::tests
