// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/mixed_radio_button.h"
#include "capture_prefs_ui/status_line.h"
#include "tests/capture_prefs_ui/capture_preferences_fixture.h"

namespace havrel::tests {
namespace {

using namespace std::chrono_literals;
using CapturePreferencesWriting = WithController;

TEST_F(CapturePreferencesWriting, WritesSixSecondsAfterTheLastChange)
{
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    control<MixedRadioButton>("optionExcludeButton").click();
    EXPECT_EQ(m_busy, 1);
    m_timers.pass(5999ms);
    EXPECT_EQ(stored("folder").option, CaptureOption::Normal);
    control<MixedRadioButton>("optionIgnoreButton").click();
    EXPECT_EQ(m_busy, 2);
    m_timers.pass(5999ms);
    EXPECT_EQ(stored("folder").option, CaptureOption::Normal);
    EXPECT_TRUE(m_controller.dirty());
    m_timers.pass(1ms);
    EXPECT_EQ(stored("folder").option, CaptureOption::IgnoreChanges);
    EXPECT_FALSE(m_controller.dirty());
}

TEST_F(CapturePreferencesWriting, CountsTheSecondsDown)
{
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    auto& line = control<StatusLine>("statusLine");
    EXPECT_EQ(line.text(), QStringLiteral("Saved"));
    control<MixedRadioButton>("optionExcludeButton").click();
    EXPECT_EQ(line.text(), QStringLiteral("Saving in 6 seconds"));
    m_timers.pass(1001ms);
    EXPECT_EQ(line.text(), QStringLiteral("Saving in 5 seconds"));
    m_timers.pass(4000ms);
    EXPECT_EQ(line.text(), QStringLiteral("Saving in 1 second"));
    m_timers.pass(999ms);
    EXPECT_EQ(line.text(), QStringLiteral("Saved"));
}

} // namespace
} // namespace havrel::tests
