// SPDX-License-Identifier: MIT
#pragma once

class QObject;

namespace havrel {

/// A delegate of a table that can delete the selected rows.
///
/// Threads: the main thread only.
class TableViewDeleting
{
public:
    TableViewDeleting() = default;
    virtual ~TableViewDeleting() = default;
    TableViewDeleting(const TableViewDeleting&) = delete;
    TableViewDeleting& operator=(const TableViewDeleting&) = delete;
    TableViewDeleting(TableViewDeleting&&) = delete;
    TableViewDeleting& operator=(TableViewDeleting&&) = delete;

    /// \param sender what asked for it; may be null. \selector doRemoveSelectedItems:
    virtual void doRemoveSelectedItems(QObject* sender) = 0;
};

} // namespace havrel
