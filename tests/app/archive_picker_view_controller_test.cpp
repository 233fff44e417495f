// SPDX-License-Identifier: MIT
#include "app/archive_picker_view_controller.h"

#include "app/archive_list_view.h"
#include "app/archive_picker_pane.h"
#include "app/archive_picker_table_cell_view.h"
#include "app/item_field.h"
#include "capture_prefs_ui/height_constraint.h"
#include "fs/path.h"
#include "tests/app/told_archives.h"
#include "tests/support/temporary_tree.h"

#include <QCoreApplication>
#include <QItemSelectionModel>
#include <QLabel>

#include <gtest/gtest.h>

namespace havrel::tests {
namespace {

const QString kRecent = QStringLiteral("recent");
const QString kOther = QStringLiteral("other");

QUrl urlOf(const QByteArray& path)
{
    return JNPath::withCPath(path)->url();
}

class ArchivePickerViewController : public ::testing::Test
{
protected:
    /// Rows as texts: headers, and the paths of archives.
    [[nodiscard]] QByteArrayList rows() const
    {
        QByteArrayList rows;
        for (qsizetype row = 0; row < m_controller.numberOfRowsInTableView(); ++row) {
            const QVariant item = m_controller.tableViewObjectValue(row);
            const bool isUrl = item.typeId() == QMetaType::QUrl;
            rows << (isUrl ? JNPath::pathWithURL(item.toUrl())->cPath() : item.toString().toUtf8());
        }
        return rows;
    }
    void add(const QString& section, const QByteArrayList& paths)
    {
        m_controller.addArchiveInfo(archivesAt(paths), section);
    }
    void select(int row) { table().setCurrentIndex(table().model()->index(row, 0)); }
    [[nodiscard]] ArchiveListView& table() const { return m_controller.tableView(); }

