// SPDX-License-Identifier: MIT
#include "fs/directory.h"

#include "diagnostics/exception.h"
#include "fs/path.h"
#include "fs/sub_path.h"
#include "fs/symbolic_link.h"
#include "platform/random.h"
#include "tests/fs/directory_fixture.h"
#include "tests/support/awaited.h"
#include "tests/support/item_facts.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/replaced_item_calls.h"
#include "tests/support/temporary_tree.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <filesystem>
#include <set>
#include <thread>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace havrel {
namespace {

using namespace havrel::tests;

QStringList sortedNamesIn(JNDirectory& directory)
{
    QStringList names = namesIn(directory);
    names.sort();
    return names;
}

TEST(DirectoryEntries, AreOfTheClassesOfTheirKinds)
{
    const TemporaryTree tree({"file", "folder/", "folder/below"});
    tree.addLink("link", "folder");
    ASSERT_EQ(::mkfifo(tree.path("pipe").c_str(), 0600), 0);
    const auto directory = directoryIn(tree);
    EXPECT_EQ(sortedNamesIn(*directory),
              QStringList(
                  {QStringLiteral("file"), QStringLiteral("folder"), QStringLiteral("link"), QStringLiteral("pipe")}));
    EXPECT_NE(directory->objectMatchingCName("file")->asRegularFile(), nullptr);
    EXPECT_NE(directory->objectMatchingCName("folder")->asDirectory(), nullptr);
    EXPECT_NE(directory->objectMatchingCName("link")->asSymbolicLink(), nullptr);
    EXPECT_EQ(directory->objectMatchingCName("pipe")->type(), ItemType::Fifo);
    EXPECT_EQ(directory->objectMatchingCName("pipe")->logTypeDescription(), QStringLiteral("item"));
    EXPECT_EQ(directory->objectMatchingCName("folder")->logFullDescription(),
              QStringLiteral("folder ") + QString::fromStdString(tree.path("folder")));
}

TEST(DirectoryEntries, KnowTheirPathTheirParentAndTheirAttributes)
{
    const TemporaryTree tree({"folder/"});
    tree.write("folder/file", "12345");
    const auto directory = directoryIn(tree, "folder");
    const auto file = directory->firstRegularFile();
    ASSERT_NE(file, nullptr);
    std::filesystem::remove(tree.path("folder/file"));
    EXPECT_EQ(file->asRegularFile()->logicalSize(), 5U) << "known since the folder was read";
    EXPECT_EQ(file->cPath(), tree.bytes("folder/file"));
    EXPECT_EQ(file->path(), QString::fromStdString(tree.path("folder/file")));
    EXPECT_EQ(file->cName(), QByteArray("file"));
    EXPECT_EQ(file->livingParent(), directory);
    const auto path = std::dynamic_pointer_cast<JNSubPath>(file->pathObject());
    ASSERT_NE(path, nullptr);
    EXPECT_EQ(path->parentPath(), directory->pathObject());
    EXPECT_EQ(file->pathObject(), path) << "made once";
    EXPECT_EQ(file->cPath(), tree.bytes("folder/file"));
    EXPECT_EQ(file->livingParent(), directory);
}

TEST(DirectoryEntries, AreFoundInTheOrderOfTheFileSystem)
{
    const TemporaryTree tree;
    std::vector<std::string> listed;
    for (int i = 0; i < 2000; ++i)
        tree.add("entry number " + std::to_string(i) + std::string(100, 'x'));
    for (const auto& each : std::filesystem::directory_iterator(tree.root()))
        listed.push_back(each.path().filename().string());
    const auto directory = directoryIn(tree);
    std::vector<std::string> found;
    for (const JNFileInfoPtr& each : *directory)
        found.push_back(each->cName().toStdString());
    EXPECT_EQ(found, listed) << "over many batches";
}

TEST(DirectoryEntries, HaveNamesOfEveryByteAndLength)
{
    const TemporaryTree tree;
    std::set<std::string> made{std::string(255, 'n'), ".hidden", "..."};
    for (int byte = 1; byte < 256; ++byte)
        if (byte != '/')
            made.insert("b" + std::string(1, static_cast<char>(byte)));
    for (const std::string& name : made)
        tree.add(name);
    const auto directory = directoryIn(tree);
    std::set<std::string> found;
    for (const JNFileInfoPtr& each : *directory) {
        found.insert(each->cName().toStdString());
        EXPECT_EQ(directory->objectMatchingName(each->name()), each);
        EXPECT_TRUE(each->pathObject()->exists());
    }
    EXPECT_EQ(found, made);
}

TEST(DirectoryEntries, AreAskedForOnceEachAndNotAgain)
{
    const TemporaryTree tree({"one", "two", "three/"});
    const auto directory = directoryIn(tree);
    ReplacedItemCalls calls;
    int asked = 0;
    calls->statx = [&asked](int folder, const char* path, int flags, unsigned mask, struct statx* status) {
        ++asked;
        return ::statx(folder, path, flags, mask, status);
    };
    for (const JNFileInfoPtr& each : *directory) {
        (void)each->modifiedDate();
        (void)each->linkCount();
    }
    EXPECT_EQ(asked, 3);
}

TEST(DirectoryEntries, AreNotAskedForWhenOnlyNamesAndTypesAreWanted)
{
    const TemporaryTree tree({"file", "folder/"});
    const auto directory = directoryIn(tree);
    ReplacedItemCalls calls;
    int asked = 0;
    calls->statx = [&asked](int folder, const char* path, int flags, unsigned mask, struct statx* status) {
        ++asked;
        return ::statx(folder, path, flags, mask, status);
    };
    directory->lazyDirectoryRead(EntryDetail::NamesAndTypes);
    EXPECT_EQ(sortedNamesIn(*directory), QStringList({QStringLiteral("file"), QStringLiteral("folder")}));
    EXPECT_NE(directory->firstDirectory(), nullptr);
    EXPECT_EQ(asked, 0);
    EXPECT_EQ(directory->firstRegularFile()->asRegularFile()->logicalSize(), 0U);
    EXPECT_EQ(asked, 1) << "when they are asked for";
}

TEST(DirectoryEntries, WhoseKindIsNotListedAreAskedFor)
{
    const TemporaryTree tree({"file", "folder/"});
    ReplacedItemCalls calls;
    calls->getdents64 = [](int folder, void* buffer, std::size_t size) {
        const ssize_t length = ::getdents64(folder, buffer, size);
        for (char* next = static_cast<char*>(buffer); next < static_cast<char*>(buffer) + length;) {
            auto* entry = static_cast<dirent64*>(static_cast<void*>(next));
            entry->d_type = DT_UNKNOWN;
            next += entry->d_reclen;
        }
        return length;
    };
    const auto directory = directoryIn(tree);
    directory->lazyDirectoryRead(EntryDetail::NamesAndTypes);
    EXPECT_EQ(directory->count(), 2U);
    EXPECT_NE(directory->subdirectoryMatchingCName("folder"), nullptr);
    EXPECT_NE(directory->firstRegularFile(), nullptr);
}

TEST(DirectoryEntries, ThatVanishWhileTheyAreReadAreLeftOut)
{
    const TemporaryTree tree({"stays", "vanishes"});
    ReplacedItemCalls calls;
    calls->statx = [&tree](int folder, const char* path, int flags, unsigned mask, struct statx* status) {
        if (QByteArrayView(path) == "vanishes")
            std::filesystem::remove(tree.path("vanishes"));
        return ::statx(folder, path, flags, mask, status);
    };
    const auto directory = directoryIn(tree);
    EXPECT_EQ(namesIn(*directory), QStringList(QStringLiteral("stays")));
    EXPECT_EQ(directory->count(), 1U);
}

TEST(DirectoryEntries, OfAFolderThatMayBeListedOnlyHaveNoAttributes)
{
    const TemporaryTree tree({"folder/", "folder/file"});
    const auto directory = directoryIn(tree, "folder");
    ASSERT_EQ(::chmod(tree.path("folder").c_str(), 0444), 0);
    {
        const OrdinaryUser user(tree.root());
        const auto file = directory->firstRegularFile();
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(file->name(), QStringLiteral("file"));
        EXPECT_THROW((void)file->access(), HVException);
    }
    ASSERT_EQ(::chmod(tree.path("folder").c_str(), 0755), 0);
    EXPECT_NO_THROW((void)directory->firstRegularFile()->access());
}

TEST(JNDirectory, LooksEmptyWhileItCannotBeOpenedAndTriesAgain)
{
    const TemporaryTree tree({"folder/", "folder/file"});
    const auto directory = directoryIn(tree, "folder");
    {
        ReplacedItemCalls calls;
        calls->openat = failing(EACCES);
        EXPECT_EQ(directory->firstObject(), nullptr);
        EXPECT_EQ(directory->count(), 0U);
    }
    EXPECT_NE(directory->firstObject(), nullptr);
}

TEST(JNDirectory, LooksEmptyWhereALinkTookItsPlace)
{
    const TemporaryTree tree({"folder/", "other/", "other/file"});
    const auto directory = directoryIn(tree, "folder");
    std::filesystem::remove(tree.path("folder"));
    tree.addLink("folder", "other");
    EXPECT_EQ(directory->firstObject(), nullptr);
    std::filesystem::remove(tree.path("folder"));
    ASSERT_EQ(::mkfifo(tree.path("folder").c_str(), 0600), 0);
    EXPECT_EQ(directory->firstObject(), nullptr) << "and a pipe is not waited for";
}

TEST(JNDirectory, RaisesWhatReadingMetWithAndReadsAnewNextTime)
{
    const TemporaryTree tree;
    for (int i = 0; i < 500; ++i)
        tree.add("an entry with a name that fills buffers " + std::to_string(i));
    const auto directory = directoryIn(tree);
    {
        ReplacedItemCalls calls;
        calls->getdents64 = failingAt(2, EIO, calls->getdents64);
        try {
            directory->lazyDirectoryRead();
            ADD_FAILURE() << "nothing was raised";
        } catch (const HVException& raised) {
            EXPECT_EQ(raised.name(), QStringLiteral("IO"));
            EXPECT_EQ(raised.reason(), QStringLiteral("failed to read directory"));
            EXPECT_EQ(raised.detail(detail_key::kPOSIXErr).toInt(), EIO);
            EXPECT_EQ(raised.detail(detail_key::kAPI).toString(), QStringLiteral("getattrlistbulk"));
            EXPECT_EQ(raised.detail(detail_key::kPath).toString(), directory->path());
        }
    }
    EXPECT_EQ(namesIn(*directory).size(), 500) << "none twice";
    EXPECT_EQ(directory->count(), 500U);
}

TEST(JNDirectory, ReadsOnceMoreAfterARangeError)
{
    const TemporaryTree tree({"file"});
    ReplacedItemCalls calls;
    calls->getdents64 = failingAt(1, ERANGE, platform::systemItemCalls().getdents64);
    EXPECT_EQ(namesIn(*directoryIn(tree)).size(), 1);
    calls->getdents64 = failing(ERANGE);
    EXPECT_THROW((void)directoryIn(tree)->firstObject(), HVException);
}

TEST(JNDirectory, CountsNamesBeforeItIsReadAndEntriesAfter)
{
    const TemporaryTree tree({"one", "two", "three/"});
    const auto directory = directoryIn(tree);
    EXPECT_EQ(directory->count(), 3U);
    tree.add("four");
    EXPECT_EQ(directory->count(), 3U) << "counted once";
    directory->flushAttributes();
    EXPECT_EQ(directory->count(), 4U);
    directory->lazyDirectoryRead();
    tree.add("five");
    EXPECT_EQ(directory->count(), 4U);
    directory->flushDirectoryContents();
    directory->lazyDirectoryRead();
    EXPECT_EQ(directory->count(), 5U);
}

TEST(JNDirectory, ReadsAnewOnceItIsFlushed)
{
    const TemporaryTree tree({"b", "a"});
    const auto directory = directoryIn(tree);
    directory->flushDirectoryContents();
    directory->sort();
    const auto first = directory->firstObject();
    tree.add("c");
    EXPECT_EQ(namesIn(*directory).size(), 2);
    directory->flushDirectoryContents();
    EXPECT_EQ(namesIn(*directory).size(), 3);
    EXPECT_NE(directory->firstObject(), first);
    EXPECT_EQ(first->name(), QStringLiteral("a")) << "whoever holds an entry keeps it";
    directory->sort();
    EXPECT_EQ(namesIn(*directory), QStringList({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}));
}

TEST(JNDirectory, WalksByKind)
{
    const TemporaryTree tree({"a file", "b folder/", "d file", "e folder/"});
    tree.addLink("c link", "nowhere");
    ASSERT_EQ(::mkfifo(tree.path("0 pipe").c_str(), 0600), 0);
    const auto directory = directoryIn(tree);
    directory->sort();
    const auto pipe = directory->firstObject();
    EXPECT_EQ(pipe->name(), QStringLiteral("0 pipe"));
    EXPECT_EQ(pipe->nextObj()->name(), QStringLiteral("a file"));
    const auto content = directory->firstContentFile();
    EXPECT_EQ(content->name(), QStringLiteral("a file"));
    EXPECT_EQ(content->nextContentFile()->name(), QStringLiteral("c link"));
    EXPECT_EQ(content->nextRegularFile()->name(), QStringLiteral("d file"));
    EXPECT_EQ(content->nextRegularFile()->nextRegularFile(), nullptr);
    const auto folder = directory->firstDirectory();
    EXPECT_EQ(folder->name(), QStringLiteral("b folder"));
    EXPECT_EQ(folder->nextDirectory()->name(), QStringLiteral("e folder"));
    EXPECT_EQ(folder->nextDirectory()->nextObj(), nullptr);
    EXPECT_EQ(directory->firstRegularFile(), content);
    EXPECT_EQ(folder->firstObject(), nullptr);
    EXPECT_EQ(folder->firstDirectory(), nullptr);
    EXPECT_EQ(folder->begin(), JNDirectory::end());
}

TEST(JNDirectory, IsWalkedAsAnAbstractDirectory)
{
    const TemporaryTree tree({"a file", "b folder/"});
    tree.addLink("c link", "nowhere");
    const auto directory = directoryIn(tree);
    directory->sort();
    JNAbstractDirectory& abstract = *directory;
    const JNAbstractFilePtr first = abstract.firstAbstractObject();
    EXPECT_EQ(first, JNAbstractFilePtr(directory->firstObject()));
    EXPECT_EQ(first->name(), QStringLiteral("a file"));
    EXPECT_EQ(first->nextAbstractObj()->cName(), QByteArray("b folder"));
    EXPECT_EQ(first->nextAbstractContentFile()->name(), QStringLiteral("c link"));
    EXPECT_EQ(first->nextAbstractRegularFile(), nullptr);
    EXPECT_EQ(first->nextAbstractDirectory(), JNAbstractDirectoryPtr(directory->firstDirectory()));
    EXPECT_EQ(first->abstractParent(), JNAbstractDirectoryPtr(directory));
    EXPECT_EQ(abstract.firstAbstractContentFile(), first);
    EXPECT_EQ(abstract.firstAbstractRegularFile(), first);
    EXPECT_EQ(abstract.firstAbstractDirectory(), JNAbstractDirectoryPtr(directory->firstDirectory()));
    EXPECT_EQ(abstract.abstractObjectMatchingCName("a file"), first);
    EXPECT_EQ(abstract.abstractObjectMatchingName(QStringLiteral("a file")), first);
    EXPECT_EQ(abstract.abstractSubdirectoryMatchingCName("a file"), nullptr);
    EXPECT_NE(abstract.abstractSubdirectoryMatchingCName("b folder"), nullptr);
    EXPECT_NE(abstract.abstractSubdirectoryMatchingName(QStringLiteral("b folder")), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<JNAbstractFile>(abstract.firstAbstractDirectory()), nullptr);
}

TEST(JNDirectory, FindsEntriesByTheirBytes)
{
    const TemporaryTree tree({"Name", "folder/"});
    const auto directory = directoryIn(tree);
    EXPECT_NE(directory->objectMatchingCName("Name"), nullptr);
    EXPECT_EQ(directory->objectMatchingCName("name"), nullptr);
    EXPECT_EQ(directory->objectMatchingCName("Nam"), nullptr);
    EXPECT_EQ(directory->objectMatchingCName(QByteArray("Name\0", 5)), nullptr);
    EXPECT_EQ(directory->subdirectoryMatchingCName("Name"), nullptr);
    EXPECT_NE(directory->subdirectoryMatchingName(QStringLiteral("folder")), nullptr);
    EXPECT_EQ(directory->infoForCName("Name"), directory->objectMatchingCName("Name"));
    tree.add("later");
    EXPECT_EQ(directory->objectMatchingCName("later"), nullptr);
    EXPECT_TRUE(directory->infoForCName("later")->isRegularFile()) << "by a look at it";
    EXPECT_TRUE(directory->infoForName(QStringLiteral("later"))->isRegularFile());
    EXPECT_FALSE(directory->infoForName(QStringLiteral("never"))->exists());
    EXPECT_EQ(directory->pathForName(QStringLiteral("x"))->cPath(), directory->cPath() + "/x");
    EXPECT_EQ(directory->pathForCName("x")->parent(), directory->pathObject());
}

TEST(JNDirectory, ContainsWhatIsBelowItsPathByTheText)
{
    const auto directory = [](const char* path) { return JNDirectory::withPathObject(JNPath::withCPath(path)); };
    const auto file = [](const char* path) {
        return JNFileInfo::withType(ItemType::RegularFile, JNPath::withCPath(path));
    };
    EXPECT_TRUE(directory("/a")->containsFile(*file("/a/b")));
    EXPECT_TRUE(directory("/a")->containsFile(*file("/a/b/c")));
    EXPECT_FALSE(directory("/a")->containsFile(*file("/ab")));
    EXPECT_FALSE(directory("/a")->containsFile(*file("/a")));
    EXPECT_FALSE(directory("/")->containsFile(*file("/a")));
}

TEST(JNDirectory, MakesDirectories)
{
    const TemporaryTree tree;
    const auto directory = directoryIn(tree);
    const auto made = directory->createSubdirectoryWithName(QStringLiteral("made"), 0700);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->cPath(), directory->cPath() + "/made");
    EXPECT_EQ(made->livingParent(), directory);
    EXPECT_EQ(statusOf(tree.path("made")).st_mode & 07777U, 0700U);
    try {
        directory->createSubdirectoryWithName(QStringLiteral("made"), 0755);
        ADD_FAILURE() << "nothing was raised";
    } catch (const HVException& raised) {
        EXPECT_EQ(raised.name(), QStringLiteral("IO"));
        EXPECT_EQ(raised.reason(), QStringLiteral("could not create directory"));
        EXPECT_EQ(raised.detail(detail_key::kPOSIXErr).toInt(), EEXIST);
        EXPECT_EQ(raised.detail(detail_key::kPath).toString(), QString::fromStdString(tree.path("made")));
        EXPECT_EQ(raised.detail(QStringLiteral("mode")).toString(), QString::number(0755));
    }
}

