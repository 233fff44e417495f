// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QWidget>

namespace havrel {

/// Holds a widget at a height, in device-independent pixels.
///
/// Threads: the main thread only.
class HeightConstraint
{
public:
    explicit HeightConstraint(QWidget& item)
        : m_item(&item)
    {
    }

    [[nodiscard]] int constant() const noexcept { return m_constant; } ///< 0 before it was set. \selector constant
    void setConstant(int constant)                                     ///< \selector setConstant:
    {
        m_constant = constant;
        if (m_item)
            m_item->setFixedHeight(constant);
    }

private:
    QPointer<QWidget> m_item;
    int m_constant = 0;
};

} // namespace havrel
