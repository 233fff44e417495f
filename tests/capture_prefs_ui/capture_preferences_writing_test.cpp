// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/duration_field.h"
#include "capture_prefs_ui/mixed_radio_button.h"
#include "capture_prefs_ui/pattern_table_pane.h"
#include "capture_prefs_ui/pattern_table_simple_cell_view.h"
#include "capture_prefs_ui/pattern_table_view_controller.h"
#include "capture_prefs_ui/resizing_pattern_text_field.h"
#include "capture_prefs_ui/status_line.h"
#include "capture_prefs_ui/table_view.h"
#include "capture_prefs_ui/table_width_constraint.h"
#include "filters/pattern_filter_def.h"
#include "tests/capture_prefs_ui/capture_preferences_fixture.h"
#include "tests/support/mounted_folder.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/shown_window.h"

#include <QDesktopServices>
#include <QFile>
#include <QMessageBox>
#include <QProcess>
#include <QProgressDialog>
#include <QStyle>
#include <QTest>
#include <QTimeEdit>
#include <QTimer>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace havrel::tests {
namespace {

using namespace std::chrono_literals;

class CapturePreferencesWriting : public WithController
{
protected:
    void click(const char* button) { control<QAbstractButton>(button).click(); }
    StatusLine& statusLine() { return control<StatusLine>("statusLine"); }
};

/// Writes a file until the disk has no room for another block.
void fill(const std::string& path)
{
    const int file = ::open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    for (const std::size_t size : {65536U, 1024U})
        while (::write(file, std::string(size, 'x').data(), size) > 0)
            ::fsync(file); // now, not when the system has time for it
    ::close(file);
}

/// Stands in for the user's browser.
class HelpReader : public QObject
{
    Q_OBJECT

public:
    Q_INVOKABLE void open(const QUrl& url) { opened = url; }

