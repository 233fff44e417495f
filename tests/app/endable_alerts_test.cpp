// SPDX-License-Identifier: MIT
#include "app/endable_alerts.h"

#include "tests/support/recording_alerts.h"
#include "tests/support/recording_logr.h"

#include <QWidget>

#include <gtest/gtest.h>

namespace havrel::tests {
namespace {

Alert someAlert()
{
    return {.messageText = QStringLiteral("Unable."),
            .informativeText = QStringLiteral("Because."),
            .buttons = {QStringLiteral("a"), QStringLiteral("b")}};
}

TEST(EndableAlerts, AreShownUntilTheEnd)
{
    RecordingAlerts shown;
    EndableAlerts alerts(shown);
    QWidget window;
    bool ended = false;
    EXPECT_EQ(alerts.runModal(someAlert()), kAlertFirstButtonReturn);
    alerts.beginSheet(someAlert(), window, [&ended](int) { ended = true; });
    ASSERT_EQ(shown.shown.size(), 2U);
    EXPECT_EQ(shown.shown[1].sheetOn, &window);
    EXPECT_TRUE(ended);
}

TEST(EndableAlerts, AreLoggedWhenNobodyCanAnswer)
{
    const auto log = std::make_shared<RecordingLogr>();
    const SharedLoggerScope scope(log);
    RecordingAlerts shown;
    EndableAlerts alerts(shown);
    alerts.end();
    QWidget window;
    bool ended = false;
    EXPECT_EQ(alerts.runModal(someAlert()), kAlertFirstButtonReturn + 1);
    EXPECT_EQ(alerts.runModal({.messageText = QStringLiteral("x"), .informativeText = {}}), kAlertFirstButtonReturn);
    alerts.beginSheet(someAlert(), window, [&ended](int) { ended = true; });
    EXPECT_TRUE(shown.shown.empty());
    EXPECT_FALSE(ended);
    const QStringList lines = log->shortLines(Logr::rootLogLine());
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines[0].startsWith(QStringLiteral("Warning Unable. Because. ["))) << lines[0].toStdString();
}

} // namespace
} // namespace havrel::tests