    ArchivePickerPane m_pane;
    havrel::ArchivePickerViewController& m_controller = m_pane.pickerViewController();
};

TEST_F(ArchivePickerViewController, ShowsThatThereAreNone)
{
    EXPECT_EQ(rows(), QByteArrayList{"none"});
    EXPECT_EQ(m_controller.displayItems(), QVariantList{QStringLiteral("none")});
    EXPECT_FALSE(m_controller.choices());
    EXPECT_TRUE(m_controller.tableViewIsGroupRow(0));
    EXPECT_FALSE(m_controller.tableViewShouldSelectRow(0));
    EXPECT_EQ(table().model()->rowCount(), 1);
}

TEST_F(ArchivePickerViewController, AddsNothingForNoArchives)
{
    add(kRecent, {});
    EXPECT_FALSE(m_controller.choices());
    EXPECT_EQ(rows(), QByteArrayList{"none"});
}

TEST_F(ArchivePickerViewController, ListsSectionsWithTheirHeaders)
{
    add(kRecent, {"/x/X.zephra", "/y/Y.zephra"});
    add(kOther, {"/z/Z.zephra"});
    EXPECT_EQ(rows(), (QByteArrayList{"recent", "/x/X.zephra", "/y/Y.zephra", "other", "/z/Z.zephra"}));
    EXPECT_TRUE(m_controller.choices());
    EXPECT_EQ(table().model()->rowCount(), 5);
    const QList<bool> groups{true, false, false, true, false};
    for (int row = 0; row < groups.size(); ++row) {
        EXPECT_EQ(m_controller.tableViewIsGroupRow(row), groups[row]);
        EXPECT_EQ(m_controller.tableViewShouldSelectRow(row), !groups[row]);
    }
}

struct OrderRow
{
    QByteArrayList given;
    QByteArrayList sorted;
};

TEST_F(ArchivePickerViewController, SortsASectionByTheLastComponentsOfPaths)
{
    const OrderRow table[] = {
        {{"/b", "/a"}, {"/a", "/b"}},
        {{"/1/b", "/2/a"}, {"/2/a", "/1/b"}},                                             // not by the whole path
        {{"/a", "/Z", "/B"}, {"/B", "/Z", "/a"}},                                         // code units: no case folded
        {{"/10", "/9"}, {"/10", "/9"}},                                                   // no numbers seen
        {{"/\xc3\xa4", "/z"}, {"/z", "/\xc3\xa4"}},                                       // nor letters of a language
        {{"/\xef\xbf\xbd", "/\xf0\x9f\x98\x80"}, {"/\xf0\x9f\x98\x80", "/\xef\xbf\xbd"}}, // units, not code points
        {{"/2/a", "/1/a", "/3/a"}, {"/2/a", "/1/a", "/3/a"}}, // equal names keep their order
        {{"/a", "/a"}, {"/a", "/a"}},                         // duplicates stay
        {{"/b/", "/a/"}, {"/a/", "/b/"}},                     // folders
        {{"/b%20", "/b "}, {"/b ", "/b%20"}},                 // names, not URLs
    };
    for (const OrderRow& row : table) {
        ArchivePickerPane pane;
        pane.pickerViewController().addArchiveInfo(archivesAt(row.given), kRecent);
        QVariantList expected{kRecent};
        for (const QByteArray& each : row.sorted)
            expected << urlOf(each);
        EXPECT_EQ(pane.pickerViewController().displayItems(), expected) << row.given.join(' ').toStdString();
    }
}

TEST_F(ArchivePickerViewController, LeavesOutWhatHasNoPath)
{
    const QList<QVariantMap> odd{QVariantMap{},
                                 QVariantMap{{QStringLiteral("path"), QVariant()}},
                                 QVariantMap{{QStringLiteral("path"), 7}},
                                 QVariantMap{{QStringLiteral("path"), QByteArray()}},
                                 QVariantMap{{QStringLiteral("path"), QByteArray("relative.zephra")}},
                                 QVariantMap{{QStringLiteral("path"), QByteArray("/a\0b", 4)}}};
    m_controller.addArchiveInfo(odd, kRecent);
    EXPECT_FALSE(m_controller.choices()) << "a header alone is no choice";
    m_controller.addArchiveInfo(odd + archivesAt({"/a"}), kRecent);
    EXPECT_EQ(rows(), (QByteArrayList{"recent", "/a"}));
}

TEST_F(ArchivePickerViewController, TakesPathsAsBytesAndAsTexts)
{
    m_controller.addArchiveInfo(
        {archiveAt("/bad\xff.zephra"), QVariantMap{{QStringLiteral("path"), QString::fromUtf8("/\xc3\xa4.zephra")}}},
        kOther);
    EXPECT_EQ(rows(), (QByteArrayList{"other", "/bad\xff.zephra", "/\xc3\xa4.zephra"}));
}

TEST_F(ArchivePickerViewController, AnswersTheSelectedArchive)
{
    EXPECT_FALSE(m_controller.selectedArchive().isValid());
    add(kRecent, {"/a", "/b"});
    add(kOther, {"/c"});
    EXPECT_FALSE(m_controller.selectedArchive().isValid()) << "nothing is selected yet";
    for (const int row : {1, 2, 4}) {
        select(row);
        EXPECT_EQ(m_controller.selectedArchive(), m_controller.tableViewObjectValue(row).toUrl());
    }
    table().clearSelection();
    EXPECT_FALSE(m_controller.selectedArchive().isValid());
}

TEST_F(ArchivePickerViewController, NeverAnswersAHeaderOrTheFirstRow)
{
    add(kOther, {"/a"});
    select(0);
    EXPECT_FALSE(m_controller.selectedArchive().isValid());
    EXPECT_TRUE(table().selectionModel()->selectedIndexes().isEmpty());
}

TEST_F(ArchivePickerViewController, SelectsTheFirstArchive)
{
    m_controller.selectFirstArchive();
    EXPECT_TRUE(table().selectionModel()->selectedIndexes().isEmpty());
    add(kOther, {"/b", "/a"});
    m_controller.selectFirstArchive();
    EXPECT_EQ(m_controller.selectedArchive(), urlOf("/a"));
}

TEST_F(ArchivePickerViewController, KeepsTheSelectionWhenASectionIsAdded)
{
    add(kRecent, {"/a", "/b"});
    select(2);
    add(kOther, {"/c"});
    EXPECT_EQ(m_controller.selectedArchive(), urlOf("/b"));
}

TEST_F(ArchivePickerViewController, ShowsAnArchiveInTheFirstViewOfItsRow)
{
    const TemporaryTree tree{"Home.zephra"};
    add(kRecent, {tree.bytes("Home.zephra"), "/missing/Work.zephra"});
    auto* home = qobject_cast<ArchivePickerTableCellView*>(m_controller.tableViewView(0, 1));
    ASSERT_NE(home, nullptr);
    EXPECT_EQ(home->objectName(), QStringLiteral("archive"));
    EXPECT_EQ(home->field()->cell().text(), QStringLiteral("Home.zephra"));
    EXPECT_FALSE(home->field()->cell().cellImage().isNull());
    auto* work = qobject_cast<ArchivePickerTableCellView*>(m_controller.tableViewView(0, 2));
    ASSERT_NE(work, nullptr);
    EXPECT_EQ(work->field()->cell().text(), QStringLiteral("/missing/Work.zephra")) << "as it is given";
}

TEST_F(ArchivePickerViewController, ShowsAHeaderInTheViewOfItsName)
{
    EXPECT_EQ(m_controller.tableViewView(std::nullopt, 0)->objectName(), QStringLiteral("none"));
    EXPECT_TRUE(m_controller.sectionTextOf(0).contains(QStringLiteral("havrel archive create")));
    add(kRecent, {"/a"});
    add(kOther, {"/b"});
    add(QStringLiteral("unheard of"), {"/c"});
    EXPECT_EQ(m_controller.tableViewView(std::nullopt, 0)->objectName(), kRecent);
    EXPECT_EQ(m_controller.tableViewView(std::nullopt, 2)->objectName(), kOther);
    EXPECT_EQ(m_controller.tableViewView(std::nullopt, 4), nullptr);
    EXPECT_EQ(m_controller.sectionTextOf(1), QStringLiteral("Holds these items"));
    EXPECT_EQ(m_controller.sectionTextOf(3), QStringLiteral("Captured to recently"));
    EXPECT_EQ(m_controller.sectionTextOf(5), QString());
    m_pane.show();
    EXPECT_FALSE(m_pane.grab().isNull()); // draws nothing for it
}

TEST_F(ArchivePickerViewController, AnswersNothingForRowsThatThereAreNot)
{
    for (const qsizetype row : {qsizetype(-1), qsizetype(1), qsizetype(99)}) {
        EXPECT_FALSE(m_controller.tableViewObjectValue(row).isValid());
        EXPECT_FALSE(m_controller.tableViewIsGroupRow(row));
    }
}

TEST_F(ArchivePickerViewController, MakesTheListAsHighAsItsRows)
{
    for (const int count : {0, 1, 3, 1000}) {
        ArchivePickerPane pane;
        auto& controller = pane.pickerViewController();
        QByteArrayList paths;
        for (int i = 0; i < count; ++i)
            paths << "/archive" + QByteArray::number(i);
        controller.addArchiveInfo(archivesAt(paths), kRecent);
        pane.sizeToFit();
        ArchiveListView& table = controller.tableView();
        int height = 0;
        for (int row = 0; row < table.model()->rowCount(); ++row)
            height += table.visualRect(table.model()->index(row, 0)).height();
        EXPECT_EQ(controller.heightConstraint()->constant(), height + 2 * table.frameWidth()) << count;
    }
}

TEST_F(ArchivePickerViewController, SizesTheListSoonAfterItAppears)
{
    add(kRecent, {"/a", "/b", "/c"});
    ASSERT_EQ(m_controller.heightConstraint()->constant(), 0);
    m_controller.viewWillAppear();
    EXPECT_EQ(m_controller.heightConstraint()->constant(), 0) << "not at once";
    QCoreApplication::sendPostedEvents();
    const int height = m_controller.heightConstraint()->constant();
    EXPECT_GT(height, 0);
    add(kOther, {"/d"});
    m_pane.show(); // which calls it
    QCoreApplication::sendPostedEvents();
    EXPECT_GT(m_controller.heightConstraint()->constant(), height);
}

TEST_F(ArchivePickerViewController, MayGoBeforeTheListIsSized)
{
    auto pane = std::make_unique<ArchivePickerPane>();
    pane->pickerViewController().viewWillAppear();
    pane.reset();
    QCoreApplication::sendPostedEvents();
}

TEST_F(ArchivePickerViewController, WorksWithoutAConstraint)
{
    m_controller.setHeightConstraint(nullptr);
    m_controller.resizeToRows();
    EXPECT_EQ(m_controller.heightConstraint(), nullptr);
}

TEST_F(ArchivePickerViewController, TellsWhereAnArchiveIsAndWhenItWasCapturedTo)
{
    // 2020-09-13 12:26:40 UTC, in seconds since 2001-01-01
    QVariantMap told = archiveAt("/archives/<b>.zephra");
    told.insert(QStringLiteral("lastCaptureTime"), 621692800.0);
    m_controller.addArchiveInfo({told, archiveAt("/x/untold.zephra")}, kRecent);
    const QDateTime time = QDateTime::fromSecsSinceEpoch(1'600'000'000);
    EXPECT_EQ(m_controller.toolTipOf(urlOf("/archives/<b>.zephra")),
              QStringLiteral("in /archives\nlast captured to ") + QLocale().toString(time, QLocale::ShortFormat));
    EXPECT_EQ(m_controller.toolTipOf(urlOf("/x/untold.zephra")), QStringLiteral("in /x"));
    EXPECT_EQ(m_controller.toolTipOf({}), QString());
    const QModelIndex row = table().model()->index(1, 0);
    EXPECT_TRUE(
        row.data(Qt::ToolTipRole).toString().startsWith(QStringLiteral("<p style='white-space:pre'>in /archives")));
    EXPECT_EQ(table().model()->index(0, 0).data(Qt::ToolTipRole), QVariant());
}

} // namespace
} // namespace havrel::tests