    QUrl opened;
};

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

FileCapturePreferences withPatterns(const char* lines)
{
    FileCapturePreferences preferences;
    preferences.setExcludeFilterDefs(PatternFilterDef::filterDefsFromStrings(
        QString::fromLatin1(lines).split(u' ', Qt::SkipEmptyParts), PatternFilterDef::itemEnvironment()));
    return preferences;
}

std::string linesOf(const FileCapturePreferences& preferences)
{
    return preferences.excludeFiltersAsStrings().value_or(QStringList()).join(u' ').toStdString();
}

std::string linesOf(const PatternFilterDefs& definitions)
{
    QStringList lines;
    for (const PatternFilterDefPtr& each : definitions)
        lines.append(each->multiplePatternsPlaceholder() ? QStringLiteral("...") : each->canonicalPattern());
    return lines.join(u' ').toStdString();
}

TEST_F(CapturePreferencesWriting, ShowsCommonPatternsAndKeepsEachFoldersOwn)
{
    m_tree.add("other/");
    store("folder", withPatterns("//own //common"));
    store("other", withPatterns("//common //else"));
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder", "other", "file"})));
    PatternTableViewController& table = *m_controller.patternTableController();
    EXPECT_TRUE(table.enabled());
    EXPECT_EQ(linesOf(table.filterDefs()), "//common ...");
    // Several passes: the extras are what was not common when the items were loaded.
    for (const char* added : {"//new", "//newer"}) {
        table.addPatternStrings({QLatin1String(added)});
        EXPECT_TRUE(m_controller.dirty());
        EXPECT_TRUE(m_controller.setModifiedPrefs());
    }
    EXPECT_EQ(linesOf(stored("folder")), "//common //new //newer //own");
    EXPECT_EQ(linesOf(stored("other")), "//common //new //newer //else");
    EXPECT_EQ(linesOf(stored("file")), "");
}

TEST_F(CapturePreferencesWriting, WritesAPatternOnceThatAFolderHadOfItsOwn)
{
    m_tree.add("other/");
    store("folder", withPatterns("//own //common"));
    store("other", withPatterns("//common //else"));
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder", "other"})));
    PatternTableViewController& table = *m_controller.patternTableController();
    table.addPatternStrings({QStringLiteral("//else")});
    EXPECT_TRUE(m_controller.setModifiedPrefs());
    EXPECT_EQ(linesOf(stored("folder")), "//common //else //own");
    EXPECT_EQ(linesOf(stored("other")), "//common //else");
    IndexSet added;
    added.addIndex(2);
    table.removePatterns(added);
    EXPECT_TRUE(m_controller.setModifiedPrefs());
    EXPECT_EQ(linesOf(stored("folder")), "//common //own");
    EXPECT_EQ(linesOf(stored("other")), "//common //else");
}

TEST_F(CapturePreferencesWriting, MergesAPatternThatIsTypedBetweenTwoPasses)
{
    m_tree.add("other/");
    store("folder", withPatterns("//own //common"));
    store("other", withPatterns("//common //else"));
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder", "other"})));
    m_controller.makeDirty();
    ASSERT_TRUE(m_controller.setModifiedPrefs());
    const PatternFilterDefPtr edited = m_controller.patternTableController()->filterDefs().front();
    for (const char* text : {"other", "else", "common"}) {
        edited->setSinglePattern(QString::fromLatin1(text));
        m_controller.makeDirty(); // the window is hidden, so that no row tells
        ASSERT_TRUE(m_controller.setModifiedPrefs());
        const std::string line = std::string("//") + text;
        EXPECT_EQ(linesOf(stored("folder")), line + " //own");
        EXPECT_EQ(linesOf(stored("other")), line == "//else" ? line : line + " //else");
    }
}

TEST_F(CapturePreferencesWriting, MergesAPatternThatChangesInTheMiddleOfAPass)
{
    m_tree.add("other/");
    store("folder", withPatterns("//own //common"));
    store("other", withPatterns("//common //else"));
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder", "other"})));
    const PatternFilterDefPtr edited = m_controller.patternTableController()->filterDefs().front();
    m_controller.makeDirty();
    m_timers.setStep(200ms); // each look at the clock: every item is slow
    QTimer::singleShot(0, [edited] { edited->setSinglePattern(QStringLiteral("else")); });
    EXPECT_TRUE(m_controller.setModifiedPrefs());
    EXPECT_EQ(linesOf(stored("folder")), "//common //own");
    EXPECT_EQ(linesOf(stored("other")), "//else");
}

TEST_F(CapturePreferencesWriting, DropsEachFoldersOwnPatternsWithThePlaceholder)
{
    m_tree.add("other/");
    store("folder", withPatterns("//own //common"));
    store("other", withPatterns("//common"));
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder", "other"})));
    PatternTableViewController& table = *m_controller.patternTableController();
    ASSERT_EQ(linesOf(table.filterDefs()), "//common ...");
    IndexSet placeholder;
    placeholder.addIndex(1);
    table.removePatterns(placeholder);
    EXPECT_TRUE(m_controller.setModifiedPrefs());
    EXPECT_EQ(linesOf(stored("folder")), "//common");
    EXPECT_EQ(linesOf(stored("other")), "//common");
}

TEST_F(CapturePreferencesWriting, NeedsNoPlaceholderForEqualPatternsInAnotherOrder)
{
    m_tree.add("other/");
    store("folder", withPatterns("//b //a"));
    store("other", withPatterns("//a //b"));
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder", "other"})));
    EXPECT_EQ(linesOf(m_controller.patternTableController()->filterDefs()), "//b //a");
}

TEST_F(CapturePreferencesWriting, LeavesThePatternsOfFilesAsTheyAre)
{
    store("file", withPatterns("//kept"));
    store("folder", withPatterns("//common"));
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"file", "folder"})));
    EXPECT_EQ(linesOf(m_controller.patternTableController()->filterDefs()), "//common");
    click("optionExcludeButton");
    EXPECT_TRUE(m_controller.setModifiedPrefs());
    EXPECT_EQ(linesOf(stored("file")), "//kept");
    EXPECT_EQ(linesOf(stored("folder")), "//common");
}

