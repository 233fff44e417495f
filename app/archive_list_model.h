// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractListModel>

namespace havrel {

class ArchivePickerViewController;

/// The rows of the picker's list as the toolkit asks for them: names to be read out and typed, tool tips, and what can
/// be selected.
///
/// Threads: the main thread only.
class ArchiveListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    /// \param controller is the source of the rows; outlives the model.
    explicit ArchiveListModel(const ArchivePickerViewController& controller);

    /// All rows may be others now.
    void reloadData();

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    [[nodiscard]] QVariant archiveData(const QModelIndex& index, int role) const;

    const ArchivePickerViewController& m_controller;
};

} // namespace havrel
