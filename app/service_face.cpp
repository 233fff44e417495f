// SPDX-License-Identifier: MIT
#include "app/service_face.h"

#include "app/desktop_requests.h"
#include "app/provided_activation_token.h"
#include "app/request_queue.h"
#include "diagnostics/logr.h"
#include "foundation/dispatch.h"
#include "foundation/service_address.h"
#include "platform/bus_connection.h"
#include "platform/systemd_library.h"

#include <algorithm>
#include <iterator>

namespace havrel {
namespace {

using platform::BusInterface;
using platform::BusMethod;
using platform::BusRegistration;
using platform::BusRequest;

constexpr std::chrono::seconds kFlushLimit{2};
/// Enough for the next one to start on a slow computer; a supervisor that starts it only after our end waits in vain.
constexpr std::chrono::seconds kPassingOnLimit{10};

struct Service
{
    const char* name;
    ServiceRequest request;
};

constexpr Service kServices[] = {
    {service_address::kReveal, &ServiceRequests::revealInArchive},
    {service_address::kCapture, &ServiceRequests::captureToArchive},
    {service_address::kPreferences, &ServiceRequests::setCapturePreferences},
};

void refuse(BusRequest& call, const ServiceFace::Refusal& refusal)
{
    (void)call.fail(refusal.error, refusal.text);
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
    void performNext();
    [[nodiscard]] bool passOn(const RequestQueue::Waiting& waiting);
    void giveNameUp();
    BusMethod service(const Service& declared);
    BusInterface services();
    BusInterface application();
    void activateAction(BusRequest call);

    ServiceRequests& requests;
    RequestQueue queue;
    platform::BusConnection& bus;
    BusRegistration servicesExport;
    BusRegistration applicationExport;
};

/// On the event thread: answers, and leaves the work to the main queue.
void ServiceFace::Life::accept(BusRequest call, ServiceRequest request, const Pasteboard& pasteboard)
{
    switch (queue.arrive(call, {request, pasteboard})) {
    case RequestQueue::Arrival::Accepted:
        (void)call.reply(); // a caller that has gone wants the work all the same
        onMainQueue([life = shared_from_this()] { life->performNext(); });
        break;
    case RequestQueue::Arrival::Kept:
        break;
    case RequestQueue::Arrival::Refused: // by our unique name, which nobody else answers to
        refuse(call, {});
        break;
    }
}

void ServiceFace::Life::performNext()
{
    const std::optional<RequestQueue::Waiting> next = queue.begin();
    if (!next || next->request == nullptr)
        return;
    const ProvidedActivationToken token(next->pasteboard);
    runAtWall([&] { (requests.*next->request)(next->pasteboard); });
}

/// Asks the one that has the name now, whom the bus starts. Waits for its answer: the bus forgets the calls of those
/// that have gone.
bool ServiceFace::Life::passOn(const RequestQueue::Waiting& waiting)
{
    const auto* const service = std::ranges::find(kServices, waiting.request, &Service::request);
    if (service == std::end(kServices))
        return true; // nothing is to be done
    return bus.callAndWait({.destination = service_address::kBusName,
                            .path = service_address::kObjectPath,
                            .interface = service_address::kInterface,
                            .member = service->name,
                            .body = {"a{say}", {dictionaryOf(waiting.pasteboard)}},
                            .limit = kPassingOnLimit})
               .error == 0;
}

/// What the bus has routed here by the name has arrived afterwards.
void ServiceFace::Life::giveNameUp()
{
    (void)platform::notifySupervisor("STOPPING=1");
    (void)bus.releaseName(service_address::kBusName); // without a bus, nobody calls any more
    (void)bus.barrier(kFlushLimit);
}

BusMethod ServiceFace::Life::service(const Service& declared)
{
    return {.name = declared.name,
            .takes = "a{say}",
            .takesNames = {"pasteboard"},
            .call = [this, request = declared.request](BusRequest call) {
                const Pasteboard pasteboard = pasteboardOf(call.values().constFirst().toMap());
                accept(std::move(call), request, pasteboard);
            }};
}

BusInterface ServiceFace::Life::services()
{
    BusInterface interface {
        .name = service_address::kInterface, .methods = {}
    };
    for (const Service& each : kServices)
        interface.methods.push_back(service(each));
    return interface;
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
    m_life->giveNameUp();
    if (m_life->queue.closeUnlessSomeWait())
        return true;
    (void)m_life->bus.requestName(service_address::kBusName);
    return false;
}

void ServiceFace::keepRequests()
{
    m_life->queue.keep();
}

void ServiceFace::end(const Refusal& refusal)
{
    m_life->giveNameUp();
    RequestQueue::Rest rest = m_life->queue.close();
    const auto passOn = [this](const RequestQueue::Waiting& each) { return m_life->passOn(each); };
    if (!std::ranges::all_of(rest.accepted, passOn)) // after one that takes nobody, none would
        Logr::log(LogClassification::Failure, QStringLiteral("A request came too late, and nobody else took it"));
    for (BusRequest& each : rest.kept)
        refuse(each, refusal);
    (void)m_life->bus.barrier(kFlushLimit);
}

} // namespace havrel
