// SPDX-License-Identifier: MIT
// What a window says of what other programs do to its items while it is open.
#include "capture_prefs_ui/foreign_changes.h"

#include "capture_prefs_ui/mixed_radio_button.h"
#include "capture_prefs_ui/status_line.h"
#include "tests/capture_prefs_ui/capture_preferences_fixture.h"

#include <QPushButton>

namespace havrel::tests {
namespace {

using namespace std::chrono_literals;

class WhatOthersDo : public WithController
{
protected:
    void prepare(std::initializer_list<std::string_view> entries)
    {
        ASSERT_TRUE(m_controller.prepareWithItems(urlsOf(entries)));
        m_controller.showWindow();
        turnToTheWindow();
    }

    /// As the user does after work in another one.
    void turnToTheWindow()
    {
        Q_EMIT m_controller.window().activated();
        m_timers.pass(0ms);
    }

    void storeElsewhere(const char* entry, CaptureOption option) const
    {
        FileCapturePreferences preferences;
        preferences.option = option;
        store(entry, preferences);
    }

    [[nodiscard]] std::string status() { return control<StatusLine>("statusLine").text().toStdString(); }
    [[nodiscard]] QPushButton& reloadButton() { return control<QPushButton>("reloadButton"); }
    void click(const char* button) { control<QAbstractButton>(button).click(); }
};

TEST_F(WhatOthersDo, IsNothingWhereNobodyElseWrites)
{
    storeElsewhere("folder", CaptureOption::Exclude);
    prepare({"folder", "file"});
    EXPECT_EQ(status(), "Saved");
    click("optionScrapeButton");
    m_timers.pass(6s);
    turnToTheWindow();
    EXPECT_EQ(status(), "Saved") << "its own writing";
    click("optionNoneButton");
    m_timers.pass(6s);
    turnToTheWindow();
    EXPECT_EQ(status(), "Saved") << "its own removal";
    EXPECT_FALSE(reloadButton().isVisible());
}

TEST_F(WhatOthersDo, IsToldAndShownWhenAskedFor)
{
    prepare({"folder", "file"});
    storeElsewhere("folder", CaptureOption::Exclude);
    turnToTheWindow();
    EXPECT_EQ(status(), "Changed elsewhere: folder");
    EXPECT_EQ(control<MixedRadioButton>("optionNoneButton").state(), ButtonState::On) << "nothing moves by itself";
    EXPECT_TRUE(reloadButton().isVisible());
    reloadButton().click();
    EXPECT_EQ(status(), "Saved");
    EXPECT_EQ(control<MixedRadioButton>("optionExcludeButton").state(), ButtonState::Mixed);
    EXPECT_FALSE(m_controller.dirty());
    EXPECT_FALSE(reloadButton().isVisible());
}

TEST_F(WhatOthersDo, IsCountedForSeveralItems)
{
    prepare({"folder", "file"});
    storeElsewhere("folder", CaptureOption::Exclude);
    storeElsewhere("file", CaptureOption::Exclude);
    turnToTheWindow();
    EXPECT_EQ(status(), "Changed elsewhere: 2 items");
}

TEST_F(WhatOthersDo, MayBeTakingItemsAway)
{
    prepare({"folder", "file"});
    std::filesystem::remove(m_tree.path("file"));
    turnToTheWindow();
    EXPECT_EQ(status(), "No longer there: file");
    EXPECT_FALSE(reloadButton().isVisible());
    m_tree.add("file");
    turnToTheWindow();
    EXPECT_EQ(status(), "Saved");
}

TEST_F(WhatOthersDo, IsWrittenOverAndThatIsToldBeforeAndAfter)
{
    prepare({"folder"});
    storeElsewhere("folder", CaptureOption::Exclude);
    turnToTheWindow();
    click("optionScrapeButton");
    EXPECT_EQ(status(), "Saving in 6 seconds, over changes made elsewhere");
    m_timers.pass(6s);
    EXPECT_EQ(stored("folder").option, CaptureOption::Scrape);
    EXPECT_EQ(status(), "Saved, over changes made elsewhere: folder");
    turnToTheWindow();
    EXPECT_FALSE(reloadButton().isVisible());
    click("optionIgnoreButton");
    m_timers.pass(6s);
    EXPECT_EQ(status(), "Saved");
}

TEST_F(WhatOthersDo, CanBeTakenInsteadOfWhatIsNotSaved)
{
    prepare({"folder"});
    storeElsewhere("folder", CaptureOption::Exclude);
    click("optionScrapeButton");
    turnToTheWindow();
    reloadButton().click();
    EXPECT_FALSE(m_controller.dirty());
    m_timers.pass(60s);
    EXPECT_EQ(stored("folder").option, CaptureOption::Exclude);
    EXPECT_EQ(control<MixedRadioButton>("optionExcludeButton").state(), ButtonState::On);
}

TEST_F(WhatOthersDo, IsToldAfterwardsWhenNobodySawIt)
{
    prepare({"folder", "file"});
    click("optionScrapeButton");
    storeElsewhere("folder", CaptureOption::Exclude);
    m_timers.pass(6s);
    EXPECT_EQ(status(), "Saved, over changes made elsewhere: folder");
}

TEST_F(WhatOthersDo, IsNotTheWritingOfAnItemGivenTwice)
{
    prepare({"folder", "folder"});
    click("optionScrapeButton");
    m_timers.pass(6s);
    EXPECT_EQ(status(), "Saved");
    turnToTheWindow();
    EXPECT_EQ(status(), "Saved");
}

TEST_F(WhatOthersDo, LeavesTheTruthOfAFailedWriteStanding)
{
    prepare({"folder"});
    click("optionScrapeButton");
    std::filesystem::remove(m_tree.path("folder"));
    m_timers.pass(6s);
    turnToTheWindow();
    EXPECT_EQ(status(), "Not saved: No such file or directory");
}

TEST_F(WhatOthersDo, IsLookedForInPieces)
{
    prepare({"folder", "file"});
    storeElsewhere("file", CaptureOption::Exclude);
    m_timers.setStep(50ms); // each item takes long
    Q_EMIT m_controller.window().activated();
    m_timers.pass(0ms);
    EXPECT_EQ(status(), "Saved") << "the window was given a chance after the first item";
    m_timers.pass(200ms);
    EXPECT_EQ(status(), "Changed elsewhere: file");
}

TEST_F(WhatOthersDo, IsNotLookedForInAClosedWindow)
{
    prepare({"folder"});
    storeElsewhere("folder", CaptureOption::Exclude);
    Q_EMIT m_controller.window().activated();
    m_controller.window().close();
    m_timers.pass(1s);
    EXPECT_EQ(status(), "Saved");
    EXPECT_EQ(stored("folder").option, CaptureOption::Exclude);
}

TEST(ValueOfRecord, IsWhatReadingGivesBack)
{
    EXPECT_TRUE(areSameValues(valueOfRecord({}), {.error = ENODATA, .bytes = {}}));
    EXPECT_TRUE(areSameValues(valueOfRecord({}), {.error = 0, .bytes = {}})) << "an attribute without a byte";
    EXPECT_TRUE(areSameValues(valueOfRecord("bytes"), {.error = 0, .bytes = "bytes"}));
    EXPECT_TRUE(areSameValues(valueOfRecord(QByteArray(1025, 'x')), {.error = ERANGE, .bytes = {}}));
    EXPECT_FALSE(areSameValues(valueOfRecord("bytes"), valueOfRecord("others")));
    EXPECT_FALSE(areSameValues(valueOfRecord("bytes"), valueOfRecord({})));
    EXPECT_FALSE(areSameValues(valueOfRecord({}), {.error = EACCES, .bytes = {}}));
}

} // namespace
} // namespace havrel::tests
