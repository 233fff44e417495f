// SPDX-License-Identifier: MIT
// The preferences window with ten thousand items: until it is filled, until a change shows, and the write pass against
// the bare attribute calls.
#include "capture_prefs_ui/alert.h"
#include "capture_prefs_ui/capture_preferences_controller.h"
#include "capture_prefs_ui/capture_preferences_window.h"
#include "fs/path.h"
#include "platform/extended_attributes.h"
#include "tests/support/temporary_tree.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>

namespace havrel {
namespace {

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

/// What any program would have to do at least: one call an item, with the record that is there.
double bareWrites(const QList<QByteArray>& paths)
{
    const char* name = "user.com.havrel.prefs";
    const QByteArray record = platform::readAttribute(paths.first(), name).bytes;
    return milliseconds([&] {
        for (const QByteArray& each : paths)
            if (platform::writeAttribute(each, name, record) != 0)
                std::exit(1);
    });
}

void measure(const QList<QUrl>& items, const QList<QByteArray>& paths)
{
    NoAlerts alerts;
    CapturePreferencesController controller(alerts, [] {});
    const double shown = milliseconds([&] {
        if (!controller.prepareWithItems(items))
            std::exit(1);
        controller.showWindow();
        QApplication::processEvents();
    });
    std::printf("%d items: window %.0f ms\n", kItems, shown);
    std::vector<double> changes;
    std::vector<double> passes;
    std::vector<double> bare;
    for (int round = 0; round < kRounds; ++round) {
        const char* button = round % 2 == 0 ? "optionIgnoreButton" : "optionExcludeButton";
        changes.push_back(milliseconds([&] {
            controller.window().findChild<QAbstractButton*>(QLatin1String(button))->click();
            QApplication::processEvents();
        }));
        passes.push_back(milliseconds([&] { controller.setModifiedPrefs(); }));
        bare.push_back(bareWrites(paths));
    }
    std::printf("an option change shown: %.1f ms\n", median(changes));
    std::printf("write pass %.0f ms, bare calls %.0f ms: ratio %.2f\n",
                median(passes),
                median(bare),
                median(passes) / median(bare));
}

} // namespace
} // namespace havrel

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const havrel::TemporaryTree tree;
    QList<QUrl> items;
    QList<QByteArray> paths;
    for (int i = 0; i < havrel::kItems; ++i) {
        const std::string name = "item" + std::to_string(i);
        tree.add(name);
        paths.append(tree.bytes(name));
        items.append(havrel::JNPath::withCPath(paths.last())->url());
    }
    havrel::measure(items, paths);
    return 0;
}
