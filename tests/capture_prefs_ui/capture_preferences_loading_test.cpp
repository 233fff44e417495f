// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/mixed_radio_button.h"
#include "capture_prefs_ui/status_line.h"
#include "filters/pattern_filter_def.h"
#include "platform/file_names.h"
#include "tests/capture_prefs_ui/capture_preferences_fixture.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/shown_window.h"

#include <QCoreApplication>
#include <QLabel>
#include <QProgressDialog>
#include <QTest>
#include <QTimer>

#include <sys/stat.h>
#include <unistd.h>

namespace havrel::tests {
namespace {

class CapturePreferencesLoading : public WithController
{
protected:
    [[nodiscard]] QString label(const char* name) { return control<QLabel>(name).text(); }

    /// Prepares with the items while the user may not write to some of them, and lets the alert come.
    bool prepareAsUser(std::initializer_list<std::string_view> items, std::initializer_list<std::string_view> readOnly)
    {
        for (const std::string_view each : readOnly)
            ::chmod(m_tree.path(each).c_str(), 0555);
        for (const std::string_view each : items)
            EXPECT_TRUE(::geteuid() != 0 || ::chown(m_tree.path(each).c_str(), 65534, 65534) == 0);
        const OrdinaryUser user(m_tree.root());
        const bool canEdit = m_controller.prepareWithItems(urlsOf(items));
        EXPECT_TRUE(m_alerts.shown.empty()) << "shown inside the call";
        QCoreApplication::processEvents();
        return canEdit;
    }
};

TEST_F(CapturePreferencesLoading, NamesOneItemAndItsFolder)
{
    m_tree.add("Documents/Projects/");
    qputenv("HOME", QByteArray::fromStdString(m_tree.root()));
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"Documents/Projects"})));
    EXPECT_EQ(label("itemNameField"), QStringLiteral("Projects"));
    EXPECT_EQ(label("itemPlaceField"), QStringLiteral("in ~/Documents"));
}

TEST_F(CapturePreferencesLoading, LooksForTheIconOnceTheWindowIsPainted)
{
    m_tree.add("Projects/");
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"Projects"})));
    const auto& icon = control<QLabel>("itemIconImage");
    EXPECT_TRUE(icon.pixmap().isNull());
    m_controller.showWindow();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !icon.pixmap().isNull(); }));
    EXPECT_EQ(icon.pixmap().deviceIndependentSize().toSize(), icon.size());
}

TEST_F(CapturePreferencesLoading, CountsSeveralItems)
{
    struct Row
    {
        std::initializer_list<std::string_view> items;
        const char* name;
        const char* place;
    };
    m_tree.add("other/");
    m_tree.add("Tool.app/");
    m_tree.add("second");
    const Row rows[] = {
        {{"folder", "other"}, "2 Items", "2 folders"},
        {{"file", "second"}, "2 Items", "2 files"},
        {{"file", "folder"}, "2 Items", "1 folder, 1 file"},
        {{"file", "folder", "other", "second", "Tool.app"}, "5 Items", "2 folders, 3 files"},
    };
    for (const Row& row : rows) {
        ASSERT_TRUE(m_controller.prepareWithItems(urlsOf(row.items)));
        EXPECT_EQ(label("itemNameField"), QLatin1String(row.name));
        EXPECT_EQ(label("itemPlaceField"), QLatin1String(row.place));
    }
}

TEST_F(CapturePreferencesLoading, TakesAPackageForAFile)
{
    m_tree.add("Tool.app/");
    m_tree.add("plain.app");
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"Tool.app", "plain.app"})));
    EXPECT_FALSE(m_controller.atLeastOneContainer());
    EXPECT_FALSE(m_controller.allContainers());
    EXPECT_FALSE(control<QWidget>("optionExcludeContentsButton").isEnabled());
    EXPECT_FALSE(control<QWidget>("optionScrapeContentsButton").isEnabled());
}

TEST_F(CapturePreferencesLoading, KnowsWhetherAllItemsAreContainers)
{
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder", "file"})));
    EXPECT_TRUE(m_controller.atLeastOneContainer());
    EXPECT_FALSE(m_controller.allContainers());
    EXPECT_FALSE(control<QWidget>("optionExcludeContentsButton").isEnabled());
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    EXPECT_TRUE(m_controller.allContainers());
    EXPECT_TRUE(control<QWidget>("optionExcludeContentsButton").isEnabled());
    EXPECT_TRUE(control<QWidget>("optionScrapeContentsButton").isEnabled());
}

