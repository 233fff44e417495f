// SPDX-License-Identifier: MIT
#include "fs/symbolic_link.h"

#include "diagnostics/exception.h"
#include "fs/path.h"
#include "fs/volume_info.h"
#include "tests/support/item_facts.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/replaced_item_calls.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include <unistd.h>

namespace havrel {
namespace {

using namespace havrel::tests;

std::shared_ptr<JNSymbolicLink> linkIn(const TemporaryTree& tree, std::string_view name)
{
    return JNFileInfo::infoForCPath(tree.bytes(name))->asSymbolicLink();
}

std::string targetOf(const TemporaryTree& tree, std::string_view name)
{
    return std::filesystem::read_symlink(tree.path(name)).string();
}

TEST(JNSymbolicLink, IsALinkWhateverItLeadsTo)
{
    const TemporaryTree tree({"folder/"});
    tree.addLink("link", "folder");
    tree.addLink("dangling", "nowhere");
    tree.addLink("loop", "loop");
    for (const char* name : {"link", "dangling", "loop"}) {
        const auto link = linkIn(tree, name);
        ASSERT_NE(link, nullptr) << name;
        EXPECT_TRUE(link->exists());
        EXPECT_TRUE(link->isSymbolicLink());
        EXPECT_FALSE(link->isRegularFile());
        EXPECT_EQ(link->asRegularFile(), link) << "it is of that class";
        EXPECT_EQ(link->asDirectory(), nullptr);
        EXPECT_EQ(link->logDescription(), QStringLiteral("link ") + link->name());
    }
}

TEST(JNSymbolicLink, ReadsItsContentsOnce)
{
    const TemporaryTree tree;
    tree.addLink("link", "some/where");
    const auto link = linkIn(tree, "link");
    EXPECT_EQ(link->contents(), QByteArray("some/where"));
    EXPECT_EQ(link->dataLength(), 10U);
    EXPECT_EQ(link->totalLength(), 10U);
    EXPECT_EQ(link->rsrcLength(), 0U);
    std::filesystem::remove(tree.path("link"));
    EXPECT_EQ(link->contents(), QByteArray("some/where"));
}

TEST(JNSymbolicLink, CutsLongContents)
{
    const TemporaryTree tree;
    tree.addLink("just", std::string(1024, 'j'));
    tree.addLink("long", std::string(1025, 'l'));
    tree.addLink("longest", std::string(4095, 'm'));
    EXPECT_EQ(linkIn(tree, "just")->contents(), QByteArray(1024, 'j'));
    EXPECT_EQ(linkIn(tree, "long")->contents(), QByteArray(1024, 'l'));
    EXPECT_EQ(linkIn(tree, "longest")->contents(), QByteArray(1024, 'm'));
}

TEST(JNSymbolicLink, RaisesWhatReadingMetWith)
{
    const TemporaryTree tree({"file"});
    const auto link = JNFileInfo::withType(ItemType::SymbolicLink, JNPath::withCPath(tree.bytes("file")));
    try {
        (void)link->asSymbolicLink()->contents();
        FAIL() << "nothing was raised";
    } catch (const HVException& raised) {
        EXPECT_EQ(raised.name(), QStringLiteral("IO"));
        EXPECT_EQ(raised.reason(), QStringLiteral("cannot read content of symbolic link"));
        EXPECT_EQ(raised.detail(detail_key::kPOSIXErr).toInt(), EINVAL);
        EXPECT_EQ(raised.detail(detail_key::kPath).toString(), link->path());
        EXPECT_EQ(raised.detail(detail_key::kType).toString(), QStringLiteral("symblic link"));
    }
}

TEST(JNSymbolicLink, WritesItsContents)
{
    const TemporaryTree tree;
    tree.addLink("link", "old");
    const auto link = linkIn(tree, "link");
    EXPECT_EQ(link->contents(), QByteArray("old"));
    link->setContents("new \xff bytes");
    EXPECT_EQ(targetOf(tree, "link"), "new \xff bytes");
    EXPECT_EQ(link->contents(), QByteArray("new \xff bytes"));
    std::filesystem::remove(tree.path("link"));
    link->setContents("again");
    EXPECT_EQ(targetOf(tree, "link"), "again") << "also where nothing is";
}

TEST(JNSymbolicLink, ForgetsItsContentsBeforeItWrites)
{
    const TemporaryTree tree;
    tree.addLink("link", "old");
    const auto link = linkIn(tree, "link");
    EXPECT_EQ(link->contents(), QByteArray("old"));
    {
        ReplacedItemCalls calls;
        calls->symlinkat = failing(ENOSPC);
        try {
            link->setContents("new");
            ADD_FAILURE() << "nothing was raised";
        } catch (const HVException& raised) {
            EXPECT_EQ(raised.reason(), QStringLiteral("cannot write content of symbolic link"));
            EXPECT_EQ(raised.detail(detail_key::kPOSIXErr).toInt(), ENOSPC);
            EXPECT_EQ(raised.detail(detail_key::kName).toString(), QStringLiteral("link"));
        }
    }
    EXPECT_FALSE(nameExists(tree.path("link")));
    tree.addLink("link", "by somebody else");
    EXPECT_EQ(link->contents(), QByteArray("by somebody else"));
}

TEST(JNSymbolicLink, LosesNothingToContentsThatNoLinkCanHave)
{
    const TemporaryTree tree;
    tree.addLink("link", "old");
    const auto link = linkIn(tree, "link");
    EXPECT_THROW(link->setContents(QByteArray("a\0b", 3)), HVException);
    EXPECT_THROW(link->setContents(QByteArray()), HVException);
    EXPECT_EQ(targetOf(tree, "link"), "old");
}

TEST(JNSymbolicLink, RaisesWhenTheOldItemStays)
{
    const TemporaryTree tree({"folder/"});
    tree.addLink("folder/link", "old");
    const auto link = linkIn(tree, "folder/link");
    ASSERT_EQ(::chmod(tree.path("folder").c_str(), 0555), 0);
    {
        const OrdinaryUser user(tree.root());
        try {
            link->setContents("new");
            ADD_FAILURE() << "nothing was raised";
        } catch (const HVException& raised) {
            EXPECT_EQ(raised.reason(), QStringLiteral("cannot delete item"));
        }
    }
    EXPECT_EQ(targetOf(tree, "folder/link"), "old");
    ASSERT_EQ(::chmod(tree.path("folder").c_str(), 0755), 0);
}

TEST(JNSymbolicLink, LiesOnTheVolumeOfItsFolder)
{
    const TemporaryTree tree;
    tree.addLink("link", "/proc");
    const auto volume = linkIn(tree, "link")->volumeInfo();
    EXPECT_TRUE(volume->isEqual(*JNVolumeInfo::withPath(QByteArray::fromStdString(tree.root()))));
    EXPECT_FALSE(volume->isEqual(*JNVolumeInfo::withPath("/proc")));
}

TEST(JNRegularFile, IsAskedForWithAReasonToRaise)
{
    const TemporaryTree tree({"file", "folder/"});
    tree.addLink("link", "file");
    const auto at = [&tree](const char* name) { return JNPath::withCPath(tree.bytes(name)); };
    EXPECT_NE(JNRegularFile::regularInfoForPathObject(at("file")), nullptr);
    EXPECT_EQ(JNRegularFile::regularInfoForPathObject(at("missing")), nullptr);
    EXPECT_EQ(JNRegularFile::regularInfoForPathObject(at("folder"), QString()), nullptr);
    for (const char* name : {"folder", "link"}) {
        try {
            (void)JNRegularFile::regularInfoForPathObject(at(name));
            ADD_FAILURE() << "nothing was raised";
        } catch (const HVException& raised) {
            EXPECT_EQ(raised.name(), QStringLiteral("IO"));
            EXPECT_EQ(raised.reason(), QStringLiteral("expected regular file"));
            EXPECT_EQ(raised.detail(detail_key::kPath).toString(), at(name)->path());
        }
    }
    try {
        (void)JNRegularFile::regularInfoForPathObject(at("folder"), QStringLiteral("no picture"));
        ADD_FAILURE() << "nothing was raised";
    } catch (const HVException& raised) {
        EXPECT_EQ(raised.reason(), QStringLiteral("no picture"));
    }
}

} // namespace
} // namespace havrel
