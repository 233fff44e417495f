// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QWidget>

#include <functional>
#include <utility>

namespace havrel {

/// Holds a widget at a height, in device-independent pixels.
///
/// Threads: the main thread only.
class HeightConstraint
{
public:
    explicit HeightConstraint(QWidget& item)
        : HeightConstraint([held = QPointer(&item)](int height) {
            if (held)
                held->setFixedHeight(height);
        })
    {
    }
    /// \param hold makes something as high as its place allows, up to the height.
    explicit HeightConstraint(std::function<void(int height)> hold)
        : m_hold(std::move(hold))
    {
    }

    [[nodiscard]] int constant() const noexcept { return m_constant; } ///< 0 before it was set. \selector constant
    void setConstant(int constant)                                     ///< \selector setConstant:
    {
        m_constant = constant;
        m_hold(constant);
    }

private:
    std::function<void(int height)> m_hold;
    int m_constant = 0;
};

} // namespace havrel
