// SPDX-License-Identifier: MIT
#pragma once

#include <QUrl>
#include <QWidget>

namespace havrel {

class ItemField;

/// The view of one archive in the list of the picker. What is in it takes no clicks: each goes to the row.
///
/// Threads: the main thread only.
class ArchivePickerTableCellView : public QWidget
{
    Q_OBJECT

public:
    explicit ArchivePickerTableCellView(QWidget* parent = nullptr);

    /// This view, whatever the point; never a view in it. \selector hitTest:
    [[nodiscard]] QWidget* hitTest(const QPoint& point);
    /// Its first view, which shows the archive; null while it has none.
    [[nodiscard]] ItemField* field() const;

protected:
    void childEvent(QChildEvent* event) override;
};

} // namespace havrel
