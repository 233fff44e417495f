// SPDX-License-Identifier: MIT
#include "app/havrel_services.h"

#include "app/archive_picker_pane.h"
#include "capture_prefs_ui/capture_preferences_controller.h"
#include "capture_prefs_ui/capture_preferences_window.h"
#include "tests/app/service_fixture.h"
#include "tests/support/mounted_folder.h"

#include <QApplication>

#include <cerrno>

namespace havrel::tests {
namespace {

using namespace std::chrono_literals;

const QString kUnrecognized = QStringLiteral("Curious Unrecognized clipboard contents; service performed no action");

class HavrelServices : public WithService
{
protected:
    using Service = void (havrel::HavrelServices::*)(const Pasteboard&);

    [[nodiscard]] static QList<CapturePreferencesWindow*> windows(bool onScreen)
    {
        QList<CapturePreferencesWindow*> found;
        for (QWidget* each : QApplication::topLevelWidgets())
            if (auto* window = qobject_cast<CapturePreferencesWindow*>(each); window != nullptr)
                if (window->isVisible() == onScreen)
                    found << window;
        return found;
    }
    static void answerPicker(const char* archive)
    {
        picker()->performActionWithArchive(QUrl(QString::fromLatin1(archive)));
    }
    /// The window is closed, and the picker gone.
    static void closePicker()
    {
        picker()->cancel();
        QCoreApplication::sendPostedEvents();
    }
    /// Of which the last picker asked the monitor for archives.
    [[nodiscard]] QByteArrayList askedItems() const
    {
        QByteArrayList items;
        for (const QVariant& each : m_components.monitor.messages()[1].values[0].toList())
            items << each.toByteArray();
        return items;
    }
    /// Whether the delegate was told that something happened.
    [[nodiscard]] bool wasBusy()
    {
        const int before = m_terminated;
        m_delegate->autoShutdownTime();
        return m_terminated == before;
    }

