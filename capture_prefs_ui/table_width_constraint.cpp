// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/table_width_constraint.h"

namespace havrel {

TableWidthConstraint::TableWidthConstraint(QWidget& item, int constant, int priority)
    : m_item(&item)
    , m_constant(constant)
    , m_priority(priority)
{
    item.setMinimumWidth(priority == kRequiredPriority ? constant : 0);
}

TableWidthConstraint TableWidthConstraint::withPriority(int priority) const
{
    return {*m_item, m_constant, priority};
}

} // namespace havrel
