// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"
#include "foundation/error.h"
#include "fs/path.h"
#include "fs/sub_path.h"
#include "tests/support/item_facts.h"
#include "tests/support/mounted_folder.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/recording_logr.h"
#include "tests/support/replaced_item_calls.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <functional>

#include <sys/mount.h>

namespace havrel {
namespace {

using namespace havrel::tests;

JNPathPtr pathIn(const TemporaryTree& tree, std::string_view name)
{
    return JNPath::withCPath(tree.bytes(name));
}

QString textIn(const TemporaryTree& tree, std::string_view name)
{
    return pathIn(tree, name)->path();
}

/// What an operation raised; a test that raises nothing fails.
HVException raisedBy(const std::function<void()>& operation)
{
    try {
        operation();
    } catch (const HVException& exception) {
        return exception;
    }
    ADD_FAILURE() << "nothing was raised";
    return HVException(QString(), QString());
}

struct Expected
{
    const char* reason;
    int error;
    JNPathPtr path;
    const char* key = nullptr;
    QString target = {};
};

void expectRaised(const Expected& expected, const std::function<void()>& operation)
{
    const HVException raised = raisedBy(operation);
    EXPECT_EQ(raised.name(), QStringLiteral("IO"));
    EXPECT_EQ(raised.reason(), QString::fromLatin1(expected.reason));
    EXPECT_EQ(raised.detail(detail_key::kPOSIXErr).toInt(), expected.error) << raised.what();
    EXPECT_EQ(raised.detail(detail_key::kPath).toString(), expected.path->path());
    if (expected.key != nullptr) {
        EXPECT_EQ(raised.detail(QString::fromLatin1(expected.key)).toString(), expected.target);
    }
}

// ---- moves

TEST(JNPathMove, GivesTheItemANewNameAndAnswersIt)
{
    const TemporaryTree tree({"old\xFF", "folder/"});
    const auto item = pathIn(tree, "old\xFF");
    const auto moved = item->moveTo(textIn(tree, "folder/new\xFE"), Overwriting::No);
    EXPECT_EQ(moved->cPath(), tree.bytes("folder/new\xFE"));
    EXPECT_TRUE(moved->exists());
    EXPECT_EQ(item->cPath(), tree.bytes("old\xFF")) << "this object still names the old place";
    EXPECT_FALSE(item->exists());
}

TEST(JNPathMove, TakesRelativeTargetsFromTheItemsFolder)
{
    const TemporaryTree tree({"folder/a"});
    EXPECT_EQ(pathIn(tree, "folder/a")->moveTo(QStringLiteral("b"), Overwriting::No)->cPath(), tree.bytes("folder/b"));
    EXPECT_EQ(pathIn(tree, "folder/b")->moveTo(QStringLiteral("./x/..//../c"), Overwriting::Yes)->cPath(),
              tree.bytes("c"));
    EXPECT_EQ(pathIn(tree, "c")->moveTo(textIn(tree, "folder/./d/"), Overwriting::No)->cPath(), tree.bytes("folder/d"));
    EXPECT_EQ(namesBelow(tree.root()), (std::vector<std::string>{"folder", "folder/d"}));
}

TEST(JNPathMove, NeverTakesATildeForAHomeFolder)
{
    const TemporaryTree tree({"a", "~/"});
    EXPECT_EQ(pathIn(tree, "a")->moveTo(QStringLiteral("~/x"), Overwriting::No)->cPath(), tree.bytes("~/x"));
    EXPECT_TRUE(nameExists(tree.path("~/x")));
}

TEST(JNPathMove, RefusesATakenNameUnlessToldTo)
{
    const TemporaryTree tree;
    write(tree.path("a"), "new");
    write(tree.path("b"), "old");
    tree.addLink("dangling", "nowhere");
    for (const char* taken : {"b", "dangling", "a"})
        expectRaised({"cannot move item", EEXIST, pathIn(tree, "a"), "target", textIn(tree, taken)},
                     [&] { (void)pathIn(tree, "a")->moveTo(textIn(tree, taken), Overwriting::No); });
    EXPECT_EQ(contentsOf(tree.path("b")), "old");

    (void)pathIn(tree, "a")->moveTo(textIn(tree, "b"), Overwriting::Yes);
    EXPECT_EQ(contentsOf(tree.path("b")), "new");
    EXPECT_FALSE(nameExists(tree.path("a")));
}

TEST(JNPathMove, RaisesWhatTheRenameMetWith)
{
    const TemporaryTree tree({"a", "folder/x"});
    expectRaised({"cannot rename filesystem object", ENOENT, pathIn(tree, "no"), "to", textIn(tree, "b")},
                 [&] { (void)pathIn(tree, "no")->moveTo(QStringLiteral("b"), Overwriting::Yes); });
    expectRaised({"cannot rename filesystem object", EISDIR, pathIn(tree, "a"), "to", textIn(tree, "folder")},
                 [&] { (void)pathIn(tree, "a")->moveTo(QStringLiteral("folder"), Overwriting::Yes); });
    expectRaised({"cannot move item", ENOENT, pathIn(tree, "no"), "target", textIn(tree, "b")},
                 [&] { (void)pathIn(tree, "no")->moveTo(QStringLiteral("b"), Overwriting::No); });
    expectRaised({"cannot move item", EINVAL, pathIn(tree, "folder"), "target", textIn(tree, "folder/inner")},
                 [&] { (void)pathIn(tree, "folder")->moveTo(QStringLiteral("folder/inner"), Overwriting::No); });
    EXPECT_EQ(namesBelow(tree.root()), (std::vector<std::string>{"a", "folder", "folder/x"}));
}

TEST(JNPathMove, RefusesTheEmptyTarget)
{
    const TemporaryTree tree({"a"});
    expectRaised({"cannot rename filesystem object", EINVAL, pathIn(tree, "a"), "to", QString()},
                 [&] { (void)pathIn(tree, "a")->moveTo(QString(), Overwriting::Yes); });
    expectRaised({"cannot move item", EINVAL, pathIn(tree, "a"), "target", QString()},
                 [&] { (void)pathIn(tree, "a")->moveTo(QStringLiteral(""), Overwriting::No); });
    EXPECT_TRUE(nameExists(tree.path("a")));
}

TEST(JNPathMove, GoesToAnotherVolumeOnlyWithoutOverwriting)
{
    const TemporaryTree tree({"folder/file"});
    (void)setAttribute(tree.path("folder/file"), "user.x", "value");
    const std::string before = attributeOf(tree.path("folder/file"), "user.x");
    ReplacedItemCalls calls;
    calls->rename = failing(EXDEV);
    calls->renameat2 = failing(EXDEV);
    expectRaised({"cannot rename filesystem object", EXDEV, pathIn(tree, "folder"), "to", textIn(tree, "moved")},
                 [&] { (void)pathIn(tree, "folder")->moveTo(QStringLiteral("moved"), Overwriting::Yes); });
    const auto moved = pathIn(tree, "folder")->moveTo(QStringLiteral("moved"), Overwriting::No);
    EXPECT_EQ(namesBelow(tree.root()), (std::vector<std::string>{"moved", "moved/file"}));
    EXPECT_EQ(attributeOf(tree.path("moved/file"), "user.x"), before);

    tree.add("taken");
    expectRaised({"cannot move item", EEXIST, moved, "target", textIn(tree, "taken")},
                 [&] { (void)moved->moveTo(QStringLiteral("taken"), Overwriting::No); });
    EXPECT_EQ(namesBelow(tree.root()), (std::vector<std::string>{"moved", "moved/file", "taken"}));
}

TEST(JNPathMove, ReallyGoesToAnotherVolume)
{
    const TemporaryTree tree({"folder/file", "mounted/"});
    if (::mount("none", tree.path("mounted").c_str(), "tmpfs", 0, "size=1m") != 0)
        GTEST_SKIP() << "this process may not mount";
    (void)pathIn(tree, "folder")->moveTo(QStringLiteral("mounted/moved"), Overwriting::No);
    EXPECT_TRUE(nameExists(tree.path("mounted/moved/file")));
    EXPECT_FALSE(nameExists(tree.path("folder")));

    write(tree.path("large"), std::string(4 << 20, 'x')); // more than the volume holds
    expectRaised({"cannot move item", ENOSPC, pathIn(tree, "large"), "target", textIn(tree, "mounted/large")},
                 [&] { (void)pathIn(tree, "large")->moveTo(QStringLiteral("mounted/large"), Overwriting::No); });
    EXPECT_EQ(std::filesystem::file_size(tree.path("large")), 4U << 20);
    EXPECT_FALSE(nameExists(tree.path("mounted/large")));
    EXPECT_EQ(::umount(tree.path("mounted").c_str()), 0);
}

TEST(JNPathMove, JoinsFolderAndNameWithDefaults)
{
    const TemporaryTree tree({"one/a", "two/"});
    auto item = pathIn(tree, "one/a");
    item = item->moveToDirectory(textIn(tree, "two"), std::nullopt, Overwriting::No);
    EXPECT_EQ(item->cPath(), tree.bytes("two/a"));
    item = item->moveToDirectory(std::nullopt, QStringLiteral("b"), Overwriting::No);
    EXPECT_EQ(item->cPath(), tree.bytes("two/b"));
    item = item->moveToDirectory(textIn(tree, "one/"), QStringLiteral("c"), Overwriting::Yes);
    EXPECT_EQ(item->cPath(), tree.bytes("one/c"));
    item = item->moveToDirectory(QStringLiteral("../two"), std::nullopt, Overwriting::No);
    EXPECT_EQ(item->cPath(), tree.bytes("two/c"));
    expectRaised({"cannot move item", EEXIST, item, "target", item->path()},
                 [&] { (void)item->moveToDirectory(std::nullopt, std::nullopt, Overwriting::No); });
}

TEST(JNPathMove, WorksForSubPathsToo)
{
    const TemporaryTree tree({"folder/a"});
    const auto item = JNSubPath::withCName("a", pathIn(tree, "folder"));
    EXPECT_EQ(item->moveTo(QStringLiteral("b"), Overwriting::No)->cPath(), tree.bytes("folder/b"));
}

// ---- copies

TEST(JNPathCopy, CopiesTheItemAndAnswersTheCopy)
{
    const TemporaryTree tree({"folder/a/file"});
    write(tree.path("folder/x"), "text");
    const auto copy = pathIn(tree, "folder")->copyTo(QStringLiteral("./copy/"), Overwriting::No);
    EXPECT_EQ(copy->cPath(), tree.bytes("copy"));
    EXPECT_EQ(namesBelow(tree.path("copy")), namesBelow(tree.path("folder")));
    EXPECT_EQ(contentsOf(tree.path("copy/x")), "text");
    const auto another = pathIn(tree, "folder")->copyTo(textIn(tree, "another"), Overwriting::Yes, Cloning::No);
    EXPECT_EQ(namesBelow(tree.path("another")), namesBelow(tree.path("folder")));
}

TEST(JNPathCopy, JoinsFolderAndNameWithDefaults)
{
    const TemporaryTree tree({"one/a", "two/"});
    const auto item = pathIn(tree, "one/a");
    EXPECT_EQ(item->copyToDirectory(textIn(tree, "two"), std::nullopt, Overwriting::No)->cPath(), tree.bytes("two/a"));
    EXPECT_EQ(item->copyToDirectory(std::nullopt, QStringLiteral("b"), Overwriting::No)->cPath(), tree.bytes("one/b"));
    EXPECT_EQ(item->copyToDirectory(textIn(tree, "two"), std::nullopt, Overwriting::Yes, Cloning::No)->cPath(),
              tree.bytes("two/a"));
}

TEST(JNPathCopy, RefusesATakenNameUnlessToldTo)
{
    const TemporaryTree tree({"old/precious"});
    write(tree.path("a"), "new");
    tree.addLink("dangling", "nowhere");
    for (const char* taken : {"old", "dangling", "a"})
        expectRaised({"cannot copy item", EEXIST, pathIn(tree, "a"), "target", textIn(tree, taken)},
                     [&] { (void)pathIn(tree, "a")->copyTo(textIn(tree, taken), Overwriting::No); });
    EXPECT_TRUE(nameExists(tree.path("old/precious")));

    for (const char* taken : {"old", "dangling"}) {
        (void)pathIn(tree, "a")->copyTo(textIn(tree, taken), Overwriting::Yes);
        EXPECT_EQ(contentsOf(tree.path(taken)), "new") << taken;
    }
    EXPECT_FALSE(nameExists(tree.path("nowhere")));
}

/// Targets that an overwriting copy would destroy its own original for.
class JNPathCopyOntoItself : public ::testing::TestWithParam<const char*>
{
};

TEST_P(JNPathCopyOntoItself, IsRefusedWithNothingDeleted)
{
    const TemporaryTree tree({"folder/inner/file", "folder/inner/other"});
    tree.addLink("link", "folder");
    const auto before = namesBelow(tree.root());
    const auto item = pathIn(tree, "folder/inner/file");
    const HVException raised = raisedBy([&] { (void)item->copyTo(QString::fromUtf8(GetParam()), Overwriting::Yes); });
    EXPECT_EQ(raised.reason(), QStringLiteral("cannot copy item"));
    EXPECT_EQ(raised.detail(detail_key::kPath).toString(), item->path());
    EXPECT_TRUE(raised.userInfo().contains(QStringLiteral("target")));
    EXPECT_EQ(namesBelow(tree.root()), before);
}

INSTANTIATE_TEST_SUITE_P(Targets,
                         JNPathCopyOntoItself,
                         ::testing::Values("",
                                           "file",
                                           "./file",
                                           "file/",
                                           ".",
                                           "..",
                                           "../inner",
                                           "../../folder",
                                           "../../link/inner/file",
                                           "../../link/inner",
                                           "/",
                                           "file/below"));

TEST(JNPathCopy, IsRefusedOntoAFolderThatHoldsItBehindABindMount)
{
    const TemporaryTree tree({"data/inner/file", "view/"});
    const auto view = MountedFolder::bound(tree.bytes("data/inner"), tree.bytes("view"));
    HAVREL_NEEDS_MOUNTED(view);
    expectRaised({"cannot copy item", EINVAL, pathIn(tree, "view/file"), "target", textIn(tree, "data")},
                 [&] { (void)pathIn(tree, "view/file")->copyTo(textIn(tree, "data"), Overwriting::Yes); });
    EXPECT_TRUE(nameExists(tree.path("data/inner/file")));
}

TEST(JNPathCopy, RefusesWhatHasNoNameOfItsOwn)
{
    const TemporaryTree tree({"folder/file", "other/"});
    const auto before = namesBelow(tree.root());
    for (const char* name : {"", ".", ".."}) {
        (void)raisedBy([&] {
            (void)pathIn(tree, "folder/file")
                ->copyToDirectory(textIn(tree, "other"), QString::fromLatin1(name), Overwriting::Yes);
        });
        (void)raisedBy([&] {
            (void)pathIn(tree, "folder/file")
                ->moveToDirectory(textIn(tree, "other"), QString::fromLatin1(name), Overwriting::Yes);
        });
    }
    EXPECT_EQ(namesBelow(tree.root()), before);
}

TEST(JNPathCopy, IsRefusedIntoTheItemItself)
{
    const TemporaryTree tree({"folder/inner/"});
    for (const Overwriting overwriting : {Overwriting::No, Overwriting::Yes})
        expectRaised({"cannot copy item", EINVAL, pathIn(tree, "folder"), "target", textIn(tree, "folder/inner/copy")},
                     [&] { (void)pathIn(tree, "folder")->copyTo(QStringLiteral("folder/inner/copy"), overwriting); });
    EXPECT_EQ(namesBelow(tree.root()), (std::vector<std::string>{"folder", "folder/inner"}));
}

TEST(JNPathCopy, DeletesNothingForAnItemThatIsMissingOrMayNotBeRead)
{
    const TemporaryTree tree({"target/precious"});
    expectRaised({"cannot copy item", ENOENT, pathIn(tree, "missing"), "target", textIn(tree, "target")},
                 [&] { (void)pathIn(tree, "missing")->copyTo(QStringLiteral("target"), Overwriting::Yes); });
    const OrdinaryUser user(tree.root());
    write(tree.path("secret"), "x");
    std::filesystem::permissions(tree.path("secret"), std::filesystem::perms::none);
    expectRaised({"cannot copy item", EACCES, pathIn(tree, "secret"), "target", textIn(tree, "target")},
                 [&] { (void)pathIn(tree, "secret")->copyTo(QStringLiteral("target"), Overwriting::Yes); });
    EXPECT_TRUE(nameExists(tree.path("target/precious")));
}

TEST(JNPathCopy, TellsAnOldItemThatDoesNotGoFromACopyThatFails)
{
    const TemporaryTree tree({"a", "old/file"});
    ReplacedItemCalls calls;
    calls->unlinkat = failing(EPERM);
    expectRaised({"cannot overwrite item", EPERM, pathIn(tree, "a"), "target", textIn(tree, "old")},
                 [&] { (void)pathIn(tree, "a")->copyTo(QStringLiteral("old"), Overwriting::Yes); });
    EXPECT_TRUE(nameExists(tree.path("old/file")));
    calls->unlinkat = platform::systemItemCalls().unlinkat;

    write(tree.path("a"), "text");
    calls->clone = failing(EXDEV);
    calls->copyFileRange = failing(ENOSPC);
    expectRaised({"cannot copy item", ENOSPC, pathIn(tree, "a"), "target", textIn(tree, "b")},
                 [&] { (void)pathIn(tree, "a")->copyTo(QStringLiteral("b"), Overwriting::No); });
    expectRaised({"cannot copy item", ENOENT, pathIn(tree, "a"), "target", textIn(tree, "no/folder")},
                 [&] { (void)pathIn(tree, "a")->copyTo(QStringLiteral("no/folder"), Overwriting::Yes); });
    EXPECT_EQ(namesBelow(tree.root()), (std::vector<std::string>{"a", "old", "old/file"}));
}

TEST(JNPathCopy, SaysSoWhenTheVolumeDropsAttributes)
{
    const TemporaryTree tree({"a"});
    if (!setAttribute(tree.path("a"), "user.x", "value"))
        GTEST_SKIP() << "the file system of $TMPDIR keeps no attributes of users";
    const auto logger = std::make_shared<RecordingLogr>();
    const SharedLoggerScope scope(logger);
    ReplacedItemCalls calls;
    calls->setxattr = failing(ENOTSUP);
    (void)pathIn(tree, "a")->copyTo(QStringLiteral("b"), Overwriting::No);
    ASSERT_EQ(logger->lines().size(), 1);
    EXPECT_TRUE(logger->lines()[0].contains(QStringLiteral(" Caution The volume of ")));
}

// ---- the rest

TEST(JNPathDelete, RemovesItemsAndNeverFollowsLinks)
{
    const TemporaryTree tree({"folder/a/b", "kept/file"});
    tree.addLink("folder/link", "../kept");
    pathIn(tree, "folder")->deleteFile();
    EXPECT_EQ(namesBelow(tree.root()), (std::vector<std::string>{"kept", "kept/file"}));
    EXPECT_TRUE(pathIn(tree, "kept/file")->tryToDeleteFile());
    EXPECT_FALSE(pathIn(tree, "kept/file")->tryToDeleteFile());
}

TEST(JNPathDelete, RaisesWhatItMetWith)
{
    const TemporaryTree tree;
    expectRaised({"cannot delete item", ENOENT, pathIn(tree, "missing")},
                 [&] { pathIn(tree, "missing")->deleteFile(); });
    const HVException raised = raisedBy([&] { pathIn(tree, "missing")->deleteFile(); });
    EXPECT_FALSE(raised.userInfo().contains(QStringLiteral("target")));
    expectRaised({"cannot delete item", EINVAL, pathIn(tree, ".")}, [&] { pathIn(tree, ".")->deleteFile(); });
    expectRaised({"cannot delete item", EBUSY, JNPath::withCPath("/")}, [&] { JNPath::withCPath("/")->deleteFile(); });
}

TEST(JNPathDelete, RemovesNothingForAPathWithANul)
{
    const TemporaryTree tree({"folder/file"});
    EXPECT_FALSE(JNPath::withPath(textIn(tree, "folder") + QChar(u'\0') + QStringLiteral("x"))->tryToDeleteFile());
    EXPECT_TRUE(nameExists(tree.path("folder/file")));
}

TEST(JNPath, TouchesWithoutComplaint)
{
    const TemporaryTree tree({"file"});
    const struct timespec old[2] = {{1, 0}, {1, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, tree.path("file").c_str(), old, 0), 0);
    pathIn(tree, "file")->touch();
    EXPECT_GT(statusOf(tree.path("file")).st_mtim.tv_sec, 1);
    EXPECT_GT(statusOf(tree.path("file")).st_atim.tv_sec, 1);
    EXPECT_NO_THROW(pathIn(tree, "missing")->touch());
}

} // namespace
} // namespace havrel
