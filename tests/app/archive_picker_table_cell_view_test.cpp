// SPDX-License-Identifier: MIT
#include "app/archive_picker_table_cell_view.h"

#include "app/item_field.h"

#include <QHBoxLayout>
#include <QMouseEvent>
#include <QTest>

#include <gtest/gtest.h>

namespace havrel::tests {
namespace {

/// Counts the clicks that come to it.
class ClickedWidget : public QWidget
{
public:
    using QWidget::QWidget;
    int clicks = 0;

protected:
    void mousePressEvent(QMouseEvent* event) override
    {
        ++clicks;
        event->accept();
    }
};

TEST(ArchivePickerTableCellView, AnswersItselfForEveryPoint)
{
    havrel::ArchivePickerTableCellView view;
    QWidget inside(&view);
    view.resize(100, 20);
    inside.setGeometry(10, 5, 50, 10);
    for (const QPoint& each : {QPoint(0, 0), QPoint(20, 8), QPoint(99, 19), QPoint(-1, 0), QPoint(100, 8)})
        EXPECT_EQ(view.hitTest(each), &view);
}

TEST(ArchivePickerTableCellView, LetsClicksThroughToTheRow)
{
    ClickedWidget row;
    row.resize(100, 20);
    auto* view = new havrel::ArchivePickerTableCellView(&row);
    view->resize(100, 20);
    auto* inside = new ClickedWidget(view);
    inside->setGeometry(10, 5, 50, 10);
    row.show();
    EXPECT_EQ(row.childAt(20, 8), view);
    EXPECT_EQ(view->childAt(20, 8), nullptr);
    QTest::mouseClick(row.windowHandle(), Qt::LeftButton, {}, QPoint(20, 8));
    EXPECT_EQ(inside->clicks, 0);
    EXPECT_EQ(row.clicks, 1);
}

TEST(ArchivePickerTableCellView, KnowsItsField)
{
    havrel::ArchivePickerTableCellView view;
    EXPECT_EQ(view.field(), nullptr);
    const ItemField field(&view);
    EXPECT_EQ(view.field(), &field);
}

} // namespace
} // namespace havrel::tests
