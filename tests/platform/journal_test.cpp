// SPDX-License-Identifier: MIT
#include "platform/journal.h"

#include "tests/support/replaced_journal.h"

#include <QByteArrayList>

#include <gtest/gtest.h>

#include <cerrno>

#include <sys/uio.h>

namespace havrel::platform {
namespace {

using tests::ReplacedJournal;

QByteArrayList fieldsOf(const iovec* fields, int count)
{
    QByteArrayList list;
    for (int i = 0; i < count; ++i)
        list << QByteArray(static_cast<const char*>(fields[i].iov_base), static_cast<qsizetype>(fields[i].iov_len));
    return list;
}

TEST(StandardError, TakesAMessageWithItsFileNameBytes)
{
    testing::internal::CaptureStderr();
    writeToStandardError(QStringLiteral("a %s \u00e9 ") + QChar(0xDCFF));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "a %s \xC3\xA9 \xFF\n");
}

struct PriorityRow
{
    JournalPriority priority;
    const char* field;
};

TEST(Journal, GetsPriorityMessageAndProgramOfEachMessage)
{
    QByteArrayList sent;
    const ReplacedJournal journal([&sent](const iovec* fields, int count) {
        sent = fieldsOf(fields, count);
        return 0;
    });
    const QByteArray program = QByteArray("SYSLOG_IDENTIFIER=") + ::program_invocation_short_name;
    for (const PriorityRow& row : {PriorityRow{JournalPriority::Error, "PRIORITY=3"},
                                   PriorityRow{JournalPriority::Notice, "PRIORITY=5"},
                                   PriorityRow{JournalPriority::Info, "PRIORITY=6"},
                                   PriorityRow{JournalPriority::Debug, "PRIORITY=7"}}) {
        EXPECT_EQ(sendToJournal(row.priority, QStringLiteral("a")), 0);
        EXPECT_EQ(sent, (QByteArrayList{"MESSAGE=a", row.field, program}));
    }
}

TEST(Journal, GetsMessagesAsTheyAre)
{
    QByteArray message;
    const ReplacedJournal journal([&message](const iovec* fields, int count) {
        message = fieldsOf(fields, count).constFirst();
        return 0;
    });
    const QString text = QStringLiteral("100 %s\nPRIORITY=0 \u00e9 ") + QChar(u'\0') + QChar(0xDCFF);
    testing::internal::CaptureStderr();
    writeToConsole(JournalPriority::Info, text);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(message, QByteArray("MESSAGE=100 %s\nPRIORITY=0 \xC3\xA9 \0\xFF", 31));
}

TEST(Journal, GivesWhatItDoesNotTakeToStandardError)
{
    const ReplacedJournal journal([](const iovec*, int) { return -ENOBUFS; });
    EXPECT_EQ(sendToJournal(JournalPriority::Debug, QStringLiteral("a")), ENOBUFS);
    testing::internal::CaptureStderr();
    writeToConsole(JournalPriority::Error, QStringLiteral("nobody takes this"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "nobody takes this\n");
}

TEST(Journal, OfTheSystemTakesMessagesWhereItExists)
{
    const int expected = journalExists() ? 0 : ENOENT;
    EXPECT_EQ(sendToJournal(JournalPriority::Debug, QStringLiteral("a test was here")), expected);
}

} // namespace
} // namespace havrel::platform
