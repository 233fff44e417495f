// SPDX-License-Identifier: MIT
// What a pattern table of 1,000 rows costs: setting the list, scrolling through it, and typing, each with everything
// that is laid out and painted; and what the validation of a line costs. The peer is the same with 10 rows. Offscreen,
// medians.
#include "bench/medians.h"
#include "capture_prefs_ui/pattern_table_pane.h"
#include "capture_prefs_ui/pattern_table_simple_cell_view.h"
#include "capture_prefs_ui/pattern_table_view_controller.h"
#include "capture_prefs_ui/resizing_pattern_text_field.h"
#include "capture_prefs_ui/table_view.h"

#include <QApplication>
#include <QScrollBar>
#include <QTest>

#include <cstdio>

namespace havrel {
namespace {

constexpr int kRows = 1000;
constexpr int kFewRows = 10;

PatternFilterDefs definitions(int count)
{
    QStringList lines;
    for (int i = 0; i < count; ++i)
        lines << QStringLiteral("folder/%1//*.%1/+").arg(i);
    return PatternFilterDef::filterDefsFromStrings(lines, {});
}

/// A table of so many rows on screen.
class Table
{
public:
    explicit Table(int rows)
        : m_rows(rows)
        , m_definitions(definitions(rows))
    {
        m_pane.resize(600, 300);
        m_pane.show();
        set();
    }

    /// Empties the list, then sets it and paints it; the second is measured.
    double set()
    {
        m_pane.controller().setFilterDefs({});
        QApplication::processEvents();
        return milliseconds([this] {
            m_pane.controller().setFilterDefs(m_definitions);
            paint();
        });
    }

    /// To a place where no row is in sight yet.
    double scroll()
    {
        QScrollBar& bar = *m_pane.tableView().verticalScrollBar();
        const int target = bar.value() > bar.maximum() / 2 ? 0 : bar.maximum();
        return milliseconds([this, &bar, target] {
            bar.setValue(target);
            paint();
        });
    }

    double type()
    {
        m_pane.tableView().scrollRowToVisible(m_rows / 2);
        auto* row = qobject_cast<PatternTableSimpleCellView*>(m_pane.tableView().viewAtRow(m_rows / 2));
        row->textField()->setFocus();
        return milliseconds([this, row] {
            QTest::keyClick(row->textField(), Qt::Key_X);
            paint();
        });
    }

private:
    void paint()
    {
        QApplication::processEvents();
        (void)m_pane.grab();
    }

    int m_rows;
    PatternFilterDefs m_definitions;
    PatternTablePane m_pane;
};

void compare(const char* what, double (Table::*work)(), Table& many, Table& few)
{
    const double ours = median([&] { return (many.*work)(); });
    const double peers = median([&] { return (few.*work)(); });
    std::printf("%-36s %8.2f ms %8.2f ms  ratio %.2f\n", what, ours, peers, ours / peers);
}

void measureValidation()
{
    const PatternFilterDefPtr line = std::make_shared<PatternFilterDef>(QStringLiteral("a//b"));
    const QString proposed = QStringLiteral("Library/Application Support//^cache[0-9]+\\.(tmp|log)$/3:re");
    const double time = median([&] { return milliseconds([&] { (void)line->validateCompletePattern(proposed); }); });
    std::printf("%-36s %8.4f ms\n", "validate a line", time);
}

} // namespace
} // namespace havrel

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    std::printf("%-36s %11s %11s\n", "", "1,000 rows", "10 rows");
    havrel::Table many(havrel::kRows);
    havrel::Table few(havrel::kFewRows);
    havrel::compare("set the list", &havrel::Table::set, many, few);
    havrel::compare("scroll to other rows", &havrel::Table::scroll, many, few);
    havrel::compare("type a letter", &havrel::Table::type, many, few);
    havrel::measureValidation();
    return 0;
}