TEST_F(CapturePreferencesLoading, LeavesNothingToWrite)
{
    FileCapturePreferences preferences;
    preferences.option = CaptureOption::IgnoreChanges;
    preferences.ignoreBetween = true;
    preferences.setExcludeFilterDefs(
        PatternFilterDef::filterDefsFromStrings({QStringLiteral("//*.tmp")}, PatternFilterDef::itemEnvironment()));
    store("folder", preferences);
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    EXPECT_FALSE(m_controller.dirty());
    EXPECT_EQ(control<StatusLine>("statusLine").text(), QStringLiteral("Saved"));
    ASSERT_EQ(platform::removeAttribute(m_tree.bytes("folder"), "user.com.havrel.prefs"), 0);
    m_timers.pass(std::chrono::seconds(60));
    m_controller.windowWillClose();
    EXPECT_EQ(platform::sizeOfAttribute(m_tree.bytes("folder"), "user.com.havrel.prefs").error, ENODATA);
}

TEST_F(CapturePreferencesLoading, SetsItemsAsideThatMayNotBeWritten)
{
    m_tree.add("second");
    m_tree.add("third");
    m_tree.add("fourth");
    ASSERT_TRUE(prepareAsUser({"file", "folder", "second", "third", "fourth"}, {"folder", "second", "fourth"}));
    EXPECT_EQ(m_controller.items(), urlsOf({"file", "third"}));
    ASSERT_EQ(m_alerts.shown.size(), 1U);
    const auto& [alert, sheetOn] = m_alerts.shown.front();
    EXPECT_EQ(alert.style, AlertStyle::Informational);
    EXPECT_EQ(alert.messageText, QStringLiteral("'folder' and 2 other items cannot be modifed"));
    EXPECT_EQ(alert.informativeText,
              QStringLiteral("You do not have permission to edit these preferences. Use the havrel command-line tool "
                             "(sudo havrel captureprefs ...) to set them."));
    EXPECT_EQ(sheetOn, &m_controller.window());
}

TEST_F(CapturePreferencesLoading, NamesUpToTwoItemsThatMayNotBeWritten)
{
    m_tree.add("second");
    ASSERT_TRUE(prepareAsUser({"file", "second", "folder"}, {"file", "folder"}));
    ASSERT_EQ(m_alerts.shown.size(), 1U);
    EXPECT_EQ(m_alerts.shown.front().alert.messageText, QStringLiteral("'file' and 'folder' cannot be modifed"));
}

TEST_F(CapturePreferencesLoading, RefusesWhenNoItemMayBeWritten)
{
    ASSERT_FALSE(prepareAsUser({"file"}, {"file"}));
    ASSERT_EQ(m_alerts.shown.size(), 1U);
    EXPECT_EQ(m_alerts.shown.front().alert.messageText, QStringLiteral("'file' cannot be modifed"));
    EXPECT_EQ(m_alerts.shown.front().sheetOn, nullptr);
}

TEST_F(CapturePreferencesLoading, TakesWhatIsNotThereOrNotLocalForUnwritable)
{
    const QList<QUrl> urls{urlOf("missing"), QUrl(QStringLiteral("https://example.com/a/remote.txt")), QUrl()};
    EXPECT_FALSE(m_controller.prepareWithItems(urls));
    QCoreApplication::processEvents();
    ASSERT_EQ(m_alerts.shown.size(), 1U);
    EXPECT_EQ(m_alerts.shown.front().alert.messageText,
              QStringLiteral("'missing' and 2 other items cannot be modifed"));
}

TEST_F(CapturePreferencesLoading, RefusesWhatCannotCarryPreferences)
{
    m_tree.addLink("link", "file");
    m_tree.addLink("dangling", "nowhere");
    ASSERT_EQ(::mkfifo(m_tree.path("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(m_controller.prepareWithItems(urlsOf({"link", "dangling", "pipe"})));
    QCoreApplication::processEvents();
    ASSERT_EQ(m_alerts.shown.size(), 1U);
    EXPECT_EQ(m_alerts.shown.front().alert.messageText, QStringLiteral("'link' and 2 other items cannot be modifed"));
    EXPECT_EQ(m_alerts.shown.front().alert.informativeText,
              QStringLiteral("Files and folders can carry capture preferences, but not links, devices and the like, "
                             "nor anything on a file system that keeps no extended attributes."));
}

TEST_F(CapturePreferencesLoading, RefusesWhatIsOnAFileSystemWithoutAttributes)
{
    const QList<QUrl> urls{JNPath::withCPath("/proc/self/oom_score_adj")->url()};
    ASSERT_EQ(platform::sizeOfAttribute("/proc/self/oom_score_adj", "user.com.havrel.prefs").error, ENOTSUP);
    EXPECT_FALSE(m_controller.prepareWithItems(urls));
    QCoreApplication::processEvents();
    ASSERT_EQ(m_alerts.shown.size(), 1U);
    EXPECT_TRUE(m_alerts.shown.front().alert.informativeText.startsWith(QStringLiteral("Files and folders")));
}

TEST_F(CapturePreferencesLoading, TellsEachReasonOfARefusalOnce)
{
    m_tree.addLink("link", "file");
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"missing", "link", "missing too", "folder"})));
    QCoreApplication::processEvents();
    ASSERT_EQ(m_alerts.shown.size(), 1U);
    const QStringList reasons = m_alerts.shown.front().alert.informativeText.split(QStringLiteral("\n\n"));
    ASSERT_EQ(reasons.size(), 2);
    EXPECT_TRUE(reasons[0].startsWith(QStringLiteral("You do not have permission")));
    EXPECT_TRUE(reasons[1].startsWith(QStringLiteral("Files and folders")));
}

