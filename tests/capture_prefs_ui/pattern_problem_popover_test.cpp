// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/pattern_problem_popover.h"

#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

namespace havrel::tests {
namespace {

class ProblemPopover : public testing::Test
{
protected:
    ProblemPopover()
    {
        window.setGeometry(100, 100, 300, 200);
        field.setGeometry(40, 50, 120, 24);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        popover.setProblemDescription(QStringLiteral("<b>wrong</b>"));
    }

    [[nodiscard]] QPoint belowField() const { return field.mapToGlobal(QPoint(0, field.height())); }

    QWidget window;
    QLineEdit field{&window};
    PatternProblemPopover popover{&window};
};

TEST_F(ProblemPopover, StandsBelowTheFieldAndTakesNoKeyboard)
{
    field.setFocus();
    popover.showRelativeTo(field);
    EXPECT_TRUE(popover.isVisible());
    EXPECT_EQ(popover.geometry().topLeft(), belowField());
    EXPECT_EQ(popover.windowType(), Qt::ToolTip);
    EXPECT_TRUE(popover.testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_TRUE(field.hasFocus());
    EXPECT_TRUE(window.isActiveWindow());
}

TEST_F(ProblemPopover, ShowsItsTextAsItIs)
{
    EXPECT_EQ(popover.problemDescription(), QStringLiteral("<b>wrong</b>"));
    EXPECT_EQ(popover.descriptionLabel().text(), QStringLiteral("<b>wrong</b>"));
    EXPECT_EQ(popover.descriptionLabel().textFormat(), Qt::PlainText);
}

TEST_F(ProblemPopover, DescribesTheFieldToAssistiveTechnology)
{
    popover.showRelativeTo(field);
    EXPECT_EQ(field.accessibleDescription(), QStringLiteral("<b>wrong</b>"));
    popover.setProblemDescription(QStringLiteral("other"));
    EXPECT_EQ(field.accessibleDescription(), QStringLiteral("other"));
    popover.dismiss();
    EXPECT_EQ(field.accessibleDescription(), QString());
}

TEST_F(ProblemPopover, FollowsTheFieldAndTheWindow)
{
    popover.showRelativeTo(field);
    window.move(150, 160);
    EXPECT_EQ(popover.geometry().topLeft(), belowField());
    field.move(60, 90);
    EXPECT_EQ(popover.geometry().topLeft(), belowField());
}

TEST_F(ProblemPopover, GoesWithTheField)
{
    popover.showRelativeTo(field);
    field.hide();
    EXPECT_FALSE(popover.isVisible());
    EXPECT_EQ(popover.field(), nullptr);
    {
        QLineEdit shortLived(&window);
        shortLived.show();
        popover.showRelativeTo(shortLived);
        EXPECT_TRUE(popover.isVisible());
    }
    EXPECT_FALSE(popover.isVisible());
    EXPECT_EQ(popover.field(), nullptr);
}

TEST_F(ProblemPopover, IsAwayWhileTheWindowIsNotInFront)
{
    popover.showRelativeTo(field);
    QEvent away(QEvent::WindowDeactivate);
    QCoreApplication::sendEvent(&window, &away);
    EXPECT_FALSE(popover.isVisible());
    QEvent back(QEvent::WindowActivate);
    QCoreApplication::sendEvent(&window, &back);
    EXPECT_TRUE(popover.isVisible());
    popover.dismiss();
    QCoreApplication::sendEvent(&window, &back);
    EXPECT_FALSE(popover.isVisible());
}

TEST_F(ProblemPopover, StandsAboveWhereThereIsNoRoomBelow)
{
    window.move(100, window.screen()->availableGeometry().bottom() - 90);
    popover.showRelativeTo(field);
    EXPECT_EQ(popover.geometry().bottom() + 1, field.mapToGlobal(QPoint()).y());
}

TEST_F(ProblemPopover, StaysOnTheScreen)
{
    const QRect screen = window.screen()->availableGeometry();
    window.move(screen.right() - 100, 100);
    popover.setProblemDescription(QString(60, u'w'));
    popover.showRelativeTo(field);
    EXPECT_LE(popover.geometry().right(), screen.right());
    EXPECT_GE(popover.geometry().left(), screen.left());
}

TEST_F(ProblemPopover, LetsNothingShineThroughItsCorners)
{
    popover.showRelativeTo(field);
    EXPECT_FALSE(popover.mask().contains(QPoint(popover.width() - 1, 0)));
    EXPECT_TRUE(popover.mask().contains(popover.rect().center()));
    EXPECT_FALSE(popover.testAttribute(Qt::WA_TranslucentBackground));
}

} // namespace
} // namespace havrel::tests
