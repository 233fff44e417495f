// SPDX-License-Identifier: MIT
#include "platform/file_contents.h"

#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>

namespace havrel::platform {
namespace {

void write(const std::string& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

TEST(FileContents, OfAnySizeAreReadWhole)
{
    const TemporaryTree tree;
    for (const std::size_t size : {0U, 1U, 65'535U, 65'536U, 65'537U, 1'000'000U}) {
        const std::string bytes(size, '\xFF');
        write(tree.path("file"), bytes);

        const FileContents contents = readFile(tree.bytes("file"));

        EXPECT_EQ(contents.error, 0);
        EXPECT_EQ(contents.bytes.toStdString(), bytes);
    }
}

TEST(FileContents, AreReadFromNamesThatAreNotUTF8)
{
    const TemporaryTree tree;
    write(tree.path("n\xFF"), "a\nb");

    EXPECT_EQ(readFile(tree.bytes("n\xFF")).bytes, "a\nb");
}

TEST(FileContents, AreReadThroughLinks)
{
    const TemporaryTree tree;
    write(tree.path("file"), "x");
    tree.addLink("link", "file");

    EXPECT_EQ(readFile(tree.bytes("link")).bytes, "x");
}

TEST(FileContents, ThatCannotBeReadTellWhy)
{
    const TemporaryTree tree{"folder/", "file"};

    EXPECT_EQ(readFile(tree.bytes("missing")).error, ENOENT);
    EXPECT_EQ(readFile(tree.bytes("folder")).error, EISDIR);
    EXPECT_EQ(readFile(tree.bytes("file/x")).error, ENOTDIR);
    EXPECT_EQ(readFile({}).error, ENOENT);
}

TEST(FileContents, OfAPathWithANULDoNotExist)
{
    const TemporaryTree tree{"file"};

    EXPECT_EQ(readFile(tree.bytes("file") + QByteArray("\0x", 2)).error, ENOENT);
}

} // namespace
} // namespace havrel::platform
