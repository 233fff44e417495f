// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/pattern_value_command.h"

#include "capture_prefs_ui/pattern_table_view_controller.h"

#include <utility>

namespace havrel {

PatternValueCommand::PatternValueCommand(PatternTableViewController& controller, Edit edit)
    : QUndoCommand(PatternTableViewController::tr("Change Pattern"))
    , m_controller(controller)
    , m_edit(std::move(edit))
{
}

void PatternValueCommand::undo()
{
    m_controller.setValueInRow(m_edit.row, m_edit.property, m_edit.before);
}

void PatternValueCommand::redo()
{
    if (std::exchange(m_isDone, true))
        m_controller.setValueInRow(m_edit.row, m_edit.property, m_edit.after);
}

} // namespace havrel
