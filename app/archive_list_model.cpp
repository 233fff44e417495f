// SPDX-License-Identifier: MIT
#include "app/archive_list_model.h"

#include "app/archive_picker_view_controller.h"
#include "capture_prefs_ui/plain_tool_tip.h"
#include "fs/path.h"

namespace havrel {

ArchiveListModel::ArchiveListModel(const ArchivePickerViewController& controller)
    : m_controller(controller)
{
}

void ArchiveListModel::reloadData()
{
    beginResetModel();
    endResetModel();
}

int ArchiveListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_controller.numberOfRowsInTableView());
}

QVariant ArchiveListModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    if (!m_controller.tableViewIsGroupRow(index.row()))
        return archiveData(index, role);
    return role == Qt::DisplayRole ? m_controller.sectionTextOf(index.row()) : QVariant();
}

QVariant ArchiveListModel::archiveData(const QModelIndex& index, int role) const
{
    const QUrl archive = m_controller.tableViewObjectValue(index.row()).toUrl();
    if (role == Qt::DisplayRole)
        return JNPath::pathWithURL(archive)->name();
    if (role == Qt::ToolTipRole)
        return plainToolTip(m_controller.toolTipOf(archive));
    if (role == Qt::AccessibleDescriptionRole)
        return QString(m_controller.sectionTextOf(index.row()) + u'\n' + m_controller.toolTipOf(archive));
    return {};
}

/// Headers are not there for keyboard and mouse.
Qt::ItemFlags ArchiveListModel::flags(const QModelIndex& index) const
{
    if (!index.isValid() || !m_controller.tableViewShouldSelectRow(index.row()))
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

} // namespace havrel
