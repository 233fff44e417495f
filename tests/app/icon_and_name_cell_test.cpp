// SPDX-License-Identifier: MIT
#include "app/icon_and_name_cell.h"

#include <QPainter>
#include <QPixmap>
#include <QWidget>

#include <gtest/gtest.h>

namespace havrel::tests {
namespace {

class ColouredCell final : public havrel::IconAndNameCell
{
public:
    [[nodiscard]] QIcon cellImage() const override
    {
        QPixmap pixmap(64, 64);
        pixmap.fill(Qt::red);
        return pixmap;
    }
};

/// A view whose colours the test knows, and what a cell draws in it.
class IconAndNameCell : public ::testing::Test
{
protected:
    IconAndNameCell()
    {
        QPalette palette;
        palette.setColor(QPalette::Highlight, Qt::blue);
        palette.setColor(QPalette::Text, Qt::black);
        palette.setColor(QPalette::HighlightedText, Qt::green);
        m_view.setPalette(palette);
    }
    [[nodiscard]] QImage drawn(const havrel::IconAndNameCell& cell) const
    {
        QImage image(m_frame.bottomRight().x() + 20, m_frame.bottomRight().y() + 20, QImage::Format_ARGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        cell.drawInteriorWithFrame(painter, m_frame, m_view);
        return image;
    }
    /// The smallest rectangle that holds every pixel of another colour than \p ground.
    [[nodiscard]] static QRect inkOf(const QImage& image, const QRect& in)
    {
        QRect ink;
        for (int y = in.top(); y <= in.bottom(); ++y)
            for (int x = in.left(); x <= in.right(); ++x)
                if (image.pixelColor(x, y) != QColor(Qt::white))
                    ink |= QRect(x, y, 1, 1);
        return ink;
    }
    [[nodiscard]] IconAndNameGeometry places() const
    {
        return IconAndNameGeometry::of(m_frame, ColouredCell::imageSize(m_view), m_view.layoutDirection());
    }

    QWidget m_view;
    QRect m_frame{10, 20, 200, 41};
};

struct GeometryRow
{
    QRect frame;
    QSize image;
    QRect imagePart;
    QRect imagePlace;
    QRect text;
};

TEST_F(IconAndNameCell, DividesItsFrameFromTheLeadingEdge)
{
    const GeometryRow rows[] = {
        {{0, 0, 100, 20}, {16, 16}, {0, 0, 22, 20}, {4, 2, 16, 16}, {22, 0, 78, 20}},
        {{10, 30, 100, 21}, {16, 16}, {10, 30, 22, 21}, {14, 33, 16, 16}, {32, 30, 78, 21}}, // 2.5, rounded up
        {{0, 0, 100, 16}, {16, 16}, {0, 0, 22, 16}, {4, 0, 16, 16}, {22, 0, 78, 16}},
        {{0, 0, 100, 13}, {16, 16}, {0, 0, 22, 13}, {4, -1, 16, 16}, {22, 0, 78, 13}}, // -1.5, rounded up
        {{0, 0, 100, 40}, {32, 24}, {0, 0, 38, 40}, {4, 8, 32, 24}, {38, 0, 62, 40}},
        {{3, 4, 100, 20}, {}, {}, {}, {3, 4, 100, 20}},
    };
    for (const GeometryRow& row : rows) {
        const IconAndNameGeometry places = IconAndNameGeometry::of(row.frame, row.image, Qt::LeftToRight);
        EXPECT_EQ(places.imagePart, row.imagePart);
        EXPECT_EQ(places.image, row.imagePlace);
        EXPECT_EQ(places.text, row.text);
    }
}

TEST_F(IconAndNameCell, IsMirroredFromRightToLeft)
{
    const IconAndNameGeometry places = IconAndNameGeometry::of({10, 0, 100, 20}, {16, 16}, Qt::RightToLeft);
    EXPECT_EQ(places.imagePart, QRect(88, 0, 22, 20));
    EXPECT_EQ(places.image, QRect(90, 2, 16, 16));
    EXPECT_EQ(places.text, QRect(10, 0, 78, 20));
}

TEST_F(IconAndNameCell, HasNoImageAndCannotBeEdited)
{
    const havrel::IconAndNameCell cell;
    EXPECT_TRUE(cell.cellImage().isNull());
    EXPECT_FALSE(cell.isEditable());
}

TEST_F(IconAndNameCell, ShowsItsValueAsText)
{
    havrel::IconAndNameCell cell;
    cell.setObjectValue(QStringLiteral("/no/such"));
    EXPECT_EQ(cell.text(), QStringLiteral("/no/such"));
    cell.setObjectValue(7);
    EXPECT_EQ(cell.text(), QStringLiteral("7"));
    EXPECT_EQ(cell.objectValue(), QVariant(7));
    cell.setObjectValue({});
    EXPECT_EQ(cell.text(), QString());
}

TEST_F(IconAndNameCell, DrawsItsImageInItsPlaceAndTheTextBesideIt)
{
    ColouredCell cell;
    cell.setObjectValue(QStringLiteral("HHH"));
    for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        m_view.setLayoutDirection(direction);
        const QImage image = drawn(cell);
        EXPECT_EQ(inkOf(image, places().imagePart), places().image);
        EXPECT_EQ(image.pixelColor(places().image.center()), QColor(Qt::red));
        EXPECT_FALSE(inkOf(image, places().text).isNull());
        EXPECT_EQ(inkOf(image, image.rect()), inkOf(image, m_frame)) << "nothing beside the frame";
    }
}

TEST_F(IconAndNameCell, GivesTheTextTheWholeFrameWithoutAnImage)
{
    havrel::IconAndNameCell cell;
    cell.setObjectValue(QStringLiteral("HHH"));
    const QRect ink = inkOf(drawn(cell), m_frame);
    EXPECT_LT(ink.left(), m_frame.left() + 6);
    cell.setHighlighted(true);
    EXPECT_EQ(drawn(cell).pixelColor(m_frame.bottomLeft()), QColor(Qt::white)) << "there is no image part to fill";
}

TEST_F(IconAndNameCell, FillsThePartOfTheImageWhenItIsHighlighted)
{
    ColouredCell cell;
    cell.setObjectValue(QStringLiteral("HHH"));
    cell.setHighlighted(true);
    const QImage image = drawn(cell);
    EXPECT_EQ(inkOf(image, places().imagePart), places().imagePart);
    EXPECT_EQ(image.pixelColor(places().imagePart.topLeft()), QColor(Qt::blue));
    EXPECT_EQ(image.pixelColor(places().image.center()), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(places().text.topLeft()), QColor(Qt::white)) << "only that part";
}

TEST_F(IconAndNameCell, CutsTheMiddleOfATextThatIsTooLong)
{
    ColouredCell cell;
    cell.setObjectValue(QString(QStringLiteral("H")).repeated(500));
    const QImage image = drawn(cell);
    EXPECT_EQ(inkOf(image, image.rect()), inkOf(image, m_frame));
    EXPECT_FALSE(inkOf(image, {m_frame.right() - 24, m_frame.top(), 24, m_frame.height()}).isNull());
}

TEST_F(IconAndNameCell, IsAsHighAsItsTextsAndImages)
{
    ColouredCell cell;
    cell.setObjectValue(QStringLiteral("H"));
    QFont large = m_view.font();
    large.setPointSizeF(30);
    m_view.setFont(large);
    EXPECT_EQ(ColouredCell::imageSize(m_view).height(), m_view.fontMetrics().height());
    EXPECT_GE(cell.cellSize(m_view).height(), m_view.fontMetrics().height());
    EXPECT_GT(cell.cellSize(m_view).width(), ColouredCell::imageSize(m_view).width() + 6);
}

} // namespace
} // namespace havrel::tests