TEST(JNDirectory, MakesDirectoriesOfNamesThatNobodyHas)
{
    const TemporaryTree tree({"work.00000001.tmp"});
    const auto directory = directoryIn(tree);
    std::uint32_t next = 1;
    const auto real = platform::randomSource();
    platform::randomSource() = [&next] { return next++; };
    const auto made =
        directory->createUniqueSubdirectoryWithPrefix(QStringLiteral("work"), QStringLiteral("tmp"), 0700);
    const auto other = directory->createUniqueSubdirectoryWithPrefix(QStringLiteral("work"), QString(), 0700);
    platform::randomSource() = real;
    EXPECT_EQ(made->name(), QStringLiteral("work.00000002.tmp"));
    EXPECT_EQ(other->name(), QStringLiteral("work.00000003"));
}

TEST(JNDirectory, MakesNoDirectoryWhereItMayNot)
{
    const TemporaryTree tree({"folder/"});
    const auto directory = directoryIn(tree, "folder");
    ASSERT_EQ(::chmod(tree.path("folder").c_str(), 0555), 0);
    const OrdinaryUser user(tree.root());
    try {
        directory->createUniqueSubdirectoryWithPrefix(QStringLiteral("x"), QString(), 0700);
        ADD_FAILURE() << "nothing was raised";
    } catch (const HVException& raised) {
        EXPECT_EQ(raised.reason(), QStringLiteral("could not create directory"));
        EXPECT_EQ(raised.detail(detail_key::kPOSIXErr).toInt(), EACCES);
    }
}