    static constexpr Service kServices[] = {&havrel::HavrelServices::revealInArchive,
                                            &havrel::HavrelServices::captureToArchive,
                                            &havrel::HavrelServices::setCapturePreferences};
};

TEST_F(HavrelServices, AreOneObjectAProcess)
{
    EXPECT_EQ(&havrel::HavrelServices::sharedServices(), &havrel::HavrelServices::sharedServices());
}

TEST_F(HavrelServices, KeepTheDelegateOfTheMomentInWhichTheyWereMade)
{
    EXPECT_EQ(&services(), &havrel::HavrelServices::sharedServices());
    havrel::ServiceApplicationDelegate::setOfApplication(nullptr);
    services().revealInArchive({});
    EXPECT_TRUE(wasBusy());
}

TEST_F(HavrelServices, TakeUrlsBeforePaths)
{
    const Pasteboard both{{pasteboard::kUriList, "file:///a"}, {pasteboard::kPlainText, m_tree.bytes("file")}};
    EXPECT_EQ(havrel::HavrelServices::urlsFromPasteboard(both), QList<QUrl>{QUrl(QStringLiteral("file:///a"))});
    EXPECT_EQ(logged(), QStringList());
}

TEST_F(HavrelServices, TakeReachablePathsOnlyWithoutAListOfUrls)
{
    const QByteArray text = m_tree.bytes("file") + "\n" + m_tree.bytes("none");
    EXPECT_EQ(havrel::HavrelServices::pathArrayForURLs(
                  havrel::HavrelServices::urlsFromPasteboard({{pasteboard::kPlainText, text}})),
              QByteArrayList{m_tree.bytes("file")});
    m_log->clear();
    for (const char* list : {"", "http://a/b\r\n"}) {
        EXPECT_EQ(
            havrel::HavrelServices::urlsFromPasteboard({{pasteboard::kUriList, list}, {pasteboard::kPlainText, text}}),
            QList<QUrl>());
        EXPECT_EQ(logged().last(), kUnrecognized);
    }
}

TEST_F(HavrelServices, ArePutOutByNothingOnThePasteboard)
{
    const Pasteboard boards[] = {{},
                                 {{QStringLiteral("image/png"), "x"}},
                                 {{pasteboard::kUriList, ""}},
                                 {{pasteboard::kUriList, "http://a/b\r\n"}},
                                 {{pasteboard::kPlainText, "nothing of the kind"}},
                                 {{pasteboard::kPlainText, m_tree.bytes("none")}}};
    for (const Service service : kServices)
        for (const Pasteboard& each : boards) {
            m_log->clear();
            (services().*service)(each);
            EXPECT_EQ(logged().last(), kUnrecognized);
            EXPECT_TRUE(wasBusy());
        }
    EXPECT_TRUE(ArchivePickerPaneController::runningPickers().empty());
    EXPECT_TRUE(m_alerts.shown.isEmpty());
    EXPECT_TRUE(windows(true).isEmpty() && windows(false).isEmpty());
}

TEST_F(HavrelServices, GiveThePathsOfUrls)
{
    const QList<QUrl> urls{QUrl::fromEncoded("file:///b%FF/"),
                           QUrl(QStringLiteral("http://a/b")),
                           QUrl(),
                           QUrl::fromEncoded("file:///a%20b")};
    EXPECT_EQ(havrel::HavrelServices::pathArrayForURLs(urls), (QByteArrayList{"/b\xff", "/a b"}));
}

struct PromptRow
{
    QByteArrayList uris;
    QString reveal;
    QString capture;
};

TEST_F(HavrelServices, AskForAnArchiveInTheWordsOfTheService)
{
    m_components.tell({});
    const PromptRow rows[] = {
        {{"file:///tmp/a%20%251.txt"},
         QStringLiteral("Reveal \"a %1.txt\" in:"),
         QStringLiteral("Capture \"a %1.txt\" to:")},
        {{"file:///a", "file:///b"}, QStringLiteral("Reveal 2 items in:"), QStringLiteral("Capture 2 items to:")},
        {{"file:///a", "file:///a"}, QStringLiteral("Reveal 2 items in:"), QStringLiteral("Capture 2 items to:")},
        {QByteArrayList(20'000, "file:///a"),
         QStringLiteral("Reveal 20000 items in:"),
         QStringLiteral("Capture 20000 items to:")},
    };
    for (const PromptRow& row : rows) {
        m_components.tell(archivesAt({"/a.zephra"}));
        services().revealInArchive(listOf(row.uris));
        EXPECT_EQ(picker()->prompt(), row.reveal);
        EXPECT_EQ(picker()->actionTitle(), QStringLiteral("Reveal"));
        EXPECT_EQ(askedItems().size(), row.uris.size());
        closePicker();
        services().captureToArchive(listOf(row.uris));
        EXPECT_EQ(picker()->prompt(), row.capture);
        EXPECT_EQ(picker()->actionTitle(), QStringLiteral("Capture"));
        EXPECT_TRUE(picker()->window().isVisible());
        closePicker();
    }
}

TEST_F(HavrelServices, NameAnItemThatIsMissingOrNotUtf8)
{
    m_components.tell({});
    services().revealInArchive(listOf({"file:///nowhere/bad%FF"}));
    EXPECT_EQ(picker()->prompt(), QStringLiteral("Reveal \"bad") + QChar(0xDCFF) + QStringLiteral("\" in:"));
    EXPECT_EQ(askedItems(), QByteArrayList{"/nowhere/bad\xff"});
    EXPECT_TRUE(logged().join(u'\n').contains(QStringLiteral("could not obtain display name")));
}

TEST_F(HavrelServices, OpenTheArchiveInTheClientAtTheItems)
{
    m_components.tell({});
    services().revealInArchive(listOf({"file:///b", "file:///bad%FF", "file:///a"}));
    answerPicker("file:///archives/my%20own.zephra");
    ASSERT_EQ(m_applications.opened.size(), 1);
    EXPECT_EQ(m_applications.openedBy, QByteArrayList{"com.havrel.client"});
    EXPECT_EQ(m_applications.opened[0].uris, QByteArrayList{"file:///archives/my%20own.zephra"});
    EXPECT_EQ(m_applications.opened[0].parameters.number, 1);
    EXPECT_EQ(m_applications.opened[0].parameters.items, (QByteArrayList{"/b", "/bad\xff", "/a"}));
    EXPECT_EQ(m_terminated, 0);
}

TEST_F(HavrelServices, NameAnArchiveToTheClientByItsBytes)
{
    m_components.tell(archivesAt({"/x/b\xff d%.zephra"}));
    services().revealInArchive(listOf({"file:///a"}));
    picker()->performArchiveAction(); // the first one is selected
    ASSERT_EQ(m_applications.opened.size(), 1);
    EXPECT_EQ(m_applications.opened[0].uris, QByteArrayList{"file:///x/b%FF%20d%25.zephra"});
}

TEST_F(HavrelServices, LogAClientThatCannotOpenTheArchive)
{
    m_components.tell({});
    m_applications.failure = ENOENT;
    services().revealInArchive(listOf({"file:///a"}));
    m_log->clear();
    answerPicker("file:///x.zephra");
    EXPECT_EQ(logged().value(0), QStringLiteral("Failure cannot open the archive with the client application"));
}

TEST_F(HavrelServices, CaptureIntoTheArchiveByTheScheduler)
{
    m_components.tell({});
    m_components.scheduler.begin();
    services().captureToArchive(listOf({"file:///b", "file:///bad%FF"}));
    answerPicker("file:///my%20own.zephra");
    const auto messages = m_components.scheduler.messages();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].keywordName, "quickCapture:toRepository:");
    const QVariantList items{QByteArray("/b"), QByteArray("/bad\xff")};
    EXPECT_EQ(messages[0].values, (QVariantList{QVariant(items), QByteArray("/my own.zephra")}));
    EXPECT_EQ(m_components.scheduler.end().sent().last(), "barrierWithCompletion:") << "and waits until it is there";
    EXPECT_TRUE(m_alerts.shown.isEmpty());
}

TEST_F(HavrelServices, TellThatTheSchedulerCannotBeReached)
{
    m_components.tell({});
    services().captureToArchive(listOf({"file:///b"}));
    answerPicker("file:///x.zephra"); // there is no scheduler
    m_components.scheduler.begin().answer({Answer::Reply, Answer::Fail});
    answerPicker("file:///x.zephra"); // it fails while it captures
    ASSERT_EQ(m_alerts.shown.size(), 2);
    for (const Alert& each : m_alerts.shown)
        EXPECT_EQ(each.messageText, QStringLiteral("Cannot connnect with Havrel scheduler."));
    m_timers.pass(500ms);
    EXPECT_EQ(m_terminated, 1);
}

TEST_F(HavrelServices, RunNoActionForAPickerThatIsClosed)
{
    m_components.tell(archivesAt({"/a.zephra"}));
    m_components.scheduler.begin();
    services().captureToArchive(listOf({uriOf("file")}));
    closePicker();
    EXPECT_TRUE(m_components.scheduler.messages().empty());
    services().revealInArchive(listOf({uriOf("file")}));
    closePicker();
    EXPECT_TRUE(m_applications.opened.isEmpty());
}

TEST_F(HavrelServices, ServeARequestWhileAnAlertIsOpen)
{
    m_alerts.meanwhile = [this] {
        m_components.tell({});
        services().revealInArchive(listOf({uriOf("file")}));
    };
    services().captureToArchive(listOf({uriOf("file")}));
    EXPECT_EQ(m_alerts.shown.size(), 1);
    EXPECT_EQ(ArchivePickerPaneController::runningPickers().size(), 2U);
}

TEST_F(HavrelServices, ShowAWindowForEachRequest)
{
    services().setCapturePreferences(listOf({uriOf("file"), uriOf("folder")}));
    EXPECT_EQ(windows(true).size(), 1);
    services().setCapturePreferences(listOf({uriOf("file"), uriOf("folder")}));
    EXPECT_EQ(windows(true).size(), 2);
    for (QWidget* each : windows(true))
        each->close();
    EXPECT_EQ(windows(false).size(), 2); // they stay
}

TEST_F(HavrelServices, KeepARefusedControllerWithoutAWindowOnScreen)
{
    services().setCapturePreferences(listOf({uriOf("none")}));
    EXPECT_EQ(windows(true).size(), 0);
    EXPECT_EQ(windows(false).size(), 1);
    QCoreApplication::processEvents();
    EXPECT_EQ(m_alerts.shown.size(), 1); // the controller's, which tells that it may not be changed
}

TEST_F(HavrelServices, OpenAWindowForTheSameItemTwice)
{
    services().setCapturePreferences(listOf({uriOf("file"), uriOf("file")}));
    EXPECT_EQ(windows(true).size(), 1);
}

TEST_F(HavrelServices, OpenAWindowForItemsOnDifferentFileSystems)
{
    m_tree.add("mounted/");
    const MountedFolder mounted("tmpfs", m_tree.bytes("mounted"), "size=64k");
    HAVREL_NEEDS_MOUNTED(mounted);
    m_tree.write("mounted/item", "");
    services().setCapturePreferences(listOf({uriOf("file"), uriOf("mounted/item")}));
    ASSERT_EQ(windows(true).size(), 1);
    EXPECT_EQ(windows(true).first()->windowTitle(), QStringLiteral("Capture Preferences of 2 Items"));
}

} // namespace
} // namespace havrel::tests
