// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/resizing_table_view_controller.h"

#include "capture_prefs_ui/height_constraint.h"
#include "capture_prefs_ui/segmented_control.h"
#include "capture_prefs_ui/table_view.h"
#include "foundation/dispatch.h"

#include <QAbstractButton>

#include <algorithm>

namespace havrel {
namespace {

constexpr RowRange kUsualRows{.location = 2, .length = 7};
constexpr int kRemoveSegment = 1;

} // namespace

ResizingTableViewController::ResizingTableViewController(TableView& table, QObject* parent)
    : Observable(parent)
    , m_tableView(table)
{
}

ResizingTableViewController::~ResizingTableViewController()
{
    m_tableView.setDelegate(nullptr);
    m_tableView.setDataSource(nullptr);
    m_tableView.reloadData(); // there is nobody left to make its rows
}

void ResizingTableViewController::setAddButton(QAbstractButton* button)
{
    m_addButton = button;
}

void ResizingTableViewController::setRemoveButton(QAbstractButton* button)
{
    m_removeButton = button;
}

void ResizingTableViewController::setAddRemoveControl(SegmentedControl* control)
{
    m_addRemoveControl = control;
}

void ResizingTableViewController::setHeightConstraint(std::unique_ptr<HeightConstraint> constraint)
{
    m_heightConstraint = std::move(constraint);
}

void ResizingTableViewController::awakeFromNib()
{
    if (m_heightConstraint && heightRowRange() == RowRange{})
        setHeightRowRange(kUsualRows);
}

void ResizingTableViewController::viewWillAppear()
{
    resizeTableView();
}

void ResizingTableViewController::reloadTableData()
{
    m_tableView.reloadData();
    enableControls();
    onMainQueue([alive = QPointer(this)] {
        if (alive)
            alive->resizeTableView();
    });
}

void ResizingTableViewController::resizeTableView()
{
    const RowRange range = heightRowRange();
    if (range.length == 0 || !m_heightConstraint)
        return;
    const qint64 most = static_cast<qint64>(range.location) + range.length - 1;
    const qint64 rows = std::clamp<qint64>(numberOfRowsInTableView(m_tableView), range.location, most);
    const int rowHeight = m_tableView.rowHeight() + m_tableView.intercellSpacing();
    m_heightConstraint->setConstant(m_tableView.frameHeightForContentHeight(static_cast<int>(rows) * rowHeight));
}

void ResizingTableViewController::enableControls()
{
    const bool canRemove = !m_tableView.selectedRowIndexes().isEmpty();
    if (m_removeButton)
        m_removeButton->setEnabled(canRemove);
    if (m_addRemoveControl)
        m_addRemoveControl->setEnabled(canRemove, kRemoveSegment);
}

void ResizingTableViewController::tableViewSelectionDidChange(TableView& /*table*/)
{
    enableControls();
}

void ResizingTableViewController::doSegmentedControl(SegmentedControl& control)
{
    if (control.selectedSegment() == 0)
        doAddItems(&control);
    else
        doRemoveSelectedItems(&control);
}

void ResizingTableViewController::doAddItems(QObject* /*sender*/) {}

void ResizingTableViewController::doRemoveSelectedItems(QObject* /*sender*/) {}

} // namespace havrel
