// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/duration_field.h"
#include "capture_prefs_ui/mixed_check_box.h"
#include "capture_prefs_ui/mixed_radio_button.h"
#include "tests/capture_prefs_ui/capture_preferences_fixture.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QTimeEdit>

namespace havrel::tests {
namespace {

/// Changes are made by the user's own means, and judged by what is on the disk afterwards.
class CapturePreferencesActions : public WithController
{
protected:
    void SetUp() override
    {
        WithController::SetUp();
        if (IsSkipped())
            return;
        for (const char* each : {"first", "second", "third"})
            m_tree.add(each);
    }

    void storeOption(const char* entry, CaptureOption option) const
    {
        FileCapturePreferences preferences;
        preferences.option = option;
        store(entry, preferences);
    }

    void prepare(std::initializer_list<std::string_view> entries)
    {
        ASSERT_TRUE(m_controller.prepareWithItems(urlsOf(entries)));
        m_controller.showWindow();
    }

    void write() { EXPECT_TRUE(m_controller.setModifiedPrefs()); }

    void click(const char* button) { control<QAbstractButton>(button).click(); }

    void type(const char* field, const char* text)
    {
        auto& edited = control<DurationField>(field);
        edited.setFocus();
        edited.selectAll();
        QTest::keyClicks(&edited, QLatin1String(text));
    }

