// SPDX-License-Identifier: MIT
#pragma once

#include "filters/pattern_filter_defs.h"

#include <QUndoCommand>

namespace havrel {

class PatternTableViewController;

/// One step back, or forth again, in the list of a pattern table. Setting a list takes another step down, in the other
/// direction; while this step is being taken that one replaces it.
///
/// Threads: the main thread only.
class PatternListCommand final : public QUndoCommand
{
public:
    /// \param list what the step leads to, \param name what the user reads.
    PatternListCommand(PatternTableViewController& controller, const PatternFilterDefs& list, const QString& name);

    void undo() override;
    void redo() override; ///< Nothing the first time: what it is about has happened already.
    /// Leads to \p list from now on.
    void replace(const PatternFilterDefs& list, const QString& name);

private:
    void step();

    PatternTableViewController& m_controller; // owns the stack that owns this
    PatternFilterDefs m_list;
    bool m_isDone = false;
    bool m_isReplaced = false;
};

} // namespace havrel