TEST_F(CapturePreferencesWriting, DisablesThePatternsOfFilesAlone)
{
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"file"})));
    EXPECT_FALSE(m_controller.patternTableController()->enabled());
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    EXPECT_TRUE(m_controller.patternTableController()->enabled());
}

TEST_F(CapturePreferencesWriting, HearsOfPatternsThatAreEditedInTheirRows)
{
    store("folder", withPatterns("//first"));
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    m_controller.showWindow();
    ASSERT_FALSE(m_controller.dirty());
    m_controller.patternTableController()->filterDefs().front()->setSinglePattern(QStringLiteral("second"));
    EXPECT_TRUE(m_controller.dirty());
    m_timers.pass(6s);
    EXPECT_EQ(linesOf(stored("folder")), "//second");
}

TEST_F(CapturePreferencesWriting, HoldsTheTableWideWhileThereArePatterns)
{
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    PatternTableViewController& table = *m_controller.patternTableController();
    auto& pane = control<PatternTablePane>("patternTable");
    const int constant = m_controller.patternTableWidthConstraint()->constant();
    for (const bool hasPatterns : {true, false, true}) {
        table.setFilterDefs(hasPatterns ? *withPatterns("//a").excludeFilterDefs() : PatternFilterDefs());
        EXPECT_EQ(m_controller.patternTableWidthConstraint()->priority(), hasPatterns ? 1000 : 1);
        EXPECT_EQ(m_controller.patternTableWidthConstraint()->item(), &pane);
        EXPECT_EQ(m_controller.patternTableWidthConstraint()->constant(), constant);
        EXPECT_EQ(pane.minimumWidth(), hasPatterns ? constant : 0);
    }
}

TEST_F(CapturePreferencesWriting, WritesEveryItemWhetherItChangedOrNot)
{
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"file", "folder"})));
    FileCapturePreferences elsewhere;
    elsewhere.option = CaptureOption::Scrape;
    store("file", elsewhere); // by another program, meanwhile
    m_controller.makeDirty();
    EXPECT_TRUE(m_controller.setModifiedPrefs());
    EXPECT_EQ(stored("file").option, CaptureOption::Normal);
}

TEST_F(CapturePreferencesWriting, WritesNothingThatDidNotChange)
{
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    FileCapturePreferences elsewhere;
    elsewhere.option = CaptureOption::Scrape;
    store("folder", elsewhere);
    EXPECT_TRUE(m_controller.setModifiedPrefs());
    EXPECT_EQ(stored("folder").option, CaptureOption::Scrape);
}

TEST_F(CapturePreferencesWriting, WritesAtTheCloseOfTheWindow)
{
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    m_controller.showWindow();
    click("optionExcludeButton");
    m_controller.window().close();
    EXPECT_EQ(stored("folder").option, CaptureOption::Exclude);
    store("folder", FileCapturePreferences());
    m_timers.pass(60s); // the timer finds nothing to do
    EXPECT_EQ(stored("folder").option, CaptureOption::Normal);
}

TEST_F(CapturePreferencesWriting, TakesOverWhatIsBeingTypedAtTheClose)
{
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    m_controller.showWindow();
    click("optionIgnoreButton");
    m_timers.pass(6s);
    ASSERT_FALSE(m_controller.dirty());
    auto& field = control<DurationField>("ignoreDurationField");
    field.setFocus();
    field.selectAll();
    QTest::keyClicks(&field, QStringLiteral("77"));
    m_controller.window().close();
    EXPECT_EQ(stored("folder").ignoreDuration, 77);
}

