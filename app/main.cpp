// SPDX-License-Identifier: MIT
#include "app/service_options.h"
#include "app/service_program.h"
#include "diagnostics/logr.h"
#include "foundation/main_queue_wall.h"
#include "foundation/process.h"
#include "foundation/service_address.h"
#include "platform/termination_signals.h"

#include <QApplication>

#include <cstdio>

namespace havrel {
namespace {

constexpr int kFailed = 1;

/// The toolkit ends the process with a memory dump where it finds no display; where none is even named, there is no
/// need to try.
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
    const WithMainQueueWall<QApplication> application(argc, argv);
    QGuiApplication::setDesktopFileName(QString::fromLatin1(service_address::kBusName));
    return ServiceProgram(options.idleInterval, signals).run();
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
        static_cast<void>(std::fputs("havrel-service: there is no display to show windows on\n", stderr));
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
    havrel::Logr::closeSharedLogger(); // lines may be held back
    return status;
}
