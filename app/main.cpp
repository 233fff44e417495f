// SPDX-License-Identifier: MIT
#include "app/component_connections.h"
#include "app/missing_display.h"
#include "app/opening_bus.h"
#include "app/service_options.h"
#include "app/service_program.h"
#include "capture_prefs_ui/visible_indicators.h"
#include "diagnostics/logr.h"
#include "foundation/main_queue_wall.h"
#include "foundation/process.h"
#include "foundation/service_address.h"
#include "messaging/reply_threads.h"
#include "platform/reading_ahead.h"
#include "platform/termination_signals.h"

#include <QApplication>

#include <cstdio>
#include <optional>

namespace havrel {
namespace {

constexpr int kFailed = 1;

/// Where no display is even named, there is no need to try.
bool isWithoutDisplay()
{
    for (const char* each : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (!qEnvironmentVariableIsEmpty(each))
            return false;
    return true;
}

int told(const ServiceOptions& options)
{
    const QByteArray text = options.text.toLocal8Bit();
    static_cast<void>(std::fputs(text.constData(), options.exitStatus == 0 ? stdout : stderr));
    return options.exitStatus;
}

int served(int argc, char** argv, const ServiceOptions& options)
{
    platform::TerminationSignals signals; // before anything makes a thread
    OpeningBus bus;
    const platform::ReadingAhead ahead;
    std::optional<MissingDisplayWatch> watch(std::in_place);
    const WithMainQueueWall<QApplication> application(argc, argv);
    watch.reset();
    VisibleIndicators::install();
    QGuiApplication::setDesktopFileName(QString::fromLatin1(service_address::kBusName));
    return ServiceProgram(options.idleInterval, signals, bus, sharedComponentConnections()).run();
}

/// What leaves main is logged and ends here.
int guarded(int argc, char** argv)
{
    try {
        Process::captureNow();
        const ServiceOptions options = serviceOptionsOf(QByteArrayList(argv + (argc > 0 ? 1 : 0), argv + argc));
        if (!options.text.isNull())
            return told(options);
        if (!isWithoutDisplay())
            return served(argc, argv, options);
        tellOfMissingDisplay();
    } catch (...) {
        endAtMainQueueWall();
    }
    return kFailed;
}

} // namespace
} // namespace havrel

int main(int argc, char** argv)
{
    const int status = havrel::guarded(argc, argv);
    havrel::ReplyThreads::shared().leave();
    havrel::Logr::closeSharedLogger(); // lines may be held back
    return status;
}