TEST_F(CapturePreferencesWriting, StopsAtTheFirstItemThatFails)
{
    m_tree.add("last");
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"file", "folder", "last"})));
    click("optionExcludeButton");
    std::filesystem::remove(m_tree.path("folder"));
    m_timers.pass(6s);
    ASSERT_EQ(m_alerts.shown.size(), 1U);
    const auto& [alert, sheetOn] = m_alerts.shown.front();
    EXPECT_EQ(alert.style, AlertStyle::Warning);
    EXPECT_EQ(alert.messageText, QStringLiteral("Unable to change the capture preferences for 'folder'."));
    EXPECT_EQ(alert.informativeText, QStringLiteral("No such file or directory"));
    EXPECT_EQ(sheetOn, &m_controller.window());
    EXPECT_EQ(stored("file").option, CaptureOption::Exclude);
    EXPECT_EQ(stored("last").option, CaptureOption::Normal);
    EXPECT_FALSE(m_controller.dirty());
    EXPECT_EQ(statusLine().text(), QStringLiteral("Not saved: 'folder' and 'last': No such file or directory"));
    m_controller.window().close();
    EXPECT_EQ(m_alerts.shown.size(), 1U) << "nothing counts as changed any more";
}

TEST_F(CapturePreferencesWriting, TellsOfAFailureAtTheCloseWhenTheWindowHasGone)
{
    WidgetAlertPresenter presenter;
    CapturePreferencesController controller(
        presenter, [] {}, m_timers);
    ASSERT_TRUE(controller.prepareWithItems(urlsOf({"folder"})));
    controller.showWindow();
    controller.window().findChild<QAbstractButton*>(QStringLiteral("optionExcludeButton"))->click();
    std::filesystem::remove(m_tree.path("folder"));
    controller.window().close();
    QCoreApplication::processEvents();
    EXPECT_FALSE(controller.window().isVisible());
    EXPECT_NE(shownWindow<QMessageBox>(), nullptr);
}

TEST_F(CapturePreferencesWriting, TriesAgainWhenAsked)
{
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    click("optionExcludeButton");
    std::filesystem::remove(m_tree.path("folder"));
    EXPECT_FALSE(m_controller.setModifiedPrefs());
    m_tree.add("folder/");
    click("saveNowButton");
    EXPECT_EQ(stored("folder").option, CaptureOption::Exclude);
    EXPECT_EQ(statusLine().text(), QStringLiteral("Saved"));
}

TEST_F(CapturePreferencesWriting, FailsOnAnItemThatBecameReadOnly)
{
    const OrdinaryUser user(m_tree.root());
    m_tree.add("mine");
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"mine"})));
    click("optionExcludeButton");
    ASSERT_EQ(::chmod(m_tree.path("mine").c_str(), 0444), 0);
    EXPECT_FALSE(m_controller.commitEditingAndWrite());
    ASSERT_EQ(m_alerts.shown.size(), 1U);
    EXPECT_EQ(m_alerts.shown.front().alert.informativeText, QStringLiteral("Permission denied"));
}

TEST_F(CapturePreferencesWriting, SaysWhenNobodyCanReadWhatIsSaved)
{
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    QStringList lines;
    for (int i = 0; i < 100; ++i)
        lines.append(QStringLiteral("//a-rather-long-name-%1").arg(i));
    m_controller.patternTableController()->addPatternStrings(lines);
    EXPECT_TRUE(m_controller.setModifiedPrefs());
    EXPECT_EQ(statusLine().text(), QStringLiteral("Saved, but too long to be read back: folder"));
    m_controller.patternTableController()->setFilterDefs({});
    EXPECT_TRUE(m_controller.setModifiedPrefs());
    EXPECT_EQ(statusLine().text(), QStringLiteral("Saved"));
}

TEST_F(CapturePreferencesWriting, TakesOverAPatternThatIsBeingTypedAtTheClose)
{
    store("folder", withPatterns("//first"));
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    m_controller.showWindow();
    auto* row =
        qobject_cast<PatternTableSimpleCellView*>(control<PatternTablePane>("patternTable").tableView().viewAtRow(0));
    ASSERT_NE(row, nullptr);
    row->textField()->setFocus();
    row->textField()->selectAll();
    QTest::keyClicks(row->textField(), QStringLiteral("second"));
    ASSERT_FALSE(m_controller.dirty());
    m_controller.window().close();
    EXPECT_EQ(linesOf(stored("folder")), "//second");
}