TEST(JNDirectory, StandsForItsNewPathAfterAMove)
{
    const TemporaryTree tree({"old/", "old/file"});
    const auto oldPath = JNPath::withCPath(tree.bytes("old"));
    const auto directory = oldPath->directory();
    EXPECT_NE(directory->firstObject(), nullptr);
    directory->moveTo(QStringLiteral("new"), Overwriting::No);
    EXPECT_EQ(directory->cPath(), tree.bytes("new"));
    EXPECT_EQ(oldPath->directoryInfo(), nullptr);
    EXPECT_EQ(directory->pathObject()->directoryInfo(), directory);
    EXPECT_EQ(directory->firstObject()->cPath(), tree.bytes("new/file"));
}

/// A list of entries that nothing on the disk stands behind.
EntryList longList(int count)
{
    const auto parent = JNPath::withCPath("/somewhere");
    EntryList list;
    for (int i = 0; i < count; ++i)
        list.append(JNFileInfo::withDirEntry("entry", DT_REG, parent));
    return list;
}

/// Says when it ends.
class Mourned final : public JNRegularFile
{
public:
    explicit Mourned(Awaited<std::thread::id>& ended)
        : JNRegularFile(Token(), ItemType::RegularFile, JNPath::withCPath("/x"))
        , m_ended(ended)
    {
    }
    ~Mourned() override { m_ended.tell(std::this_thread::get_id()); }
    Q_DISABLE_COPY_MOVE(Mourned)

private:
    Awaited<std::thread::id>& m_ended;
};

