// SPDX-License-Identifier: MIT
// The preferences window by the keyboard alone, on a real display with a window manager that gives it the focus.
#include "capture_prefs_ui/duration_field.h"
#include "capture_prefs_ui/mixed_check_box.h"
#include "capture_prefs_ui/mixed_radio_button.h"
#include "tests/capture_prefs_ui/capture_preferences_fixture.h"

#include <QApplication>
#include <QTest>
#include <QWindow>

#include <set>

namespace havrel::tests {
namespace {

class KeyboardOnly : public WithController
{
protected:
    void SetUp() override
    {
        WithController::SetUp();
        ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
        m_controller.showWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&m_controller.window()));
    }

    /// To the window, which gives it to whatever has the focus.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(m_controller.window().windowHandle(), key, modifiers);
    }

    [[nodiscard]] static std::string focused()
    {
        const QWidget* widget = QApplication::focusWidget();
        return widget ? widget->objectName().toStdString() : "nothing";
    }

    /// What Tab goes to.
    std::set<std::string> tabStops()
    {
        constexpr int kMore = 60; // than there are stops; the fields for times have several each
        std::set<std::string> stops;
        for (int i = 0; i < kMore; ++i) {
            stops.insert(focused());
            press(Qt::Key_Tab);
        }
        return stops;
    }
};

TEST_F(KeyboardOnly, ChoosesOptionsByTheirLetters)
{
    struct Row
    {
        Qt::Key key;
        CaptureOption option;
    };
    constexpr Row rows[] = {
        {Qt::Key_E, CaptureOption::Exclude},
        {Qt::Key_O, CaptureOption::ExcludeContents},
        {Qt::Key_I, CaptureOption::IgnoreChanges},
        {Qt::Key_S, CaptureOption::Scrape},
        {Qt::Key_T, CaptureOption::ScrapeContents},
        {Qt::Key_N, CaptureOption::Normal}, // while "Save Now" is there
    };
    for (const Row& row : rows) {
        press(row.key, Qt::AltModifier);
        EXPECT_TRUE(QTest::qWaitFor([&] { return m_controller.buttonStateForOption(row.option) == ButtonState::On; }))
            << static_cast<int>(row.option);
    }
    press(Qt::Key_V, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !m_controller.dirty(); })) << "Save Now";
}

TEST_F(KeyboardOnly, ChoosesADelayByItsLetter)
{
    press(Qt::Key_S, Qt::AltModifier);
    ASSERT_TRUE(QTest::qWaitFor([this] { return control<QWidget>("scrapeAfterButton").isEnabled(); }));
    press(Qt::Key_P, Qt::AltModifier);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !control<QWidget>("scrapeDurationField").isEnabled(); }));
    press(Qt::Key_C, Qt::AltModifier);
    ASSERT_EQ(focused(), "scrapeAfterButton");
    press(Qt::Key_Space);
    EXPECT_TRUE(QTest::qWaitFor([this] { return control<QWidget>("scrapeDurationField").isEnabled(); }));
}

TEST_F(KeyboardOnly, TypesADurationAndWritesItAtEscape)
{
    press(Qt::Key_I, Qt::AltModifier);
    ASSERT_TRUE(QTest::qWaitFor([this] { return control<DurationField>("ignoreDurationField").isEnabled(); }));
    press(Qt::Key_F, Qt::AltModifier);
    ASSERT_EQ(focused(), "ignoreDurationField");
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_4);
    press(Qt::Key_2);
    press(Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !m_controller.window().isVisible(); }));
    EXPECT_EQ(stored("folder").option, CaptureOption::IgnoreChanges);
    EXPECT_EQ(stored("folder").ignoreDuration, 42);
}

TEST_F(KeyboardOnly, MayGoWhileADurationIsBeingTyped)
{
    {
        CapturePreferencesController shortLived(
            m_alerts, [] {}, m_timers);
        ASSERT_TRUE(shortLived.prepareWithItems(urlsOf({"folder"})));
        shortLived.showWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&shortLived.window()));
        QWindow* window = shortLived.window().windowHandle();
        QTest::keyClick(window, Qt::Key_I, Qt::AltModifier);
        ASSERT_TRUE(QTest::qWaitFor([&shortLived] { return shortLived.dirty(); }));
        QTest::keyClick(window, Qt::Key_F, Qt::AltModifier);
        QTest::keyClick(window, Qt::Key_4);
        ASSERT_EQ(focused(), "ignoreDurationField");
    }
    EXPECT_EQ(stored("folder").option, CaptureOption::Normal) << "what goes without a close writes nothing";
}

TEST_F(KeyboardOnly, ClosesAndWritesAtControlW)
{
    press(Qt::Key_E, Qt::AltModifier);
    ASSERT_TRUE(QTest::qWaitFor([this] { return m_controller.dirty(); }));
    press(Qt::Key_W, Qt::ControlModifier);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !m_controller.window().isVisible(); }));
    EXPECT_EQ(stored("folder").option, CaptureOption::Exclude);
}

TEST_F(KeyboardOnly, ReachesEveryControlByTab)
{
    press(Qt::Key_I, Qt::AltModifier);
    ASSERT_TRUE(QTest::qWaitFor([this] { return control<QWidget>("ignoreDurationField").isEnabled(); }));
    control<MixedCheckBox>("ignoreBetweenButton").click();
    std::vector<std::string> missing;
    const std::set<std::string> stops = tabStops();
    for (const char* each : {"optionIgnoreButton",
                             "ignoreDurationField",
                             "ignoreScaleMenu",
                             "ignoreBetweenButton",
                             "ignoreFromPicker",
                             "ignoreToPicker",
                             "tableView",
                             "addButton",
                             "saveNowButton",
                             "helpButton"})
        if (stops.count(each) == 0)
            missing.emplace_back(each);
    EXPECT_EQ(missing, std::vector<std::string>());
}

} // namespace
} // namespace havrel::tests
