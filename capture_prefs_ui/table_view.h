// SPDX-License-Identifier: MIT
#pragma once

#include "capture_prefs_ui/row_selection.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QHash>
#include <QPointer>

#include <map>
#include <memory>
#include <vector>

namespace havrel {

class TableCellView;
class TableDropIndicator;
class TableViewDataSource;
class TableViewDelegate;
struct DraggingInfo;

/// A list of rows of equal height, each a widget of its own, with one column.
///
/// Widgets are made only for the rows in sight and a few around them, and used again for others, so that long lists
/// cost no more than short ones. A row that has the keyboard keeps its widget. Rows are selected by clicks and keys
/// (Shift and Control as usual), moved by Alt+Up and Alt+Down, deleted by Delete, copied and pasted as text, dragged
/// out by the grip before each row, and dropped between rows.
///
/// Threads: the main thread only.
class TableView : public QAbstractScrollArea
{
    Q_OBJECT

public:
    using Views = std::map<qsizetype, TableCellView*>;

    explicit TableView(QWidget* parent = nullptr);
    ~TableView() override;
    TableView(const TableView&) = delete;
    TableView& operator=(const TableView&) = delete;
    TableView(TableView&&) = delete;
    TableView& operator=(TableView&&) = delete;

    // Both outlive the table, or are set to null before they go.
    void setDataSource(TableViewDataSource* dataSource) noexcept { m_dataSource = dataSource; }
    void setDelegate(TableViewDelegate* delegate) noexcept { m_delegate = delegate; }

    /// Asks the data source for all rows again. What is selected and being edited stays, wherever its row is now.
    void reloadData();
    [[nodiscard]] qsizetype numberOfRows() const noexcept { return static_cast<qsizetype>(m_objects.size()); }

    // Sizes are in device-independent pixels.
    [[nodiscard]] int rowHeight() const noexcept { return m_rowHeight; }
    [[nodiscard]] int intercellSpacing() const noexcept; ///< between two rows
    /// \param minimum of every row.
    void setRowSize(const QSize& minimum);
    /// The height of the table with its frame that shows \p height pixels of rows.
    [[nodiscard]] int frameHeightForContentHeight(int height) const;
    [[nodiscard]] QSize minimumSizeHint() const override;

    /// Null while the row is far out of sight, or the table not shown.
    [[nodiscard]] TableCellView* viewAtRow(qsizetype row) const;
    /// The row that \p widget shows or is a part of; -1 for none.
    [[nodiscard]] qsizetype rowForView(const QWidget* widget) const;
    [[nodiscard]] const Views& views() const noexcept { return m_views; } ///< those that there are, by row
    /// A widget of that kind that shows no row any more; null when there is none.
    [[nodiscard]] TableCellView* dequeueView(const QString& identifier);
    [[nodiscard]] QRect rowRect(qsizetype row) const; ///< in the viewport
    void scrollRowToVisible(qsizetype row);

    [[nodiscard]] const IndexSet& selectedRowIndexes() const noexcept { return m_selection.rows(); }
    void selectRowIndexes(const IndexSet& rows);
    [[nodiscard]] qsizetype currentRow() const noexcept { return m_selection.current(); } ///< -1: none

    /// Takes over what is being typed in a row, and takes the keyboard from every field of the window.
    void endEditing();
    /// Has the delegate delete the selected rows, if it is TableViewDeleting. \selector delete:
    void delete_(QObject* sender);

    /// What is shown, and said, while there are no rows and some could be added: not in a disabled table.
    void setEmptyText(const QString& text);

    // Exchange with other programs as text; also by the standard keys.
    void copySelection();
    void paste(); ///< below the current row

Q_SIGNALS:
    /// Fonts or style are others now: rows want another size.
    void metricsChanged();

protected:
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    // Rows.
    [[nodiscard]] int pitch() const { return m_rowHeight + intercellSpacing(); }
    [[nodiscard]] int gutter() const;
    [[nodiscard]] qsizetype rowAt(int y) const; ///< -1: below all rows
    [[nodiscard]] bool isEdited(const TableCellView& view) const;
    void followObjects(const std::vector<std::shared_ptr<QObject>>& before);
    void keepViews();
    bool makeViews();
    void makeView(qsizetype row);
    void enqueue(TableCellView& view);
    void layoutRows();
    void placeRows();
    void orderRows();
    void updateScrollBar();
    void paintRow(QPainter& painter, qsizetype row) const;
    void paintEmptyText(QPainter& painter) const;
    void describeEmptiness();

    // Selection and keys.
    void select(qsizetype row, RowSelection::Change change);
    void selectionChanged(const IndexSet& before);
    void focusMoved(QWidget* now);
    void editRow(qsizetype row);
    bool pressCommandKey(const QKeyEvent& event);
    bool pressMovingKey(const QKeyEvent& event);
    bool pressArrowInField(const QKeyEvent& event);
    void moveSelection(int by);

    // Dragging.
    [[nodiscard]] QPixmap dragPicture(const IndexSet& rows) const;
    void dragSelection(const QPoint& from);
    [[nodiscard]] qsizetype gapAt(int y) const;
    void showDrop(QDropEvent& event);
    void hideDrop();

    TableViewDataSource* m_dataSource = nullptr;
    TableViewDelegate* m_delegate = nullptr;
    std::vector<std::shared_ptr<QObject>> m_objects; // of the rows
    QHash<const QObject*, qsizetype> m_rowsOfObjects;
    Views m_views;
    QHash<QString, QList<TableCellView*>> m_queue; // of widgets without a row, by kind
    RowSelection m_selection;
    TableDropIndicator* m_dropIndicator; // owned by the viewport
    QString m_emptyText;
    QPoint m_pressedAt;
    qsizetype m_pressedRow = -1; // -1: no drag can begin
    bool m_selectAtRelease = false;
    int m_rowHeight = 24;
    int m_minimumRowWidth = 0;
    int m_scrollBy = 0; // pixels a tick, while a drag is at an edge
    QBasicTimer m_scrollTimer;
};

} // namespace havrel
