// SPDX-License-Identifier: MIT
// What a picker of 1,000 archives costs, from the monitor's answer to the painted window, with the files there and
// missing, and a step through its list. The peers are an empty window, and the same with 10 archives. Offscreen,
// medians.
#include "app/archive_list_view.h"
#include "app/archive_picker_pane.h"
#include "bench/medians.h"
#include "tests/support/temporary_tree.h"

#include <QApplication>
#include <QTest>

#include <cstdio>

namespace havrel {
namespace {

constexpr int kMany = 1000;
constexpr int kFew = 10;

QList<QVariantMap> archivesIn(const QByteArray& folder, int count)
{
    QList<QVariantMap> archives;
    for (int i = 0; i < count; ++i)
        archives.append(
            {{QStringLiteral("path"), folder + QByteArray("/archive") + QByteArray::number(i) + ".zephra"}});
    return archives;
}

void fill(ArchivePickerPane& pane, const QList<QVariantMap>& archives)
{
    pane.pickerViewController().addArchiveInfo(archives, QStringLiteral("recent"));
    pane.pickerViewController().selectFirstArchive();
    pane.sizeToFit();
    pane.show();
    QApplication::processEvents();
    (void)pane.grab();
}

double show(const QList<QVariantMap>& archives)
{
    ArchivePickerPane pane; // is made while the monitor looks
    return milliseconds([&] { fill(pane, archives); });
}

double step(const QList<QVariantMap>& archives)
{
    ArchivePickerPane pane;
    fill(pane, archives);
    return milliseconds([&] {
        QTest::keyClick(&pane.pickerViewController().tableView(), Qt::Key_End);
        QApplication::processEvents();
        (void)pane.grab();
    });
}

double showEmpty()
{
    QWidget window;
    window.resize(560, 600);
    return milliseconds([&] {
        window.show();
        QApplication::processEvents();
        (void)window.grab();
    });
}

void tell(const char* what, double ours, double peers)
{
    std::printf("%-44s %8.2f ms %8.2f ms  ratio %.2f\n", what, ours, peers, ours / peers);
}

void compare(const char* what, double (*work)(const QList<QVariantMap>&), const QByteArray& folder)
{
    const double ours = median([&] { return work(archivesIn(folder, kMany)); });
    tell(what, ours, median([&] { return work(archivesIn(folder, kFew)); }));
}

int run()
{
    const TemporaryTree tree;
    for (int i = 0; i < kMany; ++i)
        tree.add("archive" + std::to_string(i) + ".zephra");
    std::printf("%-44s %11s %11s\n", "", "1,000", "peer");
    tell("answer of the monitor to painted window",
         median([&] { return show(archivesIn(tree.bytes(""), kMany)); }),
         median(showEmpty));
    std::printf("%-44s %11s %11s\n", "", "1,000", "10");
    compare("answer of the monitor to painted window", show, tree.bytes(""));
    compare("the same, archives missing", show, tree.bytes("missing"));
    compare("to the end of the list, painted", step, tree.bytes(""));
    return 0;
}

} // namespace
} // namespace havrel

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    return havrel::run();
}
