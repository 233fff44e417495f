// SPDX-License-Identifier: MIT
// What users do with the picker's window: keyboard, mouse, sizes, languages, and what is read out to them.
#include "app/archive_picker_pane.h"

#include "tests/app/archive_picker_fixture.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QToolTip>
#include <QTranslator>

namespace havrel::tests {
namespace {

/// Whether anything is drawn there.
bool hasInk(const QImage& picture, const QRect& in)
{
    const QColor ground = picture.pixelColor(in.topLeft());
    for (int y = in.top(); y <= in.bottom(); ++y)
        for (int x = in.left(); x <= in.right(); ++x)
            if (picture.pixelColor(x, y) != ground)
                return true;
    return false;
}

class ArchivePickerPane : public WithPicker
{
protected:
    void SetUp() override
    {
        WithPicker::SetUp();
        run({"/x/Home.zephra", "/x/Work.zephra"}, {"/x/Laptop.zephra"});
        QApplication::setActiveWindow(&window());
    }
    [[nodiscard]] havrel::ArchivePickerPane& window() const { return m_picker->window(); }
    [[nodiscard]] QPoint centreOf(int row) const { return list().visualRect(list().model()->index(row, 0)).center(); }
    void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }
    /// Runs another picker with that many archives.
    void runWith(int count)
    {
        m_picker = havrel::ArchivePickerPaneController::makePickerPane();
        QByteArrayList paths;
        for (int i = 0; i < count; ++i)
            paths << "/many/archive" + QByteArray::number(10000 + i) + ".zephra";
        run(paths);
        QCoreApplication::sendPostedEvents();
        QApplication::setActiveWindow(&window());
    }
};

TEST_F(ArchivePickerPane, SelectsTheFirstArchiveAndGivesTheListTheKeyboard)
{
    EXPECT_EQ(selectedPath(), QStringLiteral("/x/Home.zephra"));
    EXPECT_EQ(QApplication::focusWidget(), &list());
}

TEST_F(ArchivePickerPane, ChoosesByReturn)
{
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) {
        m_chosen.clear();
        m_picker = havrel::ArchivePickerPaneController::makePickerPane();
        run({"/x/Home.zephra"});
        QApplication::setActiveWindow(&window());
        press(key);
        EXPECT_EQ(m_chosen, QList<QUrl>{QUrl(QStringLiteral("file:///x/Home.zephra"))}) << "once";
        EXPECT_FALSE(window().isVisible());
    }
}

TEST_F(ArchivePickerPane, ChoosesByDoubleClick)
{
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, centreOf(4));
    EXPECT_TRUE(m_chosen.isEmpty());
    QTest::mouseDClick(list().viewport(), Qt::LeftButton, {}, centreOf(4));
    EXPECT_EQ(m_chosen, QList<QUrl>{QUrl(QStringLiteral("file:///x/Laptop.zephra"))}) << "once";
}

TEST_F(ArchivePickerPane, IsNotChosenFromByOtherButtons)
{
    for (const auto button : {Qt::RightButton, Qt::MiddleButton}) {
        QTest::mouseClick(list().viewport(), button, {}, centreOf(4));
        QTest::mouseDClick(list().viewport(), button, {}, centreOf(4));
    }
    EXPECT_TRUE(m_chosen.isEmpty());
    EXPECT_TRUE(window().isVisible());
}

TEST_F(ArchivePickerPane, IsNotMovedByClicksOnHeaders)
{
    for (const int header : {0, 3}) {
        QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, centreOf(header));
        QTest::mouseDClick(list().viewport(), Qt::LeftButton, {}, centreOf(header));
        EXPECT_EQ(selectedPath(), QStringLiteral("/x/Home.zephra"));
    }
    EXPECT_TRUE(m_chosen.isEmpty());
}

TEST_F(ArchivePickerPane, PassesOverHeadersByTheKeyboard)
{
    struct Step
    {
        Qt::Key key;
        const char* selected;
    };
    const Step steps[] = {
        {Qt::Key_Up, "/x/Home.zephra"},
        {Qt::Key_Down, "/x/Work.zephra"},
        {Qt::Key_Down, "/x/Laptop.zephra"},
        {Qt::Key_Down, "/x/Laptop.zephra"},
        {Qt::Key_Up, "/x/Work.zephra"},
        {Qt::Key_End, "/x/Laptop.zephra"},
        {Qt::Key_Home, "/x/Home.zephra"},
        {Qt::Key_PageDown, "/x/Laptop.zephra"},
        {Qt::Key_PageUp, "/x/Home.zephra"},
    };
    for (const Step& step : steps) {
        press(step.key);
        EXPECT_EQ(selectedPath(), QLatin1StringView(step.selected)) << step.key;
    }
}

