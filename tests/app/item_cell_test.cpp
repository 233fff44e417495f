// SPDX-License-Identifier: MIT
#include "app/item_cell.h"

#include "app/item_field.h"
#include "fs/path.h"
#include "tests/support/temporary_tree.h"

#include <QIcon>
#include <QImage>
#include <QPixmap>

#include <gtest/gtest.h>

namespace havrel::tests {
namespace {

class ItemCell : public ::testing::Test
{
protected:
    [[nodiscard]] QString textOf(std::string_view entry) const
    {
        return JNPath::withCPath(m_tree.bytes(entry))->path();
    }

    const TemporaryTree m_tree{"Home.zephra", "folder/", "bad\xff.zephra"};
    havrel::ItemCell m_cell;
};

TEST_F(ItemCell, ShowsAnItemByItsIconAndName)
{
    for (const char* each : {"Home.zephra", "folder", "bad\xff.zephra"}) {
        m_cell.setObjectValue(textOf(each));
        EXPECT_EQ(m_cell.text(), JNPath::withCPath(each)->path());
        EXPECT_FALSE(m_cell.cellImage().isNull()) << each;
        EXPECT_EQ(m_cell.objectValue(), QVariant(textOf(each)));
    }
}

/// The theme and where else the toolkit looks for icons, as they were.
class ThemeOfIcons
{
public:
    explicit ThemeOfIcons(const QString& name) { QIcon::setThemeName(name); }
    ~ThemeOfIcons()
    {
        QIcon::setThemeName(m_name);
        QIcon::setFallbackSearchPaths(m_folders);
    }
    Q_DISABLE_COPY_MOVE(ThemeOfIcons)

private:
    const QString m_name = QIcon::themeName();
    const QStringList m_folders = QIcon::fallbackSearchPaths();
};

TEST_F(ItemCell, ShowsAnArchiveByTheIconOfItsType)
{
    const ThemeOfIcons theme(QStringLiteral("hicolor"));
    m_tree.add("OLD.ZEPHRA");
    m_tree.add("zephra"); // no extension
    const QColor lid(0x55, 0x90, 0x8f);
    const std::pair<const char*, bool> rows[] = {{"Home.zephra", true}, {"OLD.ZEPHRA", true}, {"zephra", false}};
    for (const auto& [name, isArchive] : rows) {
        m_cell.setObjectValue(textOf(name));
        const QImage picture = m_cell.cellImage().pixmap(QSize(16, 16), 1).toImage();
        EXPECT_EQ(picture.pixelColor(8, 5) == lid, isArchive) << name;
    }
}

TEST_F(ItemCell, ShowsAnythingElseAsItIs)
{
    m_tree.addLink("dangling", "nowhere");
    const QVariant rows[] = {
        textOf("missing.zephra"), textOf("dangling"), QString(), 7, QUrl(QStringLiteral("file:///"))};
    for (const QVariant& each : rows) {
        m_cell.setObjectValue(each);
        EXPECT_EQ(m_cell.text(), each.toString());
        EXPECT_TRUE(m_cell.cellImage().isNull()) << each.toString().toStdString();
        EXPECT_EQ(m_cell.objectValue(), each);
    }
    m_cell.setObjectValue({});
    EXPECT_EQ(m_cell.text(), QString());
    EXPECT_FALSE(m_cell.objectValue().isValid());
}

TEST_F(ItemCell, ForgetsTheIconOfTheValueBefore)
{
    m_cell.setObjectValue(textOf("Home.zephra"));
    m_cell.setObjectValue(textOf("missing.zephra"));
    EXPECT_TRUE(m_cell.cellImage().isNull());
}

TEST_F(ItemCell, IsCopiedWithItsIconAndValue)
{
    m_cell.setObjectValue(textOf("Home.zephra"));
    const havrel::ItemCell copy = m_cell; // NOLINT(performance-unnecessary-copy-initialization)
    m_cell.setObjectValue({});
    EXPECT_EQ(copy.objectValue(), QVariant(textOf("Home.zephra")));
    EXPECT_EQ(copy.text(), QStringLiteral("Home.zephra"));
    EXPECT_FALSE(copy.cellImage().isNull());
}

TEST_F(ItemCell, IsGivenTheUrlsOfItemsByItsField)
{
    ItemField field;
    field.setURL(JNPath::withCPath(m_tree.bytes("bad\xff.zephra"))->url());
    EXPECT_EQ(field.cell().text(), JNPath::withCPath("bad\xff.zephra")->path());
    EXPECT_FALSE(field.cell().cellImage().isNull());
    field.setURL(QUrl(QStringLiteral("http://a/b")));
    EXPECT_EQ(field.cell().text(), QString());
    EXPECT_TRUE(field.cell().cellImage().isNull());
}

TEST_F(ItemCell, KeepsInAFieldWhatItSaw)
{
    ItemField field;
    const QUrl url = JNPath::withCPath(m_tree.bytes("Home.zephra"))->url();
    field.setURL(url);
    field.setURL({});
    ASSERT_TRUE(std::filesystem::remove(m_tree.path("Home.zephra")));
    field.setURL(url);
    EXPECT_EQ(field.cell().text(), QStringLiteral("Home.zephra"));
}

} // namespace
} // namespace havrel::tests
