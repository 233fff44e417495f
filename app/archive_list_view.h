// SPDX-License-Identifier: MIT
#pragma once

#include <QListView>

namespace havrel {

/// The list of the picker: one archive can be selected, by click, arrow keys or the beginning of its name. Headers are
/// passed over, and the first archive is never seen without its header.
///
/// Threads: the main thread only.
class ArchiveListView : public QListView
{
    Q_OBJECT

public:
    explicit ArchiveListView(QWidget* parent = nullptr);

    /// The rectangle that holds all rows from \p first to \p last, in the viewport.
    [[nodiscard]] QRect rectOfRows(int first, int last);
    /// The height of the list with its frame that shows \p height pixels of rows.
    [[nodiscard]] int frameHeightForContentHeight(int height) const;
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override; ///< chooses by the left button alone
};

} // namespace havrel
