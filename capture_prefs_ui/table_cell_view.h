// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include <memory>

namespace havrel {

class TableView;

/// The widget of one row of a table. Shows one object at a time and is used again for others.
///
/// Threads: the main thread only.
class TableCellView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QObject* objectValue READ objectValue NOTIFY objectValueChanged)

public:
    /// \param identifier rows of one kind have one name, by which a table finds a widget to use again.
    explicit TableCellView(const QString& identifier, QWidget* parent = nullptr);

    [[nodiscard]] const QString& identifier() const noexcept { return m_identifier; }
    [[nodiscard]] QObject* objectValue() const noexcept { return m_objectValue.get(); } ///< null while it is not in use
    [[nodiscard]] const std::shared_ptr<QObject>& sharedObjectValue() const noexcept { return m_objectValue; }
    void setObjectValue(std::shared_ptr<QObject> object);

    /// The table in which it shows a row; null while it does not.
    [[nodiscard]] TableView* tableView() const noexcept { return m_tableView; }
    void setTableView(TableView* table) { m_tableView = table; }

    /// Gives the keyboard to its main field. \selector autoEdit
    virtual void autoEdit() {}
    /// Takes over what is being typed, as if the keyboard went elsewhere.
    virtual void commitEditing() {}
    /// The fields and switches that the keyboard reaches, in reading order.
    [[nodiscard]] virtual QList<QWidget*> editors() const { return {}; }
    /// What assistive technology says of the row.
    [[nodiscard]] virtual QString spokenText() const { return {}; }

    Q_SIGNAL void objectValueChanged();

private:
    QString m_identifier;
    std::shared_ptr<QObject> m_objectValue;
    TableView* m_tableView = nullptr; // which clears it before it goes
};

} // namespace havrel
