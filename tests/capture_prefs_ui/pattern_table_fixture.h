// SPDX-License-Identifier: MIT
#pragma once

#include "capture_prefs_ui/pattern_table_expert_cell_view.h"
#include "capture_prefs_ui/pattern_table_pane.h"
#include "capture_prefs_ui/pattern_table_simple_cell_view.h"
#include "capture_prefs_ui/pattern_table_view_controller.h"
#include "capture_prefs_ui/resizing_pattern_text_field.h"
#include "capture_prefs_ui/table_view.h"
#include "filters/pattern_filter_def.h"

#include <QCoreApplication>
#include <QLineEdit>
#include <QTest>
#include <QVBoxLayout>
#include <QWidget>

#include <gtest/gtest.h>

namespace havrel::tests {

/// Compares the lines that definitions stand for.
inline QStringList linesOf(const PatternFilterDefs& definitions)
{
    QStringList lines;
    for (const PatternFilterDefPtr& each : definitions)
        lines << (each->simple() ? each->canonicalPattern() : each->completePattern());
    return lines;
}

inline PatternFilterDefPtr pattern(const char* line)
{
    return PatternFilterDef::filterDefFromString(QString::fromUtf8(line), PatternFilterDef::itemEnvironment());
}

/// "//0*", "//1*" and so on: simple patterns, no two equal.
inline PatternFilterDefs numberedPatterns(int count)
{
    PatternFilterDefs definitions;
    for (int i = 0; i < count; ++i)
        definitions << pattern(qPrintable(QStringLiteral("//%1*").arg(i)));
    return definitions;
}

/// A pattern table in a window with another field, not shown yet.
class PatternTable : public testing::Test
{
protected:
    PatternTable()
    {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(&otherField);
        layout->addWidget(&pane);
        layout->addStretch();
        window.resize(600, 400);
    }

    /// Waits until the window has the keyboard.
    void show()
    {
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    /// Runs what is on the main queue.
    static void runMainQueue() { QCoreApplication::processEvents(); }

    [[nodiscard]] PatternTableViewController& controller() { return pane.controller(); }
    [[nodiscard]] TableView& table() { return pane.tableView(); }
    [[nodiscard]] QStringList lines() { return linesOf(controller().filterDefs()); }

    template<class View = PatternTableSimpleCellView>
    [[nodiscard]] View* row(qsizetype row)
    {
        return qobject_cast<View*>(table().viewAtRow(row));
    }

    /// Types into a field as a user does, and leaves it.
    void type(QLineEdit* field, const char* text)
    {
        ASSERT_NE(field, nullptr);
        field->setFocus();
        field->selectAll();
        QTest::keyClick(field, Qt::Key_Delete);
        QTest::keyClicks(field, QString::fromUtf8(text));
        otherField.setFocus();
    }

    QWidget window;
    QLineEdit otherField;
    PatternTablePane pane;
};

} // namespace havrel::tests
