// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"
#include "fs/directory.h"
#include "fs/file_info.h"
#include "fs/nonexistent_file.h"
#include "fs/path.h"
#include "fs/regular_file.h"
#include "fs/sub_path.h"
#include "fs/volume_info.h"
#include "platform/owned_descriptor.h"
#include "tests/support/item_facts.h"
#include "tests/support/mounted_folder.h"
#include "tests/support/recording_logr.h"
#include "tests/support/replaced_item_calls.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <thread>

#include <dirent.h>
#include <fcntl.h>

namespace havrel {
namespace {

using namespace havrel::tests;

JNFileInfoPtr infoIn(const TemporaryTree& tree, std::string_view name)
{
    return JNFileInfo::infoForCPath(tree.bytes(name));
}

QString textIn(const TemporaryTree& tree, std::string_view name)
{
    return QString::fromStdString(tree.path(name));
}

TEST(FileProbe, AsksAnOpenItemInsteadOfItsPath)
{
    const TemporaryTree tree({"file", "folder/"});
    const auto path = JNPath::withCPath(tree.bytes("file"));
    const platform::OwnedDescriptor folder(::open(tree.path("folder").c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_TRUE(JNFileInfo::infoForFile(folder.get(), path, nullptr)->isDirectory());
    EXPECT_TRUE(JNFileInfo::infoForFile(-1, path, nullptr)->isRegularFile());
    EXPECT_THROW((void)JNFileInfo::infoForFile(99999, path, nullptr), HVException);
}

TEST(FileProbe, AnswersWhatIsOfTheKindAlready)
{
    const TemporaryTree tree({"file", "folder/"});
    const auto file = infoIn(tree, "file");
    const auto nothing = infoIn(tree, "missing");
    const auto folder = infoIn(tree, "folder");
    EXPECT_EQ(JNFileInfo::infoForFile(-1, file->pathObject(), file), file);
    EXPECT_EQ(JNFileInfo::infoForFile(-1, nothing->pathObject(), nothing), nothing);
    EXPECT_EQ(JNFileInfo::infoForFile(-1, nothing->pathObject(), file)->exists(), false);
    EXPECT_NE(JNFileInfo::infoForFile(-1, file->pathObject(), nothing), nothing);
    EXPECT_NE(JNFileInfo::infoForFile(-1, file->pathObject(), folder), folder);
}

TEST(FileProbe, RaisesWhatIsNeitherMissingNorThere)
{
    const TemporaryTree tree;
    tree.addLink("loop", "loop");
    struct Row
    {
        QByteArray path;
        int error;
    };
    const std::vector<Row> rows{{tree.bytes("loop/below"), ELOOP},
                                {tree.bytes(std::string(256, 'n')), ENAMETOOLONG},
                                {'/' + QByteArray(5000, 'p'), ENAMETOOLONG},
                                {QByteArray("a\0b", 3), EINVAL}};
    for (const Row& row : rows) {
        try {
            (void)JNFileInfo::infoForCPath(row.path);
            ADD_FAILURE() << "nothing was raised for " << row.error;
        } catch (const HVException& raised) {
            EXPECT_EQ(raised.reason(), QStringLiteral("failed to probe object vtype"));
            EXPECT_EQ(raised.detail(detail_key::kPOSIXErr).toInt(), row.error);
        }
    }
}

TEST(FileEntry, IsOfTheKindThatIsListed)
{
    const auto parent = JNPath::withCPath("/folder");
    struct Row
    {
        std::uint8_t kind;
        int type;
    };
    for (const Row& row : {Row{DT_FIFO, 7},
                           Row{DT_CHR, 4},
                           Row{DT_DIR, 2},
                           Row{DT_BLK, 3},
                           Row{DT_REG, 1},
                           Row{DT_LNK, 5},
                           Row{DT_SOCK, 6}}) {
        const auto info = JNFileInfo::withDirEntry("name", row.kind, parent);
        ASSERT_NE(info, nullptr) << int(row.kind);
        EXPECT_EQ(static_cast<int>(info->type()), row.type);
        EXPECT_EQ(info->cPath(), QByteArray("/folder/name"));
    }
    EXPECT_EQ(JNFileInfo::withDirEntry("name", DT_UNKNOWN, parent), nullptr);
    EXPECT_EQ(JNFileInfo::withDirEntry("name", DT_WHT, parent), nullptr);
}

TEST(FileInfo, IsHardenedByThePathThatTheKernelKnows)
{
    const TemporaryTree tree({"folder/", "folder/file"});
    tree.addLink("link", "folder");
    const auto real = JNFileInfo::infoForPathObject(JNPath::withCPath(tree.bytes("folder/file"))->hardenedReal());
    EXPECT_EQ(real->hardened(), real);
    const auto through = infoIn(tree, "link/file");
    EXPECT_NE(through->hardened(), through);
    EXPECT_TRUE(through->hardened()->isEqual(*real));
}

TEST(FileInfo, FindsTheFolderThatItLiesIn)
{
    const TemporaryTree tree({"folder/", "folder/file"});
    const auto file = infoIn(tree, "folder/file");
    EXPECT_EQ(file->livingParent(), nullptr);
    ASSERT_NE(file->parentDirectoryInfo(), nullptr);
    EXPECT_EQ(file->parentDirectoryInfo()->cPath(), tree.bytes("folder"));
    const auto folder = infoIn(tree, "folder")->asDirectory();
    EXPECT_EQ(folder->firstObject()->parentDirectoryInfo(), folder);
    EXPECT_EQ(JNFileInfo::infoForPath(QStringLiteral("/"))->parentDirectoryInfo(), nullptr);
    EXPECT_EQ(JNFileInfo::infoForPath(QStringLiteral("."))->parentDirectoryInfo(), nullptr);
}

TEST(FileInfo, IsShownWithThePathOfItsVolume)
{
    const TemporaryTree tree({"mounted/"});
    const MountedFolder mounted("tmpfs", tree.bytes("mounted"), "size=64k");
    HAVREL_NEEDS_MOUNTED(mounted);
    tree.add("mounted/folder/file");
    const auto root = infoIn(tree, "mounted")->asDirectory();
    const QString volume = root->volumeInfo()->displayName();
    EXPECT_TRUE(root->isMountPoint());
    EXPECT_EQ(root->displayName(), volume);
    EXPECT_EQ(root->displayPath(), volume + QStringLiteral(":/"));
    EXPECT_EQ(root->parentDirectoryInfo(), nullptr);
    EXPECT_EQ(root->logTypeDescription(), QStringLiteral("volume"));
    const auto folder = infoIn(tree, "mounted/folder");
    EXPECT_EQ(folder->displayPath(), volume + QStringLiteral(":/folder/"));
    EXPECT_EQ(folder->logTypeDescription(), QStringLiteral("folder"));
    EXPECT_EQ(infoIn(tree, "mounted/folder/file")->displayPath(), volume + QStringLiteral(":/folder/file"));
    EXPECT_EQ(infoIn(tree, "mounted/folder/file")->volumeRelativePath(), QStringLiteral("folder/file"));
    EXPECT_EQ(root->volumeRelativePath(), QString());
}

TEST(FileInfo, IsShownWithoutAParentWhereThereIsNone)
{
    const auto info = JNFileInfo::withType(ItemType::RegularFile, JNPath::withCPath("/no such folder/file"));
    const auto logger = std::make_shared<RecordingLogr>();
    const SharedLoggerScope scope(logger);
    EXPECT_EQ(info->displayPath(), QStringLiteral("?/file"));
}

TEST(FileInfo, AnswersItsWholePathWhenTheVolumeCannotBeAsked)
{
    const TemporaryTree tree({"file"});
    const auto info = infoIn(tree, "file");
    const auto logger = std::make_shared<RecordingLogr>();
    const SharedLoggerScope scope(logger);
    ReplacedItemCalls calls;
    calls->statfs = failing(EIO);
    EXPECT_EQ(info->volumeRelativePath(), info->path());
    const QString log = logger->lines().join(u'\n');
    EXPECT_TRUE(log.contains(
        QStringLiteral("-[JNFileInfo volumeRelativePath] can't determine relative path for %1").arg(info->path())))
        << log.toStdString();
    EXPECT_EQ(infoIn(tree, "missing")->volumeRelativePath(), std::nullopt);
}

TEST(FileInfo, HasThePathOfWhereItWasMoved)
{
    const TemporaryTree tree({"a", "folder/"});
    const auto info = infoIn(tree, "a");
    info->moveTo(QStringLiteral("b"), Overwriting::No);
    EXPECT_EQ(info->cPath(), tree.bytes("b"));
    info->moveToDirectory(textIn(tree, "folder"), std::nullopt, Overwriting::No);
    EXPECT_EQ(info->cPath(), tree.bytes("folder/b"));
    EXPECT_TRUE(nameExists(tree.path("folder/b")));
    EXPECT_THROW(info->moveTo(QStringLiteral("/no such folder/x"), Overwriting::Yes), HVException);
    EXPECT_EQ(info->cPath(), tree.bytes("folder/b")) << "unchanged by a failure";
}

TEST(FileInfo, OfAnEntryMayBeMoved)
{
    const TemporaryTree tree({"folder/", "folder/a"});
    const auto folder = infoIn(tree, "folder")->asDirectory();
    const auto entry = folder->firstObject();
    entry->moveTo(QStringLiteral("b"), Overwriting::No);
    EXPECT_EQ(entry->cPath(), tree.bytes("folder/b"));
    EXPECT_EQ(entry->name(), QStringLiteral("b"));
    EXPECT_TRUE(entry->hasCName("b"));
}

TEST(FileInfo, OfACopyIsAnswered)
{
    const TemporaryTree tree({"folder/", "source/", "source/inner"});
    tree.write("a", "contents");
    const auto info = infoIn(tree, "a");
    const auto copy = info->copyTo(QStringLiteral("b"), Overwriting::No);
    EXPECT_EQ(copy->cPath(), tree.bytes("b"));
    EXPECT_TRUE(copy->isRegularFile());
    EXPECT_EQ(contentsOf(tree.path("b")), "contents");
    EXPECT_EQ(info->cPath(), tree.bytes("a"));
    const auto inFolder =
        info->copyToDirectory(textIn(tree, "folder"), QStringLiteral("c"), Overwriting::No, Cloning::No);
    EXPECT_EQ(inFolder->cPath(), tree.bytes("folder/c"));
    EXPECT_TRUE(infoIn(tree, "source")->copyTo(QStringLiteral("copied"), Overwriting::No)->isDirectory());
    EXPECT_TRUE(nameExists(tree.path("copied/inner")));
}

TEST(FileInfo, OfADeletedItemIsOfNothing)
{
    const TemporaryTree tree({"a", "b"});
    const auto info = infoIn(tree, "a");
    const auto gone = info->deleteFile();
    EXPECT_FALSE(gone->exists());
    EXPECT_EQ(gone->pathObject(), info->pathObject());
    EXPECT_FALSE(nameExists(tree.path("a")));
    EXPECT_THROW((void)info->deleteFile(), HVException);
    EXPECT_FALSE(info->tryToDeleteFile());
    EXPECT_TRUE(infoIn(tree, "b")->tryToDeleteFile());
}

TEST(FileInfo, OfTheOtherPathIsAnsweredByASwap)
{
    const TemporaryTree tree({"folder/"});
    tree.write("file", "contents");
    const auto file = infoIn(tree, "file");
    const auto folder = infoIn(tree, "folder");
    const auto other = file->swapWith(*folder);
    EXPECT_EQ(other->cPath(), tree.bytes("folder"));
    EXPECT_TRUE(other->isRegularFile());
    EXPECT_TRUE(infoIn(tree, "file")->isDirectory());
    EXPECT_TRUE(file->reevaluateType()->isDirectory());
}

TEST(FileInfo, IsAPackageByTheExtensionOfAFolder)
{
    const TemporaryTree tree({"a.app/", "plain/", "b.app"});
    EXPECT_TRUE(infoIn(tree, "a.app")->asDirectory()->isPackage());
    EXPECT_FALSE(infoIn(tree, "plain")->asDirectory()->isPackage());
    const auto gone = JNDirectory::withPathObject(JNPath::withCPath(tree.bytes("gone.app")));
    EXPECT_FALSE(gone->isPackage());
}

TEST(JNDirectory, IsRegisteredOnceForEachPathWhateverThreadsDo)
{
    const TemporaryTree tree({"folder/"});
    for (int round = 0; round < 50; ++round) {
        const auto path = JNPath::withCPath(tree.bytes("folder"));
        std::array<std::shared_ptr<JNDirectory>, 4> made;
        std::vector<std::thread> threads;
        for (auto& each : made)
            threads.emplace_back([&each, &path] { each = JNDirectory::withPathObject(path); });
        for (std::thread& each : threads)
            each.join();
        EXPECT_EQ(
            std::count_if(made.begin(), made.end(), [&path](const auto& each) { return each->pathObject() == path; }),
            1);
        for (const auto& each : made)
            EXPECT_EQ(each->pathObject()->directoryInfo(), each);
        made[0].reset();
        for (std::size_t i = 1; i < made.size(); ++i)
            EXPECT_EQ(made.at(i)->pathObject()->directoryInfo(), made.at(i)) << "the end of one is its own";
    }
}

} // namespace
} // namespace havrel
