// SPDX-License-Identifier: MIT
#include "platform/holes.h"

#include "platform/file_contents.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

namespace havrel::platform {
namespace {

constexpr qsizetype kBlock = 4096;

class Holes : public testing::Test
{
protected:
    void make(const QByteArray& bytes, mode_t mode = 0644)
    {
        m_tree.write("file", bytes.toStdString());
        ASSERT_EQ(::chmod(path(), mode), 0);
        const timespec then[] = {{1'000'000'001, 123456789}, {1'000'000'002, 987654321}};
        ASSERT_EQ(::utimensat(AT_FDCWD, path(), then, 0), 0);
    }
    [[nodiscard]] struct stat status() const
    {
        struct stat now = {};
        EXPECT_EQ(::lstat(path(), &now), 0);
        return now;
    }
    [[nodiscard]] QByteArray contents() const { return readFile(m_tree.bytes("file")).bytes; }
    [[nodiscard]] const char* path() const { return m_path.c_str(); }

    TemporaryTree m_tree{"file"};
    std::string m_path = m_tree.path("file");
};

TEST_F(Holes, AreMadeOfZerosWhereverTheyAre)
{
    const QByteArray zeros(100 * kBlock, '\0');
    const QByteArray bytes = zeros + "x" + zeros + "y" + zeros + "tail";
    make(bytes);

    ASSERT_EQ(digHoles(m_tree.bytes("file")), 0);

    EXPECT_EQ(contents(), bytes);
    EXPECT_LE(status().st_blocks * 512, 4 * kBlock) << "two blocks with a letter, and the tail's";
}

TEST_F(Holes, LeaveTheTimesAndTheModeAsTheyWere)
{
    make(QByteArray(100 * kBlock, '\0') + 'x', 04444);
    const struct stat before = status();

    ASSERT_EQ(digHoles(m_tree.bytes("file")), 0);

    const struct stat after = status();
    EXPECT_LT(after.st_blocks, before.st_blocks);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_mtim.tv_nsec, 987654321);
    EXPECT_EQ(after.st_atim.tv_nsec, 123456789);
    EXPECT_EQ(after.st_size, before.st_size);
}

TEST_F(Holes, AreNotDugInWhatHoldsNoWholeBlockOfZeros)
{
    QByteArray bytes;
    for (int i = 0; i < 30; ++i)
        bytes += QByteArray(kBlock - 1, '\0') + 'x';
    make(bytes);
    const struct stat before = status();

    ASSERT_EQ(digHoles(m_tree.bytes("file")), 0);

    EXPECT_EQ(status().st_blocks, before.st_blocks);
    EXPECT_EQ(contents(), bytes);
}

TEST_F(Holes, AreNotDugInSmallFilesFoldersAndLinks)
{
    const QByteArray small(4 * kBlock, '\0');
    make(small);
    m_tree.addLink("link", "file");

    EXPECT_EQ(digHoles(m_tree.bytes("file")), 0);
    EXPECT_EQ(digHoles(m_tree.bytes("link")), 0);
    EXPECT_EQ(digHoles(m_tree.bytes(".")), 0);
    EXPECT_EQ(contents(), small);
    EXPECT_EQ(digHoles(m_tree.bytes("missing")), ENOENT);
}

TEST_F(Holes, ThatAreThereAlreadyArePassedOver)
{
    ASSERT_EQ(::truncate(path(), off_t{1} << 40), 0);

    EXPECT_EQ(digHoles(m_tree.bytes("file")), 0);
    EXPECT_EQ(status().st_blocks, 0);
}

} // namespace
} // namespace havrel::platform
