// SPDX-License-Identifier: MIT
#include "fs/path.h"
#include "fs/sub_path.h"
#include "platform/random.h"
#include "tests/support/item_facts.h"
#include "tests/support/recording_logr.h"
#include "tests/support/replaced_item_calls.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>

#include <sys/mount.h>

namespace havrel {
namespace {

using namespace havrel::tests;

JNPathPtr pathIn(const TemporaryTree& tree, std::string_view name)
{
    return JNPath::withCPath(tree.bytes(name));
}

/// The tree's folder as the kernel knows it.
QByteArray realRoot(const TemporaryTree& tree)
{
    return QByteArray::fromStdString(std::filesystem::canonical(tree.root()).string());
}

// ---- one path seen from another

struct RelativeCase
{
    const char* label;
    const char* path;
    const char* base;
    const char* expected;
};

class JNPathRelativeToPath : public ::testing::TestWithParam<RelativeCase>
{
};

TEST_P(JNPathRelativeToPath, CutsTheBaseOnlyAtAComponent)
{
    const auto path = JNPath::withCPath(GetParam().path);
    const auto base = JNPath::withCPath(GetParam().base);
    const QString relative = path->pathRelativeToPath(*base);
    EXPECT_EQ(relative, JNPath::withCPath(GetParam().expected)->path());
    EXPECT_FALSE(relative.isNull());
}

constexpr auto kRelativeCases = std::to_array<RelativeCase>({
    {"itself", "/a/b", "/a/b", ""},
    {"child", "/a/bc", "/a", "bc"},
    {"child_of_slash_base", "/a/bc", "/a/", "bc"},
    {"mid_component", "/a/bc", "/a/b", "/a/bc"},
    {"stranger", "/x", "/a", "/x"},
    {"of_the_root", "/a/b", "/", "a/b"},
    {"of_the_empty_base", "/a", "", "/a"},
    {"base_longer", "/a", "/a/b", "/a"},
    {"only_a_slash_more", "/a/", "/a", ""},
    {"doubled_slash", "/a//b", "/a", "/b"},
    {"cut_inside_a_character", "/a\xC3\xA9", "/a\xC3", "/a\xC3\xA9"},
    {"not_utf8", "/\xFF/\xFE", "/\xFF", "\xFE"},
});

INSTANTIATE_TEST_SUITE_P(Cases, JNPathRelativeToPath, ::testing::ValuesIn(kRelativeCases), [](const auto& each) {
    return std::string(each.param.label);
});

struct ContainsCase
{
    const char* label;
    const char* path;
    const char* other;
    bool contains;
};

class JNPathContains : public ::testing::TestWithParam<ContainsCase>
{
};

TEST_P(JNPathContains, WhatItsTextLeadsWithUpToAComponent)
{
    ReplacedItemCalls calls;
    calls->lstat = failing(ENOENT); // both volumes unknown are equal
    EXPECT_EQ(JNPath::withCPath(GetParam().path)->containsPath(*JNPath::withCPath(GetParam().other)),
              GetParam().contains);
}

constexpr auto kContainsCases = std::to_array<ContainsCase>({
    {"itself", "/a", "/a", true},
    {"itself_with_slash", "/a/", "/a/", true},
    {"child", "/a", "/a/b", true},
    {"grandchild", "/a", "/a/b/c", true},
    {"neighbour_with_longer_name", "/a", "/ab", false},
    {"parent", "/a/b", "/a", false},
    {"the_root", "/", "/a", true},
    {"stranger", "/a", "/b/a", false},
    {"slash_at_the_end_of_the_path", "/a/", "/a/b", false},
    {"doubled_slash_after_the_path", "/a/", "/a//b", true},
    {"slash_at_the_end_of_the_other", "/a", "/a/", true},
});

INSTANTIATE_TEST_SUITE_P(Cases, JNPathContains, ::testing::ValuesIn(kContainsCases), [](const auto& each) {
    return std::string(each.param.label);
});

TEST(JNPath, ContainsNothingOfAnotherVolume)
{
    const TemporaryTree tree({"a/b/c"});
    ReplacedItemCalls calls;
    calls->lstat = [&tree](const char* path, struct stat* status) {
        const int result = platform::systemItemCalls().lstat(path, status);
        if (QByteArray(path) == tree.bytes("a/b"))
            status->st_dev += 1;
        return result;
    };
    EXPECT_TRUE(pathIn(tree, "a")->containsPath(*pathIn(tree, "a/b/c"))) << "judged by the two items alone";
    EXPECT_FALSE(pathIn(tree, "a")->containsPath(*pathIn(tree, "a/b")));
    EXPECT_FALSE(pathIn(tree, "a/b")->containsPath(*pathIn(tree, "a/b/c")));
    EXPECT_TRUE(pathIn(tree, "a/b")->containsPath(*pathIn(tree, "a/b")));
    EXPECT_FALSE(pathIn(tree, "a")->containsPath(*pathIn(tree, "a/missing"))) << "known and unknown differ";
}

TEST(JNPath, ContainsNothingOfWhatIsMountedBelowIt)
{
    const TemporaryTree tree({"a/mounted/"});
    const std::string mountPoint = tree.path("a/mounted");
    if (::mount("none", mountPoint.c_str(), "tmpfs", 0, "size=64k") != 0)
        GTEST_SKIP() << "this process may not mount";
    write(mountPoint + "/file", "x");
    EXPECT_FALSE(pathIn(tree, "a")->containsPath(*pathIn(tree, "a/mounted")));
    EXPECT_FALSE(pathIn(tree, "a")->containsPath(*pathIn(tree, "a/mounted/file")));
    EXPECT_FALSE(JNPath::withCPath("/")->containsPath(*pathIn(tree, "a/mounted")));
    EXPECT_TRUE(pathIn(tree, "a/mounted")->containsPath(*pathIn(tree, "a/mounted/file")));
    EXPECT_EQ(::umount(mountPoint.c_str()), 0);
}

// ---- relative paths

TEST(JNPath, JoinsRelativePathsToTheBase)
{
    const auto base = JNPath::withCPath("/base");
    EXPECT_EQ(base->relativePath(QString()), base) << "the receiver itself";
    EXPECT_EQ(JNPath::withCPath("", base), base);
    EXPECT_EQ(base->relativePath(QStringLiteral("a/b"))->cPath(), QByteArray("/base/a/b"));
    EXPECT_EQ(base->relativePath(QStringLiteral("/else"))->cPath(), QByteArray("/else"));
    EXPECT_EQ(base->relativePath(QStringLiteral("a/../b"))->cPath(), QByteArray("/base/a/../b"));
    EXPECT_EQ(base->relativePath(QStringLiteral("a/b"))->cName(), QByteArray("b"));
    EXPECT_EQ(base->relativePath(QStringLiteral("~/x"))->cPath(), QByteArray("/base/~/x"));
}

TEST(JNPath, ResolvesRelativePathsThatBeginWithADot)
{
    const TemporaryTree tree({"a/file", ".hidden"});
    tree.addLink(".link", "a");
    const auto base = JNPath::withCPath(realRoot(tree));
    const QByteArray root = base->cPath();
    EXPECT_EQ(base->relativePath(QStringLiteral("./a"))->cPath(), root + "/a");
    EXPECT_EQ(base->relativePath(QStringLiteral("./a/../a/./file"))->cPath(), root + "/a/file");
    EXPECT_EQ(base->relativePath(QStringLiteral("."))->cPath(), root);
    EXPECT_EQ(base->relativePath(QStringLiteral(".hidden"))->cPath(), root + "/.hidden");
    EXPECT_EQ(base->relativePath(QStringLiteral(".link"))->cPath(), root + "/a") << "hidden names are resolved too";
    EXPECT_EQ(base->relativePath(QStringLiteral(".link"))->cName(), QByteArray("a"));
    EXPECT_EQ(base->relativePath(QStringLiteral("./missing"))->cPath(), root + "/./missing");
    EXPECT_EQ(base->relativePath(QStringLiteral("./missing"))->cName(), QByteArray("missing"));
}

// ---- real paths

TEST(JNPath, AnswersItsRealPathAndItselfWhenItIsThat)
{
    const TemporaryTree tree({"folder/file"});
    tree.addLink("link", "folder");
    const auto real = JNPath::withCPath(realRoot(tree) + "/folder/file");
    EXPECT_EQ(real->real(), real);
    EXPECT_EQ(real->hardenedReal(), real);
    for (const char* name : {"link/file", "folder/../link/./file"}) {
        EXPECT_TRUE(pathIn(tree, name)->real()->isEqual(*real)) << name;
        EXPECT_TRUE(pathIn(tree, name)->hardenedReal()->isEqual(*real)) << name;
    }
    const auto missing = pathIn(tree, "link/missing");
    EXPECT_EQ(missing->real(), missing);
    EXPECT_EQ(missing->hardenedReal(), missing);
    EXPECT_TRUE(JNPath::realPath(pathIn(tree, "link/file")->path())->isEqual(*real));
}

TEST(JNPath, IsHardenedByItsRealPathWhereTheKernelCannotTell)
{
    const TemporaryTree tree({"folder/"});
    tree.addLink("link", "folder");
    ReplacedItemCalls calls;
    calls->readlink = failing(ENOENT); // no /proc
    EXPECT_EQ(pathIn(tree, "link")->hardenedReal()->cPath(), realRoot(tree) + "/folder");
    calls->readlink = platform::systemItemCalls().readlink;
    calls->openat = failing(EACCES);
    EXPECT_EQ(pathIn(tree, "link")->hardenedReal()->cPath(), realRoot(tree) + "/folder");
}

TEST(JNPath, HardensAPipeWithoutWaitingForItsWriter)
{
    const TemporaryTree tree;
    ASSERT_EQ(::mkfifo(tree.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(pathIn(tree, "pipe")->hardenedReal()->cPath(), realRoot(tree) + "/pipe");
}

TEST(JNPath, ExistsWhereItsLinksLead)
{
    const TemporaryTree tree({"file\xFF"});
    tree.addLink("dangling", "nowhere");
    EXPECT_TRUE(pathIn(tree, "file\xFF")->exists());
    EXPECT_TRUE(JNPath::withPath(pathIn(tree, "file\xFF")->path())->exists()) << "by its text";
    EXPECT_TRUE(JNPath::withURL(pathIn(tree, "file\xFF")->url())->exists()) << "by its URL";
    EXPECT_FALSE(pathIn(tree, "dangling")->exists());
    EXPECT_FALSE(pathIn(tree, "missing")->exists());
    EXPECT_FALSE(JNPath::withCPath(tree.bytes("file\xFF") + QByteArray("\0x", 2))->exists());
}

TEST(JNPath, TellsLimitsAsZeroWhereTheVolumeNamesNone)
{
    const TemporaryTree tree({"file"});
    const auto file = pathIn(tree, "file");
    ReplacedItemCalls calls;
    calls->pathconf = [](const char*, int name) -> long {
        return name == _PC_REC_MIN_XFER_SIZE ? 4096 : name == _PC_REC_MAX_XFER_SIZE ? 1 << 20 : 64;
    };
    EXPECT_EQ(file->minTransferSize(), 4096);
    EXPECT_EQ(file->maxTransferSize(), 1 << 20);
    EXPECT_EQ(file->fileSizeBits(), 64);
    calls->pathconf = failing(EINVAL);
    EXPECT_EQ(file->minTransferSize(), 0);
    EXPECT_EQ(file->maxTransferSize(), 0);
    EXPECT_EQ(file->fileSizeBits(), 0);
    calls->pathconf = [](const char*, int) -> long { return 0; };
    EXPECT_EQ(file->fileSizeBits(), 0);
}

TEST(JNPath, ShowsItsNameAndLogsWhenTheItemIsMissing)
{
    const TemporaryTree tree({"file\xFF"});
    tree.addLink("dangling", "nowhere");
    const auto logger = std::make_shared<RecordingLogr>();
    const SharedLoggerScope scope(logger);
    EXPECT_EQ(pathIn(tree, "file\xFF")->displayName(), pathIn(tree, "file\xFF")->name());
    EXPECT_EQ(pathIn(tree, "dangling")->displayName(), QStringLiteral("dangling"));
    EXPECT_TRUE(logger->lines().isEmpty());

    EXPECT_EQ(pathIn(tree, "missing")->displayName(), QStringLiteral("missing"));
    const QStringList lines = logger->lines();
    ASSERT_EQ(lines.size(), 1);
    EXPECT_TRUE(lines[0].contains(QStringLiteral(" #debug# -[JNPath displayName] could not obtain display name for ") +
                                  pathIn(tree, "missing")->path() +
                                  QStringLiteral(" (Error Domain=NSPOSIXErrorDomain Code=2 ")))
        << lines[0].toStdString();
}

// ---- temporary names

/// Gives out numbers of the test's choice.
class ChosenRandom
{
public:
    explicit ChosenRandom(std::vector<std::uint32_t> numbers)
    {
        platform::randomSource() = [numbers = std::move(numbers), next = std::size_t(0)]() mutable {
            return numbers.at(next++);
        };
    }
    ~ChosenRandom() { platform::randomSource() = m_before; }
    Q_DISABLE_COPY_MOVE(ChosenRandom)

private:
    std::function<std::uint32_t()> m_before = platform::randomSource();
};

TEST(JNPath, KnowsTheRealFolderForTemporaryItems)
{
    const auto folder = JNPath::tempPath();
    EXPECT_EQ(folder->real(), folder);
    EXPECT_TRUE(folder->exists());
    EXPECT_EQ(JNPath::tempPath(), folder) << "found once";
}

TEST(JNPath, MakesUpTemporaryNamesThatNothingHas)
{
    const QString prefix = QStringLiteral("havrel-test-%1").arg(::getpid());
    const auto nameOf = [&prefix](const char* number) {
        return prefix + u'-' + QLatin1StringView(number) + QStringLiteral(".tmp");
    };
    const auto taken = JNPath::tempPath()->pathOfChild(nameOf("0000002a"));
    const auto dangling = JNPath::tempPath()->pathOfChild(nameOf("deadbeef"));
    write(taken->cPath().toStdString(), "x");
    ASSERT_EQ(::symlink("nowhere", dangling->cPath().constData()), 0);
    const ChosenRandom numbers({0x2A, 0xDEADBEEF, 0xFF, 0});
    const auto path = JNPath::tempPathWithPrefix(prefix, QStringLiteral("tmp"));
    taken->deleteFile();
    dangling->deleteFile();
    EXPECT_EQ(path->name(), nameOf("000000ff"));
    EXPECT_TRUE(path->parent()->isEqual(*JNPath::tempPath()));
    EXPECT_FALSE(path->exists()) << "nothing is made";
}

} // namespace
} // namespace havrel
