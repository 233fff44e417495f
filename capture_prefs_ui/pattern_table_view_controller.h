// SPDX-License-Identifier: MIT
#pragma once

#include "capture_prefs_ui/pattern_problem_popover.h"
#include "capture_prefs_ui/resizing_table_view_controller.h"
#include "filters/pattern_filter_def.h"

#include <QMenu>
#include <QStringList>
#include <QUndoStack>
#include <QVariantMap>

namespace havrel {

class PatternListCommand;

/// Edits a list of exclusion patterns in a table.
///
/// The list is replaced only as a whole; every replacement by another list tells the observers of "filterDefs" once and
/// is one step that the user can take back. The owner sets the list, observes it, and reads it again: the table works
/// on copies. Definitions that the user edits in their rows change in place, which PatternTableCellValueChanged tells
/// (pattern_table_cell_view.h); that is a step of its own. Loading a window is a step, too: taking it back empties the
/// list.
///
/// Threads: the main thread only.
class PatternTableViewController : public ResizingTableViewController
{
    Q_OBJECT
    Q_PROPERTY(havrel::PatternFilterDefs filterDefs READ filterDefs WRITE setFilterDefs)
    Q_PROPERTY(bool enabled READ enabled WRITE setEnabled)

public:
    explicit PatternTableViewController(TableView& table, QObject* parent = nullptr);
    ~PatternTableViewController() override;
    PatternTableViewController(const PatternTableViewController&) = delete;
    PatternTableViewController& operator=(const PatternTableViewController&) = delete;
    PatternTableViewController(PatternTableViewController&&) = delete;
    PatternTableViewController& operator=(PatternTableViewController&&) = delete;

    /// \selector filterDefs
    [[nodiscard]] const PatternFilterDefs& filterDefs() const noexcept { return m_filterDefs; }
    /// Keeps each definition that is in the list as the very same object; of any other, a copy in the
    /// patternEnvironment. A list of equal definitions tells nobody. \selector setFilterDefs:
    void setFilterDefs(const PatternFilterDefs& definitions);

    [[nodiscard]] bool enabled() const; ///< \selector enabled
    /// The table and its buttons. \selector setEnabled:
    void setEnabled(bool isEnabled);
    /// The list belongs to an archive, not to an item. Set before the list. \selector repositoryPatterns
    [[nodiscard]] bool repositoryPatterns() const noexcept { return m_repositoryPatterns; }
    void setRepositoryPatterns(bool isRepository) noexcept { m_repositoryPatterns = isRepository; }
    /// How definitions of this list are configured. \selector patternEnvironment
    [[nodiscard]] const QVariantMap& patternEnvironment() const;

    [[nodiscard]] QMenu* addMenu() const noexcept { return m_addMenu; }                 ///< \selector addMenu
    void setAddMenu(QMenu* menu);                                                       ///< \selector setAddMenu:
    [[nodiscard]] PatternProblemPopover* popover() const noexcept { return m_popover; } ///< \selector popover
    void setPopover(PatternProblemPopover* popover);                                    ///< \selector setPopover:
    [[nodiscard]] QUndoStack& undoManager() noexcept { return m_undoManager; }          ///< \selector undoManager

    // Definitions that the list has already, by equality, are left out.
    void addPattern(const PatternFilterDefPtr& definition);                     ///< \selector addPattern:
    void addPatterns(const PatternFilterDefs& definitions);                     ///< \selector addPatterns:
    void addPatterns(const PatternFilterDefs& definitions, qsizetype aboveRow); ///< \selector addPatterns:aboveRow:
    void addPatternStrings(const QStringList& lines); ///< Those that are valid. \selector addPatternStrings:
    void removePatterns(const IndexSet& rows);        ///< \selector removePatterns:

    /// Opens the menu of what can be added, at \p sender if that is a widget. Does not wait. \selector doAddItems:
    void doAddItems(QObject* sender) override;
    void doRemoveSelectedItems(QObject* sender) override; ///< \selector doRemoveSelectedItems:
    // What the menu's items do; \p sender may be null.
    void addGlobPattern(QObject* sender);   ///< \selector addGlobPattern:
    void addRegExPattern(QObject* sender);  ///< \selector addRegExPattern:
    void addExpertPattern(QObject* sender); ///< \selector addExpertPattern:
    /// Adds the definition, unless there is an equal one; selects that row and, soon, edits it.
    /// \selector addAndEditPattern:
    void addAndEditPattern(const PatternFilterDefPtr& definition);
    /// Sets the list, as a step back or forth does. \selector undoItems:
    void undoItems(const PatternFilterDefs& definitions);
    /// Has \p step take the place of what setting \p definitions would put on the undo stack.
    void takeStep(PatternListCommand& step, const PatternFilterDefs& definitions);
    /// Brings the row in sight and sets a property of its definition, as a step back or forth does.
    void setValueInRow(qsizetype row, const QString& property, const QVariant& value);

    void viewDidLoad() override;
    [[nodiscard]] qsizetype numberOfRowsInTableView(const TableView& table) const override;
    [[nodiscard]] std::shared_ptr<QObject> tableViewObjectValue(const TableView& table, qsizetype row) const override;
    [[nodiscard]] QString tableViewToolTip(const TableView& table, qsizetype row) const override;
    [[nodiscard]] TableCellView* tableViewView(TableView& table, qsizetype row) override;
    [[nodiscard]] Qt::DropAction tableViewValidateDrop(const TableView& table,
                                                       const DraggingInfo& info,
                                                       qsizetype row,
                                                       DropOperation operation) override;
    bool
    tableViewAcceptDrop(TableView& table, const DraggingInfo& info, qsizetype row, DropOperation operation) override;
    bool tableViewWriteRows(const TableView& table, const IndexSet& rows, QMimeData& pasteboard) override;
    void tableViewMoveRows(TableView& table, const IndexSet& rows, int by) override;

private:
    [[nodiscard]] PatternFilterDefs ownDefinitions(const PatternFilterDefs& definitions) const;
    [[nodiscard]] qsizetype rowOfEqual(const PatternFilterDef& definition) const;
    void filterDefsChanged(const PatternFilterDefs& before);
    void registerUndo(const PatternFilterDefs& before);
    void cellValueChanged(const QVariantMap& change);
    void editRow(qsizetype row);
    void measureRows();

    PatternFilterDefs m_filterDefs;
    QPointer<QMenu> m_addMenu;
    QPointer<PatternProblemPopover> m_popover;
    QUndoStack m_undoManager;
    PatternListCommand* m_step = nullptr; // that is being taken
    bool m_setsValue = false;             // a step is being taken in a row
    bool m_repositoryPatterns = false;
};

} // namespace havrel
