// SPDX-License-Identifier: MIT
#include "platform/access_list.h"

#include "tests/support/item_facts.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

namespace havrel::platform {
namespace {

const AccessList kList{{AccessTag::Owner, 6, 0},
                       {AccessTag::User, 4, 1000},
                       {AccessTag::OwningGroup, 4, 0},
                       {AccessTag::Group, 5, 4294967294U},
                       {AccessTag::Mask, 7, 0},
                       {AccessTag::Others, 0, 0}};

TEST(AccessList, ComesBackFromItsStoredForm)
{
    EXPECT_EQ(parseAccessList(bytesOfAccessList(kList)), kList);
    EXPECT_EQ(parseAccessList(bytesOfAccessList({})), AccessList());
    EXPECT_EQ(bytesOfAccessList(kList).size(), 4 + 6 * 8);
}

TEST(AccessList, IsNoneOfOtherBytes)
{
    const QByteArray good = bytesOfAccessList(kList);
    EXPECT_FALSE(parseAccessList(QByteArray()));
    EXPECT_FALSE(parseAccessList("\2\0\0"));
    EXPECT_FALSE(parseAccessList(good.chopped(1)));
    EXPECT_FALSE(parseAccessList(good + 'x'));
    for (const qsizetype at : {qsizetype(0), qsizetype(4), qsizetype(6), qsizetype(7)}) { // version, tag, permissions
        QByteArray bad = good;
        bad[at] = '\x7f';
        EXPECT_FALSE(parseAccessList(bad)) << at;
    }
}

TEST(AccessList, IsThatOfTheItemItself)
{
    const TemporaryTree tree({"file", "plain"});
    tree.addLink("link", "file");
    const QByteArray stored = bytesOfAccessList({{AccessTag::Owner, 6, 0},
                                                 {AccessTag::User, 4, 12345},
                                                 {AccessTag::OwningGroup, 4, 0},
                                                 {AccessTag::Mask, 4, 0},
                                                 {AccessTag::Others, 0, 0}});
    if (!tests::setAttribute(tree.path("file"), "system.posix_acl_access", stored.toStdString()))
        GTEST_SKIP() << "the file system of temporary items keeps no access lists";
    const auto list = accessListOf(tree.bytes("file"));
    ASSERT_TRUE(list);
    EXPECT_EQ(bytesOfAccessList(*list), stored);
    EXPECT_FALSE(accessListOf(tree.bytes("link")));
    EXPECT_FALSE(accessListOf(tree.bytes("plain")));
    EXPECT_FALSE(accessListOf(tree.bytes("missing")));
}

} // namespace
} // namespace havrel::platform
