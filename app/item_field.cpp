// SPDX-License-Identifier: MIT
#include "app/item_field.h"

#include "fs/path.h"

#include <QPainter>

namespace havrel {

ItemField::ItemField(QWidget* parent)
    : QWidget(parent)
{
}

void ItemField::setURL(const QUrl& url)
{
    auto seen = m_seen.find(url);
    if (seen == m_seen.end()) {
        const JNPathPtr path = JNPath::pathWithURL(url);
        seen = m_seen.insert(url, {});
        seen->setObjectValue(path ? path->path() : QString());
    }
    const bool isHighlighted = m_cell.isHighlighted();
    m_cell = *seen;
    m_cell.setHighlighted(isHighlighted);
    update();
}

void ItemField::setHighlighted(bool highlighted)
{
    m_cell.setHighlighted(highlighted);
    update();
}

QSize ItemField::sizeHint() const
{
    return m_cell.cellSize(*this);
}

QSize ItemField::minimumSizeHint() const
{
    return {0, sizeHint().height()};
}

void ItemField::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    m_cell.drawInteriorWithFrame(painter, rect(), *this);
}

} // namespace havrel
