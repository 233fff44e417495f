// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/table_view.h"

#include "capture_prefs_ui/table_cell_box_view.h"
#include "tests/capture_prefs_ui/pattern_table_fixture.h"

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QHelpEvent>
#include <QScrollBar>
#include <QTextDocumentFragment>
#include <QToolTip>

namespace havrel::tests {
namespace {

class TableViewWithRows : public PatternTable
{
protected:
    void showRows(int count)
    {
        controller().setFilterDefs(numberedPatterns(count));
        show();
        runMainQueue();
    }
    void press(int key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(&table(), Qt::Key(key), modifiers); }
    void click(qsizetype row, Qt::KeyboardModifiers modifiers = {})
    {
        const QRect place = table().rowRect(row);
        QTest::mouseClick(table().viewport(), Qt::LeftButton, modifiers, {place.left() + 3, place.center().y()});
    }
    [[nodiscard]] const IndexSet& selected() { return table().selectedRowIndexes(); }
    /// What is read when the mouse rests over a row.
    [[nodiscard]] QString shownToolTip(qsizetype row)
    {
        const QPoint at = table().rowRect(row).center();
        QHelpEvent rest(QEvent::ToolTip, at, table().viewport()->mapToGlobal(at));
        QCoreApplication::sendEvent(table().viewport(), &rest);
        const QString text = QToolTip::text();
        return Qt::mightBeRichText(text) ? QTextDocumentFragment::fromHtml(text).toPlainText() : text;
    }
};

TEST_F(TableViewWithRows, MakesWidgetsOnlyForRowsAboutInSight)
{
    showRows(1000);
    EXPECT_LE(table().views().size(), 12U);
    EXPECT_NE(table().viewAtRow(0), nullptr);
    EXPECT_EQ(table().viewAtRow(500), nullptr);
    table().scrollRowToVisible(500);
    EXPECT_NE(table().viewAtRow(500), nullptr);
    EXPECT_EQ(table().viewAtRow(0), nullptr);
    EXPECT_LE(table().views().size(), 14U);
    EXPECT_LE(table().findChildren<PatternTableSimpleCellView*>().size(), 20);
}

TEST_F(TableViewWithRows, KeepsTheRowThatIsEditedWhenItScrolls)
{
    showRows(1000);
    PatternTableSimpleCellView* const edited = row(0);
    edited->textField()->setFocus();
    table().verticalScrollBar()->setValue(table().verticalScrollBar()->maximum());
    EXPECT_EQ(row(0), edited);
    EXPECT_TRUE(edited->textField()->hasFocus());
}

TEST_F(TableViewWithRows, SelectsByClicks)
{
    showRows(6);
    click(1);
    EXPECT_EQ(selected(), IndexSet{1});
    click(4, Qt::ShiftModifier);
    EXPECT_EQ(selected(), (IndexSet{1, 2, 3, 4}));
    click(2, Qt::ControlModifier);
    EXPECT_EQ(selected(), (IndexSet{1, 3, 4}));
    click(5, Qt::ControlModifier);
    EXPECT_EQ(selected(), (IndexSet{1, 3, 4, 5}));
    click(3);
    EXPECT_EQ(selected(), IndexSet{3});
    EXPECT_TRUE(table().hasFocus());
}

TEST_F(TableViewWithRows, SelectsByKeys)
{
    showRows(30);
    table().setFocus();
    press(Qt::Key_Down);
    EXPECT_EQ(selected(), IndexSet{1});
    press(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(selected(), (IndexSet{1, 2}));
    press(Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(selected(), (IndexSet{1, 2}));
    EXPECT_EQ(table().currentRow(), 3);
    press(Qt::Key_Down, Qt::ControlModifier);
    press(Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(selected(), (IndexSet{1, 2, 4}));
    press(Qt::Key_End);
    EXPECT_EQ(selected(), IndexSet{29});
    EXPECT_TRUE(table().viewport()->rect().contains(table().rowRect(29)));
    press(Qt::Key_PageUp);
    EXPECT_EQ(selected(), IndexSet{21});
    press(Qt::Key_Home, Qt::ShiftModifier);
    EXPECT_EQ(selected().count(), 22U);
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(selected().count(), 30U);
    press(Qt::Key_Home);
    press(Qt::Key_Up);
    EXPECT_EQ(selected(), IndexSet{0});
}

TEST_F(TableViewWithRows, DeletesTheSelectedRowsByAKey)
{
    showRows(3);
    click(1);
    press(Qt::Key_Delete);
    EXPECT_EQ(lines(), (QStringList{QStringLiteral("//0*"), QStringLiteral("//2*")}));
    press(Qt::Key_Delete); // nothing is selected
    EXPECT_EQ(lines().size(), 2);
    press(Qt::Key_Up);
    press(Qt::Key_Backspace);
    EXPECT_EQ(lines(), QStringList{QStringLiteral("//2*")});
}

TEST_F(TableViewWithRows, LeavesTheDeleteKeyToAField)
{
    showRows(2);
    row(0)->textField()->setFocus();
    row(0)->textField()->selectAll();
    QTest::keyClick(row(0)->textField(), Qt::Key_Delete);
    EXPECT_EQ(lines().size(), 2);
    EXPECT_EQ(row(0)->textField()->text(), QString());
}

TEST_F(TableViewWithRows, TakesStepsBackAndForthByKeys)
{
    showRows(2);
    click(0);
    press(Qt::Key_Delete);
    QTest::keyClick(&window, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(lines().size(), 2);
    QTest::keyClick(&window, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(lines().size(), 1);
}

TEST_F(TableViewWithRows, TakesTypingBackBeforeSteps)
{
    showRows(2);
    QLineEdit* field = row(0)->textField();
    field->setFocus();
    QTest::keyClicks(field, QStringLiteral("x"));
    QTest::keyClick(field, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(field->text(), QStringLiteral("0*"));
    EXPECT_EQ(lines().size(), 2);
    QTest::keyClick(field, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(lines().size(), 0);
}

TEST_F(TableViewWithRows, MovesRowsByKeys)
{
    showRows(4);
    click(1);
    click(2, Qt::ControlModifier);
    press(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(lines().join(u' '), QStringLiteral("//0* //3* //1* //2*"));
    EXPECT_EQ(selected(), (IndexSet{2, 3}));
    press(Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(lines().join(u' '), QStringLiteral("//0* //1* //2* //3*"));
    controller().undoManager().undo();
    EXPECT_EQ(lines().join(u' '), QStringLiteral("//0* //3* //1* //2*"));
}

TEST_F(TableViewWithRows, MovesTheRowThatIsEdited)
{
    showRows(3);
    QLineEdit* field = row(0)->textField();
    field->setFocus();
    QTest::keyClick(field, Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(lines().join(u' '), QStringLiteral("//1* //0* //2*"));
    EXPECT_TRUE(field->hasFocus());
    EXPECT_EQ(row(1)->textField(), field);
}

TEST_F(TableViewWithRows, EditsByKeysAndByDoubleClick)
{
    showRows(3);
    click(1);
    press(Qt::Key_F2);
    EXPECT_TRUE(row(1)->textField()->hasFocus());
    QTest::keyClick(row(1)->textField(), Qt::Key_Down);
    EXPECT_TRUE(row(2)->textField()->hasFocus());
    EXPECT_EQ(selected(), IndexSet{2});
    const QRect place = table().rowRect(0);
    QTest::mouseDClick(table().viewport(), Qt::LeftButton, {}, {3, place.center().y()});
    EXPECT_TRUE(row(0)->textField()->hasFocus());
}

TEST_F(TableViewWithRows, SelectsTheRowWhoseFieldIsEdited)
{
    showRows(3);
    click(0);
    row(2)->pathField()->setFocus();
    EXPECT_EQ(selected(), IndexSet{2});
    EXPECT_TRUE(controller().removeButton()->isEnabled());
}

TEST_F(TableViewWithRows, KeepsItsSelectionWithItsObjects)
{
    showRows(5);
    table().selectRowIndexes({1, 4});
    controller().removePatterns({0, 4});
    EXPECT_EQ(selected(), IndexSet{0});
    controller().addPatterns({pattern("//new*")}, 0);
    EXPECT_EQ(selected(), IndexSet{1});
}

TEST_F(TableViewWithRows, ShowsAnObjectThatStandsInSeveralRows)
{
    const PatternFilterDefPtr placeholder = PatternFilterDef::filterDefPlaceholder();
    controller().setFilterDefs({placeholder, placeholder, placeholder});
    show();
    controller().addPatterns(numberedPatterns(1), 0);
    runMainQueue();
    ASSERT_EQ(table().views().size(), 4U);
    QList<QRect> places;
    for (const auto* view : table().findChildren<TableCellView*>())
        if (view->isVisible())
            places << view->geometry();
    EXPECT_EQ(places.size(), 4); // none is left behind
}

TEST_F(TableViewWithRows, IgnoresRowsThatDoNotExist)
{
    showRows(2);
    table().selectRowIndexes({1, 7});
    EXPECT_EQ(selected(), IndexSet{1});
}

TEST_F(TableViewWithRows, ReachesEveryFieldByTheTabKeyInOrder)
{
    showRows(40);
    table().setFocus();
    for (qsizetype each = 0; each < 40; ++each)
        for (int field = 0; field < 3; ++field) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            ASSERT_EQ(table().rowForView(QApplication::focusWidget()), each);
            ASSERT_EQ(QApplication::focusWidget(), row(each)->editors()[field]);
            ASSERT_TRUE(table().viewport()->rect().contains(table().rowRect(each)));
        }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), controller().addButton());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    EXPECT_EQ(table().rowForView(QApplication::focusWidget()), 39);
}

TEST_F(TableViewWithRows, CopiesAndPastesByKeys)
{
    showRows(3);
    table().selectRowIndexes({0, 2});
    table().setFocus();
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("//0*\n//2*"));
    QApplication::clipboard()->setText(QStringLiteral("//a*\n//0*\n\n//b*"));
    press(Qt::Key_Home);
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(lines().join(u' '), QStringLiteral("//0* //a* //b* //1* //2*"));
}

TEST_F(TableViewWithRows, IsAListToAssistiveTechnology)
{
    showRows(3);
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&table());
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->role(), QAccessible::List);
    ASSERT_EQ(list->childCount(), 3);
    table().selectRowIndexes({1});
    for (int i = 0; i < 3; ++i) {
        QAccessibleInterface* item = list->child(i);
        EXPECT_EQ(item->role(), QAccessible::ListItem);
        EXPECT_EQ(item->object(), row(i));
        EXPECT_EQ(item->parent(), list);
        EXPECT_EQ(list->indexOfChild(item), i);
        EXPECT_EQ(item->state().selected, i == 1);
        EXPECT_EQ(item->text(QAccessible::Name), QStringLiteral("leave out %1*").arg(i));
        EXPECT_EQ(item->text(QAccessible::Description), QStringLiteral("row %1 of 3").arg(i + 1));
    }
}

TEST_F(TableViewWithRows, GivesEveryControlANameAndAVisibleField)
{
    controller().addPatternStrings({QStringLiteral("a//b*"), QStringLiteral("x//b/3")});
    show();
    runMainQueue();
    EXPECT_FALSE(table().accessibleName().isEmpty());
    EXPECT_FALSE(controller().addButton()->accessibleName().isEmpty());
    EXPECT_FALSE(controller().removeButton()->accessibleName().isEmpty());
    for (const auto& [place, view] : table().views())
        for (QWidget* editor : view->editors()) {
            QAccessibleInterface* field = QAccessible::queryAccessibleInterface(editor);
            EXPECT_FALSE(field->text(QAccessible::Name).isEmpty());
            EXPECT_FALSE(field->state().invisible);
        }
}

TEST_F(TableViewWithRows, SaysWhatToDoWhileItIsEmpty)
{
    show();
    EXPECT_TRUE(table().accessibleDescription().contains(u'+'));
    const QImage empty = table().grab().toImage();
    controller().addPatterns(numberedPatterns(1));
    EXPECT_TRUE(table().accessibleDescription().isEmpty());
    EXPECT_NE(table().grab().toImage(), empty);
}

TEST_F(TableViewWithRows, MirrorsItselfButNotThePatterns)
{
    window.setLayoutDirection(Qt::RightToLeft);
    showRows(2);
    EXPECT_GT(row(0)->pathField()->x(), row(0)->textField()->x());
    EXPECT_LT(row(0)->geometry().right(), table().viewport()->width() - 5); // the grip is at the right
    EXPECT_EQ(row(0)->textField()->layoutDirection(), Qt::LeftToRight);
}

TEST_F(TableViewWithRows, LetsClicksThroughBoxes)
{
    showRows(2);
    const TableCellBoxView* box = row(1)->findChild<TableCellBoxView*>();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->frameShape(), QFrame::NoFrame);
    EXPECT_EQ(box->contentsMargins(), QMargins());
    EXPECT_FALSE(box->autoFillBackground());
    EXPECT_EQ(row(1)->childAt(box->geometry().center()), nullptr);
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, box->mapTo(&window, box->rect().center()));
    EXPECT_EQ(selected(), IndexSet{1});
}

TEST_F(TableViewWithRows, ShowsACompleteLineAsItIsWhenTheMouseRestsOnIt)
{
    for (const char* line : {"x//b/3", "A & B//c/3", "x//\"quoted\"/3", "x//<b>/3", "x//a  b&lt;/3"}) {
        controller().setFilterDefs({pattern(line)});
        show();
        runMainQueue();
        EXPECT_EQ(shownToolTip(0), QString::fromUtf8(line));
    }
    controller().setFilterDefs(numberedPatterns(1));
    (void)shownToolTip(0);
    EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }));
}

TEST_F(TableViewWithRows, IsTooNarrowForNoFieldWithTheLargestFonts)
{
    QFont large = window.font();
    large.setPointSizeF(3 * large.pointSizeF());
    window.setFont(large);
    controller().addPatternStrings({QStringLiteral("A folder with a long name//a pattern that is long, too*")});
    show();
    table().setFixedWidth(table().minimumSizeHint().width());
    runMainQueue();
    EXPECT_GE(row(0)->width(), row(0)->minimumSizeHint().width());
    EXPECT_GE(row(0)->propogateButton()->width(), row(0)->propogateButton()->sizeHint().width());
}

TEST_F(TableViewWithRows, TakesNoKeysOrClicksWhileDisabled)
{
    showRows(2);
    controller().setEnabled(false);
    click(1);
    EXPECT_TRUE(selected().isEmpty());
    EXPECT_FALSE(row(0)->textField()->isEnabled());
}

TEST_F(TableViewWithRows, SaysWhatToDoOnlyWhileSomethingCanBeDone)
{
    show();
    const auto picture = [this] { return table().viewport()->grab().toImage(); };
    const QImage withText = picture();
    EXPECT_FALSE(table().accessibleDescription().isEmpty());
    controller().setEnabled(false);
    const QImage disabled = picture();
    EXPECT_TRUE(table().accessibleDescription().isEmpty());
    table().setEmptyText(QString());
    EXPECT_EQ(picture(), disabled);
    controller().setEnabled(true);
    EXPECT_NE(picture(), withText);
}

} // namespace
} // namespace havrel::tests
