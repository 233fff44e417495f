// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>
#include <QRect>
#include <QString>
#include <QVariant>

class QPainter;
class QWidget;

namespace havrel {

/// Where a cell draws: its frame divided from the leading edge into a part with the image and the rest with the text.
struct IconAndNameGeometry
{
    QRect imagePart; ///< 6 pixels wider than the image; empty without an image
    QRect image;     ///< 4 pixels into the part, vertically centred, offset rounded up
    QRect text;

    /// \param imageSize an empty size: no image. Sizes are in device-independent pixels.
    [[nodiscard]] static IconAndNameGeometry
    of(const QRect& frame, const QSize& imageSize, Qt::LayoutDirection direction);
};

/// A text of one line that can draw an image before it. A value: views keep as many as they like.
///
/// Threads: the main thread only.
class IconAndNameCell
{
public:
    IconAndNameCell() = default;
    virtual ~IconAndNameCell();

    virtual void setObjectValue(const QVariant& value);                    ///< \selector setObjectValue:
    [[nodiscard]] virtual QVariant objectValue() const { return m_value; } ///< \selector objectValue
    /// What is drawn: the value as text.
    [[nodiscard]] QString text() const { return m_text; }

    /// Drawn before the text; here none. \selector cellImage
    [[nodiscard]] virtual QIcon cellImage() const { return {}; }
    [[nodiscard]] bool isEditable() const noexcept { return false; } ///< \selector isEditable

    [[nodiscard]] bool isHighlighted() const noexcept { return m_isHighlighted; }
    void setHighlighted(bool highlighted) noexcept { m_isHighlighted = highlighted; }

    /// Draws image and text into \p frame, in the font, direction and colours of \p view. Too long a text loses its
    /// middle. \selector drawInteriorWithFrame:inView:
    void drawInteriorWithFrame(QPainter& painter, const QRect& frame, const QWidget& view) const;
    /// The smallest frame in which nothing touches.
    [[nodiscard]] QSize cellSize(const QWidget& view) const;
    /// Of an image in \p view: as large as the style has small icons, and as the texts are high.
    [[nodiscard]] static QSize imageSize(const QWidget& view);

protected:
    IconAndNameCell(const IconAndNameCell&) = default;
    IconAndNameCell& operator=(const IconAndNameCell&) = default;
    IconAndNameCell(IconAndNameCell&&) = default;
    IconAndNameCell& operator=(IconAndNameCell&&) = default;

    void setText(const QString& text) { m_text = text; }

private:
    QVariant m_value;
    QString m_text;
    bool m_isHighlighted = false;
};

} // namespace havrel