TEST_F(ArchivePickerPane, SelectsByTheBeginningOfANameThatIsTyped)
{
    QTest::keyClicks(&list(), QStringLiteral("lap"));
    EXPECT_EQ(selectedPath(), QStringLiteral("/x/Laptop.zephra"));
    EXPECT_TRUE(m_chosen.isEmpty());
}

TEST_F(ArchivePickerPane, TypesPastTheNamesOfHeaders)
{
    QTest::keyClicks(&list(), QStringLiteral("hol")); // "Holds these items"
    EXPECT_EQ(selectedPath(), QStringLiteral("/x/Home.zephra"));
}

TEST_F(ArchivePickerPane, ReachesEveryControlByTab)
{
    QStringList reached;
    for (int i = 0; i < 4; ++i) {
        reached << QApplication::focusWidget()->objectName();
        QTest::keyClick(&window(), Qt::Key_Tab);
    }
    EXPECT_EQ(reached,
              (QStringList{QStringLiteral("tableView"),
                           QStringLiteral("otherButton"),
                           QStringLiteral("cancelButton"),
                           QStringLiteral("actionButton")}));
    EXPECT_EQ(QApplication::focusWidget(), &list()) << "and round again";
}

TEST_F(ArchivePickerPane, DoesNothingByReturnWithoutChoices)
{
    runWith(0);
    press(Qt::Key_Return);
    EXPECT_TRUE(window().isVisible());
    EXPECT_TRUE(m_chosen.isEmpty());
}

TEST_F(ArchivePickerPane, OpensTheDialogForOthersByItsButton)
{
    window().findChild<QPushButton*>(QStringLiteral("otherButton"))->click();
    ASSERT_NE(openPanel(), nullptr);
    EXPECT_TRUE(openPanel()->isVisible());
}

TEST_F(ArchivePickerPane, KeepsTheKeysOfItsButtonsWhateverTheItemIsCalled)
{
    m_picker = havrel::ArchivePickerPaneController::makePickerPane();
    m_picker->setPrompt(QStringLiteral("Capture \"&A & &B\" to:"));
    run({"/a"});
    QApplication::setActiveWindow(&window());
    QTest::keyClick(&list(), Qt::Key_A, Qt::AltModifier); // "Other Archive..."
    EXPECT_TRUE(QTest::qWaitFor([this] { return openPanel() != nullptr; })) << "the button shows that it is pressed";
}

TEST_F(ArchivePickerPane, IsAsHighAsItsRows)
{
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(list().height(), m_picker->pickerViewController().heightConstraint()->constant());
    EXPECT_EQ(list().verticalScrollBar()->maximum(), 0);
}

TEST_F(ArchivePickerPane, ComesUpInTheSizeThatItKeeps)
{
    for (const int count : {0, 1, 5, 20}) { // the room for more depends on the frame that it gets
        m_picker = havrel::ArchivePickerPaneController::makePickerPane();
        run(QByteArrayList(count, "/a"));
        const QSize size = window().size();
        const int height = m_picker->pickerViewController().heightConstraint()->constant();
        QCoreApplication::sendPostedEvents();
        EXPECT_EQ(window().size(), size) << count;
        EXPECT_EQ(m_picker->pickerViewController().heightConstraint()->constant(), height) << count;
    }
}

TEST_F(ArchivePickerPane, IsNoHigherThanTheTextThatThereAreNone)
{
    runWith(0);
    const QRect row = list().visualRect(list().model()->index(0, 0));
    EXPECT_EQ(list().viewport()->height(), row.height());
    const QImage picture = list().viewport()->grab().toImage();
    const QRect below(0, row.bottom() - 8, row.width(), 8);
    EXPECT_FALSE(hasInk(picture, below));
    EXPECT_TRUE(hasInk(picture, below.translated(0, -list().fontMetrics().height())));
}

TEST_F(ArchivePickerPane, ScrollsWhatTheScreenHasNoRoomFor)
{
    runWith(1000);
    EXPECT_LT(window().height(), window().screen()->availableGeometry().height());
    EXPECT_LT(list().height(), m_picker->pickerViewController().heightConstraint()->constant());
    EXPECT_GT(list().verticalScrollBar()->maximum(), 0);
    press(Qt::Key_End);
    EXPECT_EQ(selectedPath(), QStringLiteral("/many/archive10999.zephra"));
    EXPECT_GT(list().verticalScrollBar()->value(), 0);
    press(Qt::Key_Home);
    EXPECT_EQ(list().verticalScrollBar()->value(), 0) << "with the header";
}

TEST_F(ArchivePickerPane, CanBeMadeLargerAndSmaller)
{
    runWith(100);
    const int before = list().height();
    window().resize(window().width(), window().height() - 100);
    EXPECT_EQ(list().height(), before - 100);
    window().resize(window().width(), window().height() + 150);
    EXPECT_EQ(list().height(), before + 50);
}

