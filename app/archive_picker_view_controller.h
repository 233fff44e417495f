// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QObject>
#include <QUrl>
#include <QVariantList>
#include <QVariantMap>

#include <map>
#include <memory>
#include <optional>

class QDateTime;

namespace havrel {

class ArchiveListModel;
class ArchiveListView;
class HeightConstraint;

/// Controls the list of archives of the picker, in sections: a flat list in which a text is the header of a section and
/// a file URL an archive.
///
/// Threads: the main thread only.
class ArchivePickerViewController : public QObject
{
    Q_OBJECT

public:
    /// What shows the rows of each kind: "archive" any archive, and each header the view of its own name. One view for
    /// all rows of a kind, which are drawn through it.
    using RowViews = std::map<QString, std::unique_ptr<QWidget>>;

    /// \param table outlives the controller.
    ArchivePickerViewController(ArchiveListView& table, RowViews rowViews);
    ~ArchivePickerViewController() override;
    ArchivePickerViewController(const ArchivePickerViewController&) = delete;
    ArchivePickerViewController& operator=(const ArchivePickerViewController&) = delete;
    ArchivePickerViewController(ArchivePickerViewController&&) = delete;
    ArchivePickerViewController& operator=(ArchivePickerViewController&&) = delete;

    [[nodiscard]] ArchiveListView& tableView() const noexcept { return m_tableView; }
    /// Of the height of the list; null before it is set. \selector heightConstraint
    [[nodiscard]] HeightConstraint* heightConstraint() const noexcept { return m_heightConstraint.get(); }
    void setHeightConstraint(std::unique_ptr<HeightConstraint> constraint); ///< \selector setHeightConstraint:

    /// Appends a section with one archive for each description that names one, in the order of their names (code units:
    /// "Z" before "a"; equal names stay in their order), and loads the list again. Nothing when none does.
    ///
    /// \selector addArchiveInfo:section:
    /// \param descriptions dictionaries of the monitor: the bytes of a path under "path", and, where it tells, the time
    ///                     of the latest capture under "lastCaptureTime" (seconds since 2001-01-01 00:00:00 UTC)
    void addArchiveInfo(const QList<QVariantMap>& descriptions, const QString& section);
    /// What is listed: the archives with their headers, else "none". \selector displayItems
    [[nodiscard]] QVariantList displayItems() const;
    /// Whether there is an archive to choose. \selector choices
    [[nodiscard]] bool choices() const { return !m_tableItems.isEmpty(); }
    /// The archive that is selected; an invalid URL for none. Never row 0. \selector selectedArchive
    [[nodiscard]] QUrl selectedArchive() const;
    /// Selects the first archive, if there is one.
    void selectFirstArchive();

    /// \selector numberOfRowsInTableView:
    [[nodiscard]] qsizetype numberOfRowsInTableView() const { return displayItems().size(); }
    /// Nil for a row that there is not. \selector tableView:objectValueForTableColumn:row:
    [[nodiscard]] QVariant tableViewObjectValue(qsizetype row) const { return displayItems().value(row); }
    /// Headers, and "none". \selector tableView:isGroupRow:
    [[nodiscard]] bool tableViewIsGroupRow(qsizetype row) const;
    [[nodiscard]] bool tableViewShouldSelectRow(qsizetype row) const; ///< \selector tableView:shouldSelectRow:
    /// What draws the row, showing its archive; null for a kind of row that has no view.
    /// \selector tableView:viewForTableColumn:row:
    /// \param tableColumn none: the full-width view of a header
    [[nodiscard]] QWidget* tableViewView(std::optional<int> tableColumn, qsizetype row) const;

    /// The view of that kind of row, whatever it shows at the moment; null when there is none.
    [[nodiscard]] QWidget* rowViewOf(qsizetype row) const;

    /// The list is about to be shown: has it made as high as its rows soon. \selector viewWillAppear
    void viewWillAppear();
    /// Makes the list as high as its rows.
    void resizeToRows();

    /// Where the archive is, and when it was last captured to, where that is known.
    [[nodiscard]] QString toolTipOf(const QUrl& archive) const;
    /// The header above the row, as it is read.
    [[nodiscard]] QString sectionTextOf(qsizetype row) const;

private:
    [[nodiscard]] QWidget* rowView(const QString& identifier) const;

    ArchiveListView& m_tableView;
    const RowViews m_rowViews;
    std::unique_ptr<HeightConstraint> m_heightConstraint;
    QVariantList m_tableItems;
    QHash<QUrl, QDateTime> m_captureTimes;
    std::unique_ptr<ArchiveListModel> m_model;
};

} // namespace havrel
