// SPDX-License-Identifier: MIT
#include "app/archive_picker_view_controller.h"

#include "app/archive_description.h"
#include "app/archive_list_model.h"
#include "app/archive_list_view.h"
#include "app/archive_picker_table_cell_view.h"
#include "app/archive_row_delegate.h"
#include "app/item_field.h"
#include "capture_prefs_ui/height_constraint.h"
#include "capture_prefs_ui/item_texts.h"
#include "foundation/dispatch.h"
#include "fs/path.h"

#include <QDateTime>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLocale>
#include <QPointer>

#include <algorithm>
#include <vector>

namespace havrel {
namespace {

constexpr QLatin1StringView kArchiveView("archive");

bool isArchive(const QVariant& item)
{
    return item.typeId() == QMetaType::QUrl;
}

struct NamedArchive
{
    QString name; // last component of the path
    QUrl url;
    std::optional<QDateTime> captureTime;
};

std::vector<NamedArchive> sortedArchives(const QList<QVariantMap>& descriptions)
{
    std::vector<NamedArchive> archives;
    for (const QVariantMap& description : descriptions) {
        const QByteArray path = archive_description::pathOf(description);
        if (path.isEmpty())
            continue;
        const JNPathPtr archive = JNPath::withCPath(path);
        archives.push_back({archive->name(), archive->url(), archive_description::lastCaptureTimeOf(description)});
    }
    std::stable_sort(archives.begin(), archives.end(), [](const NamedArchive& one, const NamedArchive& other) {
        return one.name < other.name;
    });
    return archives;
}

} // namespace

ArchivePickerViewController::ArchivePickerViewController(ArchiveListView& table, RowViews rowViews)
    : m_tableView(table)
    , m_rowViews(std::move(rowViews))
    , m_model(std::make_unique<ArchiveListModel>(*this))
{
    m_tableView.setItemDelegate(new ArchiveRowDelegate(*this, m_tableView));
    m_tableView.setModel(m_model.get());
}

ArchivePickerViewController::~ArchivePickerViewController()
{
    m_tableView.setModel(nullptr);
    delete m_tableView.itemDelegate();
}

void ArchivePickerViewController::setHeightConstraint(std::unique_ptr<HeightConstraint> constraint)
{
    m_heightConstraint = std::move(constraint);
}

void ArchivePickerViewController::addArchiveInfo(const QList<QVariantMap>& descriptions, const QString& section)
{
    const std::vector<NamedArchive> archives = sortedArchives(descriptions);
    if (archives.empty())
        return;
    m_tableItems.append(section);
    for (const NamedArchive& each : archives) {
        m_tableItems.append(each.url);
        if (each.captureTime)
            m_captureTimes.insert(each.url, *each.captureTime);
    }
    const int selected = m_tableView.currentIndex().row(); // rows only come below those that there are
    m_model->reloadData();
    if (selected > 0)
        m_tableView.setCurrentIndex(m_model->index(selected));
}

QVariantList ArchivePickerViewController::displayItems() const
{
    return m_tableItems.isEmpty() ? QVariantList{QStringLiteral("none")} : m_tableItems;
}

QUrl ArchivePickerViewController::selectedArchive() const
{
    const QModelIndexList selected = m_tableView.selectionModel()->selectedIndexes();
    const int row = selected.isEmpty() ? -1 : selected.first().row();
    const QVariant item = tableViewObjectValue(row);
    return row >= 1 && isArchive(item) ? item.toUrl() : QUrl();
}

void ArchivePickerViewController::selectFirstArchive()
{
    const auto first = std::find_if(m_tableItems.cbegin(), m_tableItems.cend(), isArchive);
    if (first != m_tableItems.cend())
        m_tableView.setCurrentIndex(m_model->index(static_cast<int>(first - m_tableItems.cbegin())));
}

bool ArchivePickerViewController::tableViewIsGroupRow(qsizetype row) const
{
    return tableViewObjectValue(row).typeId() == QMetaType::QString;
}

bool ArchivePickerViewController::tableViewShouldSelectRow(qsizetype row) const
{
    return !tableViewIsGroupRow(row);
}

QWidget* ArchivePickerViewController::tableViewView(std::optional<int> tableColumn, qsizetype row) const
{
    if (!tableColumn)
        return rowView(tableViewObjectValue(row).toString());
    QWidget* view = rowView(kArchiveView);
    if (const auto* cell = qobject_cast<ArchivePickerTableCellView*>(view))
        cell->field()->setURL(tableViewObjectValue(row).toUrl());
    return view;
}

QWidget* ArchivePickerViewController::rowViewOf(qsizetype row) const
{
    return rowView(tableViewIsGroupRow(row) ? tableViewObjectValue(row).toString() : QString(kArchiveView));
}

QWidget* ArchivePickerViewController::rowView(const QString& identifier) const
{
    const auto view = m_rowViews.find(identifier);
    return view == m_rowViews.end() ? nullptr : view->second.get();
}

void ArchivePickerViewController::viewWillAppear()
{
    onMainQueue([controller = QPointer(this)] {
        if (controller)
            controller->resizeToRows();
    });
}

void ArchivePickerViewController::resizeToRows()
{
    if (!m_heightConstraint)
        return;
    const int last = static_cast<int>(numberOfRowsInTableView()) - 1;
    const QRect content = m_tableView.rectOfRows(0, last);
    m_heightConstraint->setConstant(m_tableView.frameHeightForContentHeight(content.height()));
}

QString ArchivePickerViewController::toolTipOf(const QUrl& archive) const
{
    const JNPathPtr path = JNPath::pathWithURL(archive);
    if (!path)
        return {};
    const QString place = tr("in %1").arg(item_texts::withHomeShortened(path->parent()->path()));
    const auto time = m_captureTimes.constFind(archive);
    if (time == m_captureTimes.constEnd())
        return place;
    return place + u'\n' + tr("last captured to %1").arg(QLocale().toString(time->toLocalTime(), QLocale::ShortFormat));
}

QString ArchivePickerViewController::sectionTextOf(qsizetype row) const
{
    while (row > 0 && !tableViewIsGroupRow(row))
        --row;
    const QWidget* header = tableViewView(std::nullopt, row);
    const auto* label = header ? header->findChild<QLabel*>() : nullptr;
    return label ? label->text() : QString();
}

} // namespace havrel
