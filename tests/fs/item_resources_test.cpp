// SPDX-License-Identifier: MIT
#include "fs/item_resources.h"

#include "fs/path.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace havrel::tests {
namespace {

class ResourcesOfAnItem : public testing::Test
{
protected:
    [[nodiscard]] ItemResources of(std::string_view entry) const
    {
        return itemResources(*JNPath::withCPath(m_tree.bytes(entry)));
    }

    const TemporaryTree m_tree{"file", "folder/", "Tool.app/", "plain.app"};
};

TEST_F(ResourcesOfAnItem, TellFoldersPackagesAndFilesApart)
{
    struct Row
    {
        const char* entry;
        bool isDirectory;
        bool isPackage;
        bool isContainer;
    };
    const Row rows[] = {
        {"file", false, false, false},
        {"folder", true, false, true},
        {"Tool.app", true, true, false},
        {"plain.app", false, false, false},
    };
    for (const Row& row : rows) {
        const ItemResources resources = of(row.entry);
        EXPECT_EQ(resources.isDirectory, row.isDirectory) << row.entry;
        EXPECT_EQ(resources.isPackage, row.isPackage) << row.entry;
        EXPECT_EQ(resources.isContainer(), row.isContainer) << row.entry;
        EXPECT_TRUE(resources.isWritable) << row.entry;
        EXPECT_TRUE(resources.canCarryAttributes) << row.entry;
    }
}

TEST_F(ResourcesOfAnItem, KnowPackagesByTheirExtensionInAnyCase)
{
    struct Row
    {
        QStringView name;
        bool isPackage;
    };
    constexpr Row rows[] = {
        {u"Tool.app", true},
        {u"Tool.APP", true},
        {u"a.b.rtfd", true},
        {u".app", false},
        {u"app", false},
        {u"Tool.app.d", false},
        {u"Tool.", false},
        {u"", false},
    };
    for (const Row& row : rows)
        EXPECT_EQ(isPackageName(row.name), row.isPackage) << row.name.toString().toStdString();
}

TEST_F(ResourcesOfAnItem, AreThoseOfTheLinkItself)
{
    m_tree.addLink("link", "folder");
    m_tree.addLink("dangling", "nowhere");
    for (const char* each : {"link", "dangling"}) {
        EXPECT_FALSE(of(each).isDirectory) << each;
        EXPECT_FALSE(of(each).canCarryAttributes) << each;
    }
}

TEST_F(ResourcesOfAnItem, KnowThatPipesCarryNoAttributes)
{
    ASSERT_EQ(::mkfifo(m_tree.path("pipe").c_str(), 0600), 0);
    EXPECT_TRUE(of("pipe").isWritable);
    EXPECT_FALSE(of("pipe").canCarryAttributes);
}

TEST_F(ResourcesOfAnItem, AreNothingOfAnItemThatIsNotThere)
{
    const ItemResources missing = of("missing");
    EXPECT_FALSE(missing.isDirectory);
    EXPECT_FALSE(missing.isWritable);
    EXPECT_FALSE(missing.canCarryAttributes);
}

TEST_F(ResourcesOfAnItem, FollowPermissions)
{
    ASSERT_EQ(::chmod(m_tree.path("file").c_str(), 0444), 0);
    const OrdinaryUser user(m_tree.root());
    EXPECT_FALSE(of("file").isWritable);
}

TEST_F(ResourcesOfAnItem, LeaveAStickyFolderToItsOwner)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can make a folder of another user";
    m_tree.add("own/");
    ASSERT_EQ(::chown(m_tree.path("own").c_str(), 65534, 65534), 0);
    for (const char* each : {"folder", "own"})
        ASSERT_EQ(::chmod(m_tree.path(each).c_str(), 01777), 0);
    EXPECT_TRUE(of("folder").isWritable) << "by root";
    const OrdinaryUser user(m_tree.root());
    EXPECT_FALSE(of("folder").isWritable);
    EXPECT_TRUE(of("own").isWritable);
}

} // namespace
} // namespace havrel::tests