    /// As by a choice in the open menu: setting the index alone tells nobody.
    void choose(const char* menu, DurationScale scale)
    {
        auto& chosen = control<QComboBox>(menu);
        chosen.setCurrentIndex(chosen.findData(static_cast<uint>(scale)));
        Q_EMIT chosen.activated(chosen.currentIndex());
    }
};

TEST_F(CapturePreferencesActions, SetEachOptionOnAllItems)
{
    struct Row
    {
        const char* button;
        CaptureOption option;
    };
    const Row rows[] = {
        {"optionExcludeButton", CaptureOption::Exclude},
        {"optionExcludeContentsButton", CaptureOption::ExcludeContents},
        {"optionIgnoreButton", CaptureOption::IgnoreChanges},
        {"optionScrapeButton", CaptureOption::Scrape},
        {"optionScrapeContentsButton", CaptureOption::ScrapeContents},
        {"optionNoneButton", CaptureOption::Normal},
    };
    m_tree.add("other/");
    storeOption("folder", CaptureOption::Scrape);
    prepare({"folder", "other"});
    for (const Row& row : rows) {
        click(row.button);
        EXPECT_EQ(control<MixedRadioButton>(row.button).state(), ButtonState::On);
        EXPECT_EQ(m_controller.optionOfButton(control<QAbstractButton>(row.button)), row.option);
        write();
        EXPECT_EQ(stored("folder").option, row.option) << row.button;
        EXPECT_EQ(stored("other").option, row.option) << row.button;
    }
}

TEST_F(CapturePreferencesActions, ShowDifferentOptionsAsMixedUntilOneIsChosen)
{
    storeOption("first", CaptureOption::Exclude);
    prepare({"first", "second"});
    EXPECT_EQ(control<MixedRadioButton>("optionExcludeButton").state(), ButtonState::Mixed);
    EXPECT_EQ(control<MixedRadioButton>("optionNoneButton").state(), ButtonState::Mixed);
    click("optionExcludeButton");
    EXPECT_EQ(control<MixedRadioButton>("optionExcludeButton").state(), ButtonState::On);
    EXPECT_EQ(control<MixedRadioButton>("optionNoneButton").state(), ButtonState::Off);
}

TEST_F(CapturePreferencesActions, TurnAMixedBoxOnAndGiveItToExcludedItemsOnly)
{
    FileCapturePreferences all;
    all.option = CaptureOption::Exclude;
    all.allArchives = true;
    store("first", all);
    storeOption("second", CaptureOption::Exclude);
    storeOption("third", CaptureOption::IgnoreChanges);
    prepare({"third", "first", "second"});
    auto& box = control<MixedCheckBox>("allArchivesButton");
    EXPECT_EQ(box.state(), ButtonState::Mixed);
    box.click();
    write();
    EXPECT_TRUE(stored("first").allArchives);
    EXPECT_TRUE(stored("second").allArchives);
    click("optionExcludeButton"); // the third shows now what it was given: nothing
    write();
    EXPECT_FALSE(stored("third").allArchives);
}

TEST_F(CapturePreferencesActions, SetAllArchivesTakesMixedForYes)
{
    storeOption("first", CaptureOption::Exclude);
    prepare({"first"});
    auto& box = control<MixedCheckBox>("allArchivesButton");
    box.setState(ButtonState::Mixed);
    m_controller.setAllArchives(box);
    write();
    EXPECT_TRUE(stored("first").allArchives);
    click("allArchivesButton");
    write();
    EXPECT_FALSE(stored("first").allArchives);
}

TEST_F(CapturePreferencesActions, SetIgnoringOfThoseItemsOnlyThatIgnore)
{
    storeOption("first", CaptureOption::IgnoreChanges);
    storeOption("second", CaptureOption::Scrape);
    prepare({"first", "second"});
    type("ignoreDurationField", "7\r");
    choose("ignoreScaleMenu", DurationScale::Weeks);
    click("ignoreBetweenButton");
    control<QTimeEdit>("ignoreFromPicker").setTime(QTime(1, 2, 33));
    control<QTimeEdit>("ignoreToPicker").setTime(QTime(23, 59, 59));
    write();
    const FileCapturePreferences first = stored("first");
    EXPECT_EQ(first.ignoreDuration, 7);
    EXPECT_EQ(first.ignoreScale, DurationScale::Weeks);
    EXPECT_TRUE(first.ignoreBetween);
    EXPECT_EQ(first.ignoreFromMinute, 62U);
    EXPECT_EQ(first.ignoreToMinute, 1439U);
    click("optionIgnoreButton");
    write();
    const FileCapturePreferences second = stored("second");
    EXPECT_EQ(second.ignoreDuration, 23);
    EXPECT_EQ(second.ignoreScale, DurationScale::Hours);
    EXPECT_FALSE(second.ignoreBetween);
}

TEST_F(CapturePreferencesActions, SetScrapingOfThoseItemsOnlyThatScrape)
{
    storeOption("first", CaptureOption::Scrape);
    storeOption("second", CaptureOption::Exclude);
    prepare({"first", "second"});
    type("scrapeDurationField", "12\r");
    choose("scrapeScaleMenu", DurationScale::Months);
    write();
    EXPECT_EQ(stored("first").scrapeDuration, 12);
    EXPECT_EQ(stored("first").scrapeScale, DurationScale::Months);
    click("scrapeImmediatelyButton");
    EXPECT_FALSE(control<QWidget>("scrapeDurationField").isEnabled());
    EXPECT_EQ(control<DurationField>("scrapeDurationField").value(), 31);
    write();
    EXPECT_TRUE(stored("first").scrapeImmediately);
    click("scrapeAfterButton");
    EXPECT_TRUE(control<QWidget>("scrapeDurationField").isEnabled());
    EXPECT_EQ(control<DurationField>("scrapeDurationField").value(), 12);
    write();
    EXPECT_FALSE(stored("first").scrapeImmediately);
    EXPECT_EQ(stored("second").option, CaptureOption::Exclude);
}

TEST_F(CapturePreferencesActions, EnableWhatBelongsToTheOption)
{
    const char* excluding[] = {"allArchivesButton"};
    const char* ignoring[] = {"ignoreDurationField", "ignoreScaleMenu", "ignoreBetweenButton"};
    const char* times[] = {"ignoreFromPicker", "ignoreToPicker"};
    const char* choices[] = {"scrapeImmediatelyButton", "scrapeAfterButton"};
    const char* delays[] = {"scrapeDurationField", "scrapeScaleMenu"};
    const auto areEnabled = [this](const auto& names, bool isEnabled) {
        for (const char* each : names)
            EXPECT_EQ(control<QWidget>(each).isEnabled(), isEnabled) << each;
    };
    prepare({"folder"});
    for (const auto& [button, isExcluding, isIgnoring, isScraping] :
         std::initializer_list<std::tuple<const char*, bool, bool, bool>>{
             {"optionNoneButton", false, false, false},
             {"optionExcludeButton", true, false, false},
             {"optionExcludeContentsButton", true, false, false},
             {"optionIgnoreButton", false, true, false},
             {"optionScrapeButton", false, false, true},
             {"optionScrapeContentsButton", false, false, true}}) {
        click(button);
        areEnabled(excluding, isExcluding);
        areEnabled(ignoring, isIgnoring);
        areEnabled(times, false);
        areEnabled(choices, isScraping);
        areEnabled(delays, isScraping);
    }
    click("optionIgnoreButton");
    click("ignoreBetweenButton");
    areEnabled(times, true);
}

TEST_F(CapturePreferencesActions, AreNotTakenForTheUsersWhenTheViewIsUpdated)
{
    FileCapturePreferences odd;
    odd.option = CaptureOption::IgnoreChanges;
    odd.ignoreBetween = true;
    odd.ignoreFromMinute = 61;
    odd.ignoreScale = DurationScale::Years;
    odd.ignoreDuration = 3;
    store("first", odd);
    storeOption("second", CaptureOption::Scrape);
    prepare({"first"});
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({i % 2 == 0 ? "second" : "first"})));
        m_controller.updateView();
        EXPECT_FALSE(m_controller.dirty());
    }
    EXPECT_EQ(m_busy, 0);
}