TEST_F(CapturePreferencesWriting, TakesOverATimeThatIsBeingTypedAtTheClose)
{
    FileCapturePreferences ignoring;
    ignoring.option = CaptureOption::IgnoreChanges;
    ignoring.ignoreBetween = true;
    store("folder", ignoring);
    QLocale::setDefault(QLocale::c());
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    m_controller.showWindow();
    auto& picker = control<QTimeEdit>("ignoreFromPicker");
    picker.setFocus();
    picker.setSelectedSection(QDateTimeEdit::HourSection);
    QTest::keyClicks(&picker, QStringLiteral("07"));
    m_controller.window().close();
    EXPECT_EQ(stored("folder").ignoreFromMinute, 420U);
}

TEST_F(CapturePreferencesWriting, TellsOfAFullDisk)
{
    m_tree.add("disk/");
    m_tree.write("image", "");
    std::filesystem::resize_file(m_tree.path("image"), 1 << 20);
    const QStringList arguments{QStringLiteral("-q"),
                                QStringLiteral("-F"),
                                QStringLiteral("-I"),
                                QStringLiteral("128"),
                                QString::fromStdString(m_tree.path("image"))};
    if (QProcess::execute(QStringLiteral("mke2fs"), arguments) != 0)
        GTEST_SKIP() << "there is no mke2fs to make a small disk with";
    const MountedFolder disk(m_tree.bytes("image"), m_tree.bytes("disk"));
    HAVREL_NEEDS_MOUNTED(disk);
    m_tree.add("disk/item");
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"disk/item"})));
    fill(m_tree.path("disk/ballast"));
    click("optionExcludeButton");
    EXPECT_FALSE(m_controller.setModifiedPrefs());
    ASSERT_EQ(m_alerts.shown.size(), 1U);
    EXPECT_EQ(m_alerts.shown.front().alert.informativeText, QStringLiteral("No space left on device"));
    EXPECT_EQ(statusLine().text(), QStringLiteral("Not saved: No space left on device"));
    std::filesystem::remove(m_tree.path("disk/ballast"));
    click("saveNowButton");
    EXPECT_EQ(stored("disk/item").option, CaptureOption::Exclude);
}

TEST_F(CapturePreferencesWriting, LetsTheLastOfTwoWindowsOfAnItemStand)
{
    CapturePreferencesController other(
        m_alerts, [] {}, m_timers);
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    ASSERT_TRUE(other.prepareWithItems(urlsOf({"folder"})));
    click("optionExcludeButton");
    m_timers.pass(3s);
    other.window().findChild<QAbstractButton*>(QStringLiteral("optionScrapeButton"))->click();
    m_timers.pass(3s);
    EXPECT_EQ(stored("folder").option, CaptureOption::Exclude);
    m_timers.pass(3s);
    EXPECT_EQ(stored("folder").option, CaptureOption::Scrape);
}

TEST_F(CapturePreferencesWriting, ForgetsItsTimerWhenTheControllerGoes)
{
    {
        CapturePreferencesController shortLived(
            m_alerts, [] {}, m_timers);
        ASSERT_TRUE(shortLived.prepareWithItems(urlsOf({"folder"})));
        shortLived.makeDirty();
    }
    m_timers.pass(60s);
}

TEST_F(CapturePreferencesWriting, CanBeStoppedAndKeepsWhatIsWritten)
{
    m_tree.add("last");
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"file", "folder", "last"})));
    click("optionExcludeButton");
    m_timers.setStep(200ms); // each look at the clock: every item is slow
    QTimer::singleShot(0, [] { shownWindow<QProgressDialog>()->cancel(); });
    EXPECT_FALSE(m_controller.setModifiedPrefs());
    EXPECT_EQ(stored("file").option, CaptureOption::Exclude);
    EXPECT_EQ(stored("folder").option, CaptureOption::Normal);
    EXPECT_EQ(statusLine().text(), QStringLiteral("Not saved: stopped after 1 of 3 items"));
    m_timers.setStep(0ms);
    click("saveNowButton");
    EXPECT_EQ(stored("last").option, CaptureOption::Exclude);
}