TEST_F(CapturePreferencesLoading, SaysThatARecordCannotBeReadAndIsReplacedByAChange)
{
    ASSERT_EQ(platform::writeAttribute(m_tree.bytes("folder"), "user.com.havrel.prefs", "no list"), 0);
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    EXPECT_EQ(control<StatusLine>("statusLine").text(),
              QStringLiteral("Cannot be read, and would be replaced: folder"));
    control<MixedRadioButton>("optionExcludeButton").click();
    EXPECT_TRUE(m_controller.setModifiedPrefs());
    EXPECT_EQ(control<StatusLine>("statusLine").text(), QStringLiteral("Saved"));
    EXPECT_EQ(stored("folder").option, CaptureOption::Exclude);
}

TEST_F(CapturePreferencesLoading, GetsByWithTheLongestNames)
{
    const std::string name(255, 'n');
    m_tree.add(name + "/");
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    const int usual = m_controller.window().sizeHint().width();
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({name})));
    EXPECT_EQ(m_controller.window().sizeHint().width(), usual);
    EXPECT_EQ(label("itemNameField"), QString(255, u'n'));
}

TEST_F(CapturePreferencesLoading, KeepsWhatWasLoadedWhenNothingCanBeEdited)
{
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    EXPECT_FALSE(m_controller.prepareWithItems(urlsOf({"missing"})));
    EXPECT_EQ(m_controller.items(), urlsOf({"folder"}));
    EXPECT_TRUE(m_controller.atLeastOneContainer());
}

TEST_F(CapturePreferencesLoading, PutsNamesIntoTheAlertAsTheyAre)
{
    const QList<QUrl> urls{urlOf("%2 <b>"), urlOf("%1")};
    EXPECT_FALSE(m_controller.prepareWithItems(urls));
    QCoreApplication::processEvents();
    ASSERT_EQ(m_alerts.shown.size(), 1U);
    EXPECT_EQ(m_alerts.shown.front().alert.messageText, QStringLiteral("'%2 <b>' and '%1' cannot be modifed"));
}

TEST_F(CapturePreferencesLoading, OfNoItemsHasNothingToShowOrToSay)
{
    EXPECT_FALSE(m_controller.prepareWithItems({}));
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_alerts.shown.empty());
}

TEST_F(CapturePreferencesLoading, TakesNamesThatAreNoText)
{
    m_tree.add("caf\xe9");
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"caf\xe9"})));
    EXPECT_EQ(label("itemNameField"), platform::textOfFileName("caf\xe9"));
    control<MixedRadioButton>("optionExcludeButton").click();
    m_controller.windowWillClose();
    EXPECT_EQ(stored("caf\xe9").option, CaptureOption::Exclude);
}

TEST_F(CapturePreferencesLoading, TakesTheSameItemTwice)
{
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder", "folder"})));
    control<MixedRadioButton>("optionExcludeButton").click();
    m_controller.windowWillClose();
    EXPECT_EQ(stored("folder").option, CaptureOption::Exclude);
    EXPECT_TRUE(m_alerts.shown.empty());
}

TEST_F(CapturePreferencesLoading, HasNothingToShowWhenItIsStopped)
{
    m_timers.setStep(std::chrono::milliseconds(200)); // each look at the clock: every item is slow
    QTimer::singleShot(0, [] { shownWindow<QProgressDialog>()->cancel(); });
    EXPECT_FALSE(m_controller.prepareWithItems(urlsOf({"missing", "folder", "file"})));
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_alerts.shown.empty()) << "of items that the user gave up";
    EXPECT_FALSE(m_controller.dirty());
    m_timers.setStep(std::chrono::milliseconds(0));
    EXPECT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    EXPECT_EQ(m_controller.items(), urlsOf({"folder"}));
}

TEST_F(CapturePreferencesLoading, ShowsTheAlertOnlyWhileTheControllerLives)
{
    {
        CapturePreferencesController shortLived(
            m_alerts, [] {}, m_timers);
        EXPECT_FALSE(shortLived.prepareWithItems(urlsOf({"missing"})));
    }
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_alerts.shown.empty());
}

} // namespace
} // namespace havrel::tests
