// SPDX-License-Identifier: MIT
#include "fs/volume_info.h"

#include "diagnostics/exception.h"
#include "fs/path.h"
#include "platform/items.h"
#include "tests/support/item_facts.h"
#include "tests/support/replaced_item_calls.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>

#include <sys/vfs.h>

namespace havrel {
namespace {

using namespace havrel::tests;

TEST(JNVolumeInfo, IsTheSameForItemsOfOneVolume)
{
    const TemporaryTree tree({"a", "folder/b"});
    const auto one = JNVolumeInfo::withPath(tree.bytes("a"));
    const auto other = JNVolumeInfo::volumeInfoForPathObject(*JNPath::withCPath(tree.bytes("folder/b")));
    EXPECT_TRUE(one->isEqual(*other));
    EXPECT_EQ(one->hash(), other->hash());
    EXPECT_EQ(one->filesystemID(),
              JNVolumeInfo::volumeInfoForPath(JNPath::withCPath(tree.bytes("a"))->path())->filesystemID());
}

TEST(JNVolumeInfo, MakesItsIdentifierOfBothWords)
{
    const TemporaryTree tree;
    ReplacedItemCalls calls;
    calls->statfs = [](const char*, struct statfs* statistics) {
        *statistics = {};
        statistics->f_fsid = {{0x11223344, -2}};
        return 0;
    };
    EXPECT_EQ(JNVolumeInfo::withPath("/")->filesystemID(), 0xFFFFFFFE11223344U);
}

TEST(JNVolumeInfo, OfAMissingItemIsThatOfItsFolder)
{
    const TemporaryTree tree({"file"});
    EXPECT_TRUE(JNVolumeInfo::withPath(tree.bytes("missing"))->isEqual(*JNVolumeInfo::withPath(tree.bytes("file"))));
}

struct Failure
{
    const char* path;
    const char* asked;
    int error;
};

TEST(JNVolumeInfo, RaisesWithThePathThatFailed)
{
    const TemporaryTree tree({"file"});
    for (const Failure& each : {Failure{"no/item", "no", ENOENT}, Failure{"file/below", "file/below", ENOTDIR}}) {
        try {
            (void)JNVolumeInfo::withPath(tree.bytes(each.path));
            FAIL() << "nothing was raised";
        } catch (const HVException& raised) {
            EXPECT_EQ(raised.name(), QStringLiteral("IO"));
            EXPECT_EQ(raised.reason(), QStringLiteral("problem getting volume statfs"));
            EXPECT_EQ(raised.detail(detail_key::kPOSIXErr).toInt(), each.error);
            EXPECT_EQ(raised.detail(detail_key::kPath).toString(), JNPath::withCPath(tree.bytes(each.asked))->path());
        }
    }
}

TEST(JNVolumeInfo, SaysTruthfullyWhetherItemsCanBeExchanged)
{
    const TemporaryTree tree({"a", "b"});
    if (JNVolumeInfo::withPath(tree.bytes("a"))->hasSwapping()) {
        EXPECT_EQ(platform::exchangeItems(tree.bytes("a"), tree.bytes("b")), 0);
    }
    EXPECT_FALSE(JNVolumeInfo::withPath("/proc")->hasSwapping());
    EXPECT_FALSE(JNVolumeInfo::withPath(tree.bytes("a"))->hasExchangeData());
}

} // namespace
} // namespace havrel