TEST_F(CapturePreferencesWriting, IsFinishedAtOnceWhenTheProcessMustGoInTheMiddle)
{
    m_tree.add("last");
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"file", "folder", "last"})));
    click("optionExcludeButton");
    m_timers.setStep(200ms); // each look at the clock: every item is slow
    bool isReached = false;
    QTimer::singleShot(0, [&] {
        isReached = true;
        m_timers.setStep(0ms);
        EXPECT_EQ(stored("last").option, CaptureOption::Normal);
        EXPECT_TRUE(m_controller.commitEditingAndWrite());
        for (const char* each : {"file", "folder", "last"})
            EXPECT_EQ(stored(each).option, CaptureOption::Exclude) << each;
    });
    EXPECT_TRUE(m_controller.setModifiedPrefs());
    EXPECT_TRUE(isReached);
    EXPECT_FALSE(m_controller.dirty());
}

TEST_F(CapturePreferencesWriting, KeepsTheFrameOfTheWindowForTheNext)
{
    qputenv("XDG_STATE_HOME", m_tree.bytes("state"));
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    m_controller.setWindowFrameAutosaveName(QStringLiteral("CapturePreferences"));
    m_controller.showWindow();
    m_controller.window().resize(701, 703);
    m_controller.window().close();
    CapturePreferencesController next(
        m_alerts, [] {}, m_timers);
    next.setWindowFrameAutosaveName(QStringLiteral("CapturePreferences"));
    EXPECT_EQ(next.window().size(), QSize(701, 703));
    EXPECT_TRUE(std::filesystem::exists(m_tree.path("state/Havrel/windows.ini")));
}

TEST_F(CapturePreferencesWriting, PutsASecondWindowBesideTheFirst)
{
    qputenv("XDG_STATE_HOME", m_tree.bytes("state"));
    const QString name = QStringLiteral("CapturePreferences");
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder"})));
    m_controller.setWindowFrameAutosaveName(name);
    m_controller.window().move(20, 30);
    m_controller.showWindow();
    m_controller.window().close(); // keeps its frame
    m_controller.showWindow();
    const QPoint first = m_controller.window().geometry().topLeft();
    CapturePreferencesController second(
        m_alerts, [] {}, m_timers);
    second.setWindowFrameAutosaveName(name);
    const int step = second.window().style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &second.window());
    EXPECT_GT(step, 0);
    EXPECT_EQ(second.window().geometry().topLeft(), first + QPoint(step, step));
    second.showWindow();
    CapturePreferencesController third(
        m_alerts, [] {}, m_timers);
    third.setWindowFrameAutosaveName(name);
    EXPECT_EQ(third.window().geometry().topLeft(), first + QPoint(2 * step, 2 * step));
    m_controller.window().close();
    CapturePreferencesController fourth(
        m_alerts, [] {}, m_timers);
    fourth.setWindowFrameAutosaveName(name);
    EXPECT_EQ(fourth.window().geometry().topLeft(), first) << "the place is free again";
}

TEST_F(CapturePreferencesWriting, OpensHelpAtItsAnchor)
{
    HelpReader reader;
    QDesktopServices::setUrlHandler(QStringLiteral("file"), &reader, "open");
    click("helpButton");
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    EXPECT_EQ(reader.opened.fragment(), QStringLiteral("capprefs"));
    QFile page(reader.opened.toLocalFile());
    ASSERT_TRUE(page.open(QIODevice::ReadOnly));
    EXPECT_TRUE(page.readAll().contains("id=\"capprefs\""));
}

} // namespace
} // namespace havrel::tests

#include "capture_preferences_writing_test.moc"
