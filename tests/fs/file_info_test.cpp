// SPDX-License-Identifier: MIT
#include "fs/file_info.h"

#include "diagnostics/exception.h"
#include "fs/directory.h"
#include "fs/path.h"
#include "fs/sub_path.h"
#include "fs/volume_info.h"
#include "tests/support/item_facts.h"
#include "tests/support/recording_logr.h"
#include "tests/support/replaced_item_calls.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <thread>

#include <sys/mount.h>

namespace havrel {
namespace {

using namespace havrel::tests;

JNPathPtr pathIn(const TemporaryTree& tree, std::string_view name)
{
    return JNPath::withCPath(tree.bytes(name));
}

TEST(JNFileInfo, TellsTheKindOfTheItemItself)
{
    const TemporaryTree tree({"file", "folder/"});
    tree.addLink("link", "folder");
    ASSERT_EQ(::mkfifo(tree.path("pipe").c_str(), 0600), 0);
    ASSERT_EQ(::mknod(tree.path("socket").c_str(), S_IFSOCK | 0600, 0), 0);
    const auto typeOf = [&tree](const char* name) {
        return static_cast<int>(JNFileInfo::infoForCPath(tree.bytes(name))->type());
    };
    EXPECT_EQ(typeOf("file"), 1);
    EXPECT_EQ(typeOf("folder"), 2);
    EXPECT_EQ(typeOf("link"), 5);
    EXPECT_EQ(typeOf("socket"), 6);
    EXPECT_EQ(typeOf("pipe"), 7);
    EXPECT_EQ(typeOf("missing"), 0);
    EXPECT_EQ(static_cast<int>(JNFileInfo::infoForPath(QStringLiteral("/dev/null"))->type()), 4);

    const auto link = JNFileInfo::infoForCPath(tree.bytes("link"));
    EXPECT_TRUE(link->isSymbolicLink());
    EXPECT_FALSE(link->isDirectory());
    EXPECT_TRUE(link->isPersistentObject());
    EXPECT_FALSE(JNFileInfo::infoForCPath(tree.bytes("pipe"))->isPersistentObject());
}

TEST(JNFileInfo, IsOfNothingWhereThereIsNothing)
{
    const TemporaryTree tree({"file"});
    for (const char* name : {"missing", "file/below"}) {
        const auto info = JNFileInfo::infoForPathObject(pathIn(tree, name));
        EXPECT_FALSE(info->exists()) << name;
        EXPECT_EQ(info->volumeInfo(), nullptr);
        EXPECT_EQ(info->asDirectory(), nullptr);
    }
    EXPECT_TRUE(JNFileInfo::infoForCPath(tree.bytes("file"))->exists());
    EXPECT_EQ(JNFileInfo::infoForURL(QUrl(QStringLiteral("http://host/x"))), nullptr);
}

TEST(JNFileInfo, IsNoneOfTheTypesNoneAndBad)
{
    const auto path = JNPath::withCPath("/x");
    EXPECT_EQ(JNFileInfo::withType(ItemType::None, path), nullptr);
    EXPECT_EQ(JNFileInfo::withType(ItemType::Bad, path), nullptr);
}

TEST(JNFileInfo, RaisesWhatTheProbeMetWith)
{
    const TemporaryTree tree({"file"});
    ReplacedItemCalls calls;
    calls->lstat = failing(EACCES);
    try {
        (void)JNFileInfo::infoForPathObject(pathIn(tree, "file"));
        FAIL() << "nothing was raised";
    } catch (const HVException& raised) {
        EXPECT_EQ(raised.name(), QStringLiteral("IO"));
        EXPECT_EQ(raised.reason(), QStringLiteral("failed to probe object vtype"));
        EXPECT_EQ(raised.detail(detail_key::kPOSIXErr).toInt(), EACCES);
        EXPECT_EQ(raised.detail(detail_key::kPath).toString(), pathIn(tree, "file")->path());
    }
}

TEST(JNFileInfo, ForwardsNamesToItsPath)
{
    const TemporaryTree tree({"a.txt"});
    const auto path = pathIn(tree, "a.txt");
    const auto info = JNFileInfo::infoForURL(path->url());
    EXPECT_EQ(info->cName(), QByteArray("a.txt"));
    EXPECT_EQ(info->name(), QStringLiteral("a.txt"));
    EXPECT_EQ(info->displayName(), QStringLiteral("a.txt"));
    EXPECT_EQ(info->extension(), QStringLiteral("txt"));
    EXPECT_EQ(info->path(), path->path());
    EXPECT_EQ(info->cPath(), path->cPath());
    EXPECT_EQ(info->url(), path->url());
    EXPECT_EQ(info->description(), path->path());
    EXPECT_TRUE(info->isEqual(*JNFileInfo::infoForPath(path->path())));
}

TEST(JNFileInfo, NoticesAnotherKindWhenAskedTo)
{
    const TemporaryTree tree({"item"});
    const auto info = JNFileInfo::infoForCPath(tree.bytes("item"));
    EXPECT_EQ(info->reevaluateType(), info);
    std::filesystem::remove(tree.path("item"));
    const auto gone = info->reevaluateType();
    EXPECT_FALSE(gone->exists());
    EXPECT_EQ(gone->reevaluateType(), gone);
    tree.add("item/");
    EXPECT_TRUE(gone->reevaluateType()->isDirectory());
    EXPECT_TRUE(info->isRegularFile()) << "an object keeps the kind it was made with";
}

TEST(JNFileInfo, IdentifiesTheVolumeOfTheItemItself)
{
    const TemporaryTree tree({"file"});
    const auto info = JNFileInfo::infoForCPath(tree.bytes("file"));
    EXPECT_EQ(info->volumeIdentifier(), statusOf(tree.path("file")).st_dev);

    const auto logger = std::make_shared<RecordingLogr>();
    const SharedLoggerScope scope(logger);
    EXPECT_EQ(JNFileInfo::infoForCPath(tree.bytes("missing"))->volumeIdentifier(), std::nullopt);
    const QString log = logger->lines().join(u'\n');
    EXPECT_TRUE(log.contains(QStringLiteral("problem obtaining volumeIdentifier attribute"))) << log.toStdString();
}

TEST(JNDirectory, StandsForItsPathWhileItLives)
{
    const TemporaryTree tree({"folder/"});
    const auto path = pathIn(tree, "folder");
    EXPECT_EQ(path->directoryInfo(), nullptr);
    auto directory = path->directory();
    ASSERT_NE(directory, nullptr);
    EXPECT_EQ(directory->pathObject(), path);
    EXPECT_EQ(path->directoryInfo(), directory);
    EXPECT_EQ(path->directory(), directory);
    EXPECT_EQ(path->fileInfo(), directory);
    directory.reset();
    EXPECT_EQ(path->directoryInfo(), nullptr) << "the path does not keep it alive";
}

TEST(JNDirectory, TakesACopyOfAPathThatIsTaken)
{
    const TemporaryTree tree({"folder/"});
    const auto path = pathIn(tree, "folder");
    const auto first = JNFileInfo::infoForPathObject(path)->asDirectory();
    const auto second = JNFileInfo::infoForPathObject(path)->asDirectory();
    ASSERT_NE(second, nullptr);
    EXPECT_NE(second, first);
    EXPECT_EQ(path->directoryInfo(), first);
    EXPECT_NE(second->pathObject(), path);
    EXPECT_EQ(second->pathObject()->directoryInfo(), second);
    EXPECT_TRUE(second->isEqual(*first));
}

TEST(JNDirectory, IsWhatAPathOfADirectoryAnswersOnly)
{
    const TemporaryTree tree({"folder/", "file"});
    EXPECT_EQ(pathIn(tree, "file")->directory(), nullptr);
    EXPECT_EQ(pathIn(tree, "missing")->directory(), nullptr);
    EXPECT_TRUE(pathIn(tree, "file")->fileInfo()->isRegularFile());
    EXPECT_NE(JNDirectory::directoryWithPath(pathIn(tree, "folder")->path()), nullptr);
    EXPECT_EQ(JNDirectory::directoryWithPath(pathIn(tree, "file")->path()), nullptr);
    EXPECT_EQ(JNDirectory::directoryWithPath(pathIn(tree, "missing")->path()), nullptr);
}

TEST(JNDirectory, KnowsItsLivingParent)
{
    const TemporaryTree tree({"folder/inner/"});
    const auto path = pathIn(tree, "folder");
    const auto parent = path->directory();
    const auto child = JNFileInfo::infoForPathObject(JNSubPath::withCName("inner", path));
    EXPECT_EQ(child->livingParent(), parent);
    EXPECT_EQ(child->volumeInfo(), parent->volumeInfo()) << "the parent's, not one of its own";
    EXPECT_EQ(JNFileInfo::infoForCPath(tree.bytes("folder/inner"))->livingParent(), nullptr);
}

TEST(JNDirectory, AsksForItsOwnVolumeWhereOneIsMounted)
{
    const TemporaryTree tree({"folder/mounted/"});
    if (::mount("none", tree.path("folder/mounted").c_str(), "tmpfs", 0, "size=64k") != 0)
        GTEST_SKIP() << "this process may not mount";
    const auto path = pathIn(tree, "folder");
    const auto parent = path->directory();
    const auto mounted = JNFileInfo::infoForPathObject(JNSubPath::withCName("mounted", path))->asDirectory();
    EXPECT_TRUE(mounted->isMountPoint());
    EXPECT_FALSE(parent->isMountPoint());
    EXPECT_FALSE(mounted->volumeInfo()->isEqual(*parent->volumeInfo()));
    EXPECT_EQ(::umount(tree.path("folder/mounted").c_str()), 0);
}

TEST(JNDirectory, KeepsItsVolumeOrTheOneItIsTold)
{
    const TemporaryTree tree({"folder/"});
    const auto path = pathIn(tree, "folder");
    const auto directory = path->directory();
    const auto own = directory->volumeInfo();
    EXPECT_EQ(directory->volumeInfo(), own) << "found once";
    EXPECT_EQ(path->volumeInfo(), own) << "the directory's while it lives";
    auto told = JNVolumeInfo::withPath(tree.bytes("folder"));
    directory->setVolumeInfo(told);
    EXPECT_EQ(directory->volumeInfo(), told);
    const std::weak_ptr<JNVolumeInfo> watched = told;
    told.reset();
    EXPECT_TRUE(watched.expired()) << "it does not keep the volume alive";
    EXPECT_TRUE(directory->volumeInfo()->isEqual(*own));
}

TEST(JNDirectory, DoesNotKeepTheVolumeOfItsParentAlive)
{
    const TemporaryTree tree({"folder/", "folder/inner/"});
    const auto parent = pathIn(tree, "folder")->directory();
    auto told = JNVolumeInfo::withPath(tree.bytes("folder"));
    parent->setVolumeInfo(told);
    const auto child = parent->firstDirectory();
    EXPECT_EQ(child->volumeInfo(), told);
    const std::weak_ptr<JNVolumeInfo> watched = told; // it may own the parent, whose entry the child is
    told.reset();
    EXPECT_TRUE(watched.expired());
    EXPECT_NE(child->volumeInfo(), nullptr);
}

TEST(JNDirectory, IsGivenToManyThreads)
{
    const TemporaryTree tree({"folder/"});
    for (int round = 0; round < 50; ++round) {
        const auto path = pathIn(tree, "folder");
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&path] {
                const auto directory = path->directory();
                EXPECT_TRUE(directory->isDirectory());
                EXPECT_NE(directory->volumeInfo(), nullptr);
                (void)path->volumeInfo();
            });
        for (std::thread& each : threads)
            each.join();
    }
}

} // namespace
} // namespace havrel
