// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractItemDelegate>

class QListView;

namespace havrel {

class ArchivePickerViewController;

/// Draws each row of the picker's list through the view of its kind, so that a thousand archives need one view.
///
/// Threads: the main thread only.
class ArchiveRowDelegate : public QAbstractItemDelegate
{
    Q_OBJECT

public:
    /// \param controller has the views; outlives the delegate.
    /// \param table      owns the delegate.
    ArchiveRowDelegate(const ArchivePickerViewController& controller, QListView& table);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    const ArchivePickerViewController& m_controller;
    const QListView& m_table;
};

} // namespace havrel
