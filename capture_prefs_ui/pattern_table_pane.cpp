// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/pattern_table_pane.h"

#include "capture_prefs_ui/height_constraint.h"
#include "capture_prefs_ui/pattern_problem_popover.h"
#include "capture_prefs_ui/pattern_table_view_controller.h"

#include <QMenu>

#include <ui_PatternTablePane.h>

namespace havrel {
namespace {

struct AddCommand
{
    const char* title;
    const char* pattern; // an example
    const char* meaning; // of the example
    void (PatternTableViewController::*add)(QObject* sender);
};

constexpr AddCommand kAddCommands[] = {
    {QT_TRANSLATE_NOOP("havrel::PatternTablePane", "&Glob Pattern"),
     "*.tmp",
     QT_TRANSLATE_NOOP("havrel::PatternTablePane", "all names that end in .tmp"),
     &PatternTableViewController::addGlobPattern},
    {QT_TRANSLATE_NOOP("havrel::PatternTablePane", "&Regular Expression"),
     "^[0-9]+$",
     QT_TRANSLATE_NOOP("havrel::PatternTablePane", "all names made of digits"),
     &PatternTableViewController::addRegExPattern},
    {QT_TRANSLATE_NOOP("havrel::PatternTablePane", "&Complete Pattern"),
     "Library//Cache*/+",
     QT_TRANSLATE_NOOP("havrel::PatternTablePane", "caches in Library and below"),
     &PatternTableViewController::addExpertPattern},
};

/// The pattern runs from left to right in every language.
QString exampleOf(const AddCommand& command)
{
    constexpr QChar kLeftToRight(0x2066);
    constexpr QChar kEnd(0x2069);
    return kLeftToRight + QString::fromLatin1(command.pattern) + kEnd + QStringLiteral(": ") +
           PatternTablePane::tr(command.meaning);
}

} // namespace

PatternTablePane::PatternTablePane(QWidget* parent)
    : QWidget(parent)
    , m_form(std::make_unique<Ui::PatternTablePane>())
{
    m_form->setupUi(this);
    setFocusProxy(m_form->tableView);
    m_controller = std::make_unique<PatternTableViewController>(*m_form->tableView);
    m_form->addRemoveControl->setSegments({m_form->addButton, m_form->removeButton});
    m_controller->setAddButton(m_form->addButton);
    m_controller->setRemoveButton(m_form->removeButton);
    m_controller->setAddRemoveControl(m_form->addRemoveControl);
    m_controller->setHeightConstraint(std::make_unique<HeightConstraint>(*m_form->tableView));
    m_controller->setAddMenu(new QMenu(this));
    m_controller->setPopover(new PatternProblemPopover(this));
    connectControls();
    addUndoActions();
    showTexts();
    m_controller->awakeFromNib();
    m_controller->viewDidLoad();
}

PatternTablePane::~PatternTablePane()
{
    m_controller.reset(); // it must not outlive the table
}

TableView& PatternTablePane::tableView() const
{
    return *m_form->tableView;
}

QLabel& PatternTablePane::quietLine() const
{
    return *m_form->quietLine;
}

void PatternTablePane::endEditing()
{
    m_form->tableView->endEditing();
}

void PatternTablePane::connectControls()
{
    connect(m_form->addRemoveControl, &SegmentedControl::segmentClicked, this, [this] {
        m_controller->doSegmentedControl(*m_form->addRemoveControl);
    });
}

void PatternTablePane::addUndoActions()
{
    QAction* undo = m_controller->undoManager().createUndoAction(this);
    undo->setShortcuts(QKeySequence::Undo);
    QAction* redo = m_controller->undoManager().createRedoAction(this);
    redo->setShortcuts(QKeySequence::Redo);
    addActions({undo, redo});
    m_form->tableView->addActions({undo, redo}); // whose menu shows what each of them is about
    m_form->tableView->setContextMenuPolicy(Qt::ActionsContextMenu);
}

void PatternTablePane::makeAddMenu()
{
    QMenu& menu = *m_controller->addMenu();
    menu.clear();
    for (const AddCommand& command : kAddCommands) {
        // What stands behind the tab is set apart, where shortcuts usually stand.
        QAction* action = menu.addAction(tr(command.title) + u'\t' + exampleOf(command));
        connect(action, &QAction::triggered, m_controller.get(), [this, action, add = command.add] {
            (*m_controller.*add)(action);
        });
    }
}

void PatternTablePane::showTexts()
{
    makeAddMenu();
    m_form->tableView->setEmptyText(
        tr("Nothing is left out. Press + to add a pattern, or drop patterns here as text."));
}

void PatternTablePane::showEvent(QShowEvent* event)
{
    m_controller->viewWillAppear();
    QWidget::showEvent(event);
}

void PatternTablePane::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::LanguageChange)
        return;
    m_form->retranslateUi(this);
    showTexts();
}

} // namespace havrel
