// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/pattern_table_view_controller.h"

#include "filters/placeholder_pattern_filter_def.h"
#include "foundation/observing.h"
#include "tests/capture_prefs_ui/pattern_table_fixture.h"

#include <QMenu>
#include <QToolButton>

namespace havrel::tests {
namespace {

QStringList texts(std::initializer_list<const char*> all)
{
    QStringList result;
    for (const char* each : all)
        result << QString::fromUtf8(each);
    return result;
}

using PatternTableList = PatternTable;

/// Counts how often observers of "filterDefs" are told.
class Changes
{
public:
    explicit Changes(PatternTableViewController& controller)
    {
        observeObject({m_owner, controller},
                      "filterDefs",
                      ObservationOptions::NoInitialCall,
                      [this](QObject*, QObject*, const QVariant& before, const QVariant& now) {
                          ++count;
                          from = linesOf(before.value<PatternFilterDefs>());
                          to = linesOf(now.value<PatternFilterDefs>());
                      });
    }

    int count = 0;
    QStringList from;
    QStringList to;

private:
    QObject m_owner;
};

TEST_F(PatternTableList, BeginsEmptyWithNothingToTakeBack)
{
    EXPECT_TRUE(controller().filterDefs().isEmpty());
    EXPECT_FALSE(controller().undoManager().canUndo());
}

TEST_F(PatternTableList, WorksOnCopiesOfWhatItIsGiven)
{
    const PatternFilterDefPtr given = pattern("//a*");
    controller().setFilterDefs({given});
    ASSERT_EQ(controller().filterDefs().size(), 1);
    EXPECT_NE(controller().filterDefs()[0], given);
    EXPECT_TRUE(controller().filterDefs()[0]->isEqual(*given));
}

TEST_F(PatternTableList, KeepsTheVerySameObjectsThatItHasAlready)
{
    controller().setFilterDefs(numberedPatterns(2));
    const PatternFilterDefs own = controller().filterDefs();
    controller().setFilterDefs({own[1], pattern("//new*"), own[0]});
    EXPECT_EQ(controller().filterDefs()[0], own[1]);
    EXPECT_EQ(controller().filterDefs()[2], own[0]);
    EXPECT_EQ(lines(), (texts({"//1*", "//new*", "//0*"})));
}

TEST_F(PatternTableList, KeepsThePlaceholderItself)
{
    const PatternFilterDefPtr placeholder = PatternFilterDef::filterDefPlaceholder();
    controller().setRepositoryPatterns(true);
    controller().setFilterDefs({placeholder});
    EXPECT_EQ(controller().filterDefs()[0], placeholder);
    EXPECT_TRUE(placeholder->rooted()); // configured as any other copy
}

TEST_F(PatternTableList, TakesNoListForAnEmptyOne)
{
    controller().setFilterDefs(numberedPatterns(2));
    ASSERT_TRUE(controller().setProperty("filterDefs", QVariant()));
    EXPECT_TRUE(controller().filterDefs().isEmpty());
}

TEST_F(PatternTableList, ConfiguresCopiesForAnArchiveOrAnItem)
{
    EXPECT_EQ(controller().patternEnvironment(), PatternFilterDef::itemEnvironment());
    controller().setFilterDefs({pattern("//a*")});
    EXPECT_FALSE(controller().filterDefs()[0]->rooted());
    controller().setRepositoryPatterns(true);
    EXPECT_EQ(controller().patternEnvironment(), PatternFilterDef::repositoryEnvironment());
    controller().addPattern(pattern("//b*"));
    EXPECT_FALSE(controller().filterDefs()[0]->rooted()); // the same object as before
    EXPECT_TRUE(controller().filterDefs()[1]->rooted());
}

TEST_F(PatternTableList, TellsObserversOfEachNewListOnce)
{
    Changes changes(controller());
    controller().setFilterDefs(numberedPatterns(3));
    EXPECT_EQ(changes.count, 1);
    EXPECT_EQ(changes.from, QStringList());
    EXPECT_EQ(changes.to, (texts({"//0*", "//1*", "//2*"})));
}

TEST_F(PatternTableList, TellsNobodyOfAnEqualListButShowsItsObjects)
{
    show();
    controller().setFilterDefs(numberedPatterns(2));
    runMainQueue();
    Changes changes(controller());
    controller().setFilterDefs(controller().filterDefs());
    controller().setFilterDefs(numberedPatterns(2));
    EXPECT_EQ(changes.count, 0);
    EXPECT_EQ(controller().undoManager().count(), 1);
    type(row(0)->textField(), "typed");
    EXPECT_EQ(controller().filterDefs()[0]->singlePattern(), QStringLiteral("typed"));
}

TEST_F(PatternTableList, NamesTheStepsThatCanBeTakenBack)
{
    QUndoStack& undo = controller().undoManager();
    controller().addPatterns(numberedPatterns(1));
    controller().addPatternStrings(texts({"//a*", "//b*", "//c*"}));
    EXPECT_EQ(undo.undoText(), QStringLiteral("Add Patterns"));
    undo.undo();
    EXPECT_EQ(lines(), (texts({"//0*"})));
    EXPECT_EQ(undo.redoText(), QStringLiteral("Remove Patterns")); // the list shrank when the step back was taken
    undo.redo();
    EXPECT_EQ(lines(), (texts({"//0*", "//a*", "//b*", "//c*"})));
    EXPECT_EQ(undo.undoText(), QStringLiteral("Add Patterns"));
    controller().removePatterns({0, 2});
    EXPECT_EQ(lines(), (texts({"//a*", "//c*"})));
    EXPECT_EQ(undo.undoText(), QStringLiteral("Remove Patterns"));
    undo.undo();
    EXPECT_EQ(undo.redoText(), QStringLiteral("Add Patterns"));
    EXPECT_EQ(lines(), (texts({"//0*", "//a*", "//b*", "//c*"})));
}

TEST_F(PatternTableList, NamesTheStepsInTheMenuOfTheTable)
{
    EXPECT_EQ(table().contextMenuPolicy(), Qt::ActionsContextMenu);
    const QList<QAction*> steps = table().actions();
    ASSERT_EQ(steps.size(), 2);
    EXPECT_FALSE(steps[0]->isEnabled() || steps[1]->isEnabled());
    controller().addPatterns(numberedPatterns(2));
    EXPECT_EQ(steps[0]->text(), QStringLiteral("Undo Add Patterns"));
    steps[0]->trigger();
    EXPECT_EQ(lines(), QStringList());
    EXPECT_EQ(steps[1]->text(), QStringLiteral("Redo Remove Patterns"));
    EXPECT_FALSE(steps[0]->isEnabled());
}

TEST_F(PatternTableList, NamesAStepThatKeepsTheLengthRemoving)
{
    controller().setFilterDefs(numberedPatterns(2));
    controller().setFilterDefs({pattern("//x*"), pattern("//y*")});
    EXPECT_EQ(controller().undoManager().undoText(), QStringLiteral("Remove Patterns"));
}

TEST_F(PatternTableList, TellsObserversOfStepsBackAndForth)
{
    controller().addPatterns(numberedPatterns(2));
    Changes changes(controller());
    controller().undoManager().undo();
    EXPECT_EQ(changes.to, QStringList());
    controller().undoManager().redo();
    EXPECT_EQ(changes.count, 2);
    EXPECT_EQ(changes.to, (texts({"//0*", "//1*"})));
}

TEST_F(PatternTableList, GoesBackAndForthThroughManySteps)
{
    for (const char* line : {"//a*", "//b*", "//c*"})
        controller().addPattern(pattern(line));
    controller().removePatterns({1});
    for (int round = 0; round < 3; ++round) {
        controller().undoManager().setIndex(0);
        EXPECT_EQ(lines(), QStringList());
        controller().undoManager().setIndex(4);
        EXPECT_EQ(lines(), (texts({"//a*", "//c*"})));
    }
}

TEST_F(PatternTableList, InsertsAboveARowWhatIsNotThereYet)
{
    controller().setFilterDefs(numberedPatterns(2));
    Changes changes(controller());
    controller().addPatterns({pattern("//a*"), pattern("//1*"), pattern("//b*"), pattern("//a*")}, 1);
    EXPECT_EQ(lines(), (texts({"//0*", "//a*", "//b*", "//1*"})));
    EXPECT_EQ(changes.count, 1);
}

TEST_F(PatternTableList, DoesNothingWhenEverythingIsThereAlready)
{
    controller().setFilterDefs(numberedPatterns(2));
    Changes changes(controller());
    controller().addPatterns(numberedPatterns(2));
    controller().addPatterns({});
    controller().removePatterns({});
    EXPECT_EQ(changes.count, 0);
    EXPECT_EQ(controller().undoManager().count(), 1);
}

TEST_F(PatternTableList, InsertsAtTheEndsWhateverTheRow)
{
    controller().addPatterns({pattern("//b*")}, 77);
    controller().addPatterns({pattern("//a*")}, -3);
    EXPECT_EQ(lines(), (texts({"//a*", "//b*"})));
}

TEST_F(PatternTableList, AddsTheValidOnesOfLines)
{
    controller().addPatternStrings(texts({"//a*", "", "/absolute", "x//b/3", "////"}));
    EXPECT_EQ(lines(), (texts({"//a*", "x//b/3"})));
    EXPECT_TRUE(controller().filterDefs()[0]->simple());
    EXPECT_FALSE(controller().filterDefs()[1]->simple());
}

TEST_F(PatternTableList, RemovesTheSelectedRows)
{
    controller().setFilterDefs(numberedPatterns(4));
    table().selectRowIndexes({1, 3});
    controller().doRemoveSelectedItems(nullptr);
    EXPECT_EQ(lines(), (texts({"//0*", "//2*"})));
    EXPECT_TRUE(table().selectedRowIndexes().isEmpty());
}

TEST_F(PatternTableList, DeletesThroughItsDelegate)
{
    controller().setFilterDefs(numberedPatterns(2));
    table().selectRowIndexes({0});
    table().delete_(nullptr);
    EXPECT_EQ(lines(), (texts({"//1*"})));
}

TEST_F(PatternTableList, AddsAndEditsAnEmptyGlob)
{
    show();
    controller().addGlobPattern(nullptr);
    runMainQueue();
    ASSERT_EQ(controller().filterDefs().size(), 1);
    EXPECT_TRUE(controller().filterDefs()[0]->simple());
    EXPECT_EQ(controller().filterDefs()[0]->type(), PatternType::Glob);
    EXPECT_EQ(table().selectedRowIndexes(), IndexSet{0});
    EXPECT_TRUE(row(0)->textField()->hasFocus());
}

TEST_F(PatternTableList, EditsTheEmptyGlobThatIsThereInsteadOfAddingAnother)
{
    show();
    controller().addGlobPattern(nullptr);
    runMainQueue();
    controller().addRegExPattern(nullptr);
    runMainQueue();
    EXPECT_TRUE(row(1)->textField()->hasFocus());
    controller().addGlobPattern(nullptr);
    runMainQueue();
    EXPECT_EQ(controller().filterDefs().size(), 2);
    EXPECT_EQ(table().selectedRowIndexes(), IndexSet{0});
    EXPECT_TRUE(row(0)->textField()->hasFocus());
    EXPECT_TRUE(controller().filterDefs()[0]->singlePattern().isNull());
}

TEST_F(PatternTableList, AddsARegularExpressionAndACompletePattern)
{
    show();
    controller().addRegExPattern(nullptr);
    controller().addExpertPattern(nullptr);
    runMainQueue();
    EXPECT_EQ(controller().filterDefs()[0]->type(), PatternType::RegularExpression);
    EXPECT_EQ(controller().filterDefs()[1]->completePattern(), QStringLiteral("path//pattern.*"));
    ASSERT_NE(row<PatternTableExpertCellView>(1), nullptr);
    EXPECT_TRUE(row<PatternTableExpertCellView>(1)->textField()->hasFocus());
}

TEST_F(PatternTableList, TakesOverWhatIsBeingTypedBeforeItAdds)
{
    show();
    controller().addGlobPattern(nullptr);
    runMainQueue();
    QTest::keyClicks(row(0)->textField(), QStringLiteral("*.o"));
    controller().addGlobPattern(nullptr);
    runMainQueue();
    ASSERT_EQ(controller().filterDefs().size(), 2);
    EXPECT_EQ(controller().filterDefs()[0]->singlePattern(), QStringLiteral("*.o"));
    EXPECT_TRUE(row(1)->textField()->hasFocus());
}

TEST_F(PatternTableList, ScrollsToWhatItAdds)
{
    show();
    controller().setFilterDefs(numberedPatterns(100));
    controller().addGlobPattern(nullptr);
    runMainQueue();
    ASSERT_NE(row(100), nullptr);
    EXPECT_TRUE(table().viewport()->rect().contains(table().rowRect(100)));
    EXPECT_TRUE(row(100)->textField()->hasFocus());
}

TEST_F(PatternTableList, EnablesTheTableAndItsButtons)
{
    controller().setFilterDefs(numberedPatterns(1));
    controller().setEnabled(false);
    EXPECT_FALSE(controller().enabled());
    EXPECT_FALSE(table().isEnabled());
    EXPECT_FALSE(controller().addButton()->isEnabled());
    EXPECT_FALSE(controller().addRemoveControl()->isEnabled());
    controller().setEnabled(true);
    EXPECT_TRUE(controller().addButton()->isEnabled());
    EXPECT_FALSE(controller().removeButton()->isEnabled());
    table().selectRowIndexes({0});
    EXPECT_TRUE(controller().removeButton()->isEnabled());
    controller().setEnabled(false);
    controller().setEnabled(true);
    EXPECT_TRUE(controller().removeButton()->isEnabled());
    table().selectRowIndexes({});
    EXPECT_FALSE(controller().removeButton()->isEnabled());
}

TEST_F(PatternTableList, OpensItsMenuFromTheAddButton)
{
    show();
    QMenu& menu = *controller().addMenu();
    QTest::mouseClick(controller().addButton(), Qt::LeftButton);
    EXPECT_TRUE(menu.isVisible());
    ASSERT_EQ(menu.actions().size(), 3);
    for (QAction* each : menu.actions())
        each->trigger();
    menu.close();
    const PatternFilterDefs& added = controller().filterDefs();
    ASSERT_EQ(added.size(), 3);
    EXPECT_TRUE(added[0]->simple() && added[0]->type() == PatternType::Glob);
    EXPECT_TRUE(added[1]->simple() && added[1]->type() == PatternType::RegularExpression);
    EXPECT_EQ(added[2]->completePattern(), QStringLiteral("path//pattern.*"));
}

TEST_F(PatternTableList, EveryCommandOfTheMenuShowsAnExampleThatIsValid)
{
    const QStringList lines = texts({"//%1", "//%1/:re", "%1"}); // what each kind makes of its example
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QString text = controller().addMenu()->actions()[i]->text();
        PatternFilterDef example(lines[i].arg(text.section(QChar(0x2066), 1).section(QChar(0x2069), 0, 0)));
        EXPECT_TRUE(text.contains(u'&')) << qPrintable(text);
        EXPECT_TRUE(example.valid()) << qPrintable(example.completePattern());
        EXPECT_FALSE(example.patternComponents().isEmpty()) << qPrintable(example.completePattern());
    }
}

TEST_F(PatternTableList, ItsRemoveSegmentIsEveryOtherThanTheFirst)
{
    show();
    controller().setFilterDefs(numberedPatterns(3));
    table().selectRowIndexes({0});
    QTest::mouseClick(controller().removeButton(), Qt::LeftButton);
    EXPECT_EQ(lines(), (texts({"//1*", "//2*"})));
    SegmentedControl other;
    other.setSelectedSegment(5);
    table().selectRowIndexes({0});
    controller().doSegmentedControl(other);
    EXPECT_EQ(lines(), (texts({"//2*"})));
}

TEST_F(PatternTableList, TellsACompleteLineAsToolTip)
{
    controller().addPatternStrings(texts({"//a*", "x//b/3"}));
    EXPECT_TRUE(controller().tableViewToolTip(table(), 0).isNull());
    EXPECT_EQ(controller().tableViewToolTip(table(), 1), QStringLiteral("x//b/3"));
}

TEST_F(PatternTableList, MovesRowsTogether)
{
    controller().setFilterDefs(numberedPatterns(4));
    controller().tableViewMoveRows(table(), {1, 2}, 1);
    EXPECT_EQ(lines(), (texts({"//0*", "//3*", "//1*", "//2*"})));
    controller().tableViewMoveRows(table(), {2, 3}, 1); // there is no place below
    EXPECT_EQ(lines(), (texts({"//0*", "//3*", "//1*", "//2*"})));
    controller().tableViewMoveRows(table(), {1, 3}, -1);
    EXPECT_EQ(lines(), (texts({"//3*", "//0*", "//2*", "//1*"})));
}

TEST_F(PatternTableList, OutlivesNeitherItsTableNorItsQueuedWork)
{
    {
        PatternTablePane other;
        other.controller().addGlobPattern(nullptr);
        other.show();
    }
    runMainQueue(); // what was queued for the pane finds nothing
    SUCCEED();
}

} // namespace
} // namespace havrel::tests
