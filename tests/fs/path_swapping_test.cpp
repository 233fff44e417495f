// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"
#include "fs/path.h"
#include "fs/volume_info.h"
#include "platform/random.h"
#include "tests/support/item_facts.h"
#include "tests/support/pretended_mount_table.h"
#include "tests/support/recording_logr.h"
#include "tests/support/replaced_item_calls.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace havrel {
namespace {

using namespace havrel::tests;

constexpr const char* kOtherFileSystem = "hfsplus"; // not one that exchanges items

class JNPathSwap : public ::testing::Test
{
protected:
    JNPathSwap()
    {
        write(m_tree.path("mine"), "my data");
        write(m_tree.path("theirs"), "their data");
    }
    /// Makes the volume one of another type.
    void pretendType(const char* type) { pretendMountTable(m_calls, m_elsewhere, mountTableOfType(type)); }
    [[nodiscard]] JNPathPtr path(const char* name) const { return JNPath::withCPath(m_tree.bytes(name)); }
    void expectSwapped() const
    {
        EXPECT_EQ(contentsOf(m_tree.path("mine")), "their data");
        EXPECT_EQ(contentsOf(m_tree.path("theirs")), "my data");
        EXPECT_EQ(namesBelow(m_tree.root()), (std::vector<std::string>{"mine", "theirs"}));
    }
    void expectUntouched() const
    {
        EXPECT_EQ(contentsOf(m_tree.path("mine")), "my data");
        EXPECT_EQ(contentsOf(m_tree.path("theirs")), "their data");
        EXPECT_EQ(namesBelow(m_tree.root()), (std::vector<std::string>{"mine", "theirs"}));
    }
    void expectFailure(int error) const
    {
        try {
            path("mine")->swapWith(*path("theirs"));
            FAIL() << "nothing was raised";
        } catch (const HVException& raised) {
            EXPECT_EQ(raised.name(), QStringLiteral("IO"));
            EXPECT_EQ(raised.reason(), QStringLiteral("cannot exchange files"));
            EXPECT_EQ(raised.detail(detail_key::kPOSIXErr).toInt(), error);
            EXPECT_EQ(raised.detail(detail_key::kAPI).toString(), QStringLiteral("rename"));
            EXPECT_EQ(raised.detail(detail_key::kPath).toString(), path("mine")->path());
            EXPECT_EQ(raised.detail(QStringLiteral("with")).toString(), path("theirs")->path());
        }
    }

