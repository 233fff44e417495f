// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/pattern_table_cell_view.h"

#include "capture_prefs_ui/pattern_problem_popover.h"
#include "capture_prefs_ui/pattern_table_multiple_cell_view.h"
#include "foundation/description.h"
#include "foundation/notification_center.h"
#include "foundation/observing.h"
#include "tests/capture_prefs_ui/pattern_table_fixture.h"

#include <QCheckBox>
#include <QLabel>

namespace havrel::tests {
namespace {

class PatternTableRow : public PatternTable
{
protected:
    PatternTableRow()
    {
        observeNotification(m_owner, kPatternTableCellValueChanged, [this](QObject*, const Notification& notification) {
            posted << notification;
        });
    }

    void showPatterns(std::initializer_list<const char*> all)
    {
        PatternFilterDefs definitions;
        for (const char* each : all)
            definitions << std::make_shared<PatternFilterDef>(QString::fromUtf8(each));
        for (const PatternFilterDefPtr& each : definitions)
            each->simplify();
        controller().setFilterDefs(definitions);
        show();
    }

    [[nodiscard]] PatternFilterDef& definition(qsizetype row) { return *controller().filterDefs()[row]; }
    [[nodiscard]] PatternProblemPopover& popover() { return *controller().popover(); }
    /// What is told, and of which field; nothing while nothing is.
    void expectProblem(const char* text, const QWidget* field)
    {
        EXPECT_TRUE(popover().isVisible());
        EXPECT_EQ(popover().problemDescription(), QString::fromUtf8(text));
        EXPECT_EQ(popover().field(), field);
    }
    void expectNoProblem()
    {
        EXPECT_FALSE(popover().isVisible());
        EXPECT_EQ(popover().field(), nullptr);
    }

