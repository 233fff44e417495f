// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/pattern_list_command.h"

#include "capture_prefs_ui/pattern_table_view_controller.h"

#include <utility>

namespace havrel {

PatternListCommand::PatternListCommand(PatternTableViewController& controller,
                                       const PatternFilterDefs& list,
                                       const QString& name)
    : QUndoCommand(name)
    , m_controller(controller)
    , m_list(list)
{
}

void PatternListCommand::undo()
{
    step();
}

void PatternListCommand::redo()
{
    if (std::exchange(m_isDone, true))
        step();
}

void PatternListCommand::step()
{
    m_isReplaced = false;
    m_controller.takeStep(*this, PatternFilterDefs(m_list));
    setObsolete(!m_isReplaced); // the list was so already: there is no way back
}

void PatternListCommand::replace(const PatternFilterDefs& list, const QString& name)
{
    m_list = list;
    m_isReplaced = true;
    setText(name);
}

} // namespace havrel
