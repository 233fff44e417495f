// SPDX-License-Identifier: MIT
#include "components/archive_registry.h"

#include "components/archive_file.h"
#include "diagnostics/exception.h"
#include "tests/support/environment_value.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

const QDateTime kFirst = QDateTime::fromSecsSinceEpoch(1'000'000'000, Qt::UTC);
const QDateTime kLater = QDateTime::fromSecsSinceEpoch(1'000'000'001, Qt::UTC);

class AnArchiveRegistry : public testing::Test
{
protected:
    static ArchiveFile archive() { return ArchiveFile::of(QStringLiteral("restic"), "/place", {}); }
    [[nodiscard]] QByteArrayList paths() const
    {
        QByteArrayList all;
        for (const KnownArchive& each : m_registry.archives())
            all.append(each.path);
        return all;
    }

    TemporaryTree m_tree;
    ArchiveRegistry m_registry{m_tree.bytes("known/archives")};
};

TEST_F(AnArchiveRegistry, KnowsNothingAtFirst)
{
    EXPECT_TRUE(m_registry.archives().isEmpty());
}

TEST_F(AnArchiveRegistry, KnowsWhereArchivesAreAndWhatWasCaptured)
{
    const ArchiveFile one = archive();
    m_registry.note(one, "/a\xff.zephra");
    m_registry.noteCapture(one, "/a\xff.zephra", {"/home/x", "/n\xff\n"}, kFirst.addMSecs(500));
    m_registry.noteCapture(one, "/moved.zephra", {"/home/x", "/home/a"}, kLater);
    m_registry.note(one, "/moved.zephra");

    EXPECT_EQ(m_registry.archives(),
              QList<KnownArchive>({{"/moved.zephra", one.identifier, kLater, {"/home/a", "/home/x", "/n\xff\n"}}}));
}

TEST_F(AnArchiveRegistry, ListsTheOneThatWasCapturedToLastFirst)
{
    m_registry.note(archive(), "/z");
    m_registry.note(archive(), "/b");
    m_registry.noteCapture(archive(), "/first", {}, kFirst);
    m_registry.noteCapture(archive(), "/later", {}, kLater);

    EXPECT_EQ(paths(), QByteArrayList({"/later", "/first", "/b", "/z"}));
}

TEST_F(AnArchiveRegistry, PassesOverWhatItCannotRead)
{
    m_registry.note(archive(), "/good");
    m_tree.write("known/archives/broken.plist", "nonsense");
    m_tree.write("known/archives/other.txt", "");

    EXPECT_EQ(paths(), QByteArrayList{"/good"});
}

TEST_F(AnArchiveRegistry, SaysWhyItCannotKeepAnything)
{
    m_tree.add("known");

    EXPECT_THROW(m_registry.note(archive(), "/a"), HVException);
}

TEST_F(AnArchiveRegistry, LiesInTheFolderOfTheUsersData)
{
    const tests::EnvironmentValue data("XDG_DATA_HOME", m_tree.bytes("data"));
    ArchiveRegistry().note(archive(), "/a");

    EXPECT_EQ(ArchiveRegistry(m_tree.bytes("data/Havrel/archives")).archives().size(), 1);
}

TEST(KnownArchive, HoldsWhatIsAtOrBelowItsItems)
{
    const KnownArchive known{"/a.zephra", {}, {}, {"/home/x", "/other"}};

    EXPECT_TRUE(known.holds("/home/x"));
    EXPECT_TRUE(known.holds("/home/x/y/z"));
    EXPECT_FALSE(known.holds("/home"));
    EXPECT_FALSE(known.holds("/home/xy"));
    EXPECT_TRUE(KnownArchive({"/a", {}, {}, {"/"}}).holds("/anything"));
}

} // namespace
} // namespace havrel
