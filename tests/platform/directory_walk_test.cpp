// SPDX-License-Identifier: MIT
#include "platform/directory_walk.h"

#include "platform/extended_attributes.h"
#include "platform/owned_descriptor.h"
#include "tests/support/temporary_tree.h"

#include <QByteArrayList>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <functional>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace havrel::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

/// Keeps what it is shown, each path without the root.
class Visited : public WalkVisitor
{
public:
    explicit Visited(const TemporaryTree& tree)
        : m_root(QByteArray::fromStdString(tree.root()))
    {
    }

    void visit(const WalkedFolder& folder) override
    {
        folders += below(folder.path());
        for (const WalkedItem& item : folder.items())
            items += below(folder.pathOf(item));
        if (atFolder)
            atFolder(folder);
    }
    void failed(const QByteArray& path, int error) override
    {
        failures += below(path) + '=' + QByteArray::number(error);
    }

    std::function<void(const WalkedFolder&)> atFolder;
    QByteArrayList folders, items, failures;

private:
    [[nodiscard]] QByteArray below(const QByteArray& path) const { return path.mid(m_root.size()); }

    QByteArray m_root;
};

int walk(Visited& visited, const TemporaryTree& tree)
{
    return DirectoryWalk(visited, CrossFileSystems::No).walk(QByteArray::fromStdString(tree.root()));
}

TEST(DirectoryWalk, VisitsEverythingBelowTheRootOnceFoldersInTheOrderOfTheirNames)
{
    const TemporaryTree tree{"z", "b/x", "a/deep/er/y", "a/w", "c/"};
    Visited visited(tree);

    EXPECT_EQ(walk(visited, tree), 0);
    EXPECT_THAT(visited.folders, ElementsAre("", "/a", "/a/deep", "/a/deep/er", "/b", "/c"));
    EXPECT_THAT(visited.items, UnorderedElementsAre("/z", "/b/x", "/a/w", "/a/deep/er/y"));
    EXPECT_THAT(visited.failures, IsEmpty());
}

TEST(DirectoryWalk, ShowsLinksAndNeverFollowsThem)
{
    const TemporaryTree tree{"folder/inside"};
    tree.addLink("loop", ".");
    tree.addLink("dangling", "nowhere");
    Visited visited(tree);

    EXPECT_EQ(walk(visited, tree), 0);
    EXPECT_THAT(visited.folders, ElementsAre("", "/folder"));
    EXPECT_THAT(visited.items, UnorderedElementsAre("/loop", "/dangling", "/folder/inside"));
}

TEST(DirectoryWalk, KeepsEveryByteOfANameThatIsNoText)
{
    const TemporaryTree tree{"bad\xff/new\nline", " ", "--dash"};
    Visited visited(tree);

    EXPECT_EQ(walk(visited, tree), 0);
    EXPECT_THAT(visited.items, UnorderedElementsAre("/bad\xff/new\nline", "/ ", "/--dash"));
}

TEST(DirectoryWalk, RefusesARootThatIsNoFolder)
{
    const TemporaryTree tree{"file"};
    tree.addLink("link", ".");
    Visited visited(tree);
    DirectoryWalk walk(visited, CrossFileSystems::No);

    EXPECT_EQ(walk.walk(tree.bytes("file")), ENOTDIR);
    EXPECT_EQ(walk.walk(tree.bytes("link")), ENOTDIR);
    EXPECT_EQ(walk.walk(tree.bytes("missing")), ENOENT);
    EXPECT_EQ(walk.walk(QByteArray("a\0b", 3)), EINVAL);
    EXPECT_THAT(visited.folders, IsEmpty());
}

TEST(DirectoryWalk, ReachesItemsByAShortPath)
{
    const TemporaryTree tree{"folder/file"};
    Visited visited(tree);
    visited.atFolder = [](const WalkedFolder& folder) {
        EXPECT_EQ(readAttribute(folder.reach(), "user.none").error, ENODATA);
        for (const WalkedItem& item : folder.items())
            EXPECT_EQ(readAttribute(folder.reachOf(item), "user.none").error, ENODATA);
    };

    EXPECT_EQ(walk(visited, tree), 0);
    EXPECT_THAT(visited.items, ElementsAre("/folder/file"));
}

TEST(DirectoryWalk, GoesOnAfterAFolderThatVanishes)
{
    const TemporaryTree tree{"a/x", "b/y", "c/z"};
    Visited visited(tree);
    visited.atFolder = [&tree](const WalkedFolder& folder) {
        if (folder.path().endsWith("/a"))
            std::filesystem::remove_all(tree.path("b"));
    };

    EXPECT_EQ(walk(visited, tree), 0);
    EXPECT_THAT(visited.folders, ElementsAre("", "/a", "/c"));
    EXPECT_THAT(visited.failures, ElementsAre("/b=" + QByteArray::number(ENOENT)));
}

/// The name of each folder of a chain: a hundred of them are more than the kernel's limit for a path, 4096 bytes.
const QByteArray kLink(45, 'd');
const QByteArray kStep = '/' + kLink;

