// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QWidget>

namespace havrel {

/// How far a wish for a width binds.
/// \source the platform's documented layout priorities: 1000 must be kept, 1 gives way to everything.
inline constexpr int kRequiredPriority = 1000;
inline constexpr int kWeakestPriority = 1;

/// The wish that an item has a width. Required, it keeps the item that wide at least, so that rows never get narrower
/// than can be read; weaker, the item is as wide as its window leaves it.
///
/// Threads: the main thread only.
class TableWidthConstraint
{
public:
    /// \param constant in device-independent pixels. \param priority 1 to 1000.
    TableWidthConstraint(QWidget& item, int constant, int priority);

    [[nodiscard]] QWidget* item() const noexcept { return m_item; } ///< null when it is gone
    [[nodiscard]] int constant() const noexcept { return m_constant; }
    [[nodiscard]] int priority() const noexcept { return m_priority; }
    /// An equal one of another priority, which takes this one's place.
    [[nodiscard]] TableWidthConstraint withPriority(int priority) const;

private:
    QPointer<QWidget> m_item;
    int m_constant;
    int m_priority;
};

} // namespace havrel
