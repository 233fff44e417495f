// SPDX-License-Identifier: MIT
#include "platform/journal.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace havrel::platform {
namespace {

TEST(StandardError, TakesAMessageWithItsFileNameBytes)
{
    testing::internal::CaptureStderr();
    writeToStandardError(QStringLiteral("a %s \u00e9 ") + QChar(0xDCFF));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "a %s \xC3\xA9 \xFF\n");
}

TEST(Journal, IsUsedWhereItExistsAndStandardErrorElsewhere)
{
    if (journalExists()) {
        EXPECT_EQ(sendToJournal(JournalPriority::Debug, QStringLiteral("a test was here")), 0);
        return;
    }
    EXPECT_EQ(sendToJournal(JournalPriority::Debug, QStringLiteral("a")), ENOENT);
    testing::internal::CaptureStderr();
    writeToConsole(JournalPriority::Error, QStringLiteral("nobody takes this"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "nobody takes this\n");
}

} // namespace
} // namespace havrel::platform
