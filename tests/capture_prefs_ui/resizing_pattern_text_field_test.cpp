// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/resizing_pattern_text_field.h"

#include <QFontMetricsF>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <cmath>

namespace havrel::tests {
namespace {

class ResizingField : public testing::Test
{
protected:
    ResizingField()
    {
        other.move(0, 100);
        field.setText(QStringLiteral("some/path"));
        window.resize(321, 200);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    [[nodiscard]] int textWidth() const
    {
        return static_cast<int>(std::ceil(QFontMetricsF(field.font()).horizontalAdvance(field.text()) + 7.0));
    }

    QWidget window;
    QLineEdit other{&window};
    ResizingPatternTextField field{&window};
};

TEST_F(ResizingField, IsAsWideAsItsTextAndSeven)
{
    other.setFocus();
    EXPECT_EQ(field.intrinsicContentSize().width(), textWidth());
    field.setText(QStringLiteral("a much longer path than the one before"));
    EXPECT_EQ(field.intrinsicContentSize().width(), textWidth());
    field.clear();
    EXPECT_EQ(field.intrinsicContentSize().width(), 7);
}

TEST_F(ResizingField, IsAsWideAsItsParentWhileItIsEdited)
{
    field.setFocus();
    EXPECT_TRUE(field.isEdited());
    EXPECT_EQ(field.intrinsicContentSize().width(), 321);
    other.setFocus();
    EXPECT_FALSE(field.isEdited());
    EXPECT_EQ(field.intrinsicContentSize().width(), textWidth());
}

TEST_F(ResizingField, IsLaidOutAnewWhenEditingBeginsAndEnds)
{
    QWidget row(&window);
    row.setGeometry(0, 50, 300, 40);
    auto* layout = new QHBoxLayout(&row);
    ResizingPatternTextField edited(&row);
    edited.setText(QStringLiteral("some/path"));
    layout->addWidget(&edited);
    layout->addStretch();
    row.show();
    const int before = edited.width();
    ASSERT_LT(before, 200);
    edited.setFocus();
    EXPECT_TRUE(QTest::qWaitFor([&] { return edited.width() > 200; }));
    other.setFocus();
    EXPECT_TRUE(QTest::qWaitFor([&] { return edited.width() == before; }));
}

TEST_F(ResizingField, HasNoWidthWhileItIsEditedWithoutAParent)
{
    ResizingPatternTextField alone;
    alone.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&alone));
    alone.setFocus();
    ASSERT_TRUE(alone.isEdited());
    EXPECT_EQ(alone.intrinsicContentSize().width(), 0);
}

TEST_F(ResizingField, HasTheToolkitsWidthWhenItCannotBeEdited)
{
    QLineEdit usual(&window);
    usual.setFrame(false);
    field.setReadOnly(true);
    EXPECT_EQ(field.intrinsicContentSize().width(), usual.sizeHint().width());
    field.setFocus();
    EXPECT_FALSE(field.isEdited());
    EXPECT_EQ(field.intrinsicContentSize(), usual.sizeHint());
}

TEST_F(ResizingField, HasTheToolkitsHeight)
{
    QLineEdit usual(&window);
    usual.setFrame(false);
    EXPECT_EQ(field.intrinsicContentSize().height(), usual.sizeHint().height());
    field.setFocus();
    EXPECT_EQ(field.intrinsicContentSize().height(), usual.sizeHint().height());
}

TEST_F(ResizingField, IsNeverTooNarrowToBeHit)
{
    field.clear();
    EXPECT_GE(field.minimumSizeHint().width(), 10 * field.fontMetrics().averageCharWidth());
    field.setPlaceholderText(QStringLiteral("what stands in an empty field, however long"));
    EXPECT_GE(field.minimumSizeHint().width(), field.fontMetrics().horizontalAdvance(field.placeholderText()));
}

TEST_F(ResizingField, IsStillEditedWhileAMenuOrAnotherWindowIsInFront)
{
    field.setFocus();
    for (const Qt::FocusReason reason : {Qt::PopupFocusReason, Qt::ActiveWindowFocusReason}) {
        QFocusEvent away(QEvent::FocusOut, reason);
        QCoreApplication::sendEvent(&field, &away);
        EXPECT_TRUE(field.isEdited());
    }
}

TEST_F(ResizingField, TakesDropsOnlyWhileItIsEdited)
{
    EXPECT_FALSE(field.acceptDrops());
    field.setFocus();
    EXPECT_TRUE(field.acceptDrops());
    other.setFocus();
    EXPECT_FALSE(field.acceptDrops());
}

TEST_F(ResizingField, RunsFromLeftToRightInEveryLanguage)
{
    window.setLayoutDirection(Qt::RightToLeft);
    EXPECT_EQ(field.layoutDirection(), Qt::LeftToRight);
}

TEST_F(ResizingField, FitsItsTextWithoutCuttingIt)
{
    other.setFocus();
    field.resize(field.sizeHint());
    field.setCursorPosition(0);
    const int end = field.inputMethodQuery(Qt::ImCursorRectangle).toRectF().toRect().center().x() +
                    field.fontMetrics().horizontalAdvance(field.text());
    EXPECT_LE(end, field.width());
}

} // namespace
} // namespace havrel::tests
