// SPDX-License-Identifier: MIT
#pragma once

#include "app/item_cell.h"

#include <QHash>
#include <QUrl>
#include <QWidget>

namespace havrel {

/// Shows one item: its icon and its name.
///
/// Looks at an item when it is shown for the first time and keeps what it saw, because a list shows the same items over
/// and over again through one field.
///
/// Threads: the main thread only.
class ItemField : public QWidget
{
    Q_OBJECT

public:
    explicit ItemField(QWidget* parent = nullptr);

    /// Shows the item of a file URL; nothing for any other one. \selector setURL:
    void setURL(const QUrl& url);
    [[nodiscard]] const ItemCell& cell() const noexcept { return m_cell; }
    void setHighlighted(bool highlighted);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ItemCell m_cell;
    QHash<QUrl, ItemCell> m_seen;
};

} // namespace havrel
