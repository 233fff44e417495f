// SPDX-License-Identifier: MIT
#include "fs/path.h"

#include <gtest/gtest.h>

#include <thread>

namespace havrel {
namespace {

QString textWithByte(QStringView before, unsigned char byte)
{
    return before.toString() + QChar(static_cast<char16_t>(0xDC00 + byte));
}

TEST(JNPath, KeepsItsBytesWithoutNormalisingThem)
{
    for (const char* bytes : {"/a/b", "/a//b/", "a/./b/..", "", "/", "/bad\xFF\xFE", "/new\nline"}) {
        EXPECT_EQ(JNPath::withCPath(bytes)->cPath(), QByteArray(bytes));
        EXPECT_EQ(JNPath::withPath(JNPath::withCPath(bytes)->path())->cPath(), QByteArray(bytes));
    }
}

TEST(JNPath, NamesItsLastComponent)
{
    EXPECT_EQ(JNPath::withCPath("/a/b//")->cName(), QByteArray("b"));
    EXPECT_EQ(JNPath::withCPath("/")->cName(), QByteArray("/"));
    EXPECT_EQ(JNPath::withCPath("")->cName(), QByteArray("."));
    EXPECT_EQ(JNPath::withCPath("/bad\xFF")->name(), textWithByte(u"bad", 0xFF));
}

TEST(JNPath, KeepsTheTextItWasMadeFrom)
{
    const QString text = QStringLiteral("/caf\u00E9");
    const auto path = JNPath::withPath(text);
    EXPECT_EQ(path->cPath(), QByteArray("/caf\xC3\xA9"));
    EXPECT_EQ(path->path().constData(), text.constData()) << "the very text, not a copy";
}

TEST(JNPath, TellsOneTextForEqualBytesHoweverTheyWereSpelt)
{
    const QString odd = u'/' + textWithByte(u"", 0xC3) + textWithByte(u"", 0xA9);
    const auto spelt = JNPath::withPath(odd);
    const auto plain = JNPath::withCPath("/\xC3\xA9");
    EXPECT_TRUE(spelt->isEqual(*plain));
    EXPECT_EQ(spelt->path(), plain->path());
    EXPECT_EQ(spelt->hash(), plain->hash());
}

TEST(JNPath, TakesThePathOfAFileURLAndKeepsTheURL)
{
    const QUrl url(QStringLiteral("file:///a%20b/caf%C3%A9/"));
    const auto path = JNPath::withURL(url);
    EXPECT_EQ(path->cPath(), QByteArray("/a b/caf\xC3\xA9"));
    EXPECT_EQ(path->cName(), QByteArray("caf\xC3\xA9"));
    EXPECT_EQ(path->url(), url);
    EXPECT_EQ(JNPath::withURL(QUrl(QStringLiteral("file:///")))->cPath(), QByteArray("/"));
    EXPECT_EQ(JNPath::withURL(QUrl(QStringLiteral("FILE:///x")))->cPath(), QByteArray("/x"));
    EXPECT_EQ(JNPath::withURL(QUrl(QStringLiteral("file://localhost/x?y#z")))->cPath(), QByteArray("/x"));
}

TEST(JNPath, IsNothingForURLsThatNameNoFile)
{
    EXPECT_EQ(JNPath::withURL(QUrl()), nullptr);
    EXPECT_EQ(JNPath::withURL(QUrl(QStringLiteral("http://host/etc/passwd"))), nullptr);
    EXPECT_EQ(JNPath::pathWithURL(QUrl(QStringLiteral("/no/scheme"))), nullptr);
}

TEST(JNPath, MakesItsURLFromTheBytesAndForgetsItWhenFlushed)
{
    const auto path = JNPath::withCPath("/a b/bad\xFF");
    EXPECT_EQ(path->url().toEncoded(), QByteArray("file:///a%20b/bad%FF"));
    EXPECT_EQ(JNPath::withURL(path->url())->cPath(), path->cPath());

    const auto fromURL = JNPath::withURL(QUrl(QStringLiteral("file:///folder/")));
    const QString text = fromURL->path();
    fromURL->flushInfo();
    EXPECT_EQ(fromURL->url().toEncoded(), QByteArray("file:///folder"));
    EXPECT_EQ(fromURL->path().constData(), text.constData());
}

TEST(JNPath, JoinsANameToItsParent)
{
    EXPECT_EQ(JNPath::withCName("a", *JNPath::withCPath("/"))->cPath(), QByteArray("/a"));
    EXPECT_EQ(JNPath::withCName("a", *JNPath::withCPath("/x/"))->cPath(), QByteArray("/x/a"));
    EXPECT_EQ(JNPath::withCName("a", *JNPath::withCPath(""))->cPath(), QByteArray("/a"));
    EXPECT_EQ(JNPath::withCName("a", *JNPath::withCPath("/x"))->cName(), QByteArray("a"));
    EXPECT_EQ(JNPath::withCPath("/x")->pathOfChild(textWithByte(u"b", 0xFE))->cPath(), QByteArray("/x/b\xFE"));
}

TEST(JNPath, TakesANameThatIsNotTheLastComponentWhenToldSo)
{
    const auto path = JNPath::assumingName("Volume", "/mnt/x");
    EXPECT_EQ(path->cName(), QByteArray("Volume"));
    EXPECT_EQ(path->name(), QStringLiteral("Volume"));
    EXPECT_EQ(path->cPath(), QByteArray("/mnt/x"));
    EXPECT_EQ(path->copy()->cName(), QByteArray("Volume"));
}

TEST(JNPath, AnswersItsFolder)
{
    EXPECT_EQ(JNPath::withCPath("/a/b/")->parent()->cPath(), QByteArray("/a"));
    EXPECT_EQ(JNPath::withCPath("/a")->parent()->cPath(), QByteArray("/"));
    EXPECT_EQ(JNPath::withCPath("/")->parent()->cPath(), QByteArray("/"));
    EXPECT_EQ(JNPath::withCPath("a")->parent()->cPath(), QByteArray("."));
}

TEST(JNPath, TellsItsExtension)
{
    EXPECT_EQ(JNPath::withCPath("/a.b/c.txt/")->extension(), QStringLiteral("txt"));
    EXPECT_EQ(JNPath::withCPath("/a.b/c")->extension(), QString());
}

TEST(JNPath, CopiesEverythingThatItHolds)
{
    const auto path = JNPath::withURL(QUrl(QStringLiteral("file:///a/b/")));
    const QString text = path->path();
    const auto same = path->copy();
    EXPECT_NE(same, path);
    EXPECT_EQ(same->cPath(), QByteArray("/a/b"));
    EXPECT_EQ(same->path().constData(), text.constData());
    EXPECT_EQ(same->url(), path->url());
}

TEST(JNPath, IsEqualToTheSameBytesAndTheSameText)
{
    const auto path = JNPath::withCPath("/a");
    EXPECT_TRUE(path->isEqual(*JNPath::withPath(QStringLiteral("/a"))));
    EXPECT_TRUE(*path == *JNPath::withCPath("/a"));
    EXPECT_FALSE(path->isEqual(*JNPath::withCPath("/a/"))) << "equality is equality of bytes";
    EXPECT_TRUE(path->isEqual(QStringLiteral("/a")));
    EXPECT_FALSE(path->isEqual(QStringLiteral("/A")));
    EXPECT_EQ(path->hash(), qHash(QStringLiteral("/a")));
    EXPECT_TRUE(path->isEqual(QVariant::fromValue(JNPath::withCPath("/a"))));
    EXPECT_TRUE(path->isEqual(QVariant(QStringLiteral("/a"))));
    EXPECT_FALSE(path->isEqual(QVariant(QByteArray("/a"))));
    EXPECT_FALSE(path->isEqual(QVariant(1)));
    EXPECT_FALSE(path->isEqual(QVariant()));
    EXPECT_FALSE(path->isEqual(QVariant::fromValue(JNPathPtr())));
}

TEST(JNPath, OrdersByTextAndBeforeAnythingElse)
{
    const auto a = JNPath::withCPath("/a");
    const auto b = JNPath::withCPath("/b");
    EXPECT_EQ(a->compare(*b), std::strong_ordering::less);
    EXPECT_EQ(b->compare(*a), std::strong_ordering::greater);
    EXPECT_EQ(a->compare(*JNPath::withCPath("/a")), std::strong_ordering::equal);
    EXPECT_EQ(b->compare(QVariant::fromValue(a)), std::strong_ordering::greater);
    EXPECT_EQ(b->compare(QVariant(QStringLiteral("/a"))), std::strong_ordering::less);
    EXPECT_EQ(b->compare(QVariant(QStringLiteral("/b"))), std::strong_ordering::less);
    EXPECT_EQ(b->compare(QVariant()), std::strong_ordering::less);
    EXPECT_EQ(b->compare(QVariant::fromValue(JNPathPtr())), std::strong_ordering::less);
}

TEST(JNPath, DescribesItselfWithClassAddressAndPath)
{
    const auto path = JNPath::withCPath("/a%1b");
    EXPECT_EQ(path->description(),
              QStringLiteral("<JNPath: 0x") + QString::number(quintptr(path.get()), 16) + QStringLiteral(">(/a%1b)"));
}

TEST(JNPath, MakesPathsOfTextsAndURLsAndSkipsTheRest)
{
    const QVariantList mixed{QStringLiteral("/text"),
                             QUrl(QStringLiteral("file:///url/")),
                             5,
                             QByteArray("/bytes"),
                             QUrl(QStringLiteral("http://host/web")),
                             QVariant(),
                             QStringLiteral("last")};
    const auto paths = JNPath::arrayFromPathsOrURLs(mixed);
    ASSERT_EQ(paths.size(), 3U);
    EXPECT_EQ(paths[0]->cPath(), QByteArray("/text"));
    EXPECT_EQ(paths[1]->cPath(), QByteArray("/url"));
    EXPECT_EQ(paths[2]->cPath(), QByteArray("last"));
}

TEST(JNPath, GivesOneAnswerToManyThreads)
{
    for (int round = 0; round < 200; ++round) {
        const auto path = JNPath::withCPath("/some where/bad\xFF.txt");
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&path] {
                EXPECT_EQ(path->url().toEncoded(), QByteArray("file:///some%20where/bad%FF.txt"));
                EXPECT_EQ(path->name(), textWithByte(u"bad", 0xFF) + QStringLiteral(".txt"));
                EXPECT_TRUE(path->isEqual(path->path()));
                EXPECT_TRUE(path->isEqual(*path->copy()));
                path->flushInfo();
            });
        for (std::thread& each : threads)
            each.join();
    }
}

} // namespace
} // namespace havrel
