// SPDX-License-Identifier: MIT
#include "integrations/integration.h"

#include "integrations/thunar_actions.h"
#include "platform/file_contents.h"
#include "platform/items.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/temporary_tree.h"

#include <QSet>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace havrel::integrations {
namespace {

using namespace std::chrono_literals;

/// A computer with some file managers and their packages.
class IntegrationOn : public testing::Test
{
protected:
    IntegrationOn()
        : m_tree({"bin/", "home/", "lib/x86_64-linux-gnu/", "share/", "usr/", "etc/Thunar/"})
        , m_places{.dataHome = m_tree.bytes("home/data"),
                   .configHome = m_tree.bytes("home/config"),
                   .dataFolders = {m_tree.bytes("share"), m_tree.bytes("usr")},
                   .configFolders = {m_tree.bytes("etc")},
                   .compiledInFolder = m_tree.bytes("usr"),
                   .programFolders = {m_tree.bytes("bin")},
                   .libraryFolders = {m_tree.bytes("lib")}}
    {
    }

    [[nodiscard]] Integration integration(const char* id) const
    {
        for (const FileManager& each : fileManagers())
            if (qstrcmp(each.id, id) == 0)
                return Integration(each, m_places, [this](const QByteArray& program) {
                    return program == m_running ? m_beginning : std::nullopt;
                });
        throw std::out_of_range(id);
    }
    static const Way& way(const Integration& integration, std::size_t number)
    {
        return integration.manager().ways[number];
    }
    void installProgram(const char* name) const
    {
        m_tree.add(std::string("bin/") + name);
        ::chmod(m_tree.path(std::string("bin/") + name).c_str(), 0755);
    }
    void installLoader(const Way& way) const { m_tree.add(std::string("lib/x86_64-linux-gnu/") + way.module); }
    void installForEverybody(const Way& way, const char* folder) const
    {
        for (const EntryFile& each : way.files())
            m_tree.add(std::string(folder) + '/' + each.path.toStdString());
    }
    [[nodiscard]] QByteArray contents(const char* entry) const
    {
        const platform::FileContents file = platform::readFile(m_tree.bytes(entry));
        EXPECT_EQ(file.error, 0) << entry;
        return file.bytes;
    }
    [[nodiscard]] bool exists(const char* entry) const { return platform::findName(m_tree.bytes(entry)) == 0; }
    [[nodiscard]] mode_t modeOf(const QByteArray& entry) const
    {
        struct stat status = {};
        ::lstat((m_places.dataHome + '/' + entry).constData(), &status);
        return status.st_mode & 07777;
    }

