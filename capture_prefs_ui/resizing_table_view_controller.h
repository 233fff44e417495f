// SPDX-License-Identifier: MIT
#pragma once

#include "capture_prefs_ui/segmented_control.h"
#include "capture_prefs_ui/table_view_data_source.h"
#include "capture_prefs_ui/table_view_deleting.h"
#include "foundation/observable.h"

#include <QAbstractButton>
#include <QPointer>

#include <atomic>
#include <memory>

namespace havrel {

class HeightConstraint;

/// How many rows a table may be high: at least `location`, and `length` different numbers of them.
struct RowRange
{
    quint32 location = 0;
    quint32 length = 0;
    friend bool operator==(const RowRange&, const RowRange&) = default;
};

/// Controls a table that is as high as its rows, within limits, and the buttons that add and remove rows.
///
/// Outlets may be missing; those that are set outlive the controller or are widgets.
///
/// Threads: the main thread only; heightRowRange any thread.
class ResizingTableViewController : public Observable,
                                    public TableViewDataSource,
                                    public TableViewDelegate,
                                    public TableViewDeleting
{
    Q_OBJECT

public:
    /// \param table outlives the controller.
    explicit ResizingTableViewController(TableView& table, QObject* parent = nullptr);
    ~ResizingTableViewController() override;
    ResizingTableViewController(const ResizingTableViewController&) = delete;
    ResizingTableViewController& operator=(const ResizingTableViewController&) = delete;
    ResizingTableViewController(ResizingTableViewController&&) = delete;
    ResizingTableViewController& operator=(ResizingTableViewController&&) = delete;

    [[nodiscard]] TableView& tableView() const noexcept { return m_tableView; } ///< \selector tableView

    [[nodiscard]] QAbstractButton* addButton() const noexcept { return m_addButton; }       ///< \selector addButton
    void setAddButton(QAbstractButton* button);                                             ///< \selector setAddButton:
    [[nodiscard]] QAbstractButton* removeButton() const noexcept { return m_removeButton; } ///< \selector removeButton
    void setRemoveButton(QAbstractButton* button); ///< \selector setRemoveButton:
    /// Two segments: 0 adds, 1 removes. \selector addRemoveControl
    [[nodiscard]] SegmentedControl* addRemoveControl() const noexcept { return m_addRemoveControl; }
    void setAddRemoveControl(SegmentedControl* control); ///< \selector setAddRemoveControl:
    [[nodiscard]] HeightConstraint* heightConstraint() const noexcept { return m_heightConstraint.get(); }
    void setHeightConstraint(std::unique_ptr<HeightConstraint> constraint); ///< \selector setHeightConstraint:

    /// Read and written as one value. A length of 0: the height is not touched. \selector heightRowRange
    [[nodiscard]] RowRange heightRowRange() const noexcept { return m_heightRowRange; }
    void setHeightRowRange(RowRange range) noexcept { m_heightRowRange = range; } ///< \selector setHeightRowRange:

    /// Once, when the outlets are set: 2 to 8 rows, unless a range was set or no height is constrained.
    /// \selector awakeFromNib
    virtual void awakeFromNib();
    /// Once, after awakeFromNib. \selector viewDidLoad
    virtual void viewDidLoad() {}
    /// Before the table is shown. \selector viewWillAppear
    virtual void viewWillAppear();

    /// Loads the table again, brings the controls up to date, and queues resizeTableView. \selector reloadTableData
    void reloadTableData();
    /// Makes the table as high as its rows. \selector resizeTableView
    void resizeTableView();
    /// What can be removed can be removed by the buttons. \selector enableControls
    void enableControls();
    void tableViewSelectionDidChange(TableView& table) override;
    /// \param control whose selected segment says what is to be done. \selector doSegmentedControl:
    void doSegmentedControl(SegmentedControl& control);
    /// Nothing. \param sender the button that asks, may be null. \selector doAddItems:
    virtual void doAddItems(QObject* sender);
    /// Nothing. \selector doRemoveSelectedItems:
    void doRemoveSelectedItems(QObject* sender) override;

private:
    TableView& m_tableView;
    QPointer<QAbstractButton> m_addButton;
    QPointer<QAbstractButton> m_removeButton;
    QPointer<SegmentedControl> m_addRemoveControl;
    std::unique_ptr<HeightConstraint> m_heightConstraint;
    std::atomic<RowRange> m_heightRowRange{RowRange{}};
};

} // namespace havrel
