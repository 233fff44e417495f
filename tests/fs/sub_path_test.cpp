// SPDX-License-Identifier: MIT
#include "fs/sub_path.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include <malloc.h>

namespace havrel {
namespace {

TEST(JNSubPath, JoinsItsWholePathWhenAskedAndKeepsIt)
{
    const auto folder = JNPath::withCPath("/x");
    const auto item = JNSubPath::withCName("a\xFF", folder);
    EXPECT_EQ(item->cName(), QByteArray("a\xFF"));
    EXPECT_EQ(item->cPath(), QByteArray("/x/a\xFF"));
    EXPECT_EQ(item->cPath().constData(), item->cPath().constData()) << "made once";
    EXPECT_EQ(JNSubPath::withCName("b", item)->cPath(), QByteArray("/x/a\xFF/b"));
    EXPECT_EQ(JNSubPath::withCName("a", JNPath::withCPath(""))->cPath(), QByteArray("/a"));
    EXPECT_EQ(JNSubPath::withCName("a", JNPath::withCPath("/"))->cPath(), QByteArray("/a"));
}

TEST(JNSubPath, KeepsTheVeryNameAndParentItWasGiven)
{
    const QByteArray name("entry");
    const auto folder = JNPath::withCPath("/x");
    const auto item = JNSubPath::withCName(name, folder);
    EXPECT_EQ(item->cName().constData(), name.constData());
    EXPECT_EQ(item->parent(), folder);
}

TEST(JNSubPath, DerivesTextAndURLLikeAnyPath)
{
    const auto item = JNSubPath::withCName("a b.txt", JNPath::withCPath("/x"));
    EXPECT_EQ(item->path(), QStringLiteral("/x/a b.txt"));
    EXPECT_EQ(item->name(), QStringLiteral("a b.txt"));
    EXPECT_EQ(item->extension(), QStringLiteral("txt"));
    EXPECT_EQ(item->url().toEncoded(), QByteArray("file:///x/a%20b.txt"));
    EXPECT_TRUE(item->isEqual(*JNPath::withCPath("/x/a b.txt")));
    EXPECT_EQ(item->hash(), JNPath::withCPath("/x/a b.txt")->hash());
    EXPECT_TRUE(item->description().startsWith(QStringLiteral("<JNSubPath: 0x")));
}

TEST(JNSubPath, CopiesToASubPathOfTheSameParent)
{
    const auto folder = JNPath::withCPath("/x");
    const auto fresh = JNSubPath::withCName("a", folder); // its whole path was never asked for
    const auto same = fresh->copy();
    EXPECT_EQ(same->className(), QStringLiteral("JNSubPath"));
    EXPECT_EQ(same->parent(), folder);
    EXPECT_EQ(same->cPath(), QByteArray("/x/a"));
    EXPECT_EQ(same->cName(), QByteArray("a"));
    EXPECT_EQ(JNPath::withPathObject(*fresh)->className(), QStringLiteral("JNPath"));
}

/// Bytes that this thread's program has allocated.
std::size_t allocatedBytes()
{
    return ::mallinfo2().uordblks;
}

TEST(JNSubPath, CostsItsNameAndNotItsWholePathUntilAsked)
{
    constexpr std::size_t kPaths = 1000;
    constexpr std::size_t kMostBytes = 450; // for one object beside its path
    const QByteArray longPath = "/" + QByteArray(4000, 'x');
    const auto folder = JNPath::withCPath(longPath);
    std::vector<JNPathPtr> paths;
    paths.reserve(kPaths);
    std::size_t before = allocatedBytes();
    for (std::size_t i = 0; i < kPaths; ++i)
        paths.push_back(JNSubPath::withCName(QByteArray::number(i), folder));
    EXPECT_LT(allocatedBytes() - before, kPaths * kMostBytes);

    paths.clear();
    before = allocatedBytes();
    for (std::size_t i = 0; i < kPaths; ++i)
        paths.push_back(JNPath::assumingName("x", longPath)); // shares the bytes, makes no text
    EXPECT_LT(allocatedBytes() - before, kPaths * kMostBytes);
}

TEST(JNSubPath, GivesOneAnswerToManyThreads)
{
    for (int round = 0; round < 200; ++round) {
        const auto item = JNSubPath::withCName("c", JNSubPath::withCName("b", JNPath::withCPath("/a")));
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&item] {
                EXPECT_EQ(item->cPath(), QByteArray("/a/b/c"));
                EXPECT_EQ(item->parent()->cPath(), QByteArray("/a/b"));
                EXPECT_EQ(item->copy()->path(), QStringLiteral("/a/b/c"));
            });
        for (std::thread& each : threads)
            each.join();
    }
}

} // namespace
} // namespace havrel
