// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/resizing_table_view_controller.h"

#include "capture_prefs_ui/height_constraint.h"
#include "tests/capture_prefs_ui/pattern_table_fixture.h"

#include <QToolButton>

namespace havrel::tests {
namespace {

class TableSizing : public PatternTable
{
protected:
    [[nodiscard]] int heightOfRows(int rows)
    {
        return rows * (table().rowHeight() + table().intercellSpacing()) + 2 * table().frameWidth();
    }
    [[nodiscard]] int constant() { return controller().heightConstraint()->constant(); }
};

TEST_F(TableSizing, IsTwoToEightRowsHigh)
{
    EXPECT_EQ(controller().heightRowRange(), (RowRange{2, 7}));
    const std::pair<int, int> rows[] = {{0, 2}, {1, 2}, {2, 2}, {3, 3}, {7, 7}, {8, 8}, {9, 8}, {20, 8}};
    for (const auto& [count, shown] : rows) {
        controller().setFilterDefs(numberedPatterns(count));
        runMainQueue();
        EXPECT_EQ(constant(), heightOfRows(shown)) << count;
        EXPECT_EQ(table().minimumHeight(), constant());
        EXPECT_EQ(table().maximumHeight(), constant());
    }
}

TEST_F(TableSizing, ShowsWholeRows)
{
    controller().setFilterDefs(numberedPatterns(20));
    show();
    runMainQueue();
    EXPECT_EQ(table().viewport()->height(), 8 * (table().rowHeight() + table().intercellSpacing()));
}

TEST_F(TableSizing, KeepsTheRangeThatItIsGiven)
{
    controller().setHeightRowRange({3, 2});
    controller().awakeFromNib();
    EXPECT_EQ(controller().heightRowRange(), (RowRange{3, 2}));
    controller().setFilterDefs(numberedPatterns(1));
    EXPECT_EQ(constant(), heightOfRows(3));
    controller().setFilterDefs(numberedPatterns(9));
    EXPECT_EQ(constant(), heightOfRows(4));
}

TEST_F(TableSizing, LeavesTheHeightAloneWithoutARange)
{
    const int before = constant();
    controller().setHeightRowRange({5, 0});
    controller().setFilterDefs(numberedPatterns(9));
    runMainQueue();
    EXPECT_EQ(constant(), before);
}

TEST_F(TableSizing, ResizesBeforeItAppears)
{
    controller().setHeightRowRange({4, 1});
    window.show();
    EXPECT_EQ(constant(), heightOfRows(4));
}

TEST_F(TableSizing, ResizesSoonAfterItIsLoaded)
{
    controller().setHeightRowRange({4, 1});
    controller().reloadTableData();
    EXPECT_NE(constant(), heightOfRows(4));
    runMainQueue();
    EXPECT_EQ(constant(), heightOfRows(4));
}

TEST_F(TableSizing, FollowsTheFont)
{
    show();
    const int before = table().rowHeight();
    QFont large = window.font();
    large.setPointSizeF(3 * large.pointSizeF());
    window.setFont(large);
    EXPECT_GT(table().rowHeight(), 2 * before);
    EXPECT_EQ(constant(), heightOfRows(2));
}

TEST(ResizingTableViewController, LeavesATableWithoutRowsBehind)
{
    TableView table;
    table.resize(300, 100);
    table.show();
    {
        PatternTableViewController controller(table);
        controller.setFilterDefs(numberedPatterns(50));
        ASSERT_NE(table.viewAtRow(0), nullptr);
        table.viewAtRow(0)->autoEdit();
    }
    table.resize(300, 300); // there is room for more rows now
    EXPECT_EQ(table.numberOfRows(), 0);
    EXPECT_TRUE(table.views().empty());
}

TEST(ResizingTableViewController, DoesNothingByItself)
{
    class Plain final : public ResizingTableViewController
    {
    public:
        using ResizingTableViewController::ResizingTableViewController;
        [[nodiscard]] qsizetype numberOfRowsInTableView(const TableView&) const override { return 0; }
        [[nodiscard]] std::shared_ptr<QObject> tableViewObjectValue(const TableView&, qsizetype) const override
        {
            return {};
        }
        [[nodiscard]] Qt::DropAction
        tableViewValidateDrop(const TableView&, const DraggingInfo&, qsizetype, DropOperation) override
        {
            return Qt::IgnoreAction;
        }
        bool tableViewAcceptDrop(TableView&, const DraggingInfo&, qsizetype, DropOperation) override { return false; }
        bool tableViewWriteRows(const TableView&, const IndexSet&, QMimeData&) override { return false; }
        [[nodiscard]] TableCellView* tableViewView(TableView&, qsizetype) override { return nullptr; }
        [[nodiscard]] QString tableViewToolTip(const TableView&, qsizetype) const override { return {}; }
        void tableViewMoveRows(TableView&, const IndexSet&, int) override {}
    };
    TableView table;
    Plain plain(table);
    QToolButton remove;
    plain.setRemoveButton(&remove);
    plain.awakeFromNib();
    EXPECT_EQ(plain.heightRowRange(), RowRange{}); // nothing constrains a height
    plain.doAddItems(nullptr);
    plain.doRemoveSelectedItems(nullptr);
    plain.reloadTableData();
    plain.resizeTableView();
    EXPECT_FALSE(remove.isEnabled());
}

} // namespace
} // namespace havrel::tests
