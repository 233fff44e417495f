// SPDX-License-Identifier: MIT
#include "platform/extended_attributes.h"

#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>

#include <sys/stat.h>
#include <sys/xattr.h>

namespace havrel::platform {
namespace {

constexpr const char* kName = "user.havrel.test";

class ExtendedAttributes : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (::lsetxattr(m_tree.path("file").c_str(), "user.probe", "", 0, 0) != 0 && errno == ENOTSUP)
            GTEST_SKIP() << "the file system of $TMPDIR keeps no attributes of users";
    }

    const TemporaryTree m_tree{"file", "folder/"};
    const QByteArray m_file = m_tree.bytes("file");
};

TEST_F(ExtendedAttributes, ReadsBackWhatWasWritten)
{
    const QByteArray value("a\0b\xff", 4);
    ASSERT_EQ(writeAttribute(m_file, kName, value), 0);

    const AttributeValue read = readAttribute(m_file, kName);
    EXPECT_EQ(read.error, 0);
    EXPECT_EQ(read.bytes, value);
    EXPECT_EQ(sizeOfAttribute(m_file, kName).size, 4);
}

TEST_F(ExtendedAttributes, ReplacesTheWholeValue)
{
    ASSERT_EQ(writeAttribute(m_file, kName, "longer"), 0);
    ASSERT_EQ(writeAttribute(m_file, kName, "new"), 0);

    EXPECT_EQ(readAttribute(m_file, kName).bytes, "new");
}

TEST_F(ExtendedAttributes, KeepsAnEmptyValueApartFromNone)
{
    ASSERT_EQ(writeAttribute(m_file, kName, QByteArrayView()), 0);

    EXPECT_EQ(readAttribute(m_file, kName).error, 0);
    EXPECT_EQ(sizeOfAttribute(m_file, kName).error, 0);
    EXPECT_EQ(sizeOfAttribute(m_file, kName).size, 0);
    ASSERT_EQ(removeAttribute(m_file, kName), 0);
    EXPECT_EQ(readAttribute(m_file, kName).error, ENODATA);
    EXPECT_EQ(sizeOfAttribute(m_file, kName).error, ENODATA);
}

TEST_F(ExtendedAttributes, TakesALimitToTheByte)
{
    for (const qsizetype length : {0, 1, 2, 1023, 1024, 1025, 3000}) {
        ASSERT_EQ(writeAttribute(m_file, kName, QByteArray(length, 'x')), 0) << length;
        EXPECT_EQ(readAttribute(m_file, kName, length).error, 0) << length;
        EXPECT_EQ(readAttribute(m_file, kName, length).bytes.size(), length);
        EXPECT_EQ(readAttribute(m_file, kName, length + 1).bytes.size(), length);
        if (length > 0) {
            EXPECT_EQ(readAttribute(m_file, kName, length - 1).error, ERANGE) << length;
        }
        EXPECT_EQ(readAttribute(m_file, kName).bytes.size(), length);
    }
}

TEST_F(ExtendedAttributes, BelongToTheLinkAndNotToItsTarget)
{
    ASSERT_EQ(writeAttribute(m_file, kName, "target's"), 0);
    m_tree.addLink("link", "file");
    const QByteArray link = m_tree.bytes("link");

    EXPECT_EQ(readAttribute(link, kName).error, ENODATA);
    EXPECT_EQ(sizeOfAttribute(link, kName).error, ENODATA);
    EXPECT_EQ(writeAttribute(link, kName, "link's"), EPERM);
    EXPECT_EQ(removeAttribute(link, kName), EPERM);
    EXPECT_EQ(readAttribute(m_file, kName).bytes, "target's");
}

TEST_F(ExtendedAttributes, AreRefusedByWhatIsNeitherFileNorFolder)
{
    const QByteArray pipe = m_tree.bytes("pipe");
    ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);

    EXPECT_EQ(readAttribute(pipe, kName).error, ENODATA);
    EXPECT_EQ(writeAttribute(pipe, kName, "x"), EPERM);
    EXPECT_EQ(writeAttribute(m_tree.bytes("folder"), kName, "x"), 0);
}

TEST_F(ExtendedAttributes, AnswerTheErrnoOfEachFailure)
{
    const QByteArray missing = m_tree.bytes("missing");
    EXPECT_EQ(readAttribute(missing, kName).error, ENOENT);
    EXPECT_EQ(sizeOfAttribute(missing, kName).error, ENOENT);
    EXPECT_EQ(writeAttribute(missing, kName, "x"), ENOENT);
    EXPECT_EQ(removeAttribute(missing, kName), ENOENT);
    EXPECT_EQ(removeAttribute(m_file, kName), ENODATA);
    EXPECT_EQ(writeAttribute(m_file, "no.namespace", "x"), ENOTSUP);
    EXPECT_NE(writeAttribute(m_file, kName, QByteArray(kLongestAttribute + 1, 'x')), 0);
}

TEST_F(ExtendedAttributes, RefuseAPathWithANulInsteadOfCuttingIt)
{
    QByteArray path = m_file;
    path += '\0';
    path += "rest";

    EXPECT_EQ(readAttribute(path, kName).error, EINVAL);
    EXPECT_EQ(sizeOfAttribute(path, kName).error, EINVAL);
    EXPECT_EQ(writeAttribute(path, kName, "x"), EINVAL);
    EXPECT_EQ(removeAttribute(path, kName), EINVAL);
    EXPECT_EQ(sizeOfAttribute(m_file, kName).error, ENODATA);
}

} // namespace
} // namespace havrel::platform
