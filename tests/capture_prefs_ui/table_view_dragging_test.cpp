// SPDX-License-Identifier: MIT
// Drops by events sent by hand; real drags are in real_display_test.cpp.
#include "capture_prefs_ui/table_drop_indicator.h"
#include "capture_prefs_ui/table_view.h"
#include "tests/capture_prefs_ui/pattern_table_fixture.h"

#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

namespace havrel::tests {
namespace {

class TableViewDragging : public PatternTable
{
protected:
    void showRows(int count)
    {
        controller().setFilterDefs(numberedPatterns(count));
        show();
        runMainQueue();
        controller().undoManager().clear();
    }

    /// The middle of the gap above a row.
    [[nodiscard]] QPoint gap(qsizetype row) { return {50, table().rowRect(row).top()}; }

    /// Drags something in and lets it go. \return whether it was taken.
    bool drop(const QMimeData& data, const QPoint& at, Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction)
    {
        QDragEnterEvent enter(at, actions, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(table().viewport(), &enter);
        if (!enter.isAccepted())
            return false;
        action = enter.dropAction();
        QDragMoveEvent move(at, actions, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(table().viewport(), &move);
        showedGap = indicator().isVisible();
        QDropEvent drop(at, actions, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(table().viewport(), &drop);
        return drop.isAccepted();
    }
    bool dropText(const char* text, const QPoint& at)
    {
        QMimeData data;
        data.setText(QString::fromUtf8(text));
        return drop(data, at);
    }
    [[nodiscard]] TableDropIndicator& indicator() { return *table().findChild<TableDropIndicator*>(); }
    [[nodiscard]] QString joined() { return lines().join(u' '); }
    /// What dragging the rows out would give; null for nothing.
    [[nodiscard]] QString dragged(const IndexSet& rows)
    {
        QMimeData data;
        const bool isWritten = controller().tableViewWriteRows(table(), rows, data);
        EXPECT_EQ(isWritten, !data.formats().isEmpty());
        return isWritten ? data.text() : QString();
    }

    Qt::DropAction action = Qt::IgnoreAction;
    bool showedGap = false;
};

TEST_F(TableViewDragging, InsertsTheValidLinesAboveTheRow)
{
    showRows(3);
    EXPECT_TRUE(dropText("//a*\n\n////bad\n//2*\nx//b/3", gap(1)));
    EXPECT_EQ(joined(), QStringLiteral("//0* //a* x//b/3 //1* //2*"));
    EXPECT_EQ(action, Qt::CopyAction);
    EXPECT_EQ(controller().undoManager().count(), 1);
    EXPECT_EQ(controller().undoManager().undoText(), QStringLiteral("Add Patterns"));
}

TEST_F(TableViewDragging, DropsAtTheEndsToo)
{
    showRows(2);
    EXPECT_TRUE(dropText("//a*", {50, 0}));
    EXPECT_TRUE(dropText("//z*", {50, table().viewport()->height() - 1}));
    EXPECT_EQ(joined(), QStringLiteral("//a* //0* //1* //z*"));
}

TEST_F(TableViewDragging, ShowsTheGapWhileItIsOverIt)
{
    showRows(3);
    EXPECT_TRUE(dropText("//a*", gap(2)));
    EXPECT_TRUE(showedGap);
    EXPECT_FALSE(indicator().isVisible());
    EXPECT_NEAR(indicator().y(), table().rowRect(2).top(), 3);
}

TEST_F(TableViewDragging, SimplifiesWhatIsSimple)
{
    showRows(0);
    EXPECT_TRUE(dropText("Users//*.log\nx//a/5", {50, 5}));
    EXPECT_TRUE(controller().filterDefs()[0]->simple());
    EXPECT_EQ(controller().filterDefs()[0]->anchorPath(), QStringLiteral("Users"));
    EXPECT_FALSE(controller().filterDefs()[1]->simple());
}

TEST_F(TableViewDragging, SplitsAtLineFeedsOnly)
{
    showRows(0);
    EXPECT_TRUE(dropText("//a\r\n//b\u2028c", {50, 5}));
    ASSERT_EQ(controller().filterDefs().size(), 2);
    EXPECT_EQ(controller().filterDefs()[0]->singlePattern(), QStringLiteral("a\r"));
    EXPECT_EQ(controller().filterDefs()[1]->singlePattern(), QString::fromUtf8("b\u2028c"));
}

TEST_F(TableViewDragging, RootsWhatIsDroppedIntoAnArchivesList)
{
    showRows(0);
    EXPECT_FALSE(dropText("/Users//a*", {50, 5}));
    controller().setRepositoryPatterns(true);
    EXPECT_TRUE(dropText("/Users//a*", {50, 5}));
    ASSERT_EQ(controller().filterDefs().size(), 1);
    EXPECT_TRUE(controller().filterDefs()[0]->rooted());
    EXPECT_EQ(controller().filterDefs()[0]->anchorPath(), QStringLiteral("/Users"));
    EXPECT_EQ(dragged({0}), QStringLiteral("/Users//a*"));
}

TEST_F(TableViewDragging, TakesNothingButTextThatMayBeCopied)
{
    showRows(1);
    QMimeData files;
    files.setUrls({QUrl(QStringLiteral("file:///tmp/x"))});
    EXPECT_FALSE(drop(files, gap(0)));
    QMimeData text;
    text.setText(QStringLiteral("//a*"));
    EXPECT_FALSE(drop(text, gap(0), Qt::MoveAction));
    controller().setEnabled(false);
    EXPECT_FALSE(drop(text, gap(0)));
    EXPECT_EQ(joined(), QStringLiteral("//0*"));
}

TEST_F(TableViewDragging, ValidatesByTheCopyBitOfTheSource)
{
    QMimeData text;
    const auto validated = [this, &text](Qt::DropActions actions) {
        return controller().tableViewValidateDrop(table(), {text, actions}, 0, DropOperation::Above);
    };
    EXPECT_EQ(validated(Qt::CopyAction), Qt::CopyAction);
    EXPECT_EQ(validated(Qt::CopyAction | Qt::LinkAction | Qt::MoveAction), Qt::CopyAction);
    EXPECT_EQ(validated(Qt::LinkAction), Qt::IgnoreAction);
    EXPECT_EQ(validated(Qt::MoveAction), Qt::IgnoreAction);
}

TEST_F(TableViewDragging, DragsOutLinesOfValidRows)
{
    showRows(0);
    controller().addPatternStrings(
        {QStringLiteral("Users//*.log/+"), QStringLiteral("x//b/3/"), QStringLiteral("x//b/3")});
    controller().addPattern(std::make_shared<PatternFilterDef>(PatternType::Glob));
    controller().addPattern(PatternFilterDef::filterDefPlaceholder());
    controller().addPattern(std::make_shared<PatternFilterDef>(QStringLiteral("//w/07:shell")));
    EXPECT_EQ(dragged({0, 1, 2, 3, 4}),
              QStringLiteral("Users//*.log/+:glob\nx//b/3\n//w/07:shell")); // raw, not canonical
    EXPECT_EQ(dragged({1}), QStringLiteral("x//b/3"));
}

TEST_F(TableViewDragging, DragsNothingOutOfInvalidRows)
{
    showRows(0);
    controller().addPattern(std::make_shared<PatternFilterDef>(PatternType::Glob));
    controller().addPattern(PatternFilterDef::filterDefPlaceholder());
    EXPECT_TRUE(dragged({0, 1}).isNull());
    EXPECT_TRUE(dragged({}).isNull());
}

TEST_F(TableViewDragging, TakesALongTextQuickly)
{
    showRows(0);
    QStringList text;
    for (int i = 0; i < 20'000; ++i)
        text << QStringLiteral("//%1*").arg(i);
    EXPECT_TRUE(dropText(qPrintable(text.join(u'\n')), {50, 5}));
    EXPECT_EQ(controller().filterDefs().size(), 20'000);
}

} // namespace
} // namespace havrel::tests