    const TemporaryTree m_tree;
    const Places m_places;
    QByteArray m_running;
    std::optional<platform::SystemTime> m_beginning;
    static constexpr const char* kUca = "home/config/Thunar/uca.xml";
    static constexpr const char* kBackup = "home/config/Thunar/uca.xml.before-havrel";
};

TEST_F(IntegrationOn, AnEmptyComputerFindsNothing)
{
    for (const FileManager& each : fileManagers()) {
        const Integration found(each, m_places, [](const QByteArray&) { return std::nullopt; });
        EXPECT_FALSE(found.isInstalled());
        EXPECT_FALSE(found.state().isThere());
        EXPECT_FALSE(found.state().needsRestart);
        const Change change = found.remove();
        EXPECT_TRUE(change.fault.isNull() && change.changed.isEmpty()) << each.id;
    }
}

TEST_F(IntegrationOn, AnyFileManagerAddsItsEntriesAndRemovesThemAgain)
{
    for (const FileManager& each : fileManagers()) {
        const Integration found = integration(each.id);
        const Change added = found.add();
        EXPECT_TRUE(added.fault.isNull()) << added.fault.toStdString();
        EXPECT_FALSE(added.changed.isEmpty()) << each.id;
        EXPECT_EQ(found.state().ofUser, Presence::Complete) << each.id;
        EXPECT_TRUE(found.add().changed.isEmpty()) << "a second time changes nothing: " << each.id;
        const Change removed = found.remove();
        EXPECT_TRUE(removed.fault.isNull()) << removed.fault.toStdString();
        EXPECT_EQ(QSet<QByteArray>(removed.changed.begin(), removed.changed.end()),
                  QSet<QByteArray>(added.changed.begin(), added.changed.end()));
        EXPECT_FALSE(found.state().isThere()) << each.id;
        for (const QByteArray& path : added.changed)
            EXPECT_NE(platform::findName(path), 0) << path.constData();
    }
}

TEST_F(IntegrationOn, TheUsersCopiesAreTrustedByTheFileManagers)
{
    ASSERT_TRUE(integration("dolphin").add().fault.isNull());
    EXPECT_EQ(
        modeOf("kio/servicemenus/havrel.desktop") & 0111, 0111U & ~[] {
            const mode_t mask = ::umask(0);
            ::umask(mask);
            return mask;
        }());
    ASSERT_TRUE(integration("caja").add().fault.isNull());
    EXPECT_EQ(modeOf("caja-python/extensions/havrel_caja_menu.py") & 0111, 0U);
}

TEST_F(IntegrationOn, AMissingLoaderIsTold)
{
    const Integration nautilus = integration("nautilus");
    EXPECT_TRUE(nautilus.state().isLoaderMissing);
    installLoader(way(nautilus, 0));
    EXPECT_FALSE(nautilus.state().isLoaderMissing);

    const Integration thunar = integration("thunar");
    installForEverybody(way(thunar, 0), "usr");
    installLoader(way(thunar, 0));
    EXPECT_TRUE(thunar.states()[0].isLoaderMissing) << "its interface is not described yet";
    m_tree.add(std::string("lib/x86_64-linux-gnu/") + way(thunar, 0).description);
    EXPECT_FALSE(thunar.states()[0].isLoaderMissing);
}

TEST_F(IntegrationOn, TheBestWayWithItsLoaderIsAdded)
{
    const Integration nemo = integration("nemo");
    EXPECT_EQ(nemo.add().changed.size(), 3) << "actions, for want of a loader";
    ASSERT_EQ(nemo.remove().changed.size(), 3);
    installLoader(way(nemo, 0));
    EXPECT_EQ(nemo.add().changed, QByteArrayList{m_tree.bytes("home/data/nemo-python/extensions/havrel_nemo_menu.py")});
    EXPECT_STREQ(nemo.state().way->name, "extension");
}

TEST_F(IntegrationOn, WhatEverybodyHasIsNotDoubled)
{
    for (const char* id : {"dolphin", "nautilus", "pcmanfm-qt", "caja"}) {
        const Integration found = integration(id);
        installForEverybody(way(found, 0), "usr");
        EXPECT_EQ(found.state().ofEverybody, Presence::Complete) << id;
        EXPECT_TRUE(found.add().changed.isEmpty()) << id;
        EXPECT_TRUE(found.remove().changed.isEmpty()) << id;
        EXPECT_EQ(found.state().ofEverybody, Presence::Complete) << id;
    }
}

TEST_F(IntegrationOn, EntriesThatNobodyLooksForDoNotCount)
{
    installForEverybody(way(integration("caja"), 0), "share"); // Caja looks only where it was built to look
    EXPECT_FALSE(integration("caja").state().isThere());
    installForEverybody(way(integration("nautilus"), 0), "share");
    EXPECT_TRUE(integration("nautilus").state().isThere());
}

TEST_F(IntegrationOn, AnExtensionWithoutItsLoaderDoesNotKeepActionsAway)
{
    const Integration thunar = integration("thunar");
    installForEverybody(way(thunar, 0), "usr");
    EXPECT_STREQ(thunar.state().way->name, "actions") << "which need no package";
    EXPECT_FALSE(thunar.state().isThere());
    EXPECT_EQ(thunar.add().changed, QByteArrayList{m_tree.bytes(kUca)});
    EXPECT_FALSE(thunar.state().isLoaderMissing);
    EXPECT_STREQ(thunar.state().way->name, "actions");
}

TEST_F(IntegrationOn, AnExtensionWithoutItsLoaderIsToldWhereNothingElseWouldDo)
{
    const Integration caja = integration("caja");
    installForEverybody(way(caja, 0), "usr");
    EXPECT_TRUE(caja.state().isThere());
    EXPECT_TRUE(caja.state().isLoaderMissing);
}

TEST_F(IntegrationOn, WhatAnInstallationPutIntoTheUsersFolderStays)
{
    const Integration nemo = integration("nemo");
    for (const EntryFile& each : way(nemo, 1).files())
        m_tree.add(std::string("home/data/") + each.path.toStdString());
    const QByteArray first = way(nemo, 1).files().constFirst().path;
    m_tree.write("home/data/" + first.toStdString(), way(nemo, 1).files().constFirst().contents.toStdString());
    ASSERT_EQ(nemo.add().changed.size(), 2) << "those that are not of this version";
    const Change removed = nemo.remove();
    EXPECT_TRUE(removed.fault.isNull());
    EXPECT_EQ(removed.changed.size(), 2);
    EXPECT_EQ(removed.kept, QByteArrayList{m_tree.bytes("home/data/" + first.toStdString())});
    EXPECT_TRUE(exists(("home/data/" + first).constData()));
}

TEST_F(IntegrationOn, AnEntryThatCannotBeReadIsNotRemoved)
{
    const Integration caja = integration("caja");
    m_tree.add("home/data/" + way(caja, 0).files().constFirst().path.toStdString() + '/');
    const Change removed = caja.remove();
    EXPECT_EQ(removed.fault, QStringLiteral("Is a directory"));
    EXPECT_TRUE(removed.changed.isEmpty());
}

TEST_F(IntegrationOn, OldCopiesAreToldAndRenewed)
{
    const Integration caja = integration("caja");
    ASSERT_TRUE(caja.add().fault.isNull());
    m_tree.write("home/data/caja-python/extensions/havrel_caja_menu.py", "# old");
    EXPECT_EQ(caja.state().ofUser, Presence::Other);
    EXPECT_EQ(caja.add().changed.size(), 1);
    EXPECT_EQ(caja.state().ofUser, Presence::Complete);
}

TEST_F(IntegrationOn, ARunningFileManagerThatIsOlderThanItsEntriesNeedsARestart)
{
    const auto now = std::chrono::system_clock::now();
    for (const char* id : {"caja", "thunar", "nemo", "pcmanfm-qt"})
        ASSERT_TRUE(integration(id).add().fault.isNull());
    m_running = "caja";
    m_beginning = now - 1h;
    EXPECT_TRUE(integration("caja").state().needsRestart);
    m_beginning = now + 1h;
    EXPECT_FALSE(integration("caja").state().needsRestart);
    m_beginning = now - 1h;
    for (const char* id : {"thunar", "pcmanfm-qt"}) {
        m_running = id;
        EXPECT_TRUE(integration(id).state().needsRestart) << id;
    }
    m_running = "nemo"; // which watches the folder of its actions
    EXPECT_FALSE(integration("nemo").state().needsRestart);
}

TEST_F(IntegrationOn, AFolderThatTakesNothingIsTold)
{
    ASSERT_EQ(::chmod(m_tree.path("home").c_str(), 0555), 0);
    for (const FileManager& each : fileManagers()) {
        const tests::OrdinaryUser user(m_tree.root());
        const Change change = integration(each.id).add();
        EXPECT_EQ(change.fault, QStringLiteral("Permission denied")) << each.id;
        EXPECT_TRUE(change.at.startsWith(m_tree.bytes("home"))) << change.at.constData();
        EXPECT_TRUE(change.changed.isEmpty());
    }
    ASSERT_EQ(::chmod(m_tree.path("home").c_str(), 0755), 0);
}

TEST_F(IntegrationOn, ThunarKeepsTheActionsForEverybodyWhenTheUsersFileIsMade)
{
    const std::string shared = "<actions>\n<action><unique-id>1</unique-id></action>\n</actions>\n";
    m_tree.write("etc/Thunar/uca.xml", shared);
    const Integration thunar = integration("thunar");
    ASSERT_TRUE(thunar.add().fault.isNull());
    EXPECT_TRUE(contents(kUca).contains("<unique-id>1</unique-id>"));
    EXPECT_EQ(countOfHavrelActions(contents(kUca)), 3);
    EXPECT_FALSE(exists(kBackup)) << "there was nothing to keep";
    EXPECT_EQ(contents("etc/Thunar/uca.xml"), QByteArray::fromStdString(shared));
    ASSERT_TRUE(thunar.remove().fault.isNull());
    EXPECT_FALSE(exists(kUca)) << "the file for everybody says the same";
}

TEST_F(IntegrationOn, ThunarsFileComesBackToTheVeryByteAndItsFormerContentsAreKept)
{
    const std::string own = "<actions>\r\n\t<action><unique-id>1</unique-id></action>\r\n</actions>";
    m_tree.add("home/config/Thunar/");
    m_tree.write(kUca, own);
    ASSERT_EQ(::chmod(m_tree.path(kUca).c_str(), 0640), 0);
    const Integration thunar = integration("thunar");
    ASSERT_TRUE(thunar.add().fault.isNull());
    EXPECT_EQ(contents(kBackup), QByteArray::fromStdString(own));
    struct stat status = {};
    ASSERT_EQ(::stat(m_tree.path(kUca).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640U);
    ASSERT_TRUE(thunar.remove().fault.isNull());
    EXPECT_EQ(contents(kUca), QByteArray::fromStdString(own));
}

TEST_F(IntegrationOn, ThunarsFileMayBeALinkToElsewhere)
{
    m_tree.add("home/config/Thunar/");
    m_tree.write("home/dotfiles", "<actions></actions>");
    m_tree.addLink(kUca, "../../dotfiles");
    ASSERT_TRUE(integration("thunar").add().fault.isNull());
    EXPECT_EQ(countOfHavrelActions(contents("home/dotfiles")), 3);
    struct stat status = {};
    ASSERT_EQ(::lstat(m_tree.path(kUca).c_str(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
}

TEST_F(IntegrationOn, ADamagedFileOfThunarsIsNotTouched)
{
    m_tree.add("home/config/Thunar/");
    m_tree.write(kUca, "<actions>\n<action>\n</actions>");
    const Integration thunar = integration("thunar");
    EXPECT_FALSE(thunar.state().fault.isNull());
    for (const Change& change : {thunar.add(), thunar.remove()}) {
        EXPECT_EQ(change.at, m_tree.bytes(kUca));
        EXPECT_TRUE(change.fault.startsWith(QStringLiteral("line 3: "))) << change.fault.toStdString();
        EXPECT_TRUE(change.fault.endsWith(QStringLiteral("; nothing was changed")));
    }
    EXPECT_EQ(contents(kUca), "<actions>\n<action>\n</actions>");
    EXPECT_FALSE(exists(kBackup));
}

} // namespace
} // namespace havrel::integrations
