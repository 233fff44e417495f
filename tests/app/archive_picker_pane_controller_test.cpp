// SPDX-License-Identifier: MIT
#include "app/archive_picker_pane_controller.h"

#include "app/archive_open_panel.h"
#include "app/archive_picker_pane.h"
#include "tests/app/archive_picker_fixture.h"

#include <QDir>
#include <QLabel>
#include <QPushButton>

#include <thread>

namespace havrel::tests {
namespace {

using namespace std::chrono_literals;

const QByteArray kOfItems = "queryRepositoriesForItems:withReply:";
const QByteArray kRecentlyCaptured = "queryRecentlyCapturedRepositoriesWithReply:";

class ArchivePickerPaneController : public WithPicker
{
protected:
    [[nodiscard]] static bool isRunning(const havrel::ArchivePickerPaneController& picker)
    {
        const auto& running = havrel::ArchivePickerPaneController::runningPickers();
        return std::any_of(running.begin(), running.end(), [&](const auto& each) { return each.get() == &picker; });
    }
};

TEST_F(ArchivePickerPaneController, IsMadeWithItsWindowAndWithoutTexts)
{
    EXPECT_FALSE(m_picker->window().isVisible());
    EXPECT_TRUE(m_picker->prompt().isNull());
    EXPECT_TRUE(m_picker->actionTitle().isNull());
    EXPECT_FALSE(m_picker->actionBlock());
    EXPECT_FALSE(isRunning(*m_picker));
    EXPECT_NE(havrel::ArchivePickerPaneController::makePickerPane(), m_picker) << "one for each request";
}

TEST_F(ArchivePickerPaneController, AsksTheMonitorInOneOrderOnly)
{
    m_components.tell({});
    m_picker->runWithArchivesForItems({"/a", "/bad\xff"});
    EXPECT_EQ(m_components.monitor.end().sent(),
              (QByteArrayList{"barrierWithCompletion:", // verified
                              "refreshRecentRepositoryCache",
                              kOfItems,
                              kRecentlyCaptured,
                              "barrierWithCompletion:"}));
    const auto messages = m_components.monitor.messages();
    const QVariantList items{QByteArray("/a"), QByteArray("/bad\xff")};
    EXPECT_EQ(messages[0].values, QVariantList());
    EXPECT_EQ(messages[1].values, QVariantList{QVariant(items)});
    EXPECT_EQ(messages[2].values, QVariantList());
}

/// Replies come on another thread than that of the list, which takes them over while it waits.
TEST_F(ArchivePickerPaneController, HasTakenTheRepliesOverWhenTheCallReturns)
{
    m_components.tell(archivesAt({"/a"}), archivesAt({"/b"}));
    m_picker->populateWithArchivesForItems({"/item"}); // no event is handled here
    EXPECT_EQ(
        rows(),
        (QStringList{QStringLiteral("recent"), QStringLiteral("/a"), QStringLiteral("other"), QStringLiteral("/b")}));
}

struct ListRow
{
    QByteArrayList ofItems;
    QByteArrayList recent;
    QStringList rows;
};

TEST_F(ArchivePickerPaneController, ListsWhatHoldsTheItemsThenWhatElseWasCapturedTo)
{
    const QString recent = QStringLiteral("recent");
    const QString other = QStringLiteral("other");
    const QString x = QStringLiteral("/X");
    const QString y = QStringLiteral("/Y");
    const QString z = QStringLiteral("/Z");
    const ListRow table[] = {
        {{"/X", "/Y"}, {"/Y", "/Z"}, {recent, x, y, other, z}},
        {{"/Y", "/X"}, {"/Z", "/Y"}, {recent, x, y, other, z}},
        {{}, {"/Z", "/Y"}, {other, y, z}},
        {{"/X"}, {}, {recent, x}},
        {{"/X"}, {"/X"}, {recent, x}},
        {{"/X", "/X"}, {"/X"}, {recent, x, x}}, // twice in one section is twice
        {{"/X"}, {"/Y", "/Y"}, {recent, x, other, y, y}},
        {{}, {}, {QStringLiteral("none")}},
    };
    for (const ListRow& row : table) {
        m_picker = havrel::ArchivePickerPaneController::makePickerPane();
        m_components.tell(archivesAt(row.ofItems), archivesAt(row.recent));
        m_picker->runWithArchivesForItems({"/item"});
        EXPECT_EQ(rows(), row.rows);
        EXPECT_EQ(m_picker->actionButton().isEnabled(), row.rows.size() > 1);
        EXPECT_TRUE(m_picker->window().isVisible());
        EXPECT_TRUE(m_alerts.shown.isEmpty());
    }
}

struct TitleRow
{
    QString prompt;
    QString actionTitle;
    QString title;
    QString button;
};

TEST_F(ArchivePickerPaneController, SaysWhatItIsForOrWhatItUsuallyIsFor)
{
    const TitleRow table[] = {
        {{}, {}, QStringLiteral("Choose archive:"), QStringLiteral("Open")},
        {QStringLiteral("Capture 2 items to:"),
         QStringLiteral("Capture"),
         QStringLiteral("Capture 2 items to:"),
         QStringLiteral("Capture")},
        {QStringLiteral(""), QStringLiteral(""), QStringLiteral(""), QStringLiteral("")}, // empty is not unset
        {QStringLiteral("<b>&x"), QStringLiteral("a&b"), QStringLiteral("<b>&x"), QStringLiteral("a&&b")},
    };
    for (const TitleRow& row : table) {
        m_picker = havrel::ArchivePickerPaneController::makePickerPane();
        m_components.tell({});
        m_picker->setPrompt(row.prompt);
        m_picker->setActionTitle(row.actionTitle);
        m_picker->runWithArchivesForItems({});
        EXPECT_EQ(m_picker->titleField().text(), row.title);
        EXPECT_EQ(m_picker->actionButton().text(), row.button);
    }
}

TEST_F(ArchivePickerPaneController, ShowsTheAlertThenTheEmptyWindowWhenThereIsNoMonitor)
{
    m_alerts.meanwhile = [this] {
        EXPECT_FALSE(m_picker->window().isVisible()) << "the window comes after the alert";
        EXPECT_TRUE(isRunning(*m_picker));
    };
    m_picker->runWithArchivesForItems({"/item"});
    ASSERT_EQ(m_alerts.shown.size(), 1);
    EXPECT_EQ(m_alerts.shown[0].messageText, QStringLiteral("Cannot connnect with Havrel monitor."));
    EXPECT_TRUE(m_picker->window().isVisible());
    EXPECT_EQ(rows(), QStringList{QStringLiteral("none")});
    EXPECT_FALSE(m_picker->actionButton().isEnabled());
    EXPECT_EQ(m_terminated, 0);
    m_timers.pass(500ms);
    EXPECT_EQ(m_terminated, 1);
}

TEST_F(ArchivePickerPaneController, ListsNothingOfAMonitorThatFailsInTheMiddle)
{
    m_components.tell(archivesAt({"/a"}), archivesAt({"/b"}));
    m_components.monitor.end().answer({Answer::Reply, Answer::Fail});
    m_picker->runWithArchivesForItems({"/item"});
    EXPECT_EQ(m_alerts.shown.size(), 1);
    EXPECT_EQ(rows(), QStringList{QStringLiteral("none")});
    EXPECT_FALSE(m_picker->actionButton().isEnabled());
}

TEST_F(ArchivePickerPaneController, IsNotHurtByRepliesThatComeTooLate)
{
    ScriptedXPCConnection& end = m_components.monitor.begin(); // holds both replies
    end.answer({Answer::Reply, Answer::Fail});
    m_picker->runWithArchivesForItems({"/item"});
    end.replyToHeld();
    m_components.monitor.connection()->disconnect();
    EXPECT_EQ(rows(), QStringList{QStringLiteral("none")});
}

TEST_F(ArchivePickerPaneController, MakesDoOfRepliesOfTheWrongKind)
{
    ScriptedXPCConnection& end = m_components.monitor.begin();
    end.reply(kOfItems, {});
    end.reply(kRecentlyCaptured, {QStringLiteral("text")});
    m_picker->runWithArchivesForItems({"/item"});
    EXPECT_EQ(rows(), QStringList{QStringLiteral("none")});
    EXPECT_TRUE(m_alerts.shown.isEmpty());
}

TEST_F(ArchivePickerPaneController, KeepsItselfAliveUntilSoonAfterItsWindowCloses)
{
    run({"/a"});
    const std::weak_ptr<havrel::ArchivePickerPaneController> picker = std::exchange(m_picker, nullptr);
    ASSERT_FALSE(picker.expired());
    picker.lock()->cancel();
    ASSERT_FALSE(picker.expired()) << "not at once: its window may still be asked";
    EXPECT_TRUE(isRunning(*picker.lock()));
    EXPECT_FALSE(picker.lock()->window().isVisible());
    QCoreApplication::sendPostedEvents();
    EXPECT_TRUE(picker.expired());
    EXPECT_TRUE(havrel::ArchivePickerPaneController::runningPickers().empty());
}

TEST_F(ArchivePickerPaneController, GoesHoweverItsWindowIsClosed)
{
    const std::function<void(ArchivePickerPane&)> ways[] = {
        [](ArchivePickerPane& window) { window.close(); },
        [](ArchivePickerPane& window) { window.reject(); },
        [](ArchivePickerPane& window) { QTest::keyClick(&window, Qt::Key_Escape); },
        [](ArchivePickerPane& window) { QTest::keySequence(&window, QKeySequence::Close); },
        [](ArchivePickerPane& window) { window.findChild<QPushButton*>(QStringLiteral("cancelButton"))->click(); },
    };
    for (const auto& close : ways) {
        m_picker = havrel::ArchivePickerPaneController::makePickerPane();
        run({"/a"});
        QApplication::setActiveWindow(&m_picker->window());
        close(m_picker->window());
        EXPECT_FALSE(m_picker->window().isVisible());
        QCoreApplication::sendPostedEvents();
        EXPECT_FALSE(isRunning(*m_picker));
        EXPECT_TRUE(m_chosen.isEmpty());
    }
}

TEST_F(ArchivePickerPaneController, RunsBesideOthers)
{
    run({"/a"});
    const auto first = std::exchange(m_picker, havrel::ArchivePickerPaneController::makePickerPane());
    run({"/b"});
    first->cancel();
    QCoreApplication::sendPostedEvents();
    EXPECT_FALSE(isRunning(*first));
    EXPECT_TRUE(isRunning(*m_picker));
    EXPECT_TRUE(m_picker->window().isVisible());
}

TEST_F(ArchivePickerPaneController, DoesTheActionThenCloses)
{
    run({"/a.zephra"});
    bool wasOpen = false;
    m_picker->setActionBlock([&](const QUrl& archive) {
        m_chosen << archive;
        wasOpen = m_picker->window().isVisible();
    });
    m_picker->performArchiveAction();
    EXPECT_EQ(m_chosen, QList<QUrl>{QUrl(QStringLiteral("file:///a.zephra"))});
    EXPECT_TRUE(wasOpen);
    EXPECT_FALSE(m_picker->window().isVisible()) << "at once";
}

TEST_F(ArchivePickerPaneController, SurvivesAnActionThatClosesIt)
{
    run({"/a.zephra"});
    m_picker->setActionBlock([picker = m_picker.get()](const QUrl&) {
        picker->cancel();
        QCoreApplication::sendPostedEvents();
    });
    const std::weak_ptr<havrel::ArchivePickerPaneController> weak = m_picker;
    havrel::ArchivePickerPaneController& picker = *std::exchange(m_picker, nullptr);
    picker.performArchiveAction();
    EXPECT_TRUE(weak.expired());
}

TEST_F(ArchivePickerPaneController, DoesNothingWithoutASelection)
{
    run({"/a.zephra"});
    list().clearSelection();
    EXPECT_TRUE(m_picker->actionButton().isEnabled());
    m_picker->actionButton().click();
    EXPECT_TRUE(m_chosen.isEmpty());
    EXPECT_TRUE(m_picker->window().isVisible());
}

TEST_F(ArchivePickerPaneController, NeedsNoActionBlock)
{
    run({"/a.zephra"});
    m_picker->setActionBlock({});
    m_picker->performArchiveAction();
    EXPECT_FALSE(m_picker->window().isVisible());
}

TEST_F(ArchivePickerPaneController, LogsAnActionThatFailsAndStaysOpen)
{
    run({"/a.zephra"});
    m_picker->setActionBlock([](const QUrl&) { throw std::runtime_error("no luck"); });
    m_picker->actionButton().click();
    chooseOther("Work.zephra");
    QCoreApplication::sendPostedEvents();
    EXPECT_TRUE(m_picker->window().isVisible());
    EXPECT_EQ(logged().filter(QStringLiteral("no luck")).size(), 2);
}

TEST_F(ArchivePickerPaneController, LeavesNoWindowBehindAtTheEnd)
{
    run({"/a.zephra"});
    m_picker.reset();
    havrel::ArchivePickerPaneController::forgetRunningPickers();
    for (const QWidget* each : QApplication::topLevelWidgets())
        EXPECT_EQ(qobject_cast<const ArchivePickerPane*>(each), nullptr);
    QCoreApplication::sendPostedEvents();
}

TEST_F(ArchivePickerPaneController, OffersAnyOtherArchiveInADialogOnItsWindow)
{
    run({"/a.zephra"});
    m_picker->otherArchive();
    const ArchiveOpenPanel* panel = openPanel();
    ASSERT_NE(panel, nullptr);
    EXPECT_EQ(panel->parentWidget(), &m_picker->window());
    EXPECT_EQ(panel->windowModality(), Qt::WindowModal);
    EXPECT_EQ(panel->fileMode(), QFileDialog::ExistingFile);
    EXPECT_EQ(panel->acceptMode(), QFileDialog::AcceptOpen);
    EXPECT_EQ(panel->nameFilters(), QStringList{QStringLiteral("Archives (*.zephra)")});
    EXPECT_FALSE(panel->testOption(QFileDialog::DontResolveSymlinks));
    EXPECT_TRUE(panel->isVisible());
}

TEST_F(ArchivePickerPaneController, LooksForOthersBesideTheSelectedArchiveOrAtHome)
{
    m_tree.add("home/");
    m_tree.add("archives/a.zephra");
    const EnvironmentValue home("HOME", m_tree.bytes("home"));
    const std::pair<QByteArrayList, QByteArray> rows[] = {
        {{m_tree.bytes("archives/a.zephra")}, m_tree.bytes("archives")},
        {{m_tree.bytes("archives/gone.zephra")}, m_tree.bytes("archives")},
        {{m_tree.bytes("gone/a.zephra")}, m_tree.bytes("home")},
        {{}, m_tree.bytes("home")}, // nothing is selected
    };
    for (const auto& [archives, folder] : rows) {
        m_picker = havrel::ArchivePickerPaneController::makePickerPane();
        run(archives);
        m_picker->otherArchive();
        EXPECT_EQ(openPanel()->directory().path(), QString::fromLocal8Bit(folder));
    }
}

TEST_F(ArchivePickerPaneController, DoesTheActionWithAnotherArchiveAndClosesSoon)
{
    run({}); // the list may well be empty
    chooseOther("Work.zephra");
    EXPECT_EQ(m_chosen, QList<QUrl>{urlOf("Work.zephra")});
    EXPECT_TRUE(m_picker->window().isVisible()) << "not at once";
    QCoreApplication::sendPostedEvents();
    EXPECT_FALSE(m_picker->window().isVisible());
    QCoreApplication::sendPostedEvents();
    EXPECT_FALSE(isRunning(*m_picker));
}

TEST_F(ArchivePickerPaneController, StaysOpenWithoutAnotherArchive)
{
    run({"/a.zephra"});
    m_picker->otherArchive();
    openPanel()->reject();
    QCoreApplication::sendPostedEvents();
    EXPECT_TRUE(m_picker->window().isVisible());
    EXPECT_TRUE(isRunning(*m_picker));
    EXPECT_TRUE(m_chosen.isEmpty());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(openPanel(), nullptr) << "the dialog goes";
}

TEST_F(ArchivePickerPaneController, TakesWhatALinkLeadsTo)
{
    m_tree.addLink("alias.zephra", "Work.zephra");
    run({});
    chooseOther("alias.zephra");
    EXPECT_EQ(m_chosen, QList<QUrl>{JNPath::withCPath(m_tree.bytes("Work.zephra"))->real()->url()});
}

TEST_F(ArchivePickerPaneController, TakesNoFileOfAnotherType)
{
    run({});
    chooseOther("notes.txt");
    EXPECT_TRUE(m_chosen.isEmpty());
    ASSERT_NE(openPanel(), nullptr);
    EXPECT_TRUE(openPanel()->isVisible());
    openPanel()->reject();
}

} // namespace
} // namespace havrel::tests
