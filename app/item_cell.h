// SPDX-License-Identifier: MIT
#pragma once

#include "app/icon_and_name_cell.h"

namespace havrel {

/// Shows an item of the file system by its path: the desktop's icon and the name for people. Anything else that it is
/// given is shown as it is. Copies have the icon and the given value too.
///
/// Threads: the main thread only.
class ItemCell final : public IconAndNameCell
{
public:
    /// Looks at the disk where \p value is a path as text. \selector setObjectValue:
    void setObjectValue(const QVariant& value) override;
    /// The value as it was given. \selector objectValue
    [[nodiscard]] QVariant objectValue() const override { return m_originalValue; }
    /// The icon of the item; none for what is no existing item. \selector cellImage
    [[nodiscard]] QIcon cellImage() const override { return m_icon; }

private:
    QIcon m_icon;
    QVariant m_originalValue;
};

} // namespace havrel
