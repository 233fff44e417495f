// SPDX-License-Identifier: MIT
// The preferences window with ten thousand items, once files and once folders of which each has patterns of its own:
// until it is filled, until a change shows, and the write pass against the bare attribute calls.
#include "capture_prefs_ui/alert.h"
#include "capture_prefs_ui/capture_preferences_controller.h"
#include "capture_prefs_ui/capture_preferences_window.h"
#include "filters/capture_preferences_attribute.h"
#include "filters/pattern_filter_def.h"
#include "fs/path.h"
#include "tests/support/temporary_tree.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>

namespace havrel {
namespace {

namespace attribute = capture_preferences_attribute;

constexpr int kItems = 10'000;
constexpr int kRounds = 7;

class NoAlerts final : public AlertPresenter
{
public:
    [[nodiscard]] int runModal(const Alert& /*alert*/) override { return kAlertFirstButtonReturn; }
    void beginSheet(const Alert& /*alert*/, QWidget& /*window*/, std::function<void(int)> /*ended*/) override {}
};

template<class Work>
double milliseconds(const Work& work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double median(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

QList<QByteArray> recordsOf(const QList<QByteArray>& paths)
{
    QList<QByteArray> records;
    for (const QByteArray& each : paths)
        records.append(platform::readAttribute(each, attribute::kNameOnDisk).bytes);
    return records;
}

/// What any program would have to do at least: one call an item.
double bareWrites(const QList<QByteArray>& paths, const QList<QByteArray>& records)
{
    return milliseconds([&] {
        for (qsizetype i = 0; i < paths.size(); ++i)
            if (platform::writeAttribute(paths[i], attribute::kNameOnDisk, records[i]) != 0)
                std::exit(1);
    });
}

/// Clicks on an option, and lets its window show that.
double changeTo(CapturePreferencesController& controller, const char* button)
{
    return milliseconds([&] {
        controller.window().findChild<QAbstractButton*>(QLatin1String(button))->click();
        QApplication::processEvents();
    });
}

/// The file system does nothing for a record that is there already, so every write that is timed changes the records,
/// and each round goes between the same two.
void measureWriting(CapturePreferencesController& controller, const QList<QByteArray>& paths)
{
    std::vector<double> changes;
    std::vector<double> passes;
    std::vector<double> bare;
    changeTo(controller, "optionExcludeButton");
    controller.setModifiedPrefs();
    for (int round = 0; round < kRounds; ++round) {
        const QList<QByteArray> before = recordsOf(paths);
        changes.push_back(changeTo(controller, round % 2 == 0 ? "optionIgnoreButton" : "optionExcludeButton"));
        passes.push_back(milliseconds([&] { controller.setModifiedPrefs(); }));
        const QList<QByteArray> after = recordsOf(paths);
        bare.push_back(bareWrites(paths, before));
        bare.push_back(bareWrites(paths, after));
    }
    std::printf("an option change shown: %.1f ms\n", median(changes));
    std::printf("write pass %.0f ms, bare calls %.0f ms: ratio %.2f\n",
                median(passes),
                median(bare),
                median(passes) / median(bare));
}

struct Items
{
    QList<QUrl> urls;
    QList<QByteArray> paths;

    void append(const JNPathPtr& path)
    {
        urls.append(path->url());
        paths.append(path->cPath());
    }
};

void measure(const char* what, const Items& items)
{
    NoAlerts alerts;
    CapturePreferencesController controller(alerts, [] {});
    const double shown = milliseconds([&] {
        if (!controller.prepareWithItems(items.urls))
            std::exit(1);
        controller.showWindow();
        QApplication::processEvents();
    });
    std::printf("%d %s: window %.0f ms\n", kItems, what, shown);
    measureWriting(controller, items.paths);
}

Items makeFiles(const TemporaryTree& tree)
{
    Items items;
    for (int i = 0; i < kItems; ++i) {
        const std::string name = "item" + std::to_string(i);
        tree.add(name);
        items.append(JNPath::withCPath(tree.bytes(name)));
    }
    return items;
}

/// One pattern is common to all, three are the folder's own.
Items makeFolders(const TemporaryTree& tree)
{
    Items items;
    for (int i = 0; i < kItems; ++i) {
        const std::string name = "folder" + std::to_string(i);
        tree.add(name + "/");
        const JNPathPtr path = JNPath::withCPath(tree.bytes(name));
        const QString own = QString::number(i);
        FileCapturePreferences preferences;
        preferences.setExcludeFilterDefs(
            PatternFilterDef::filterDefsFromStrings({QStringLiteral("//*.tmp"),
                                                     QStringLiteral("Library//%1*/+").arg(own),
                                                     QStringLiteral("//^x%1[0-9]+$/:re").arg(own),
                                                     QStringLiteral("//%1.log").arg(own)},
                                                    PatternFilterDef::itemEnvironment()));
        preferences.setPreferencesAtPath(*path);
        items.append(path);
    }
    return items;
}

} // namespace
} // namespace havrel

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const havrel::TemporaryTree tree;
    havrel::measure("files", havrel::makeFiles(tree));
    havrel::measure("folders with patterns of their own", havrel::makeFolders(tree));
    return 0;
}
