// SPDX-License-Identifier: MIT
// The peer of bench/service_bench.py: a program that the bus starts, and that shows an empty window for each call.
#include "platform/bus_connection.h"

#include <QApplication>
#include <QWidget>

#include <vector>

namespace {

using namespace havrel;

int serve()
{
    std::vector<std::unique_ptr<QWidget>> windows;
    const auto show = [&] {
        windows.push_back(std::make_unique<QWidget>());
        windows.back()->resize(500, 500);
        windows.back()->show();
    };
    const platform::BusMethod method{.name = "show", .takes = "a{say}", .call = [&](platform::BusRequest request) {
                                         (void)request.reply();
                                         QMetaObject::invokeMethod(qApp, show, Qt::QueuedConnection);
                                     }};
    platform::BusConnection bus;
    platform::BusRegistration exported;
    const platform::BusInterface interface {
        .name = "com.havrel.EmptyWindow", .methods = { method }
    };
    if (bus.open() != 0 || bus.exportInterface("/com/havrel/EmptyWindow", interface, exported) != 0 ||
        bus.requestName("com.havrel.EmptyWindow") != 0)
        return 1;
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return serve();
}
