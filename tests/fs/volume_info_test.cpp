// SPDX-License-Identifier: MIT
#include "fs/volume_info.h"

#include "diagnostics/exception.h"
#include "foundation/archiving.h"
#include "fs/directory.h"
#include "fs/path.h"
#include "platform/items.h"
#include "tests/support/item_facts.h"
#include "tests/support/key_table_coder.h"
#include "tests/support/modelled_registry.h"
#include "tests/support/pretended_mount_table.h"
#include "tests/support/recording_logr.h"
#include "tests/support/replaced_item_calls.h"
#include "tests/support/temporary_tree.h"
#include "tests/support/unkeyed_coder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <thread>

#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/vfs.h>

namespace havrel {
namespace {

using namespace havrel::tests;
namespace bits = platform;

/// Raises what \p work raises, after looking at it.
void expectRaised(const std::function<void()>& work, const char* reason, int error, const QByteArray& path)
{
    try {
        work();
        FAIL() << "nothing was raised";
    } catch (const HVException& raised) {
        EXPECT_EQ(raised.name(), QStringLiteral("IO"));
        EXPECT_EQ(raised.reason(), QString::fromLatin1(reason));
        EXPECT_EQ(raised.detail(detail_key::kPOSIXErr).toInt(), error);
        EXPECT_EQ(raised.detail(detail_key::kPath).toString(), JNPath::withCPath(path)->path());
    }
}

/// A volume of which a test says everything; its mount point is the tree.
class JNVolumeInfoMade : public ::testing::Test
{
protected:
    JNVolumeInfoMade()
    {
        m_stat.mountPoint = QByteArray::fromStdString(m_tree.root());
        m_stat.type = "tmpfs";
        m_stat.device = "made";
        m_stat.id = 0xFFFFFFFE00000015U;
        m_stat.blockSize = 512;
        m_stat.optimalXferSize = 4096;
        m_stat.blocks = 1000;
        m_stat.freeBlocks = 300;
        m_stat.availableBlocks = 200;
        m_stat.answered = true;
    }
    [[nodiscard]] JNVolumeInfoPtr volume() const { return JNVolumeInfo::withStat(m_stat); }

