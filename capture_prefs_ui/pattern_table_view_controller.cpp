// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/pattern_table_view_controller.h"

#include "capture_prefs_ui/alike_patterns.h"
#include "capture_prefs_ui/pattern_list_command.h"
#include "capture_prefs_ui/pattern_problem_popover.h"
#include "capture_prefs_ui/pattern_table_cell_view.h"
#include "capture_prefs_ui/pattern_value_command.h"
#include "capture_prefs_ui/segmented_control.h"
#include "capture_prefs_ui/table_view.h"
#include "filters/pattern_filter_def.h"
#include "foundation/notification_center.h"
#include "foundation/observing.h"

#include <QAbstractButton>
#include <QMenu>
#include <QScopedValueRollback>
#include <QSet>

#include <algorithm>
#include <utility>

namespace havrel {
namespace {

/// What a new complete pattern says until it is edited: an example of how one is written.
constexpr QLatin1StringView kNewCompletePattern{"path//pattern.*"};

} // namespace

PatternTableViewController::PatternTableViewController(TableView& table, QObject* parent)
    : ResizingTableViewController(table, parent)
{
    table.setDataSource(this);
    table.setDelegate(this);
    observeProperty(*this,
                    "filterDefs",
                    ObservationOptions::NoInitialCall,
                    [this](QObject*, QObject*, const QVariant& before, const QVariant&) {
                        filterDefsChanged(before.value<PatternFilterDefs>());
                    });
    observeNotification(*this,
                        QString(kPatternTableCellValueChanged),
                        table,
                        [this](QObject*, const Notification& change) { cellValueChanged(change.userInfo); });
    connect(&table, &TableView::metricsChanged, this, [this] { measureRows(); });
}

PatternTableViewController::~PatternTableViewController()
{
    removeAllObservations(*this);
}

void PatternTableViewController::viewDidLoad()
{
    measureRows();
    setFilterDefs({});
    reloadTableData();
}

PatternFilterDefs PatternTableViewController::ownDefinitions(const PatternFilterDefs& definitions) const
{
    QSet<const PatternFilterDef*> own;
    own.reserve(m_filterDefs.size());
    for (const PatternFilterDefPtr& each : m_filterDefs)
        own.insert(each.get());
    PatternFilterDefs result;
    result.reserve(definitions.size());
    for (const PatternFilterDefPtr& each : definitions) {
        const bool isOwn = own.contains(each.get());
        result << (isOwn ? each : each->copyWithZone());
        if (!isOwn)
            result.constLast()->configure(patternEnvironment());
    }
    return result;
}

void PatternTableViewController::setFilterDefs(const PatternFilterDefs& definitions)
{
    const PatternFilterDefs before = std::exchange(m_filterDefs, ownDefinitions(definitions));
    if (before == m_filterDefs)
        return;
    if (areEqualPatterns(before, m_filterDefs))
        return reloadTableData(); // nothing to tell, but the rows are about these objects now
    reportChange("filterDefs",
                 {.kind = ChangeKind::Setting,
                  .oldValue = QVariant::fromValue(before),
                  .newValue = QVariant::fromValue(m_filterDefs)});
}

void PatternTableViewController::filterDefsChanged(const PatternFilterDefs& before)
{
    reloadTableData();
    resizeTableView();
    registerUndo(before);
}

void PatternTableViewController::registerUndo(const PatternFilterDefs& before)
{
    const bool hasGrown = m_filterDefs.size() > before.size();
    const QString name = hasGrown ? tr("Add Patterns") : tr("Remove Patterns");
    if (m_step)
        m_step->replace(before, name);
    else
        m_undoManager.push(new PatternListCommand(*this, before, name));
}

void PatternTableViewController::takeStep(PatternListCommand& step, const PatternFilterDefs& definitions)
{
    const QScopedValueRollback taking(m_step, &step);
    undoItems(definitions);
}

void PatternTableViewController::undoItems(const PatternFilterDefs& definitions)
{
    setFilterDefs(definitions);
}

void PatternTableViewController::cellValueChanged(const QVariantMap& change)
{
    const auto definition = change[QStringLiteral("obj")].value<PatternFilterDefPtr>();
    const qsizetype row = m_filterDefs.indexOf(definition);
    if (m_setsValue || row < 0)
        return;
    const QString property = change[QStringLiteral("path")].toString();
    const QVariant after = definition->property(property.toLatin1().constData());
    QVariant before = change[QStringLiteral("old")];
    if (before.metaType() != after.metaType())
        before = QVariant(after.metaType()); // an absent text
    m_undoManager.push(new PatternValueCommand(*this, {row, property, before, after}));
}

void PatternTableViewController::setValueInRow(qsizetype row, const QString& property, const QVariant& value)
{
    if (row >= m_filterDefs.size())
        return;
    const QScopedValueRollback setting(m_setsValue, true);
    tableView().scrollRowToVisible(row); // only rows in sight tell of changes
    m_filterDefs[row]->setProperty(property.toLatin1().constData(), value);
}

bool PatternTableViewController::enabled() const
{
    return tableView().isEnabled();
}

void PatternTableViewController::setEnabled(bool isEnabled)
{
    tableView().setEnabled(isEnabled);
    if (addButton())
        addButton()->setEnabled(isEnabled);
    if (addRemoveControl())
        addRemoveControl()->setEnabled(isEnabled);
    enableControls();
}

const QVariantMap& PatternTableViewController::patternEnvironment() const
{
    return m_repositoryPatterns ? PatternFilterDef::repositoryEnvironment() : PatternFilterDef::itemEnvironment();
}

void PatternTableViewController::setAddMenu(QMenu* menu)
{
    m_addMenu = menu;
}

void PatternTableViewController::setPopover(PatternProblemPopover* popover)
{
    m_popover = popover;
}

void PatternTableViewController::addPattern(const PatternFilterDefPtr& definition)
{
    addPatterns({definition});
}

void PatternTableViewController::addPatterns(const PatternFilterDefs& definitions)
{
    addPatterns(definitions, m_filterDefs.size());
}

void PatternTableViewController::addPatterns(const PatternFilterDefs& definitions, qsizetype aboveRow)
{
    AlikePatterns known(m_filterDefs);
    PatternFilterDefs list = m_filterDefs.first(std::clamp<qsizetype>(aboveRow, 0, m_filterDefs.size()));
    const qsizetype above = list.size();
    for (const PatternFilterDefPtr& each : definitions)
        if (known.insert(each))
            list << each;
    if (list.size() > above)
        setFilterDefs(list + m_filterDefs.mid(above));
}

void PatternTableViewController::addPatternStrings(const QStringList& lines)
{
    addPatterns(PatternFilterDef::filterDefsFromStrings(lines, patternEnvironment()));
}

void PatternTableViewController::removePatterns(const IndexSet& rows)
{
    if (rows.isEmpty())
        return;
    PatternFilterDefs left;
    for (qsizetype row = 0; row < m_filterDefs.size(); ++row)
        if (!rows.containsIndex(static_cast<IndexSet::Index>(row)))
            left << m_filterDefs[row];
    setFilterDefs(left);
}

void PatternTableViewController::doAddItems(QObject* sender)
{
    if (!m_addMenu)
        return;
    const QWidget* control = qobject_cast<QWidget*>(sender);
    if (!control)
        control = &tableView();
    const bool isMirrored = control->layoutDirection() == Qt::RightToLeft;
    const int menuWidth = m_addMenu->sizeHint().width();
    m_addMenu->popup(control->mapToGlobal(QPoint(isMirrored ? control->width() - menuWidth : 0, control->height())));
}

void PatternTableViewController::doRemoveSelectedItems(QObject* /*sender*/)
{
    removePatterns(tableView().selectedRowIndexes());
}

void PatternTableViewController::addGlobPattern(QObject* /*sender*/)
{
    addAndEditPattern(std::make_shared<PatternFilterDef>(PatternType::Glob));
}

void PatternTableViewController::addRegExPattern(QObject* /*sender*/)
{
    addAndEditPattern(std::make_shared<PatternFilterDef>(PatternType::RegularExpression));
}

void PatternTableViewController::addExpertPattern(QObject* /*sender*/)
{
    addAndEditPattern(std::make_shared<PatternFilterDef>(QString(kNewCompletePattern)));
}

qsizetype PatternTableViewController::rowOfEqual(const PatternFilterDef& definition) const
{
    const auto found = std::find_if(m_filterDefs.begin(), m_filterDefs.end(), [&definition](const auto& each) {
        return each->isEqual(definition);
    });
    return found == m_filterDefs.end() ? -1 : std::distance(m_filterDefs.begin(), found);
}

void PatternTableViewController::addAndEditPattern(const PatternFilterDefPtr& definition)
{
    tableView().endEditing();
    addPattern(definition);
    const qsizetype row = rowOfEqual(*definition);
    if (row >= 0)
        editRow(row);
}

} // namespace havrel