    TemporaryTree m_tree;
    TemporaryTree m_elsewhere;
    ReplacedItemCalls m_calls;
};

TEST_F(JNPathSwap, ExchangesInOneStepWhereTheVolumeCan)
{
    if (!path("mine")->volumeInfo()->hasSwapping())
        GTEST_SKIP() << "the file system of $TMPDIR does not exchange items";
    m_calls->rename = failing(EIO); // not needed
    path("mine")->swapWith(*path("theirs"));
    expectSwapped();
}

TEST_F(JNPathSwap, RenamesThreeTimesWhereTheVolumeCannot)
{
    pretendType(kOtherFileSystem);
    m_calls->renameat2 = failing(EIO); // not asked for
    const auto logger = std::make_shared<RecordingLogr>();
    const SharedLoggerScope scope(logger);
    QByteArrayList renamed;
    m_calls->rename = [&renamed](const char* from, const char* to) {
        renamed << QByteArray(from) << QByteArray(to);
        return platform::systemItemCalls().rename(from, to);
    };
    path("mine")->swapWith(*path("theirs"));
    expectSwapped();
    ASSERT_EQ(renamed.size(), 6);
    EXPECT_TRUE(renamed[1].startsWith(m_tree.bytes("_xchng_"))) << renamed[1].constData();
    EXPECT_TRUE(renamed[1].endsWith("_mine"));
    EXPECT_EQ(renamed[1].size(), m_tree.bytes("_xchng_01234567_mine").size());
    EXPECT_TRUE(logger->lines().isEmpty());
}

TEST_F(JNPathSwap, LogsAnExchangeThatFailsAndGoesOn)
{
    pretendType("ext4");
    m_calls->renameat2 = failing(EINVAL);
    const auto logger = std::make_shared<RecordingLogr>();
    const SharedLoggerScope scope(logger);
    path("mine")->swapWith(*path("theirs"));
    expectSwapped();
    ASSERT_EQ(logger->lines().size(), 1);
    EXPECT_TRUE(logger->lines()[0].contains(
        QStringLiteral(" #debug# -[JNPath swapWith:] renamex_np('%1','%2') failed; errno=22 (Invalid argument) [")
            .arg(path("mine")->path(), path("theirs")->path())))
        << logger->lines()[0].toStdString();
}

TEST_F(JNPathSwap, TouchesNothingWhenTheFirstRenameFails)
{
    pretendType(kOtherFileSystem);
    m_calls->rename = failingAt(1, EACCES, platform::systemItemCalls().rename);
    expectFailure(EACCES);
    expectUntouched();
}

TEST_F(JNPathSwap, PutsTheOtherBackWhenTheSecondRenameFails)
{
    pretendType(kOtherFileSystem);
    m_calls->rename = failingAt(2, EPERM, platform::systemItemCalls().rename);
    expectFailure(EPERM);
    expectUntouched();
}

TEST_F(JNPathSwap, RaisesTheErrorOfTheSecondRenameEvenIfTheWayBackFailsToo)
{
    pretendType(kOtherFileSystem);
    m_calls->rename = failingAt(3, EIO, failingAt(2, EPERM, platform::systemItemCalls().rename));
    expectFailure(EPERM);
}

TEST_F(JNPathSwap, LeavesTheOtherUnderItsTemporaryNameWhenTheThirdRenameFails)
{
    pretendType(kOtherFileSystem);
    m_calls->rename = failingAt(3, EIO, platform::systemItemCalls().rename);
    expectFailure(EIO);
    EXPECT_EQ(contentsOf(m_tree.path("theirs")), "my data");
    const auto names = namesBelow(m_tree.root());
    ASSERT_EQ(names.size(), 2U);
    EXPECT_TRUE(names[0].starts_with("_xchng_"));
    EXPECT_EQ(contentsOf(m_tree.path(names[0])), "their data");
}

TEST_F(JNPathSwap, PicksATemporaryNameThatNothingHas)
{
    pretendType(kOtherFileSystem);
    write(m_tree.path("_xchng_00000001_mine"), "taken");
    m_tree.addLink("_xchng_00000002_mine", "nowhere");
    const auto before = platform::randomSource();
    platform::randomSource() = [number = 0U]() mutable { return ++number; };
    path("mine")->swapWith(*path("theirs"));
    platform::randomSource() = before;
    EXPECT_EQ(contentsOf(m_tree.path("_xchng_00000001_mine")), "taken");
    EXPECT_TRUE(nameExists(m_tree.path("_xchng_00000002_mine")));
    EXPECT_EQ(contentsOf(m_tree.path("mine")), "their data");
}

TEST_F(JNPathSwap, CutsTheTemporaryNameOfALongName)
{
    pretendType(kOtherFileSystem);
    const std::string longName(255, 'l');
    write(m_tree.path(longName), "long");
    QByteArray sibling;
    m_calls->rename = [&sibling](const char* from, const char* to) {
        if (sibling.isEmpty())
            sibling = to;
        return platform::systemItemCalls().rename(from, to);
    };
    path(longName.c_str())->swapWith(*path("theirs"));
    EXPECT_EQ(contentsOf(m_tree.path(longName)), "their data");
    EXPECT_EQ(contentsOf(m_tree.path("theirs")), "long");
    EXPECT_EQ(sibling.size() - sibling.lastIndexOf('/') - 1, 254);
}

TEST_F(JNPathSwap, ExchangesAFolderWithAFile)
{
    m_tree.add("folder/inner");
    for (const char* type : {"ext4", kOtherFileSystem}) {
        pretendType(type);
        path("folder")->swapWith(*path("theirs"));
        EXPECT_EQ(contentsOf(m_tree.path("folder")), "their data");
        EXPECT_TRUE(nameExists(m_tree.path("theirs/inner")));
        path("folder")->swapWith(*path("theirs"));
    }
}

TEST_F(JNPathSwap, PutsTheOtherBackWhenThereIsNothingToSwap)
{
    pretendType(kOtherFileSystem);
    try {
        path("missing")->swapWith(*path("theirs"));
        FAIL() << "nothing was raised";
    } catch (const HVException& raised) {
        EXPECT_EQ(raised.detail(detail_key::kPOSIXErr).toInt(), ENOENT);
    }
    expectUntouched();
}

} // namespace
} // namespace havrel