TEST_F(ArchivePickerPane, KeepsItsSizeWhenItComesBackIntoSight)
{
    runWith(100);
    const QSize smaller = window().size() - QSize(0, 100);
    window().resize(smaller);
    QShowEvent event; // as the system says it of a window that was minimized
    QSpontaneKeyEvent::setSpontaneous(&event);
    QCoreApplication::instance()->notify(&window(), &event);
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(window().size(), smaller);
}

TEST_F(ArchivePickerPane, ComesUpWhereTheLastOneWasAndAsWide)
{
    const QRect last(60, 40, window().width() + 37, window().height());
    window().setGeometry(last);
    m_picker->cancel();
    runWith(5);
    EXPECT_EQ(window().geometry().topLeft(), last.topLeft());
    EXPECT_EQ(window().width(), last.width());
    EXPECT_EQ(list().height(), m_picker->pickerViewController().heightConstraint()->constant()) << "that of its rows";
    EXPECT_GT(window().height(), last.height());
}

TEST_F(ArchivePickerPane, ComesUpOnTheScreenWhenItIsHigherThanTheLastOne)
{
    runWith(0);
    const QRect available = window().screen()->availableGeometry();
    window().setGeometry(50, available.bottom() - window().height() - 10, window().width(), window().height());
    m_picker->cancel();
    runWith(20);
    EXPECT_LE(window().frameGeometry().bottom(), available.bottom());
    EXPECT_GE(window().frameGeometry().top(), available.top());
    EXPECT_EQ(window().geometry().left(), 50);
}

TEST_F(ArchivePickerPane, ComesUpAsideOfOthers)
{
    m_picker->cancel();
    runWith(1);
    const auto other = m_picker;
    runWith(1);
    EXPECT_NE(window().pos(), other->window().pos());
}

TEST_F(ArchivePickerPane, FillsTheScreenAsTheLastOneDid)
{
    window().setWindowState(Qt::WindowMaximized);
    const QSize size = window().size();
    m_picker->cancel();
    runWith(2);
    EXPECT_TRUE(window().isMaximized());
    EXPECT_EQ(window().size(), size);
    EXPECT_GT(list().height(), m_picker->pickerViewController().heightConstraint()->constant());
}

TEST_F(ArchivePickerPane, CutsAPromptThatIsTooLongAndShowsAllOfItInItsToolTip)
{
    m_picker = havrel::ArchivePickerPaneController::makePickerPane();
    const int usual = window().fontMetrics().averageCharWidth() * 80;
    m_picker->setPrompt(QString(QStringLiteral("W")).repeated(255));
    run({"/a"});
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(window().width(), usual);
    EXPECT_LT(window().minimumSizeHint().width(), usual);
    EXPECT_EQ(m_picker->titleField().text().size(), 255);
}

TEST_F(ArchivePickerPane, TellsByToolTipsWhereArchivesAre)
{
    const auto toolTipAt = [this](int row) {
        QHelpEvent event(QEvent::ToolTip, centreOf(row), list().viewport()->mapToGlobal(centreOf(row)));
        QCoreApplication::sendEvent(list().viewport(), &event);
        return QToolTip::text();
    };
    EXPECT_EQ(toolTipAt(0), QString());
    EXPECT_TRUE(toolTipAt(1).contains(QStringLiteral(">in /x<")));
}

TEST_F(ArchivePickerPane, IsReadOut)
{
    QAccessibleInterface* table = QAccessible::queryAccessibleInterface(&list());
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->text(QAccessible::Name), QStringLiteral("Archives"));
    ASSERT_EQ(table->childCount(), 5);
    const QStringList names{QStringLiteral("Holds these items"),
                            QStringLiteral("Home.zephra"),
                            QStringLiteral("Work.zephra"),
                            QStringLiteral("Captured to recently"),
                            QStringLiteral("Laptop.zephra")};
    for (int row = 0; row < names.size(); ++row)
        EXPECT_EQ(table->child(row)->text(QAccessible::Name), names[row]);
    EXPECT_EQ(table->child(4)->text(QAccessible::Description), QStringLiteral("Captured to recently\nin /x"));
    EXPECT_TRUE(table->child(1)->state().selected);
    for (const char* each : {"otherButton", "cancelButton", "actionButton"})
        EXPECT_FALSE(QAccessible::queryAccessibleInterface(window().findChild<QWidget*>(QLatin1String(each)))
                         ->text(QAccessible::Name)
                         .isEmpty());
}