/// Makes a chain of folders \p depth deep, with a file "end" in the last one and a folder "side" in each.
void makeChain(const TemporaryTree& tree, int depth)
{
    OwnedDescriptor folder(::open(tree.root().c_str(), O_RDONLY | O_DIRECTORY));
    for (int i = 0; i < depth; ++i) {
        ASSERT_EQ(::mkdirat(folder.get(), kLink.constData(), 0700), 0);
        ASSERT_EQ(::mkdirat(folder.get(), "side", 0700), 0);
        folder = OwnedDescriptor(::openat(folder.get(), kLink.constData(), O_RDONLY | O_DIRECTORY));
        ASSERT_TRUE(folder.isOpen());
    }
    ASSERT_TRUE(OwnedDescriptor(::openat(folder.get(), "end", O_CREAT | O_WRONLY, 0600)).isOpen());
}

/// Removes the chain from its end upwards: paths are too long, and removal by recursion too deep.
void removeChain(const TemporaryTree& tree)
{
    OwnedDescriptor folder(::open(tree.root().c_str(), O_RDONLY | O_DIRECTORY));
    int depth = 0;
    for (OwnedDescriptor next;
         (next = OwnedDescriptor(::openat(folder.get(), kLink.constData(), O_RDONLY | O_DIRECTORY))).isOpen();
         ++depth)
        folder = std::move(next);
    ::unlinkat(folder.get(), "end", 0);
    for (; depth > 0; --depth) {
        folder = OwnedDescriptor(::openat(folder.get(), "..", O_RDONLY | O_DIRECTORY));
        ::unlinkat(folder.get(), kLink.constData(), AT_REMOVEDIR);
        ::unlinkat(folder.get(), "side", AT_REMOVEDIR);
    }
}

TEST(DirectoryWalk, WalksTreesThatAreDeeperThanDescriptorsAndPathsReach)
{
    constexpr int kDepth = 100;
    const TemporaryTree tree{};
    makeChain(tree, kDepth);
    Visited visited(tree);
    visited.atFolder = [](const WalkedFolder& folder) {
        EXPECT_EQ(readAttribute(folder.reach(), "user.none").error, ENODATA);
    };
    rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    const rlimit few{90, before.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &few);

    EXPECT_EQ(walk(visited, tree), 0);

    ::setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(visited.folders.size(), 2 * kDepth + 1);
    EXPECT_EQ(visited.items.size(), 1);
    EXPECT_THAT(visited.failures, IsEmpty());
    removeChain(tree);
}

/// Does \p change once when the walk of a chain is about 95 levels deep; the levels above 31 are closed then.
void onceFarDown(Visited& visited, std::function<void()> change)
{
    visited.atFolder = [change = std::move(change), done = false](const WalkedFolder& folder) mutable {
        if (done || !folder.path().endsWith(kStep.repeated(95)))
            return;
        done = true;
        change();
    };
}

TEST(DirectoryWalk, FindsBackFromAFolderThatWasMovedAway)
{
    const TemporaryTree tree{}, elsewhere{};
    makeChain(tree, 100);
    const std::string level20 = tree.root() + kStep.repeated(20).toStdString();
    Visited visited(tree);
    onceFarDown(visited, [&] { std::filesystem::rename(level20, elsewhere.path("d")); });

    EXPECT_EQ(walk(visited, tree), 0);
    EXPECT_EQ(visited.folders.size(), 201);
    EXPECT_THAT(visited.failures, IsEmpty());
    std::filesystem::rename(elsewhere.path("d"), level20);
    removeChain(tree);
}

TEST(DirectoryWalk, TellsOfTheFoldersThatItCannotReturnToAndGoesOnAboveThem)
{
    const TemporaryTree tree{}, elsewhere{};
    makeChain(tree, 100);
    const std::string level20 = tree.root() + kStep.repeated(20).toStdString();
    Visited visited(tree);
    onceFarDown(visited, [&] {
        std::filesystem::rename(level20, elsewhere.path("d"));
        std::filesystem::rename(tree.path(kLink.toStdString()), elsewhere.path("top"));
    });

    EXPECT_EQ(walk(visited, tree), 0);
    EXPECT_EQ(visited.failures.size(), 19);
    EXPECT_EQ(visited.failures.last(), kStep + '=' + QByteArray::number(ESTALE));
    EXPECT_EQ(visited.folders.last(), "/side");
    std::filesystem::rename(elsewhere.path("top"), tree.path(kLink.toStdString()));
    std::filesystem::rename(elsewhere.path("d"), level20);
    removeChain(tree);
}

TEST(DirectoryWalk, ProgressNeverFallsAndEndsAtOne)
{
    const TemporaryTree tree{"a/1/x", "a/2/", "b/", "c/1/2/3/"};
    Visited visited(tree);
    DirectoryWalk walk(visited, CrossFileSystems::No);
    double last = 0;
    visited.atFolder = [&](const WalkedFolder&) {
        EXPECT_GE(walk.progress(), last);
        EXPECT_LT(walk.progress(), 1);
        last = walk.progress();
    };

    EXPECT_EQ(walk.walk(QByteArray::fromStdString(tree.root())), 0);
    EXPECT_GT(last, 0.5);
    EXPECT_EQ(walk.progress(), 1);
}

} // namespace
} // namespace havrel::platform
