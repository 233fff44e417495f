// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QUndoCommand>
#include <QVariant>

namespace havrel {

class PatternTableViewController;

/// One step back, or forth again, in what the user edited in a row of a pattern table. It knows the row by its place:
/// steps are taken in order, so the list then is as long and as ordered as when the row was edited, though what was
/// removed and came back is another object.
///
/// Threads: the main thread only.
class PatternValueCommand final : public QUndoCommand
{
public:
    struct Edit
    {
        qsizetype row;
        QString property; ///< of the definition
        QVariant before;
        QVariant after;
    };

    PatternValueCommand(PatternTableViewController& controller, Edit edit);

    void undo() override;
    void redo() override; ///< Nothing the first time: what it is about has happened already.

private:
    PatternTableViewController& m_controller; // owns the stack that owns this
    Edit m_edit;
    bool m_isDone = false;
};

} // namespace havrel