TEST_F(ArchivePickerPane, MarksTheSelectedRowInEveryPaletteAndDirection)
{
    window().findChild<QPushButton*>(QStringLiteral("otherButton"))->setFocus(); // else a style tints the row
    for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        window().setLayoutDirection(direction);
        QPalette palette = window().palette();
        palette.setColor(QPalette::Highlight, QColor(10, 20, 200));
        palette.setColor(QPalette::Base, QColor(30, 30, 30));
        window().setPalette(palette);
        const QRect selected = list().visualRect(list().model()->index(1, 0));
        const QRect other = list().visualRect(list().model()->index(2, 0));
        const QImage picture = list().viewport()->grab().toImage();
        EXPECT_EQ(picture.pixelColor(selected.topLeft() + QPoint(1, 1)), QColor(10, 20, 200));
        EXPECT_EQ(picture.pixelColor(selected.topRight() + QPoint(-1, 1)), QColor(10, 20, 200));
        EXPECT_EQ(picture.pixelColor(other.topLeft() + QPoint(1, 1)), QColor(30, 30, 30));
    }
}

TEST_F(ArchivePickerPane, MarksTheRowWithTheKeyboardAtItsEdgesOnly)
{
    QPalette palette = window().palette();
    palette.setColor(QPalette::Highlight, QColor(10, 20, 200));
    window().setPalette(palette);
    ASSERT_EQ(QApplication::focusWidget(), &list());
    const QRect row = list().visualRect(list().model()->index(1, 0)).adjusted(1, 1, -1, -1);
    const QImage picture = list().viewport()->grab().toImage();
    const QImage beforeText = picture.copy(row.left(), row.top(), 10, row.height());
    const QImage afterText = picture.copy(row.right() - 50, row.top(), 50, row.height());
    for (const QImage& each : {beforeText, afterText}) {
        QImage plain = each;
        plain.fill(QColor(10, 20, 200));
        EXPECT_EQ(each.convertToFormat(QImage::Format_RGB32), plain.convertToFormat(QImage::Format_RGB32));
    }
}

TEST_F(ArchivePickerPane, DrawsRowsFromTheLeadingEdge)
{
    for (const int row : {0, 2}) {
        window().setLayoutDirection(Qt::LeftToRight);
        QRect half = list().visualRect(list().model()->index(row, 0));
        half.setWidth(half.width() / 2);
        const QRect farHalf = half.translated(half.width(), 0);
        QImage picture = list().viewport()->grab().toImage();
        EXPECT_TRUE(hasInk(picture, half)) << row;
        EXPECT_FALSE(hasInk(picture, farHalf)) << row;
        window().setLayoutDirection(Qt::RightToLeft);
        picture = list().viewport()->grab().toImage();
        EXPECT_FALSE(hasInk(picture, half)) << row;
        EXPECT_TRUE(hasInk(picture, farHalf)) << row;
    }
}

TEST_F(ArchivePickerPane, IsMirroredWithTheApplication)
{
    QApplication::setLayoutDirection(Qt::RightToLeft);
    runWith(2);
    for (const int row : {0, 2}) {
        QRect half = list().visualRect(list().model()->index(row, 0));
        half.setWidth(half.width() / 2);
        const QImage picture = list().viewport()->grab().toImage();
        EXPECT_FALSE(hasInk(picture, half)) << row;
        EXPECT_TRUE(hasInk(picture, half.translated(half.width(), 0))) << row;
    }
    QApplication::setLayoutDirection(Qt::LeftToRight);
}

TEST_F(ArchivePickerPane, HasRoomForLargeTexts)
{
    QFont large = window().font();
    large.setPointSizeF(28);
    window().setFont(large);
    m_picker->pickerViewController().resizeToRows();
    EXPECT_GE(list().visualRect(list().model()->index(1, 0)).height(), list().fontMetrics().height());
    EXPECT_GE(list().visualRect(list().model()->index(0, 0)).height(), list().fontMetrics().height());
}

TEST_F(ArchivePickerPane, SaysInGermanWhatItSays)
{
    QTranslator german;
    ASSERT_TRUE(german.load(QStringLiteral(":/i18n/havrel_de.qm")));
    QCoreApplication::installTranslator(&german);
    runWith(1);
    EXPECT_EQ(m_picker->titleField().text(), QStringLiteral("Archiv wählen:"));
    EXPECT_EQ(m_picker->actionButton().text(), QStringLiteral("Öffnen"));
    EXPECT_EQ(list().model()->index(0, 0).data().toString(), QStringLiteral("Enthält diese Objekte"));
    EXPECT_EQ(m_picker->pickerViewController().toolTipOf(QUrl(QStringLiteral("file:///a/b"))), QStringLiteral("in /a"));
    runWith(0);
    EXPECT_TRUE(list().model()->index(0, 0).data().toString().contains(QStringLiteral("havrel archive create")));
    QCoreApplication::removeTranslator(&german);
}

} // namespace
} // namespace havrel::tests
