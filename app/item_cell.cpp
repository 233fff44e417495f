// SPDX-License-Identifier: MIT
#include "app/item_cell.h"

#include "capture_prefs_ui/item_icon.h"
#include "fs/path.h"

namespace havrel {

void ItemCell::setObjectValue(const QVariant& value)
{
    IconAndNameCell::setObjectValue(value);
    m_originalValue = value;
    m_icon = {};
    const QString path = value.typeId() == QMetaType::QString ? value.toString() : QString();
    if (path.isEmpty())
        return;
    const JNPathPtr item = JNPath::pathWithPath(path);
    if (!item->exists())
        return;
    m_icon = iconForItem(*item);
    setText(item->displayName());
}

} // namespace havrel