    QList<Notification> posted;

private:
    QObject m_owner;
};

TEST_F(PatternTableRow, HasTheKindOfItsDefinition)
{
    showPatterns({"a//b*", "x//b/3"});
    controller().addPattern(PatternFilterDef::filterDefPlaceholder());
    runMainQueue();
    ASSERT_NE(row(0), nullptr);
    EXPECT_EQ(row(0)->identifier(), QStringLiteral("simple"));
    EXPECT_EQ(row(0)->filterDef(), controller().filterDefs()[0]);
    EXPECT_EQ(row(0)->popover(), controller().popover());
    ASSERT_NE(row<PatternTableExpertCellView>(1), nullptr);
    EXPECT_EQ(row<PatternTableExpertCellView>(1)->identifier(), QStringLiteral("complete"));
    ASSERT_NE(row<PatternTableMultipleCellView>(2), nullptr);
    EXPECT_EQ(row<PatternTableMultipleCellView>(2)->identifier(), QStringLiteral("multiple"));
}

TEST_F(PatternTableRow, KnowsWhatCanBeEditedInIt)
{
    const auto listOf = [](const PatternTableCellView& view) { return view.editableFilterProperties().join(u' '); };
    EXPECT_EQ(listOf(PatternTableSimpleCellView()), QStringLiteral("anchorPath singlePattern propagateIndefinitely"));
    EXPECT_EQ(listOf(PatternTableExpertCellView()), QStringLiteral("completePattern"));
    EXPECT_EQ(listOf(PatternTableMultipleCellView()), QString());
}

TEST_F(PatternTableRow, ShowsItsDefinition)
{
    showPatterns({"a/c//b*/+", "x//b/3", "//r$/:re"});
    EXPECT_EQ(row(0)->pathField()->text(), QStringLiteral("a/c"));
    EXPECT_EQ(row(0)->textField()->text(), QStringLiteral("b*"));
    EXPECT_TRUE(row(0)->propogateButton()->isChecked());
    EXPECT_EQ(row(0)->typeLabel()->text(), QStringLiteral("glob"));
    EXPECT_EQ(row<PatternTableExpertCellView>(1)->textField()->text(), QStringLiteral("x//b/3"));
    EXPECT_FALSE(row(2)->propogateButton()->isChecked());
    EXPECT_EQ(row(2)->readableType(), QStringLiteral("regex"));
    EXPECT_EQ(row(2)->typeLabel()->text(), QStringLiteral("regex"));
}

TEST_F(PatternTableRow, GivesItsFieldsTheWidthsOfTheirTexts)
{
    showPatterns({"a folder with a name//*.tmp", "a long line//that ends/with//depth/3"});
    runMainQueue();
    const auto isAsWideAsItsText = [](const ResizingPatternTextField& field) {
        return field.width() == std::max(field.sizeHint().width(), field.minimumSizeHint().width());
    };
    EXPECT_TRUE(isAsWideAsItsText(*row(0)->pathField()));
    EXPECT_TRUE(isAsWideAsItsText(*row(0)->textField()));
    EXPECT_GT(row(0)->pathField()->width(), row(0)->textField()->width());
    EXPECT_TRUE(isAsWideAsItsText(*row<PatternTableExpertCellView>(1)->textField()));
    const int before = row(0)->textField()->width();
    row(0)->textField()->setFocus(); // and has all the room that the others leave
    EXPECT_TRUE(QTest::qWaitFor([&] { return row(0)->textField()->width() > 2 * before; }));
}

TEST_F(PatternTableRow, FollowsChangesOfItsDefinition)
{
    showPatterns({"a//b*"});
    definition(0).setAnchorPath(QStringLiteral("other"));
    definition(0).setType(PatternType::RegularExpression);
    definition(0).setPropagateIndefinitely(true);
    EXPECT_EQ(row(0)->pathField()->text(), QStringLiteral("other"));
    EXPECT_EQ(row(0)->readableType(), QStringLiteral("regex"));
    EXPECT_EQ(row(0)->typeLabel()->text(), QStringLiteral("regex"));
    EXPECT_TRUE(row(0)->propogateButton()->isChecked());
    definition(0).setType(static_cast<PatternType>(9));
    EXPECT_EQ(row(0)->readableType(), QStringLiteral("glob"));
}

TEST_F(PatternTableRow, TakesOverWhatIsTypedWhenEditingEnds)
{
    showPatterns({"a//b*"});
    row(0)->pathField()->setFocus();
    QTest::keyClicks(row(0)->pathField(), QStringLiteral("/more"));
    EXPECT_EQ(definition(0).anchorPath(), QStringLiteral("a"));
    otherField.setFocus();
    EXPECT_EQ(definition(0).anchorPath(), row(0)->pathField()->text());
    EXPECT_NE(definition(0).anchorPath(), QStringLiteral("a"));
}

TEST_F(PatternTableRow, TakesOverWhatIsTypedAtReturnAndAtTheEndOfAllEditing)
{
    showPatterns({"a//b*"});
    row(0)->textField()->setFocus();
    row(0)->textField()->selectAll();
    QTest::keyClicks(row(0)->textField(), QStringLiteral("c*"));
    QTest::keyClick(row(0)->textField(), Qt::Key_Return);
    EXPECT_EQ(definition(0).singlePattern(), QStringLiteral("c*"));
    row(0)->textField()->selectAll();
    QTest::keyClicks(row(0)->textField(), QStringLiteral("d*"));
    pane.endEditing();
    EXPECT_EQ(definition(0).singlePattern(), QStringLiteral("d*"));
    EXPECT_FALSE(row(0)->textField()->hasFocus());
}

TEST_F(PatternTableRow, GivesUpWhatIsTypedAtEscape)
{
    showPatterns({"a//b*"});
    row(0)->textField()->setFocus();
    QTest::keyClicks(row(0)->textField(), QStringLiteral("zzz"));
    QTest::keyClick(row(0)->textField(), Qt::Key_Escape);
    otherField.setFocus();
    EXPECT_EQ(definition(0).singlePattern(), QStringLiteral("b*"));
    EXPECT_TRUE(posted.isEmpty());
}

TEST_F(PatternTableRow, LeavesAbsentTextsAbsent)
{
    show();
    controller().addGlobPattern(nullptr);
    runMainQueue();
    row(0)->pathField()->setFocus();
    otherField.setFocus();
    EXPECT_TRUE(definition(0).anchorPath().isNull());
    EXPECT_TRUE(definition(0).singlePattern().isNull());
    EXPECT_TRUE(posted.isEmpty());
    type(row(0)->textField(), "x");
    type(row(0)->textField(), "");
    EXPECT_TRUE(definition(0).singlePattern().isNull());
}

TEST_F(PatternTableRow, LeavesEmptyTextsEmpty)
{
    showPatterns({"//b*"}); // its anchor is empty, not absent
    const PatternFilterDefPtr same = definition(0).copyWithZone();
    row(0)->pathField()->setFocus();
    otherField.setFocus();
    EXPECT_TRUE(definition(0).isEqual(*same));
}

TEST_F(PatternTableRow, KeepsACompleteLineComplete)
{
    showPatterns({"x//b/3"});
    type(row<PatternTableExpertCellView>(0)->textField(), "//simple*");
    EXPECT_FALSE(definition(0).simple());
    EXPECT_EQ(definition(0).completePattern(), QStringLiteral("//simple*"));
    type(row<PatternTableExpertCellView>(0)->textField(), "");
    EXPECT_FALSE(definition(0).simple());
    expectProblem("Incomplete pattern", row<PatternTableExpertCellView>(0)->textField());
}

TEST_F(PatternTableRow, SetsTheDepthByItsSwitch)
{
    showPatterns({"a//b*"});
    QTest::mouseClick(
        row(0)->propogateButton(), Qt::LeftButton, {}, QPoint(5, row(0)->propogateButton()->height() / 2));
    EXPECT_TRUE(definition(0).propagateIndefinitely());
    ASSERT_EQ(posted.size(), 1);
    EXPECT_EQ(posted[0].userInfo[QStringLiteral("path")], QStringLiteral("propagateIndefinitely"));
}

TEST_F(PatternTableRow, CanBeTakenBackAndRepeatedAfterItsEditing)
{
    showPatterns({"a//b*", "c//d*"});
    QUndoStack& steps = controller().undoManager();
    type(row(0)->textField(), "x");
    type(row(1)->pathField(), "");
    row(1)->propogateButton()->click();
    EXPECT_EQ(steps.undoText(), QStringLiteral("Change Pattern"));
    posted.clear();
    EXPECT_EQ(lines(), (QStringList{QStringLiteral("a//x"), QStringLiteral("//d*/+:glob")}));
    steps.undo();
    EXPECT_EQ(lines().last(), QStringLiteral("//d*"));
    EXPECT_FALSE(row(1)->propogateButton()->isChecked());
    steps.undo();
    steps.undo();
    EXPECT_EQ(lines(), (QStringList{QStringLiteral("a//b*"), QStringLiteral("c//d*")}));
    EXPECT_EQ(row(0)->textField()->text(), QStringLiteral("b*"));
    EXPECT_EQ(posted.size(), 3) << "the window has to hear of it";
    for (int i = 0; i < 3; ++i)
        steps.redo();
    EXPECT_EQ(lines(), (QStringList{QStringLiteral("a//x"), QStringLiteral("//d*/+:glob")}));
}

TEST_F(PatternTableRow, LeavesAnAbsentTextAbsentWhenItIsTakenBack)
{
    show();
    controller().addGlobPattern(nullptr);
    runMainQueue();
    type(row(0)->textField(), "x");
    controller().undoManager().undo();
    EXPECT_TRUE(definition(0).singlePattern().isNull());
    controller().addGlobPattern(nullptr);
    EXPECT_EQ(controller().filterDefs().size(), 1) << "it is an empty glob again";
}

TEST_F(PatternTableRow, TakesEditsBackInRowsThatWereRemovedAndCameBack)
{
    showPatterns({"a//b*", "c//d*"});
    QUndoStack& steps = controller().undoManager();
    type(row(1)->textField(), "x");
    controller().removePatterns({1});
    steps.undo();
    runMainQueue();
    EXPECT_EQ(lines().last(), QStringLiteral("c//x"));
    steps.undo();
    EXPECT_EQ(lines(), (QStringList{QStringLiteral("a//b*"), QStringLiteral("c//d*")}));
    steps.redo();
    steps.redo();
    EXPECT_EQ(lines(), (QStringList{QStringLiteral("a//b*")}));
}

TEST_F(PatternTableRow, TakesEditsBackInRowsOutOfSight)
{
    showPatterns({"a//b*"});
    controller().addPatterns(numberedPatterns(50));
    runMainQueue();
    type(row(0)->textField(), "x");
    table().scrollRowToVisible(50);
    runMainQueue();
    posted.clear();
    controller().undoManager().undo();
    EXPECT_EQ(lines().first(), QStringLiteral("a//b*"));
    EXPECT_EQ(posted.size(), 1);
}

TEST_F(PatternTableRow, PostsEachChangeWithTheValueBefore)
{
    showPatterns({"a//b*"});
    type(row(0)->pathField(), "n");
    ASSERT_EQ(posted.size(), 1);
    EXPECT_EQ(posted[0].name, QStringLiteral("PatternTableCellValueChanged"));
    EXPECT_EQ(posted[0].object.value<QObject*>(), &table());
    const QVariantMap& info = posted[0].userInfo;
    EXPECT_EQ(
        info.keys(),
        (QStringList{QStringLiteral("obj"), QStringLiteral("old"), QStringLiteral("path"), QStringLiteral("view")}));
    EXPECT_EQ(info[QStringLiteral("view")].value<QObject*>(), row(0));
    EXPECT_EQ(info[QStringLiteral("obj")].value<PatternFilterDefPtr>(), controller().filterDefs()[0]);
    EXPECT_EQ(info[QStringLiteral("path")], QStringLiteral("anchorPath"));
    EXPECT_EQ(info[QStringLiteral("old")], QStringLiteral("a"));
}

TEST_F(PatternTableRow, PostsTheNullObjectForWhatWasAbsent)
{
    show();
    controller().addGlobPattern(nullptr);
    runMainQueue();
    type(row(0)->textField(), "x");
    ASSERT_EQ(posted.size(), 1);
    EXPECT_EQ(posted[0].userInfo[QStringLiteral("old")], nullObject());
}

TEST_F(PatternTableRow, PostsNothingWhenItShowsAnotherDefinition)
{
    showPatterns({"a//b*", "c//d*", "x//b/3"});
    controller().setFilterDefs(numberedPatterns(50));
    table().scrollRowToVisible(49);
    controller().removePatterns({0, 1, 2});
    controller().undoManager().undo();
    runMainQueue();
    EXPECT_TRUE(posted.isEmpty());
}

TEST_F(PatternTableRow, PostsNothingOutsideOfATableInAWindow)
{
    PatternTableSimpleCellView loose;
    const PatternFilterDefPtr shown = pattern("a//b*");
    loose.setObjectValue(shown);
    shown->setAnchorPath(QStringLiteral("x"));
    loose.setTableView(&table()); // which is in no window yet
    shown->setAnchorPath(QStringLiteral("y"));
    EXPECT_TRUE(posted.isEmpty());
    show();
    shown->setAnchorPath(QStringLiteral("z"));
    EXPECT_EQ(posted.size(), 1);
    loose.setObjectValue(nullptr);
    shown->setAnchorPath(QStringLiteral("a"));
    EXPECT_EQ(posted.size(), 1);
}

struct SimpleProblem
{
    const char* anchor;
    const char* single;
    const char* text; // null: none
    bool isInPath;
};

TEST_F(PatternTableRow, TellsWhatIsWrongWithTheFieldValidatedLast)
{
    const SimpleProblem problems[] = {
        {"a", "b*", nullptr, false},
        {"", "b*", nullptr, false},
        {"/", "b*", "Too many leading /", true},
        {"a/", "b*", "Trailing / is not allowed here", true},
        {"a//b", "x", "Successive // is not allowed here", true},
        {"/a", "x", "Absolute path not permitted here", true},
        {"a", "x/y", "Pattern cannot contain /", false},
        {"a", "", "Incomplete pattern", false},
        {"a//b", "x/y", "Successive // is not allowed here", true}, // the anchor comes first
        {"a/", "", "Trailing / is not allowed here", true},
    };
    showPatterns({"a//b*"});
    for (const SimpleProblem& each : problems) {
        type(row(0)->pathField(), each.anchor);
        type(row(0)->textField(), each.single);
        SCOPED_TRACE(each.text ? each.text : "valid");
        if (each.text)
            expectProblem(each.text, each.isInPath ? row(0)->pathField() : row(0)->textField());
        else
            expectNoProblem();
        EXPECT_EQ(definition(0).anchorPath(), QString::fromUtf8(each.anchor)); // whatever is wrong with it
        EXPECT_EQ(definition(0).singlePattern(), QString::fromUtf8(each.single));
    }
}

TEST_F(PatternTableRow, TellsWhatIsWrongWithACompleteLine)
{
    showPatterns({"x//b/3"});
    QLineEdit* field = row<PatternTableExpertCellView>(0)->textField();
    type(field, "a///b");
    expectProblem("Invalid /// encountered", field);
    EXPECT_EQ(definition(0).completePattern(), QStringLiteral("a///b"));
    type(field, "//[/:re");
    expectProblem("/[/ is not a valid regular expression", field);
    type(field, "a//b/7");
    expectNoProblem();
}

TEST_F(PatternTableRow, ForgetsAProblemWithItsDefinition)
{
    showPatterns({"a//b*", "c//d*"});
    type(row(1)->pathField(), "c/");
    EXPECT_TRUE(popover().isVisible());
    controller().removePatterns({1});
    expectNoProblem();
}

TEST_F(PatternTableRow, PermitsAbsolutePathsInAnArchive)
{
    controller().setRepositoryPatterns(true);
    showPatterns({"a//b*"});
    type(row(0)->pathField(), "/Users");
    expectNoProblem();
}

TEST_F(PatternTableRow, KeepsItsFieldAndWhatIsTypedWhenTheListChanges)
{
    showPatterns({"a//b*", "c//d*"});
    PatternTableSimpleCellView* const edited = row(1);
    edited->textField()->setFocus();
    QTest::keyClicks(edited->textField(), QStringLiteral("typing"));
    const QString text = edited->textField()->text();
    controller().addPatterns(numberedPatterns(1), 0);
    runMainQueue();
    EXPECT_EQ(row(2), edited);
    EXPECT_TRUE(edited->textField()->hasFocus());
    EXPECT_EQ(edited->textField()->text(), text);
}

TEST_F(PatternTableRow, TellsClassesToComeOfEachPost)
{
    class Curious : public PatternTableCellView
    {
    public:
        Curious()
            : PatternTableCellView(QStringLiteral("curious"))
        {
            awakeFromNib();
        }
        ~Curious() override { removeAllObservations(*this); }
        [[nodiscard]] QStringList editableFilterProperties() const override { return {QStringLiteral("anchorPath")}; }
        void postDidChangeValueForKeyPath(const QString& keyPath) override { told << keyPath; }

        QStringList told;
    };
    show();
    Curious curious;
    const PatternFilterDefPtr shown = pattern("a//b*");
    curious.setObjectValue(shown);
    curious.setTableView(&table());
    shown->setAnchorPath(QStringLiteral("x"));
    EXPECT_EQ(curious.told, QStringList{QStringLiteral("anchorPath")});
}

} // namespace
} // namespace havrel::tests
