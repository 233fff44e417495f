// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/index_set.h"

namespace havrel {

/// Which rows of a list are selected, which one the keyboard is at, and from which one a range extends.
///
/// Threads: the main thread only.
class RowSelection
{
public:
    /// What a click or an arrow key does to the selection.
    enum class Change {
        Only,   ///< this row and no other
        Toggle, ///< this row in or out
        Extend, ///< from the anchor to this row
        Move,   ///< nothing; only the keyboard goes there
    };

    [[nodiscard]] const IndexSet& rows() const noexcept { return m_rows; }
    [[nodiscard]] qsizetype current() const noexcept { return m_current; } ///< -1: none
    [[nodiscard]] bool contains(qsizetype row) const;

    void go(qsizetype row, Change change);
    void selectAll(qsizetype count);
    /// Sets all of it; the anchor is the current row.
    void set(IndexSet rows, qsizetype current);

private:
    void selectRange(qsizetype from, qsizetype to);

    IndexSet m_rows;
    qsizetype m_current = -1;
    qsizetype m_anchor = -1;
};

} // namespace havrel