    TemporaryTree m_tree;
    platform::FileSystem m_stat;
};

TEST(JNVolumeInfo, IsTheSameForItemsOfOneVolume)
{
    const TemporaryTree tree({"a", "folder/b"});
    const auto one = JNVolumeInfo::withPath(tree.bytes("a"));
    const auto other = JNVolumeInfo::volumeInfoForPathObject(*JNPath::withCPath(tree.bytes("folder/b")));
    EXPECT_TRUE(one->isEqual(*other));
    EXPECT_EQ(one->hash(), other->hash());
    EXPECT_EQ(one->filesystemID(),
              JNVolumeInfo::volumeInfoForPath(JNPath::withCPath(tree.bytes("a"))->path())->filesystemID());
    EXPECT_FALSE(one->isEqual(*JNVolumeInfo::withPath("/proc")));
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
    EXPECT_EQ(JNVolumeInfo::withPath("/")->hash(), 0xFFFFFFFE11223344U);
}

TEST(JNVolumeInfo, OfAMissingItemIsThatOfItsFolder)
{
    const TemporaryTree tree({"file"});
    EXPECT_TRUE(JNVolumeInfo::withPath(tree.bytes("missing"))->isEqual(*JNVolumeInfo::withPath(tree.bytes("file"))));
}

TEST(JNVolumeInfo, RaisesWithThePathThatFailed)
{
    const TemporaryTree tree({"file"});
    struct Failure
    {
        const char* path;
        const char* asked;
        int error;
    };
    for (const Failure& each : {Failure{"no/item", "no", ENOENT}, Failure{"file/below", "file/below", ENOTDIR}})
        expectRaised([&] { (void)JNVolumeInfo::withPath(tree.bytes(each.path)); },
                     "problem getting volume statfs",
                     each.error,
                     tree.bytes(each.asked));
}

TEST(JNVolumeInfo, LooksAtTheFolderOfAMissingItemOnce)
{
    ReplacedItemCalls calls;
    QByteArrayList asked;
    calls->statfs = [&](const char* path, struct statfs*) {
        asked << path;
        errno = ENOENT;
        return -1;
    };
    EXPECT_THROW((void)JNVolumeInfo::withPath("/a/b/c"), HVException);
    EXPECT_EQ(asked, (QByteArrayList{"/a/b/c", "/a/b"}));
    calls->statfs = [&](const char* path, struct statfs*) {
        asked << path;
        errno = EACCES;
        return -1;
    };
    asked.clear();
    EXPECT_THROW((void)JNVolumeInfo::withPath("/a/b/c"), HVException);
    EXPECT_EQ(asked, QByteArrayList{"/a/b/c"});
}

TEST(JNVolumeInfo, RefusesAPathWithANulByte)
{
    expectRaised(
        [] { (void)JNVolumeInfo::withPath(QByteArray("/\0proc", 6)); }, "problem getting volume statfs", EINVAL, "/");
}

TEST_F(JNVolumeInfoMade, RaisesWhenItsMountPointIsGone)
{
    m_stat.mountPoint = m_tree.bytes("gone");
    expectRaised([this] { (void)volume(); }, "problem getting volume attributes", ENOENT, m_tree.bytes("gone"));
}

TEST_F(JNVolumeInfoMade, HasTheSizesOfItsStatistics)
{
    EXPECT_EQ(volume()->totalBytes(), 512'000U);
    EXPECT_EQ(volume()->freeBytes(), 153'600U);
    EXPECT_EQ(volume()->availableBytes(), 102'400U);
    EXPECT_EQ(volume()->blockSize(), 512);
    EXPECT_EQ(volume()->optimalXferSize(), 4096);
    EXPECT_EQ(volume()->cFilesystemType(), "tmpfs");
}

TEST_F(JNVolumeInfoMade, HasTheFreeSizeAvailableWhereNoneIsSaid)
{
    m_stat.availableBlocks = 0;
    EXPECT_EQ(volume()->availableBytes(), 153'600U);
}

TEST_F(JNVolumeInfoMade, KeepsTheBytesOfItsDevice)
{
    m_stat.device = "host:/a\xFF";
    const auto made = volume();
    EXPECT_EQ(made->cDeviceName(), "host:/a\xFF");
    EXPECT_EQ(made->deviceName(), QStringLiteral("host:/a") + QChar(0xDCFF));
    EXPECT_EQ(made->deviceName(), QStringLiteral("host:/a") + QChar(0xDCFF)) << "again";
}

TEST_F(JNVolumeInfoMade, IsCalledByItsMountPoint)
{
    const auto made = volume();
    const QString name = QString::fromStdString(m_tree.root()).section(u'/', -1);
    EXPECT_EQ(made->cName(), name.toUtf8());
    EXPECT_EQ(made->name(), name);
    EXPECT_EQ(made->displayName(), name);
    EXPECT_EQ(made->displayPath(), name + u':');
    EXPECT_EQ(made->cPath(), m_stat.mountPoint);
    EXPECT_EQ(made->path(), QString::fromStdString(m_tree.root()));
    EXPECT_EQ(made->url(), JNPath::withCPath(m_stat.mountPoint)->url());
    EXPECT_EQ(made->description(), QStringLiteral("JNVolumeInfo(\"%1\",%2)").arg(name, made->path()));
}

TEST_F(JNVolumeInfoMade, HasAnIdentifierInTheStyleOfAUUID)
{
    struct Id
    {
        std::uint64_t id;
        const char* text;
    };
    for (const Id& each : {Id{0x15, "FSID-0015-0000"},
                           Id{0, "FSID-0000-0000"},
                           Id{0xFFFFFFFF, "FSID-ffffffff-0000"},
                           Id{0xABCD00012345U, "FSID-12345-abcd"},
                           Id{0x8000000080000001U, "FSID-80000001-80000000"}}) {
        m_stat.id = each.id;
        EXPECT_EQ(volume()->syntheticUUID(), QString::fromLatin1(each.text));
    }
    EXPECT_TRUE(volume()->uuidCStr().isEmpty());
    EXPECT_EQ(volume()->uuid(), platform::VolumeUUID{});
}

TEST_F(JNVolumeInfoMade, TellsHowItIsMounted)
{
    struct Query
    {
        std::uint32_t flag;
        bool (JNVolumeInfo::*query)() const;
        bool whenSet;
    };
    for (const Query& each : {Query{bits::MNT_RDONLY, &JNVolumeInfo::isWritable, false},
                              Query{bits::MNT_LOCAL, &JNVolumeInfo::isLocal, true},
                              Query{bits::MNT_NOEXEC, &JNVolumeInfo::allowsExec, false},
                              Query{bits::MNT_NOSUID, &JNVolumeInfo::allowsSUID, false},
                              Query{bits::MNT_IGNORE_OWNERSHIP, &JNVolumeInfo::usesOwnership, false},
                              Query{bits::MNT_DONTBROWSE, &JNVolumeInfo::isBrowsable, false}}) {
        m_stat.flags = each.flag;
        EXPECT_EQ(((*volume()).*each.query)(), each.whenSet) << each.flag;
        m_stat.flags = ~each.flag;
        EXPECT_EQ(((*volume()).*each.query)(), !each.whenSet) << each.flag;
    }
}

using CapabilityQuery = bool (JNVolumeInfo::*)() const noexcept;

struct Capability
{
    std::uint32_t bit;
    CapabilityQuery query;
};

/// A volume of which a word of capabilities is as given.
JNVolumeInfoPtr withWords(const platform::FileSystem& stat, const platform::VolumeCapabilities& words)
{
    platform::VolumeAttributes attributes;
    attributes.capabilities = words;
    return JNVolumeInfo::withStat(stat, attributes);
}

TEST_F(JNVolumeInfoMade, HasACapabilityThatIsSetAndKnown)
{
    for (const Capability& each : {
             Capability{bits::VOL_CAP_FMT_PERSISTENTOBJECTIDS, &JNVolumeInfo::hasPersistentObjects},
             Capability{bits::VOL_CAP_FMT_SYMBOLICLINKS, &JNVolumeInfo::hasSymbolicLinks},
             Capability{bits::VOL_CAP_FMT_HARDLINKS, &JNVolumeInfo::hasHardLinks},
             Capability{bits::VOL_CAP_FMT_JOURNAL, &JNVolumeInfo::hasJournal},
             Capability{bits::VOL_CAP_FMT_JOURNAL_ACTIVE, &JNVolumeInfo::hasActiveJournal},
             Capability{bits::VOL_CAP_FMT_NO_ROOT_TIMES, &JNVolumeInfo::hasUnreliableRootTimes},
             Capability{bits::VOL_CAP_FMT_SPARSE_FILES, &JNVolumeInfo::hasSparseFiles},
             Capability{bits::VOL_CAP_FMT_ZERO_RUNS, &JNVolumeInfo::hasZeroRuns},
             Capability{bits::VOL_CAP_FMT_CASE_SENSITIVE, &JNVolumeInfo::isCaseSensitive},
             Capability{bits::VOL_CAP_FMT_CASE_PRESERVING, &JNVolumeInfo::isCasePreserving},
             Capability{bits::VOL_CAP_FMT_FAST_STATFS, &JNVolumeInfo::hasFastStatfs},
             Capability{bits::VOL_CAP_FMT_2TB_FILESIZE, &JNVolumeInfo::has2TBFiles},
             Capability{bits::VOL_CAP_FMT_OPENDENYMODES, &JNVolumeInfo::hasOpenDeny},
             Capability{bits::VOL_CAP_FMT_HIDDEN_FILES, &JNVolumeInfo::hasHiddenFiles},
             Capability{bits::VOL_CAP_FMT_PATH_FROM_ID, &JNVolumeInfo::hasPathFromID},
             Capability{bits::VOL_CAP_FMT_64BIT_OBJECT_IDS, &JNVolumeInfo::has64BitObjects},
         }) {
        EXPECT_TRUE(((*withWords(m_stat, {{each.bit, each.bit}, {}})).*each.query)()) << each.bit;
        EXPECT_FALSE(((*withWords(m_stat, {{each.bit, ~each.bit}, {}})).*each.query)()) << "not known";
        EXPECT_FALSE(((*withWords(m_stat, {{~each.bit, ~0U}, {~0U, ~0U}})).*each.query)()) << "not set";
    }
}

TEST_F(JNVolumeInfoMade, HasAnInterfaceThatIsSetAndKnown)
{
    for (const Capability& each : {
             Capability{bits::VOL_CAP_INT_ATTRLIST, &JNVolumeInfo::hasGetAttrList},
             Capability{bits::VOL_CAP_INT_READDIRATTR, &JNVolumeInfo::hasGetDirEntriesAttr},
             Capability{bits::VOL_CAP_INT_EXCHANGEDATA, &JNVolumeInfo::hasExchangeData},
             Capability{bits::VOL_CAP_INT_ALLOCATE, &JNVolumeInfo::hasPreallocation},
             Capability{bits::VOL_CAP_INT_VOL_RENAME, &JNVolumeInfo::canRename},
             Capability{bits::VOL_CAP_INT_ADVLOCK, &JNVolumeInfo::hasAdvisoryLocking},
             Capability{bits::VOL_CAP_INT_FLOCK, &JNVolumeInfo::hasFileLocking},
             Capability{bits::VOL_CAP_INT_MANLOCK, &JNVolumeInfo::hasMandatoryLocking},
             Capability{bits::VOL_CAP_INT_EXTENDED_SECURITY, &JNVolumeInfo::hasACLs},
             Capability{bits::VOL_CAP_INT_USERACCESS, &JNVolumeInfo::hasUserAccess},
             Capability{bits::VOL_CAP_INT_EXTENDED_ATTR, &JNVolumeInfo::hasExtendedAttributes},
             Capability{bits::VOL_CAP_INT_CLONE, &JNVolumeInfo::hasFileCloning},
             Capability{bits::VOL_CAP_INT_SNAPSHOT, &JNVolumeInfo::hasSnapshots},
             Capability{bits::VOL_CAP_INT_RENAME_SWAP, &JNVolumeInfo::hasSwapping},
             Capability{bits::VOL_CAP_INT_RENAME_EXCL, &JNVolumeInfo::hasExclusiveRenaming},
         }) {
        EXPECT_TRUE(((*withWords(m_stat, {{}, {each.bit, each.bit}})).*each.query)()) << each.bit;
        EXPECT_FALSE(((*withWords(m_stat, {{}, {each.bit, ~each.bit}})).*each.query)()) << "not known";
        EXPECT_FALSE(((*withWords(m_stat, {{~0U, ~0U}, {~each.bit, ~0U}})).*each.query)()) << "not set";
    }
}

TEST_F(JNVolumeInfoMade, HasSizesUnlessItIsKnownToHaveNone)
{
    constexpr std::uint32_t kNone = bits::VOL_CAP_FMT_NO_VOLUME_SIZES;
    EXPECT_FALSE(withWords(m_stat, {{kNone, kNone}, {}})->hasVolumeSizes());
    EXPECT_TRUE(withWords(m_stat, {{kNone, 0}, {}})->hasVolumeSizes());
    EXPECT_TRUE(withWords(m_stat, {{0, kNone}, {}})->hasVolumeSizes());
}

TEST_F(JNVolumeInfoMade, SupportsAMaskOfWhichEveryBitIsSupported)
{
    platform::VolumeAttributes attributes;
    attributes.supported.valid = {0x7, 0x70, 0x700, 0x7000, 0};
    attributes.supported.native = {0x1, 0x10, 0x100, 0x1000, 0};
    const auto made = JNVolumeInfo::withStat(m_stat, attributes);
    EXPECT_TRUE(made->supportsTheseCommonAttributes(0x5));
    EXPECT_FALSE(made->supportsTheseCommonAttributes(0xF));
    EXPECT_TRUE(made->supportsTheseCommonAttributes(0));
    EXPECT_FALSE(made->supportsTheseCommonAttributesNatively(0x5));
    EXPECT_TRUE(made->supportsTheseCommonAttributesNatively(0x1));
    EXPECT_TRUE(made->supportsTheseVolumeAttributes(0x50));
    EXPECT_FALSE(made->supportsTheseVolumeAttributes(0x1));
    EXPECT_FALSE(made->supportsTheseVolumeAttributesNatively(0x50));
    EXPECT_TRUE(made->supportsTheseVolumeAttributesNatively(0x10));
    EXPECT_TRUE(made->supportsTheseDirectoryAttributes(0x500));
    EXPECT_FALSE(made->supportsTheseDirectoryAttributes(0x50));
    EXPECT_FALSE(made->supportsTheseDirectoryAttributesNatively(0x500));
    EXPECT_TRUE(made->supportsTheseDirectoryAttributesNatively(0x100));
    EXPECT_TRUE(made->supportsTheseFileAttributes(0x5000));
    EXPECT_FALSE(made->supportsTheseFileAttributes(0x500));
    EXPECT_FALSE(made->supportsTheseFileAttributesNatively(0x5000));
    EXPECT_TRUE(made->supportsTheseFileAttributesNatively(0x1000));
}

TEST_F(JNVolumeInfoMade, LimitsFilesByTheBitsOfTheirSize)
{
    constexpr std::uint32_t kBig = bits::VOL_CAP_FMT_2TB_FILESIZE;
    EXPECT_EQ(withWords(m_stat, {{0, kBig}, {}})->maxFileSize(), 4'294'967'296);
    const auto made = withWords(m_stat, {{kBig, kBig}, {}});
    struct Limit
    {
        long bits;
        std::int64_t longest;
    };
    ReplacedItemCalls calls;
    for (const Limit& limit : {Limit{-1, 0},
                               Limit{0, 0},
                               Limit{1, 1},
                               Limit{33, 8'589'934'591},
                               Limit{63, 9'223'372'036'854'775'807},
                               Limit{64, 9'223'372'036'854'775'807},
                               Limit{255, 9'223'372'036'854'775'807}}) {
        calls->pathconf = [&](const char*, int) { return limit.bits; };
        EXPECT_EQ(made->maxFileSize(), limit.longest) << limit.bits;
    }
}

TEST(JNVolumeInfo, KnowsLongFilesWhereTheCLibraryGuesses)
{
    const TemporaryTree tree;
    ReplacedItemCalls calls;
    calls->pathconf = [](const char*, int) { return 32L; };
    const auto bitsOf = [&](unsigned long type) {
        calls->statfs = [=](const char* path, struct statfs* statistics) {
            const int result = platform::systemItemCalls().statfs(path, statistics);
            statistics->f_type = static_cast<__fsword_t>(type);
            return result;
        };
        return JNPath::withCPath(QByteArray::fromStdString(tree.root()))->fileSizeBits();
    };
    EXPECT_EQ(bitsOf(0x01021994), 64) << "tmpfs";
    EXPECT_EQ(bitsOf(0x4d44), 32) << "FAT";
    EXPECT_EQ(bitsOf(0x65735546), 32) << "a program of its own";
    EXPECT_EQ(bitsOf(0x1234), 32) << "unknown";
}

TEST_F(JNVolumeInfoMade, TakesItsSizesAnew)
{
    const auto made = volume();
    EXPECT_TRUE(made->nsAttributes().isValid());
    ReplacedItemCalls calls;
    calls->statfs = [](const char*, struct statfs* statistics) {
        *statistics = {};
        statistics->f_frsize = 1024;
        statistics->f_blocks = 9;
        statistics->f_bfree = 7;
        statistics->f_bavail = 5;
        statistics->f_fsid = {{77, 0}};
        return 0;
    };
    made->reloadSizes();
    EXPECT_EQ(made->freeBytes(), 7168U);
    EXPECT_EQ(made->availableBytes(), 5120U);
    EXPECT_EQ(made->totalBytes(), 512'000U) << "as it was";
    EXPECT_EQ(made->blockSize(), 512);
    EXPECT_EQ(made->filesystemID(), m_stat.id);
    EXPECT_EQ(made->nsAttributes().toMap().value(QStringLiteral("NSFileSystemSize")), QVariant(quint64(9216)))
        << "forgotten, and found anew";

    made->reloadStats();
    EXPECT_EQ(made->blockSize(), 1024);
    EXPECT_EQ(made->filesystemID(), 77U);
    EXPECT_EQ(made->freeBytes(), 7168U) << "reloadStats leaves the sizes";
}

TEST_F(JNVolumeInfoMade, LogsWhenItCannotReload)
{
    const auto made = volume();
    EXPECT_TRUE(made->nsAttributes().isValid());
    ReplacedItemCalls calls;
    calls->statfs = failing(EIO);
    const auto logger = std::make_shared<RecordingLogr>();
    const SharedLoggerScope scope(logger);
    made->reloadStats();
    made->reloadSizes();
    EXPECT_FALSE(made->nsAttributes().isValid()) << "dropped before";
    const QStringList lines = logger->lines();
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(
        lines[0].contains(QStringLiteral(" #debug# -[JNVolumeInfo reloadStats] problem getting stats for device "
                                         "%1: 5(Input/output error) [")
                              .arg(made->path())))
        << lines[0].toStdString();
    EXPECT_TRUE(
        lines[1].contains(QStringLiteral(" #debug# -[JNVolumeInfo reloadSizes] problem getting sizes for device "
                                         "%1: 5(Input/output error) [")
                              .arg(made->path())))
        << lines[1].toStdString();
    EXPECT_TRUE(
        lines[2].contains(QStringLiteral(" #debug# -[JNVolumeInfo nsAttributes] problem obtaining NSFileManager "
                                         "attributes for filesystem at %1: Error Domain=NSPOSIXErrorDomain "
                                         "Code=5 ")
                              .arg(made->path())))
        << lines[2].toStdString();
    EXPECT_EQ(made->filesystemID(), m_stat.id);
    EXPECT_EQ(made->freeBytes(), 153'600U);
    calls->statfs = platform::systemItemCalls().statfs;
    EXPECT_TRUE(made->nsAttributes().isValid()) << "tried again";
}

TEST_F(JNVolumeInfoMade, TellsSizesAndDeviceByTheDocumentedKeys)
{
    const auto made = volume();
    const QVariantMap attributes = made->nsAttributes().toMap();
    struct stat status = statusOf(m_tree.root());
    EXPECT_EQ(attributes.value(QStringLiteral("NSFileSystemNumber")), QVariant(quint64(status.st_dev)));
    EXPECT_EQ(attributes.keys(),
              (QStringList{QStringLiteral("NSFileSystemFreeNodes"),
                           QStringLiteral("NSFileSystemFreeSize"),
                           QStringLiteral("NSFileSystemNodes"),
                           QStringLiteral("NSFileSystemNumber"),
                           QStringLiteral("NSFileSystemSize")}));
    ReplacedItemCalls calls;
    calls->statfs = failing(EIO);
    EXPECT_EQ(made->nsAttributes().toMap(), attributes) << "found once";
}

TEST_F(JNVolumeInfoMade, LooksForTheWholeDiskOfADeviceThatIsNamedAlone)
{
    ModelledRegistry registry;
    registry.add("disk", "IOMedia", "", {{"BSD Name", "disk3"}, {"Whole", true}});
    registry.add("part", "IOMedia", "disk", {{"BSD Name", "disk3s1"}, {"Whole", false}});
    const ReplacedDeviceRegistry replaced(registry);
    const QVariant number(quint64(statusOf(m_tree.root()).st_dev));
    m_stat.device = "disk3s1";
    EXPECT_EQ(volume()->wholeDeviceIdentifier(), QVariant(QStringLiteral("disk3")));
    m_stat.device = "disk4s1";
    EXPECT_EQ(volume()->wholeDeviceIdentifier(), number) << "unknown";
    const int questions = registry.questions();
    for (const char* device : {"", "/dev/disk3s1", "/disk3s1"}) {
        m_stat.device = device;
        EXPECT_EQ(volume()->wholeDeviceIdentifier(), number) << device;
    }
    EXPECT_EQ(registry.questions(), questions) << "not looked for";
}

TEST_F(JNVolumeInfoMade, OwnsItsRootDirectory)
{
    const auto made = volume();
    const auto root = made->rootDirectory();
    ASSERT_TRUE(root);
    EXPECT_EQ(root, made->rootDirectory()) << "made once";
    EXPECT_EQ(root->cPath(), m_stat.mountPoint);
    EXPECT_EQ(root->volumeInfo(), made);
    EXPECT_EQ(made.use_count(), 1) << "the directory does not keep it";
}

TEST_F(JNVolumeInfoMade, HasNoRootDirectoryWhereNoDirectoryIs)
{
    m_tree.add("file");
    m_stat.mountPoint = m_tree.bytes("file");
    EXPECT_FALSE(volume()->rootDirectory());
    EXPECT_EQ(volume()->relativePathOfPath(*JNPath::withCPath(m_tree.bytes("file"))), QStringLiteral(""));
}

TEST(JNVolumeInfo, SeesPathsBelowItByTheirTextAlone)
{
    const auto root = JNVolumeInfo::withPath("/");
    EXPECT_EQ(root->relativePathOfPath(*JNPath::withCPath("/")), QStringLiteral(""));
    EXPECT_EQ(root->relativePathOfPath(*JNPath::withCPath("/proc/self")), QStringLiteral("proc/self"))
        << "although it lies on another volume";
    EXPECT_EQ(root->relativePathOfPath(*JNPath::withCPath("relative")), QStringLiteral("relative"));
    const auto proc = JNVolumeInfo::withPath("/proc/self");
    EXPECT_EQ(proc->relativePathOfPath(*JNPath::withCPath("/proc/self/fd")), QStringLiteral("self/fd"));
    EXPECT_FALSE(proc->relativePathOfPath(*JNPath::withCPath("/")));
    EXPECT_FALSE(proc->relativePathOfPath(*JNPath::withCPath("/processes"))) << "no part of the name";
}

TEST_F(JNVolumeInfoMade, SeesNoPathThatIsOnItUpToTheRoot)
{
    m_stat.id = JNVolumeInfo::withPath("/")->filesystemID();
    EXPECT_FALSE(volume()->relativePathOfPath(*JNPath::withCPath("/there is no such item")));
    EXPECT_FALSE(volume()->relativePathOfPath(*JNPath::withCPath("/")));
}

TEST_F(JNVolumeInfoMade, IsCopiedWithAllThatItFound)
{
    const auto made = volume();
    const auto root = made->rootDirectory();
    const QVariant attributes = made->nsAttributes();
    made->reloadSizes();
    const auto copy = made->copy();
    EXPECT_TRUE(copy->isEqual(*made));
    EXPECT_NE(copy, made);
    EXPECT_EQ(copy->pathObj(), made->pathObj());
    EXPECT_EQ(copy->rootDirectory(), root);
    EXPECT_EQ(root->volumeInfo(), made) << "still its owner's";
    EXPECT_EQ(copy->totalBytes(), made->totalBytes());
    EXPECT_EQ(copy->freeBytes(), made->freeBytes());
    EXPECT_EQ(copy->availableBytes(), made->availableBytes());
    EXPECT_EQ(copy->deviceName(), made->deviceName());
    EXPECT_EQ(copy->createdDate(), made->createdDate());
    EXPECT_EQ(copy->hasSwapping(), made->hasSwapping());
    EXPECT_EQ(copy->supportsTheseCommonAttributes(~0U), made->supportsTheseCommonAttributes(~0U));
    EXPECT_EQ(copy->uuidCStr(), made->uuidCStr());
}

TEST(JNVolumeInfo, IsArchivedByItsMountPoint)
{
    const TemporaryTree tree;
    const auto volume = JNVolumeInfo::withPath(QByteArray::fromStdString(tree.root()));
    const QByteArray archive = dataForRootObject(QVariant::fromValue(volume), SecureCoding::Yes);
    EXPECT_TRUE(archive.contains("mountpoint"));
    const QVariant back = archivedObjectOfClass(archive, QStringLiteral("JNVolumeInfo"));
    ASSERT_TRUE(back.canConvert<JNVolumeInfoPtr>());
    EXPECT_TRUE(back.value<JNVolumeInfoPtr>()->isEqual(*volume));
    EXPECT_NE(back.value<JNVolumeInfoPtr>(), volume);
}

TEST(JNVolumeInfo, WritesItsMountPointAsATextWithAndWithoutKeys)
{
    const auto volume = JNVolumeInfo::withPath("/proc");
    KeyTableEncoder keyed;
    volume->encodeWithCoder(keyed);
    EXPECT_EQ(keyed.table, (QVariantMap{{QStringLiteral("mountpoint"), QStringLiteral("/proc")}}));
    KeyTableDecoder keyedBack(keyed.table);
    EXPECT_TRUE(JNVolumeInfo::withCoder(keyedBack)->isEqual(*volume));

    UnkeyedEncoder unkeyed;
    volume->encodeWithCoder(unkeyed);
    EXPECT_EQ(unkeyed.fields, QVariantList{QStringLiteral("/proc")});
    UnkeyedDecoder unkeyedBack(unkeyed.fields);
    EXPECT_TRUE(JNVolumeInfo::withCoder(unkeyedBack)->isEqual(*volume));

    KeyTableDecoder empty({});
    EXPECT_FALSE(JNVolumeInfo::withCoder(empty));
}

TEST(JNVolumeInfo, IsComparedAndAskedByManyThreads)
{
    const auto volume = JNVolumeInfo::withPath("/");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 50; ++round) {
                volume->reloadStats();
                volume->reloadSizes();
                EXPECT_TRUE(volume->rootDirectory());
                EXPECT_TRUE(volume->nsAttributes().isValid());
                EXPECT_FALSE(volume->deviceName().isNull());
                EXPECT_TRUE(volume->copy()->isEqual(*volume));
                EXPECT_FALSE(volume->dataVolumeInfo());
                EXPECT_FALSE(volume->syntheticUUID().isEmpty());
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(JNVolumeInfoMade, CannotBeUnmountedByPeople)
{
    const auto made = volume();
    ReplacedItemCalls calls;
    QByteArray asked;
    int askedFlags = -1;
    calls->umount2 = [&](const char* mountPoint, int flags) {
        asked = mountPoint;
        askedFlags = flags;
        errno = EPERM;
        return -1;
    };
    for (const Forcibly forcibly : {Forcibly::No, Forcibly::Yes}) {
        const bool forced = forcibly == Forcibly::Yes;
        try {
            forced ? made->unmountForcibly(forcibly) : made->unmount();
            FAIL() << "nothing was raised";
        } catch (const HVException& raised) {
            EXPECT_EQ(raised.name(), QStringLiteral("IO"));
            EXPECT_EQ(raised.reason(), QStringLiteral("cannot unmount volume"));
            EXPECT_EQ(raised.detail(detail_key::kPOSIXErr).toInt(), EPERM);
            EXPECT_EQ(raised.detail(detail_key::kPath).toString(), made->path());
            EXPECT_EQ(raised.detail(QStringLiteral("name")).toString(), made->displayName());
            EXPECT_EQ(raised.detail(QStringLiteral("forcably")).toString(),
                      forced ? QStringLiteral("1") : QStringLiteral("0"));
        }
        EXPECT_EQ(asked, m_stat.mountPoint);
        EXPECT_EQ(askedFlags, forced ? MNT_FORCE : 0);
    }
}

TEST(JNVolumeInfo, SaysTruthfullyWhetherItemsCanBeExchanged)
{
    const TemporaryTree tree({"a", "b"});
    const auto volume = JNVolumeInfo::withPath(tree.bytes("a"));
    EXPECT_EQ(platform::exchangeItems(tree.bytes("a"), tree.bytes("b")) == 0, volume->hasSwapping());
    EXPECT_FALSE(JNVolumeInfo::withPath("/proc")->hasSwapping());
    EXPECT_FALSE(volume->hasExchangeData());
}

} // namespace
} // namespace havrel
