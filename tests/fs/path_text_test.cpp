// SPDX-License-Identifier: MIT
#include "fs/path_text.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

#include <libgen.h>

namespace havrel {
namespace {

struct PartsCase
{
    const char* path;
    const char* baseName;
    const char* directoryName;
};

constexpr auto kPartsCases = std::to_array<PartsCase>({
    // path       last       folder
    {"", ".", "."},
    {"/", "/", "/"},
    {"//", "/", "//"},
    {"///", "/", "/"},
    {"a", "a", "."},
    {"a/", "a", "."},
    {"a//", "a", "."},
    {"/a", "a", "/"},
    {"/a/", "a", "/"},
    {"//a", "a", "//"},
    {"///a", "a", "/"},
    {"/a/b", "b", "/a"},
    {"/a//b//", "b", "/a"},
    {"a/b/c", "c", "a/b"},
    {"..", "..", "."},
    {"/a/.", ".", "/a"},
    {"/bad\xFF/\xC3", "\xC3", "/bad\xFF"},
});

TEST(PathText, SplitsPathsIntoFolderAndName)
{
    for (const PartsCase& each : kPartsCases) {
        EXPECT_EQ(path_text::baseName(each.path), QByteArrayView(each.baseName)) << each.path;
        EXPECT_EQ(path_text::directoryName(each.path), QByteArrayView(each.directoryName)) << each.path;
    }
}

TEST(PathText, SplitsAnyPathAsTheSystemLibraryDoes)
{
    std::mt19937 random(20261121); // NOLINT(cert-msc51-cpp): the same paths in every run
    std::uniform_int_distribution<int> letter(0, 3);
    std::uniform_int_distribution<int> length(0, 9);
    for (int round = 0; round < 20000; ++round) {
        QByteArray path;
        for (int i = length(random); i > 0; --i)
            path += "//a."[letter(random)];
        QByteArray forName(path.constData());
        QByteArray forFolder(path.constData());
        ASSERT_EQ(path_text::baseName(path), QByteArrayView(::basename(forName.data()))) << path.constData();
        ASSERT_EQ(path_text::directoryName(path), QByteArrayView(::dirname(forFolder.data()))) << path.constData();
    }
}

struct PairCase
{
    const char* left;
    const char* right;
    const char* expected;
};

TEST(PathText, JoinsWithOneSlashUnlessThereIsOne)
{
    constexpr auto kCases = std::to_array<PairCase>({
        {"/", "a", "/a"},
        {"/x/", "a", "/x/a"},
        {"/x", "a", "/x/a"},
        {"", "a", "/a"},
        {"/x//", "a", "/x//a"},
        {"x", "/a", "x//a"},
    });
    for (const PairCase& each : kCases)
        EXPECT_EQ(path_text::joined(each.left, each.right), QByteArray(each.expected));
    EXPECT_EQ(path_text::appended("", "a"), QByteArray("a"));
    EXPECT_EQ(path_text::appended("/x", "a"), QByteArray("/x/a"));
}

struct TextCase
{
    const char* text;
    const char* expected;
};

TEST(PathText, StandardisesByTheTextAlone)
{
    constexpr auto kCases = std::to_array<TextCase>({
        {"/", "/"},
        {"//", "/"},
        {"/a/b", "/a/b"},
        {"/a//b/", "/a/b"},
        {"/./a/./b/.", "/a/b"},
        {"/a/../b", "/b"},
        {"/a/b/../..", "/"},
        {"/..", "/"},
        {"/../../a", "/a"},
        {"/a/..b/...", "/a/..b/..."},
        {"/a/~/b", "/a/~/b"},
        {"a/../..", ".."},
        {"../../a", "../../a"},
        {"a/..", ""},
        {"", ""},
        {"/\xFF/../\xFE", "/\xFE"},
    });
    for (const TextCase& each : kCases)
        EXPECT_EQ(path_text::standardised(each.text), QByteArray(each.expected)) << each.text;
}

TEST(PathText, TakesTheExtensionAfterTheLastDotOfAName)
{
    constexpr auto kCases = std::to_array<TextCase>({
        {"a.txt", "txt"},
        {"a.tar.gz", "gz"},
        {"a", ""},
        {"a.", ""},
        {".bashrc", ""},
        {".bashrc.bak", "bak"},
        {".", ""},
        {"..", ""},
        {"/", ""},
        {"", ""},
    });
    for (const TextCase& each : kCases)
        EXPECT_EQ(path_text::extension(QString::fromLatin1(each.text)), QString::fromLatin1(each.expected))
            << each.text;
}

TEST(PathText, MakesURLsOfTheRawBytes)
{
    constexpr auto kCases = std::to_array<TextCase>({
        {"/", "file:///"},
        {"/a b", "file:///a%20b"},
        {"/100%", "file:///100%25"},
        {"/%41", "file:///%2541"},
        {"/a#b?c;d", "file:///a%23b%3Fc;d"},
        {"/caf\xC3\xA9", "file:///caf%C3%A9"},
        {"/bad\xFF", "file:///bad%FF"},
        {"/a\\b\"<>^`{|}\n", "file:///a%5Cb%22%3C%3E%5E%60%7B%7C%7D%0A"},
        {"//x/y", "file:////x/y"},
        {"a:b/c", "file:a:b/c"},
    });
    for (const TextCase& each : kCases) {
        const QUrl url = path_text::toURL(each.text);
        EXPECT_EQ(url.toEncoded(), QByteArray(each.expected));
        EXPECT_EQ(path_text::fromURL(url), QByteArray(each.text));
    }
}

TEST(PathText, GetsAnyBytesBackFromTheirURL)
{
    std::mt19937 random(20261121); // NOLINT(cert-msc51-cpp): the same paths in every run
    std::uniform_int_distribution<int> byte(0, 255);
    std::uniform_int_distribution<int> length(0, 30);
    for (int round = 0; round < 20000; ++round) {
        QByteArray path("/");
        for (int i = length(random); i > 0; --i)
            path += static_cast<char>(byte(random));
        path += 'x'; // no trailing slash
        const QUrl url = path_text::toURL(path);
        ASSERT_EQ(path_text::fromURL(url), path) << path.toHex().constData();
        ASSERT_EQ(path_text::fromURL(QUrl(url.toString(QUrl::FullyEncoded))), path) << path.toHex().constData();
    }
}

TEST(PathText, DropsTheTrailingSlashOfAFolderURLButTheRoots)
{
    EXPECT_EQ(path_text::fromURL(QUrl(QStringLiteral("file:///a/b/"))), QByteArray("/a/b"));
    EXPECT_EQ(path_text::fromURL(QUrl(QStringLiteral("file:///"))), QByteArray("/"));
    EXPECT_EQ(path_text::fromURL(QUrl::fromLocalFile(QStringLiteral("/caf\u00E9/"))), QByteArray("/caf\xC3\xA9"));
}

} // namespace
} // namespace havrel
