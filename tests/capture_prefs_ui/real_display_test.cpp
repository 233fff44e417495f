// SPDX-License-Identifier: MIT
// What only a real display with a window manager can show: drags from window to window, the keyboard staying where it
// is while the popover comes, and the popover following its window.
#include "capture_prefs_ui/pattern_problem_popover.h"
#include "tests/capture_prefs_ui/pattern_table_fixture.h"

#include <QPlainTextEdit>
#include <QTextCursor>
#include <QTimer>

#include <functional>

namespace havrel::tests {
namespace {

class RealDisplay : public PatternTable
{
protected:
    RealDisplay()
    {
        window.move(50, 50);
        notes.setGeometry(750, 50, 300, 300);
    }

    void showBoth()
    {
        notes.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&notes));
        show();
        window.raise();
        runMainQueue();
    }

    /// Presses at one place, moves to another and lets go, as a hand does. The drag runs in a loop of its own, in which
    /// the moves are made one after the other.
    void drag(QWidget& from, const QPoint& start, QWidget& to, const QPoint& end)
    {
        const QPoint begin = from.mapToGlobal(start);
        const QPoint goal = to.mapToGlobal(end);
        QWindow* source = from.window()->windowHandle();
        const auto at = [source](const QPoint& global) { return source->mapFromGlobal(global); };
        int step = 0;
        // Each move asks for the next one first: the one that begins the drag returns only when the drag has ended.
        const std::function<void()> move = [&] {
            if (++step <= kSteps + kRest)
                QTimer::singleShot(0, &window, move);
            if (step <= kSteps)
                QTest::mouseMove(source, at(begin + (goal - begin) * step / kSteps));
            else if (step == kSteps + kRest)
                QTest::mouseRelease(source, Qt::LeftButton, {}, at(goal));
        };
        QTest::mousePress(source, Qt::LeftButton, {}, at(begin));
        move();
        EXPECT_TRUE(QTest::qWaitFor([&step] { return step > kSteps + kRest; }));
    }

    [[nodiscard]] QPoint gripOf(qsizetype row) { return {4, table().rowRect(row).center().y()}; }

    static constexpr int kSteps = 20;
    static constexpr int kRest = 1; // step in which nothing moves

    QPlainTextEdit notes;
};

TEST_F(RealDisplay, DragsRowsOutAsText)
{
    controller().setFilterDefs(numberedPatterns(4));
    showBoth();
    table().selectRowIndexes({1, 3});
    drag(*table().viewport(), gripOf(1), *notes.viewport(), {20, 20});
    EXPECT_TRUE(QTest::qWaitFor([this] { return !notes.toPlainText().isEmpty(); }));
    EXPECT_EQ(notes.toPlainText(), QStringLiteral("//1*\n//3*"));
    EXPECT_EQ(lines().size(), 4);
}

TEST_F(RealDisplay, TakesTextFromAnotherWindow)
{
    controller().setFilterDefs(numberedPatterns(2));
    notes.setPlainText(QStringLiteral("//dragged*\n///////\n//too*"));
    showBoth();
    notes.selectAll();
    drag(*notes.viewport(), {20, 12}, *table().viewport(), {100, table().rowRect(1).top()});
    EXPECT_TRUE(QTest::qWaitFor([this] { return lines().size() == 4; }));
    EXPECT_EQ(lines().join(u' '), QStringLiteral("//0* //dragged* //too* //1*"));
}

TEST_F(RealDisplay, DragsNothingOutOfInvalidRows)
{
    controller().addPattern(std::make_shared<PatternFilterDef>(PatternType::Glob));
    showBoth();
    table().selectRowIndexes({0});
    drag(*table().viewport(), gripOf(0), *notes.viewport(), {20, 20});
    EXPECT_EQ(notes.toPlainText(), QString());
}

TEST_F(RealDisplay, LeavesTheKeyboardInTheWindowWhenThePopoverComes)
{
    controller().addPatternStrings({QStringLiteral("a//b*")});
    showBoth();
    QLineEdit* path = row(0)->pathField();
    path->setFocus();
    QTest::keyClick(path, Qt::Key_End);
    QTest::keyClicks(path, QStringLiteral("/"));
    QTest::keyClick(path, Qt::Key_Tab);
    PatternProblemPopover& popover = *controller().popover();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&popover));
    EXPECT_TRUE(window.isActiveWindow());
    EXPECT_TRUE(row(0)->textField()->hasFocus());
    EXPECT_EQ(popover.geometry().topLeft(), path->mapToGlobal(QPoint(0, path->height())));
    window.move(120, 140);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return popover.geometry().topLeft() == path->mapToGlobal(QPoint(0, path->height())); }));
}

TEST_F(RealDisplay, HidesThePopoverWhileAnotherWindowIsInFront)
{
    controller().addPatternStrings({QStringLiteral("a//b*")});
    showBoth();
    type(row(0)->pathField(), "a/");
    PatternProblemPopover& popover = *controller().popover();
    ASSERT_TRUE(popover.isVisible());
    notes.activateWindow();
    EXPECT_TRUE(QTest::qWaitFor([&popover] { return !popover.isVisible(); }));
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitFor([&popover] { return popover.isVisible(); }));
}

TEST_F(RealDisplay, OpensTheAddMenuByTheKeyboard)
{
    showBoth();
    controller().addButton()->setFocus();
    QTest::keyClick(controller().addButton(), Qt::Key_Space);
    QMenu& menu = *controller().addMenu();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&menu));
    QTest::keyClick(&menu, Qt::Key_Down);
    QTest::keyClick(&menu, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([this] { return row(0) && row(0)->textField()->hasFocus(); }));
}

} // namespace
} // namespace havrel::tests