TEST(EntryRelease, ReachesTheLastOfAMillionOnAnotherThread)
{
    Awaited<std::thread::id> ended;
    {
        EntryList list = longList(1000000);
        list.append(std::make_shared<Mourned>(ended));
    }
    const auto thread = ended.one();
    ASSERT_TRUE(thread) << "the last entry was not released";
    EXPECT_NE(*thread, std::this_thread::get_id());
}

TEST(EntryRelease, BeginsAnewAfterAPause)
{
    for (int round = 0; round < 20; ++round) {
        Awaited<std::thread::id> ended;
        {
            EntryList list = longList(3);
            list.append(std::make_shared<Mourned>(ended));
        }
        ASSERT_TRUE(ended.one()) << round;
    }
}

TEST(JNDirectory, IsReadSortedFlushedAndDroppedByManyThreads)
{
    const TemporaryTree tree;
    for (int i = 0; i < 200; ++i)
        tree.add(std::to_string(i));
    const auto directory = directoryIn(tree);
    std::vector<std::thread> threads;
    const auto run = [&threads, &directory](const std::function<void(JNDirectory&)>& act) {
        threads.emplace_back([&directory, act] {
            for (int round = 0; round < 30; ++round)
                act(*directory);
        });
    };
    run([](JNDirectory& each) { each.sort(); });
    run([](JNDirectory& each) {
        each.resortUsing([](const JNFileInfo& one, const JNFileInfo& other) { return other.compareNames(one); });
    });
    run([](JNDirectory& each) { each.flushDirectoryContents(); });
    run([](JNDirectory& each) {
        for (const JNFileInfoPtr& entry : each)
            EXPECT_FALSE(entry->pathObject()->cPath().isEmpty());
    });
    run([&tree](JNDirectory& each) {
        EXPECT_EQ(each.count(), 200U);
        EXPECT_EQ(namesIn(*directoryIn(tree)).size(), 200);
    });
    for (std::thread& each : threads)
        each.join();
    EXPECT_EQ(namesIn(*directory).size(), 200);
}

TEST(JNDirectory, IsReadWhileItChanges)
{
    const TemporaryTree tree({"stays"});
    std::atomic<bool> done = false;
    std::thread changer([&] {
        for (int i = 0; i < 300; ++i) {
            tree.add("comes" + std::to_string(i));
            std::filesystem::remove(tree.path("comes" + std::to_string(i)));
        }
        done = true;
    });
    const auto directory = directoryIn(tree);
    do {
        directory->flushDirectoryContents();
        EXPECT_NE(directory->objectMatchingCName("stays"), nullptr);
    } while (!done);
    changer.join();
    directory->flushDirectoryContents();
    EXPECT_EQ(namesIn(*directory), QStringList(QStringLiteral("stays")));
}

} // namespace
} // namespace havrel
