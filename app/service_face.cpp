// SPDX-License-Identifier: MIT
#include "app/service_face.h"

#include "app/accepted_requests.h"
#include "app/desktop_requests.h"
#include "app/provided_activation_token.h"
#include "app/service_requests.h"
#include "diagnostics/logr.h"
#include "foundation/dispatch.h"
#include "foundation/service_address.h"
#include "platform/bus_connection.h"
#include "platform/systemd_library.h"

namespace havrel {
namespace {

using platform::BusInterface;
using platform::BusMethod;
using platform::BusRegistration;
using platform::BusRequest;

constexpr std::chrono::seconds kFlushLimit{2};

Pasteboard pasteboardIn(const QVariant& dictionary)
{
    Pasteboard pasteboard;
    const QVariantMap types = dictionary.toMap();
    for (auto each = types.constKeyValueBegin(); each != types.constKeyValueEnd(); ++each)
        pasteboard.insert(each->first, each->second.toByteArray());
    return pasteboard;
}

} // namespace

/// What the event thread and the main thread share; blocks on the main queue may outlive the face.
struct ServiceFace::Life : std::enable_shared_from_this<Life>
{
    Life(ServiceRequests& answering, platform::BusConnection& connection)
        : requests(answering)
        , bus(connection)
    {
    }

    void accept(BusRequest call, ServiceRequest request, const Pasteboard& pasteboard);
    void perform(ServiceRequest request, const Pasteboard& pasteboard);
    BusMethod service(const char* name, ServiceRequest request);
    BusInterface services();
    BusInterface application();
    void activateAction(BusRequest call);

    ServiceRequests& requests;
    AcceptedRequests accepted;
    platform::BusConnection& bus;
    BusRegistration servicesExport;
    BusRegistration applicationExport;
};

/// On the event thread: answers, and leaves the work to the main queue.
void ServiceFace::Life::accept(BusRequest call, ServiceRequest request, const Pasteboard& pasteboard)
{
    if (!accepted.accept()) { // by our unique name, which nobody else answers to; the well-known one is free
        (void)call.fail("org.freedesktop.DBus.Error.ServiceUnknown", QStringLiteral("The service has ended"));
        return;
    }
    (void)call.reply(); // a caller that has gone wants the work all the same
    onMainQueue([life = shared_from_this(), request, pasteboard] { life->perform(request, pasteboard); });
}

void ServiceFace::Life::perform(ServiceRequest request, const Pasteboard& pasteboard)
{
    accepted.begin();
    if (request == nullptr)
        return;
    const ProvidedActivationToken token(pasteboard);
    runAtWall([&] { (requests.*request)(pasteboard); });
}

BusMethod ServiceFace::Life::service(const char* name, ServiceRequest request)
{
    return {.name = name, .takes = "a{say}", .takesNames = {"pasteboard"}, .call = [this, request](BusRequest call) {
                const Pasteboard pasteboard = pasteboardIn(call.values().constFirst());
                accept(std::move(call), request, pasteboard);
            }};
}

BusInterface ServiceFace::Life::services()
{
    return {.name = service_address::kInterface,
            .methods = {
                service(service_address::kReveal, &ServiceRequests::revealInArchive),
                service(service_address::kCapture, &ServiceRequests::captureToArchive),
                service(service_address::kPreferences, &ServiceRequests::setCapturePreferences),
            }};
}

void ServiceFace::Life::activateAction(BusRequest call)
{
    const QVariantList values = call.values();
    const ServiceRequest request = requestOfAction(values[0].toString());
    if (request == nullptr)
        Logr::log(LogClassification::Curious, QStringLiteral("No such action: %1").arg(values[0].toString()));
    accept(std::move(call), request, pasteboardOf(urisInParameter(values[1].toList()), values[2].toMap()));
}

/// \source the desktop entry specification, "D-Bus Activation". Activation alone asks for nothing: there is no window
/// without items. Opening items is opening their preferences.
BusInterface ServiceFace::Life::application()
{
    const auto open = [this](BusRequest call) {
        const QVariantList values = call.values();
        const Pasteboard pasteboard = pasteboardOf(values[0].toStringList(), values[1].toMap());
        accept(std::move(call), &ServiceRequests::setCapturePreferences, pasteboard);
    };
    return {.name = "org.freedesktop.Application",
            .methods = {
                {.name = "Activate",
                 .takes = "a{sv}",
                 .takesNames = {"platform_data"},
                 .call = [this](BusRequest call) { accept(std::move(call), nullptr, {}); }},
                {.name = "Open", .takes = "asa{sv}", .takesNames = {"uris", "platform_data"}, .call = open},
                {.name = "ActivateAction",
                 .takes = "sava{sv}",
                 .takesNames = {"action_name", "parameter", "platform_data"},
                 .call = [this](BusRequest call) { activateAction(std::move(call)); }},
            }};
}

ServiceFace::ServiceFace(ServiceRequests& requests, platform::BusConnection& bus)
    : m_life(std::make_shared<Life>(requests, bus))
{
}

ServiceFace::~ServiceFace()
{
    m_life->servicesExport.end(); // blocks on the main queue may keep the rest
    m_life->applicationExport.end();
}

int ServiceFace::appear()
{
    platform::BusConnection& bus = m_life->bus;
    int error = bus.exportInterface(service_address::kObjectPath, m_life->services(), m_life->servicesExport);
    if (error == 0)
        error = bus.exportInterface(service_address::kObjectPath, m_life->application(), m_life->applicationExport);
    if (error == 0)
        error = bus.requestName(service_address::kBusName);
    return error;
}

bool ServiceFace::leave()
{
    platform::BusConnection& bus = m_life->bus;
    (void)platform::notifySupervisor("STOPPING=1");
    (void)bus.releaseName(service_address::kBusName); // without a bus, nobody calls any more
    (void)bus.barrier(kFlushLimit);
    if (m_life->accepted.close())
        return true;
    (void)bus.requestName(service_address::kBusName);
    return false;
}

} // namespace havrel
