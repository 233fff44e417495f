// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/row_selection.h"

#include <algorithm>
#include <utility>

namespace havrel {
namespace {

IndexSet::Index indexOf(qsizetype row)
{
    return static_cast<IndexSet::Index>(row);
}

} // namespace

bool RowSelection::contains(qsizetype row) const
{
    return row >= 0 && m_rows.containsIndex(indexOf(row));
}

void RowSelection::go(qsizetype row, Change change)
{
    m_current = row;
    if (change == Change::Extend) {
        m_anchor = m_anchor < 0 ? row : m_anchor;
        return selectRange(m_anchor, row);
    }
    m_anchor = row;
    if (change == Change::Only)
        m_rows = {indexOf(row)};
    else if (change == Change::Toggle && contains(row))
        m_rows.removeIndex(indexOf(row));
    else if (change == Change::Toggle)
        m_rows.addIndex(indexOf(row));
}

void RowSelection::selectAll(qsizetype count)
{
    m_rows = {};
    if (count > 0)
        selectRange(0, count - 1);
}

void RowSelection::set(IndexSet rows, qsizetype current)
{
    m_rows = std::move(rows);
    m_current = current;
    m_anchor = current;
}

void RowSelection::selectRange(qsizetype from, qsizetype to)
{
    m_rows = {};
    for (qsizetype row = std::min(from, to); row <= std::max(from, to); ++row)
        m_rows.addIndex(indexOf(row));
}

} // namespace havrel
