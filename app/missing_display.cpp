// SPDX-License-Identifier: MIT
#include "app/missing_display.h"

#include "app/havrel_services.h"
#include "app/service_face.h"
#include "diagnostics/logr.h"
#include "foundation/service_address.h"
#include "platform/bus_connection.h"

#include <QtGlobal>

#include <cstdio>
#include <cstdlib>

namespace havrel {
namespace {

constexpr int kFailed = 1;

QtMessageHandler& handlerBefore()
{
    static QtMessageHandler handler = nullptr;
    return handler;
}

void hearMessage(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (handlerBefore() != nullptr)
        handlerBefore()(type, context, message);
    if (type != QtFatalMsg)
        return;
    tellOfMissingDisplay();
    Logr::closeSharedLogger();
    std::_Exit(kFailed); // half of the application object stands
}

} // namespace

void tellOfMissingDisplay()
{
    static_cast<void>(std::fputs("havrel-service: there is no display to show windows on\n", stderr));
    HavrelServices services; // is asked for nothing
    platform::BusConnection bus;
    if (bus.open() != 0)
        return;
    ServiceFace face(services, bus);
    face.keepRequests();
    if (face.appear() == 0)
        face.end(
            {.error = service_address::kNoDisplay, .text = QStringLiteral("There is no display to show windows on")});
}

MissingDisplayWatch::MissingDisplayWatch()
{
    handlerBefore() = qInstallMessageHandler(hearMessage);
}

MissingDisplayWatch::~MissingDisplayWatch()
{
    qInstallMessageHandler(handlerBefore());
}

} // namespace havrel