TEST_F(CapturePreferencesActions, ReadWhatWasTypedWhenEditingEnds)
{
    storeOption("first", CaptureOption::IgnoreChanges);
    prepare({"first"});
    type("ignoreDurationField", "8");
    EXPECT_FALSE(m_controller.dirty());
    EXPECT_TRUE(m_controller.commitEditingAndWrite());
    EXPECT_EQ(stored("first").ignoreDuration, 8);
    EXPECT_TRUE(m_controller.commitEditingAndWrite());
    EXPECT_EQ(m_busy, 1);
}

TEST_F(CapturePreferencesActions, ReadAnEmptyFieldAsZero)
{
    storeOption("first", CaptureOption::IgnoreChanges);
    prepare({"first"});
    auto& field = control<DurationField>("ignoreDurationField");
    field.selectAll();
    QTest::keyClick(&field, Qt::Key_Delete);
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(field.value(), 0);
    write();
    EXPECT_EQ(stored("first").ignoreDuration, 0);
}

TEST_F(CapturePreferencesActions, LeaveDifferentDurationsAloneWhenTheFieldIsOnlyVisited)
{
    FileCapturePreferences other;
    other.option = CaptureOption::IgnoreChanges;
    other.ignoreDuration = 99;
    store("first", other);
    storeOption("second", CaptureOption::IgnoreChanges);
    prepare({"first", "second"});
    auto& field = control<DurationField>("ignoreDurationField");
    EXPECT_EQ(field.value(), std::nullopt);
    QTest::keyClick(&field, Qt::Key_Return);
    m_controller.commitEditingAndWrite();
    EXPECT_EQ(m_busy, 0);
    EXPECT_EQ(stored("first").ignoreDuration, 99);
}

TEST_F(CapturePreferencesActions, TellTheUnitsByTheirStoredNumbers)
{
    prepare({"first"});
    for (const char* menu : {"ignoreScaleMenu", "scrapeScaleMenu"}) {
        auto& scales = control<QComboBox>(menu);
        QStringList titles;
        for (int i = 0; i < scales.count(); ++i) {
            EXPECT_EQ(scales.itemData(i).toInt(), i);
            titles.append(scales.itemText(i));
        }
        EXPECT_EQ(titles.join(u' '), QStringLiteral("minutes hours days weeks months years"));
    }
    EXPECT_EQ(control<QComboBox>("ignoreScaleMenu").currentData().toInt(), 1);
    EXPECT_EQ(control<QComboBox>("scrapeScaleMenu").currentData().toInt(), 2);
}

TEST_F(CapturePreferencesActions, ShowNoUnitForANumberThatNamesNone)
{
    FileCapturePreferences odd;
    odd.option = CaptureOption::IgnoreChanges;
    odd.ignoreScale = static_cast<DurationScale>(17);
    store("first", odd);
    prepare({"first"});
    EXPECT_EQ(control<QComboBox>("ignoreScaleMenu").currentIndex(), -1);
    m_controller.makeDirty();
    write();
    EXPECT_EQ(static_cast<int>(stored("first").ignoreScale), 17);
}

TEST_F(CapturePreferencesActions, ShowTimesInTheirOrderFromRightToLeft)
{
    QLocale::setDefault(QLocale::c());
    prepare({"first"});
    QApplication::setLayoutDirection(Qt::RightToLeft);
    EXPECT_EQ(control<QTimeEdit>("ignoreToPicker").text(), QStringLiteral("17:00"));
    EXPECT_TRUE(control<QLabel>("itemNameField").alignment().testFlag(Qt::AlignRight));
    QApplication::setLayoutDirection(Qt::LeftToRight);
    EXPECT_TRUE(control<QLabel>("itemNameField").alignment().testFlag(Qt::AlignLeft));
}

} // namespace
} // namespace havrel::tests
