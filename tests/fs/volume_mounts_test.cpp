// SPDX-License-Identifier: MIT
// Volumes on file systems that the tests mount, which needs root.
#include "diagnostics/exception.h"
#include "foundation/archiving.h"
#include "fs/directory.h"
#include "fs/path.h"
#include "fs/volume_info.h"
#include "platform/items.h"
#include "platform/mount_table.h"
#include "tests/support/file_system_image.h"
#include "tests/support/hung_mount.h"
#include "tests/support/item_facts.h"
#include "tests/support/mounted_folder.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/pretended_mount_table.h"
#include "tests/support/private_mounts.h"
#include "tests/support/recording_logr.h"
#include "tests/support/replaced_item_calls.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <chrono>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace havrel {
namespace {

using namespace havrel::tests;

constexpr std::uintmax_t kMegabyte = 1 << 20;
constexpr const char* kUUID = "01234567-89ab-cdef-0123-456789abcdef";
constexpr const char* kUUIDText = "01234567-89AB-CDEF-0123-456789ABCDEF";

/// The volume mounted at \p mountPoint, in a list.
JNVolumeInfoPtr mountedAt(const std::vector<JNVolumeInfoPtr>& volumes, const QByteArray& mountPoint)
{
    const auto found = std::find_if(
        volumes.begin(), volumes.end(), [&](const JNVolumeInfoPtr& each) { return each->cPath() == mountPoint; });
    return found == volumes.end() ? nullptr : *found;
}

bool canExchange(const TemporaryTree& tree, const std::string& folder)
{
    tree.add(folder + "/one");
    tree.add(folder + "/other");
    return platform::exchangeItems(tree.bytes(folder + "/one"), tree.bytes(folder + "/other")) == 0;
}

bool canRenameExclusively(const TemporaryTree& tree, const std::string& folder)
{
    tree.add(folder + "/from");
    return ::renameat2(AT_FDCWD,
                       tree.path(folder + "/from").c_str(),
                       AT_FDCWD,
                       tree.path(folder + "/to").c_str(),
                       RENAME_NOREPLACE) == 0;
}

bool canClone(const TemporaryTree& tree, const std::string& folder)
{
    tree.write(folder + "/original", std::string(8192, 'x'));
    tree.add(folder + "/clone");
    const int from = ::open(tree.path(folder + "/original").c_str(), O_RDONLY);
    const int to = ::open(tree.path(folder + "/clone").c_str(), O_WRONLY);
    const bool cloned = ::ioctl(to, FICLONE, from) == 0;
    ::close(from);
    ::close(to);
    return cloned;
}

bool canAllocate(const TemporaryTree& tree, const std::string& folder)
{
    tree.add(folder + "/allocated");
    const int file = ::open(tree.path(folder + "/allocated").c_str(), O_WRONLY);
    const bool allocated = ::fallocate(file, FALLOC_FL_KEEP_SIZE, 0, 4096) == 0;
    ::close(file);
    return allocated;
}

bool keepsLinks(const TemporaryTree& tree, const std::string& folder)
{
    tree.add(folder + "/linked");
    return ::link(tree.path(folder + "/linked").c_str(), tree.path(folder + "/hard").c_str()) == 0 &&
           ::symlink("linked", tree.path(folder + "/soft").c_str()) == 0;
}

bool tellsCaseApart(const TemporaryTree& tree, const std::string& folder)
{
    tree.add(folder + "/case");
    return !nameExists(tree.path(folder + "/CASE"));
}

/// Does to the file system what it says that it can, and what it says that it cannot.
void expectTruth(const TemporaryTree& tree, const std::string& folder)
{
    const auto volume = JNVolumeInfo::withPath(tree.bytes(folder));
    EXPECT_EQ(volume->hasSwapping(), canExchange(tree, folder));
    EXPECT_EQ(volume->hasExclusiveRenaming(), canRenameExclusively(tree, folder));
    EXPECT_EQ(volume->hasFileCloning(), canClone(tree, folder));
    EXPECT_EQ(volume->hasPreallocation(), canAllocate(tree, folder));
    EXPECT_EQ(volume->hasSymbolicLinks() && volume->hasHardLinks(), keepsLinks(tree, folder));
    EXPECT_EQ(volume->isCaseSensitive(), tellsCaseApart(tree, folder));
    EXPECT_EQ(volume->hasExtendedAttributes(), setAttribute(tree.path(folder + "/one"), "user.havrel", "x"));
    const std::string list(
        "\x02\0\0\0\x01\0\x06\0\xFF\xFF\xFF\xFF\x04\0\x06\0\xFF\xFF\xFF\xFF\x20\0\x06\0\xFF\xFF\xFF\xFF", 28);
    EXPECT_EQ(volume->hasACLs(), setAttribute(tree.path(folder + "/one"), "system.posix_acl_access", list));
}

/// A file system in an image that is mounted through a loop device.
class VolumeOnImage : public ::testing::Test
{
protected:
    TemporaryTree m_tree{"disk/"};
    [[nodiscard]] JNVolumeInfoPtr volume() const { return JNVolumeInfo::withPath(m_tree.bytes("disk")); }
};

#define HAVREL_NEEDS_IMAGE(make, length)                                                                               \
    if (!makeImage(m_tree, "image", make, length))                                                                     \
        GTEST_SKIP() << "the program that makes such file systems is not installed";                                   \
    const MountedFolder disk(m_tree.bytes("image"), m_tree.bytes("disk"));                                             \
    if (disk.error() != 0)                                                                                             \
    GTEST_SKIP() << "mounting needs root, loop devices, and a kernel that knows the type"

const QStringList kMakeExt4{QStringLiteral("mkfs.ext4"),
                            QStringLiteral("-q"),
                            QStringLiteral("-F"),
                            QStringLiteral("-L"),
                            QStringLiteral("my disk"),
                            QStringLiteral("-U"),
                            QString::fromLatin1(kUUID)};

TEST_F(VolumeOnImage, OfExt4)
{
    HAVREL_NEEDS_IMAGE(kMakeExt4, 32 * kMegabyte);
    EXPECT_EQ(volume()->cFilesystemType(), "ext4");
    EXPECT_EQ(volume()->name(), QStringLiteral("my disk"));
    EXPECT_EQ(volume()->displayPath(), QStringLiteral("my disk:"));
    EXPECT_EQ(volume()->rootDirectory()->path(), volume()->path());
    EXPECT_EQ(volume()->uuidCStr(), kUUIDText);
    EXPECT_EQ(volume()->syntheticUUID(), QString::fromLatin1(kUUIDText));
    EXPECT_EQ(volume()->uuid()[1], 0x23);
    EXPECT_TRUE(volume()->hasJournal());
    EXPECT_TRUE(volume()->hasActiveJournal());
    EXPECT_TRUE(volume()->canRename());
    EXPECT_TRUE(volume()->hasPersistentObjects());
    EXPECT_FALSE(volume()->has64BitObjects());
    EXPECT_FALSE(volume()->hasUnreliableRootTimes());
    EXPECT_TRUE(volume()->hasVolumeSizes());
    EXPECT_TRUE(volume()->isLocal());
    EXPECT_TRUE(volume()->isWritable());
    EXPECT_TRUE(volume()->usesOwnership());
    EXPECT_TRUE(volume()->deviceName().startsWith(QStringLiteral("/dev/loop")));
    EXPECT_EQ(volume()->wholeDeviceIdentifier(), QVariant(quint64(statusOf(m_tree.path("disk")).st_dev)));
    EXPECT_GT(volume()->createdTimeSpec().tv_sec, 1'700'000'000);
    EXPECT_EQ(volume()->createdDate().seconds, volume()->createdTimeSpec().tv_sec);
    EXPECT_EQ(volume()->maxFileSize(), 9'223'372'036'854'775'807);
    EXPECT_TRUE(volume()->supportsTheseVolumeAttributes(platform::ATTR_VOL_UUID | platform::ATTR_VOL_SIZE));
    EXPECT_TRUE(
        volume()->supportsTheseCommonAttributesNatively(platform::ATTR_CMN_CRTIME | platform::ATTR_CMN_OWNERID));
    expectTruth(m_tree, "disk");
}

TEST_F(VolumeOnImage, OfExt4WithoutAJournal)
{
    HAVREL_NEEDS_IMAGE((kMakeExt4 + QStringList{QStringLiteral("-O"), QStringLiteral("^has_journal")}), 8 * kMegabyte);
    EXPECT_FALSE(volume()->hasJournal());
    EXPECT_FALSE(volume()->hasActiveJournal());
}

TEST_F(VolumeOnImage, OfExt4WhoseRootDoesNotTellCaseApart)
{
    HAVREL_NEEDS_IMAGE((kMakeExt4 + QStringList{QStringLiteral("-O"), QStringLiteral("casefold")}), 8 * kMegabyte);
    EXPECT_TRUE(volume()->isCaseSensitive());
    std::filesystem::remove(m_tree.path("disk/lost+found")); // only empty folders can be made so
    const int root = ::open(m_tree.path("disk").c_str(), O_RDONLY);
    int flags = 0;
    ASSERT_EQ(::ioctl(root, FS_IOC_GETFLAGS, &flags), 0);
    flags |= FS_CASEFOLD_FL;
    const bool folds = ::ioctl(root, FS_IOC_SETFLAGS, &flags) == 0;
    ::close(root);
    if (!folds)
        GTEST_SKIP() << "the kernel folds no case";
    EXPECT_FALSE(volume()->isCaseSensitive());
    EXPECT_TRUE(volume()->isCasePreserving());
    EXPECT_FALSE(tellsCaseApart(m_tree, "disk"));
}

TEST_F(VolumeOnImage, OfExt2)
{
    HAVREL_NEEDS_IMAGE((QStringList{QStringLiteral("mkfs.ext2"), QStringLiteral("-q"), QStringLiteral("-F")}),
                       8 * kMegabyte);
    EXPECT_EQ(volume()->name(), QStringLiteral("disk")) << "it has no label";
    EXPECT_FALSE(volume()->hasJournal());
    expectTruth(m_tree, "disk");
}

TEST_F(VolumeOnImage, OfXfs)
{
    HAVREL_NEEDS_IMAGE((QStringList{QStringLiteral("mkfs.xfs"),
                                    QStringLiteral("-q"),
                                    QStringLiteral("-L"),
                                    QStringLiteral("xdisk"),
                                    QStringLiteral("-m"),
                                    QStringLiteral("reflink=1,uuid=") + QString::fromLatin1(kUUID)}),
                       320 * kMegabyte);
    EXPECT_EQ(volume()->cFilesystemType(), "xfs");
    EXPECT_EQ(volume()->name(), QStringLiteral("xdisk"));
    EXPECT_EQ(volume()->uuidCStr(), kUUIDText);
    EXPECT_TRUE(volume()->hasActiveJournal());
    EXPECT_TRUE(volume()->has64BitObjects());
    EXPECT_TRUE(volume()->hasFileCloning());
    expectTruth(m_tree, "disk");
}

TEST_F(VolumeOnImage, OfXfsThatSharesNoBlocks)
{
    HAVREL_NEEDS_IMAGE(
        (QStringList{
            QStringLiteral("mkfs.xfs"), QStringLiteral("-q"), QStringLiteral("-m"), QStringLiteral("reflink=0")}),
        320 * kMegabyte);
    EXPECT_FALSE(volume()->hasFileCloning());
    expectTruth(m_tree, "disk");
}

TEST_F(VolumeOnImage, OfBtrfs)
{
    HAVREL_NEEDS_IMAGE((QStringList{QStringLiteral("mkfs.btrfs"),
                                    QStringLiteral("-q"),
                                    QStringLiteral("-L"),
                                    QStringLiteral("bdisk"),
                                    QStringLiteral("-U"),
                                    QString::fromLatin1(kUUID)}),
                       160 * kMegabyte);
    EXPECT_EQ(volume()->cFilesystemType(), "btrfs");
    EXPECT_EQ(volume()->name(), QStringLiteral("bdisk"));
    EXPECT_EQ(volume()->uuidCStr(), kUUIDText);
    EXPECT_TRUE(volume()->hasSnapshots());
    EXPECT_FALSE(volume()->hasJournal());
    EXPECT_TRUE(volume()->hasFileCloning());
    expectTruth(m_tree, "disk");
}

TEST_F(VolumeOnImage, OfFat)
{
    HAVREL_NEEDS_IMAGE((QStringList{QStringLiteral("mkfs.vfat"), QStringLiteral("-n"), QStringLiteral("STICK")}),
                       8 * kMegabyte);
    EXPECT_EQ(volume()->cFilesystemType(), "vfat");
    EXPECT_EQ(volume()->name(), QStringLiteral("STICK"));
    EXPECT_TRUE(volume()->uuidCStr().isEmpty()) << "its number is too short for one";
    EXPECT_TRUE(volume()->syntheticUUID().startsWith(QStringLiteral("FSID-")));
    EXPECT_TRUE(volume()->hasUnreliableRootTimes());
    EXPECT_FALSE(volume()->usesOwnership());
    EXPECT_FALSE(volume()->has2TBFiles());
    EXPECT_EQ(volume()->maxFileSize(), 4'294'967'296);
    expectTruth(m_tree, "disk");
}

TEST_F(VolumeOnImage, IsKnownToOrdinaryUsers)
{
    HAVREL_NEEDS_IMAGE(kMakeExt4, 8 * kMegabyte);
    const OrdinaryUser user(m_tree.root());
    EXPECT_EQ(volume()->uuidCStr(), kUUIDText) << "although nobody else may read the device";
    EXPECT_EQ(volume()->name(), QStringLiteral("my disk"));
}

TEST_F(VolumeOnImage, IsWhatItIsHoweverOftenItIsMounted)
{
    HAVREL_NEEDS_IMAGE(kMakeExt4, 8 * kMegabyte);
    m_tree.add("view/");
    m_tree.add("disk/inner/folder/file");
    const auto view = MountedFolder::bound(m_tree.bytes("disk/inner"), m_tree.bytes("view"));
    HAVREL_NEEDS_MOUNTED(view);
    const auto bound = JNVolumeInfo::withPath(m_tree.bytes("view/folder"));
    EXPECT_EQ(bound->cPath(), m_tree.bytes("view"));
    EXPECT_TRUE(bound->isEqual(*volume()));
    EXPECT_EQ(bound->hash(), volume()->hash());

    const auto pathIn = [&](const char* name) { return JNPath::withCPath(m_tree.bytes(name)); };
    EXPECT_EQ(volume()->relativePathOfPath(*pathIn("disk")), QStringLiteral(""));
    EXPECT_EQ(volume()->relativePathOfPath(*pathIn("disk/inner/x")), QStringLiteral("inner/x"));
    EXPECT_EQ(volume()->relativePathOfPath(*pathIn("view/folder/file")), QStringLiteral("folder/file"));
    EXPECT_EQ(volume()->relativePathOfPath(*pathIn("view")), QStringLiteral(""));
    EXPECT_FALSE(volume()->relativePathOfPath(*pathIn("image"))) << "on another volume";
    EXPECT_EQ(volume()->relativePathOfPath(*pathIn("disk/inner/../../image")), QStringLiteral("inner/../../image"))
        << "below it by its text: the disk is not asked";
    EXPECT_THROW((void)volume()->relativePathOfPath(*pathIn("image/x/y")), HVException);
}

TEST_F(VolumeOnImage, CanBeUnmounted)
{
    HAVREL_NEEDS_IMAGE(kMakeExt4, 8 * kMegabyte);
    const auto mounted = volume();
    {
        const platform::OwnedDescriptor held(::open(m_tree.path("disk").c_str(), O_RDONLY));
        try {
            mounted->unmount();
            FAIL() << "nothing was raised";
        } catch (const HVException& raised) {
            EXPECT_EQ(raised.detail(detail_key::kPOSIXErr).toInt(), EBUSY);
            EXPECT_EQ(raised.detail(QStringLiteral("name")).toString(), QStringLiteral("my disk"));
        }
    }
    mounted->unmount();
    EXPECT_FALSE(mountedAt(JNVolumeInfo::allVolumes(), m_tree.bytes("disk")));
    EXPECT_FALSE(volume()->isEqual(*mounted));
}

/// File systems in memory.
class VolumeInMemory : public ::testing::Test
{
protected:
    TemporaryTree m_tree{"disk/", "other/"};
};

TEST_F(VolumeInMemory, OfTmpfs)
{
    const MountedFolder disk("tmpfs", m_tree.bytes("disk"), "size=64k");
    HAVREL_NEEDS_MOUNTED(disk);
    const auto volume = JNVolumeInfo::withPath(m_tree.bytes("disk"));
    EXPECT_EQ(volume->cFilesystemType(), "tmpfs");
    EXPECT_EQ(volume->cDeviceName(), "havrel-test");
    EXPECT_EQ(volume->totalBytes(), 65536U);
    EXPECT_TRUE(volume->uuidCStr().isEmpty());
    EXPECT_FALSE(volume->hasJournal());
    EXPECT_FALSE(volume->hasPersistentObjects());
    EXPECT_EQ(volume->maxFileSize(), 9'223'372'036'854'775'807);
    EXPECT_TRUE(volume->isBrowsable());
    expectTruth(m_tree, "disk");

    const std::uint64_t before = volume->freeBytes();
    write(m_tree.path("disk/file"), std::string(8192, 'x'));
    EXPECT_EQ(volume->freeBytes(), before);
    volume->reloadSizes();
    EXPECT_LT(volume->freeBytes(), before);
}

TEST_F(VolumeInMemory, OfRamfsHasNoSizes)
{
    const MountedFolder disk("ramfs", m_tree.bytes("disk"), "");
    HAVREL_NEEDS_MOUNTED(disk);
    const auto volume = JNVolumeInfo::withPath(m_tree.bytes("disk"));
    EXPECT_FALSE(volume->hasVolumeSizes());
    EXPECT_FALSE(volume->supportsTheseVolumeAttributes(platform::ATTR_VOL_SIZE));
    EXPECT_EQ(volume->totalBytes(), 0U);
    expectTruth(m_tree, "disk");
}

TEST_F(VolumeInMemory, OfLayers)
{
    const MountedFolder layers("tmpfs", m_tree.bytes("other"), "size=1m");
    HAVREL_NEEDS_MOUNTED(layers);
    for (const char* folder : {"other/lower/", "other/upper/", "other/work/"})
        m_tree.add(folder);
    const QByteArray options = "lowerdir=" + m_tree.bytes("other/lower") + ",upperdir=" + m_tree.bytes("other/upper") +
                               ",workdir=" + m_tree.bytes("other/work");
    const MountedFolder overlay("overlay", m_tree.bytes("disk"), options.constData());
    if (overlay.error() != 0)
        GTEST_SKIP() << "the kernel lays nothing over " << m_tree.root();
    const auto volume = JNVolumeInfo::withPath(m_tree.bytes("disk"));
    EXPECT_EQ(volume->cFilesystemType(), "overlay");
    EXPECT_TRUE(volume->hasSwapping());
    EXPECT_TRUE(canExchange(m_tree, "disk"));
    EXPECT_FALSE(volume->hasFileCloning()) << "depends on what lies below, so is not known";
}

TEST_F(VolumeInMemory, MountedReadOnly)
{
    const auto disk = MountedFolder::readOnly(m_tree.bytes("disk"));
    HAVREL_NEEDS_MOUNTED(disk);
    EXPECT_FALSE(JNVolumeInfo::withPath(m_tree.bytes("disk"))->isWritable());
    EXPECT_FALSE(mountedAt(JNVolumeInfo::allVolumes(), m_tree.bytes("disk"))->isWritable());
}

TEST_F(VolumeInMemory, AtAPlaceOfAnyBytes)
{
    const std::string name = "d \t\n\\#\xFF\xC3";
    m_tree.add(name + '/');
    const MountedFolder disk("tmpfs", m_tree.bytes(name), "size=64k");
    HAVREL_NEEDS_MOUNTED(disk);
    const auto volume = JNVolumeInfo::withPath(m_tree.bytes(name + "/missing"));
    EXPECT_EQ(volume->cPath(), m_tree.bytes(name));
    EXPECT_EQ(volume->cName(), QByteArray::fromStdString(name));
    EXPECT_TRUE(mountedAt(JNVolumeInfo::allVolumes(), m_tree.bytes(name)));
    EXPECT_EQ(volume->rootDirectory()->cPath(), m_tree.bytes(name));
    const QByteArray archive = dataForRootObject(QVariant::fromValue(volume));
    EXPECT_EQ(archivedObject(archive).value<JNVolumeInfoPtr>()->cPath(), m_tree.bytes(name));
    EXPECT_EQ(volume->relativePathOfPath(*JNPath::withCPath(m_tree.bytes(name + "/\xFE"))), QString(QChar(0xDCFE)));
}

TEST_F(VolumeInMemory, OverAnotherCoversIt)
{
    const MountedFolder below("tmpfs", m_tree.bytes("disk"), "size=64k");
    HAVREL_NEEDS_MOUNTED(below);
    const MountedFolder above("tmpfs", m_tree.bytes("disk"), "size=128k");
    const auto volumes = JNVolumeInfo::allVolumes();
    EXPECT_EQ(std::count_if(volumes.begin(),
                            volumes.end(),
                            [&](const JNVolumeInfoPtr& each) { return each->cPath() == m_tree.bytes("disk"); }),
              1);
    EXPECT_EQ(mountedAt(volumes, m_tree.bytes("disk"))->totalBytes(), 131072U);
    EXPECT_EQ(JNVolumeInfo::withPath(m_tree.bytes("disk"))->totalBytes(), 131072U);
}

TEST_F(VolumeInMemory, OnAFileIsNotShownToPeople)
{
    m_tree.add("from");
    m_tree.add("at");
    const auto bound = MountedFolder::bound(m_tree.bytes("from"), m_tree.bytes("at"));
    HAVREL_NEEDS_MOUNTED(bound);
    EXPECT_FALSE(JNVolumeInfo::withPath(m_tree.bytes("at"))->isBrowsable());
    EXPECT_FALSE(mountedAt(JNVolumeInfo::browsableVolumes(), m_tree.bytes("at")));
    EXPECT_FALSE(mountedAt(JNVolumeInfo::allVolumes(), m_tree.bytes("at"))->rootDirectory());
}

TEST(Volumes, AreListedAsTheKernelDoes)
{
    keepMountsPrivate();
    std::vector<QByteArray> expected;
    for (const auto& entry : platform::uncoveredMounts(platform::readMountTable().entries))
        expected.push_back(entry.mountPoint);
    std::vector<QByteArray> listed;
    for (const JNVolumeInfoPtr& volume : JNVolumeInfo::allVolumes())
        listed.push_back(volume->cPath());
    if (::geteuid() == 0) {
        EXPECT_EQ(listed, expected);
    }
    EXPECT_TRUE(std::all_of(listed.begin(), listed.end(), [&](const QByteArray& each) {
        return std::find(expected.begin(), expected.end(), each) != expected.end();
    }));
    EXPECT_FALSE(listed.empty());
}

TEST(Volumes, OfTheKernelAreNotBrowsable)
{
    keepMountsPrivate();
    const auto all = JNVolumeInfo::allVolumes();
    const auto browsable = JNVolumeInfo::browsableVolumes();
    EXPECT_TRUE(mountedAt(all, "/proc"));
    EXPECT_FALSE(mountedAt(browsable, "/proc"));
    EXPECT_TRUE(mountedAt(browsable, "/"));
    EXPECT_LT(browsable.size(), all.size());
    EXPECT_TRUE(std::all_of(
        browsable.begin(), browsable.end(), [](const JNVolumeInfoPtr& each) { return each->isBrowsable(); }));
}

TEST(Volumes, AreTheSameWhetherListedOrAskedFor)
{
    keepMountsPrivate();
    for (const JNVolumeInfoPtr& volume : JNVolumeInfo::allVolumes()) {
        const auto asked = JNVolumeInfo::withPath(volume->cPath());
        EXPECT_TRUE(asked->isEqual(*volume)) << volume->cPath().constData();
        EXPECT_EQ(asked->cPath(), volume->cPath());
        EXPECT_EQ(asked->hash(), volume->hash());
    }
}

TEST(Volumes, WhoseTableCannotBeHadRaise)
{
    ReplacedItemCalls calls;
    const auto reasonOf = [] {
        try {
            (void)JNVolumeInfo::allVolumes();
        } catch (const HVException& raised) {
            EXPECT_EQ(raised.detail(detail_key::kPOSIXErr).toInt(), EIO);
            return raised.reason();
        }
        return QString();
    };
    calls->pread = failing(EIO);
    EXPECT_EQ(reasonOf(), QStringLiteral("cannot get stats of mounted volumes"));
    calls->openat = failing(EIO);
    EXPECT_EQ(reasonOf(), QStringLiteral("cannot get count of mounted volumes"));
}

TEST(Volumes, ThatCannotBeAskedAreLoggedAndLeftOut)
{
    const TemporaryTree tree({"good/"});
    const TemporaryTree elsewhere;
    ReplacedItemCalls calls;
    pretendMountTable(calls,
                      elsewhere,
                      "1 0 0:1 / " + tree.bytes("good") + " rw - tmpfs a rw\n2 0 0:2 / " + tree.bytes("gone") +
                          " rw - tmpfs b rw\n");
    const auto logger = std::make_shared<RecordingLogr>();
    const SharedLoggerScope scope(logger);
    const auto volumes = JNVolumeInfo::allVolumes();
    ASSERT_EQ(volumes.size(), 1U);
    EXPECT_EQ(volumes[0]->cPath(), tree.bytes("good"));
    EXPECT_TRUE(logger->lines().join(u'\n').contains(QStringLiteral("problem getting volume statfs")));

    calls->statfs = [](const char*, struct statfs* statistics) {
        *statistics = {};
        return 0;
    };
    logger->clear();
    EXPECT_EQ(JNVolumeInfo::allVolumes().size(), 1U);
    EXPECT_TRUE(logger->lines().join(u'\n').contains(QStringLiteral("problem getting volume attributes")));
}

TEST(Volumes, ThatAreHiddenFromUsersByTheirTypeAreKnown)
{
    const TemporaryTree tree({"a/", "b/.c/"});
    const TemporaryTree elsewhere;
    ReplacedItemCalls calls;
    pretendMountTable(calls,
                      elsewhere,
                      "1 0 0:1 / " + tree.bytes("a") + " rw - cgroup2 a rw\n2 0 0:2 / " + tree.bytes("b/.c") +
                          " rw - ext4 b rw\n3 0 0:3 / " + tree.bytes("b") + " rw - ext4 c rw\n");
    const auto browsable = JNVolumeInfo::browsableVolumes();
    ASSERT_EQ(browsable.size(), 1U);
    EXPECT_EQ(browsable[0]->cPath(), tree.bytes("b"));
}

TEST(Volumes, WithoutARowAreFoundByTheirFolders)
{
    const TemporaryTree tree({"a/b/c"});
    const auto known = JNVolumeInfo::withPath(tree.bytes("a/b/c"));
    const TemporaryTree elsewhere;
    ReplacedItemCalls calls;
    pretendMountTable(calls, elsewhere, "");
    const auto found = JNVolumeInfo::withPath(tree.bytes("a/b/c"));
    EXPECT_EQ(found->cPath(), known->cPath());
    EXPECT_TRUE(found->isEqual(*known));
    EXPECT_TRUE(found->cDeviceName().isEmpty());
    EXPECT_TRUE(JNVolumeInfo::allVolumes().empty());
}

/// A volume whose program never answers, and one below it.
class VolumesBesideOneThatHangs : public ::testing::Test
{
protected:
    TemporaryTree m_tree{"hung/", "other/"};
};

TEST_F(VolumesBesideOneThatHangs, AreListed)
{
    keepMountsPrivate();
    const HungMount hung(m_tree.bytes("hung"));
    if (hung.error() != 0)
        GTEST_SKIP() << "a file system in user space needs root and /dev/fuse: " << std::strerror(hung.error());
    const MountedFolder other("tmpfs", m_tree.bytes("other"), "size=64k");
    HAVREL_NEEDS_MOUNTED(other);

    for (int round = 0; round < 2; ++round) { // the second asks no further question
        const auto volumes = JNVolumeInfo::allVolumes();
        EXPECT_EQ(mountedAt(volumes, m_tree.bytes("other"))->totalBytes(), 65536U);
        const auto one = mountedAt(volumes, m_tree.bytes("hung"));
        ASSERT_TRUE(one) << "what need not be asked is known of it";
        EXPECT_EQ(one->cFilesystemType(), "fuse.sshfs");
        EXPECT_EQ(one->cDeviceName(), "hung");
        EXPECT_EQ(one->name(), QStringLiteral("hung"));
        EXPECT_FALSE(one->isLocal());
        EXPECT_FALSE(one->allowsSUID());
        EXPECT_EQ(one->totalBytes(), 0U);
    }
}

} // namespace
} // namespace havrel
