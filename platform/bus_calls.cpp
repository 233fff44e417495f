// SPDX-License-Identifier: MIT
#include "platform/bus_calls.h"

#include "platform/bus_trace.h"

#include <algorithm>
#include <cerrno>

namespace havrel::platform {
namespace {

quint64 microsecondsOf(const std::optional<std::chrono::milliseconds>& limit)
{
    using std::chrono::microseconds;
    return limit ? static_cast<quint64>(microseconds(*limit).count()) : UINT64_MAX;
}

/// The library lets some pass that are none, and the bus then ends the connection.
/// \source the message bus specification, "Valid Names"
bool isMemberName(const QByteArray& name)
{
    const auto isLetter = [](char byte) {
        return byte == '_' || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
    };
    const auto isAllowed = [&](char byte) { return isLetter(byte) || (byte >= '0' && byte <= '9'); };
    return !name.isEmpty() && name.size() <= 255 && isLetter(name[0]) &&
           std::all_of(name.begin(), name.end(), isAllowed);
}

/// The message of \p call.
int makeMessage(sd_bus* bus, const BusCall& call, OwnedBusMessage& message)
{
    const BusLibrary& library = *busLibrary();
    sd_bus_message* made = nullptr;
    if (bus == nullptr)
        return ENOTCONN;
    if (!isMemberName(call.member))
        return EINVAL;
    const int result = library.sd_bus_message_new_method_call(bus,
                                                              &made,
                                                              call.destination.constData(),
                                                              call.path.constData(),
                                                              call.interface.constData(),
                                                              call.member.constData());
    message.reset(made);
    if (result < 0)
        return -result;
    if (!call.startsService)
        (void)library.sd_bus_message_set_auto_start(made, 0);
    return appendBody(made, call.body);
}

BusReply replyIn(sd_bus_message* message)
{
    BusReply reply{.error = busLibrary()->sd_bus_message_get_errno(message)};
    if (const sd_bus_error* error = busLibrary()->sd_bus_message_get_error(message)) {
        reply.errorName = error->name;
        reply.errorText = QString::fromUtf8(error->message);
    }
    if (reply.error == 0)
        reply.error = readBody(message, reply.values);
    return reply;
}

QByteArray bytesOf(const char* text)
{
    return {text};
}

} // namespace

void HeldCall::send(BusLoop& loop, const BusCall& call, BusReplyHandler handler)
{
    auto held = std::make_unique<HeldCall>(loop, std::move(handler));
    HeldCall& waiting = *held;
    waiting.m_number = loop.hold(std::move(held));
    if (const int error = waiting.start(call); error != 0)
        if (const auto failed = loop.release(waiting.m_number))
            failed->lost(error);
}

int HeldCall::start(const BusCall& call)
{
    OwnedBusMessage message;
    if (const int error = makeMessage(m_loop.bus(), call, message); error != 0)
        return error;
    sd_bus_slot* slot = nullptr;
    const int result =
        busLibrary()->sd_bus_call_async(m_loop.bus(), &slot, message.get(), answered, this, microsecondsOf(call.limit));
    m_slot.reset(slot);
    traceBusMessage(message.get());
    return result < 0 ? -result : 0;
}

void HeldCall::lost(int error)
{
    m_handler(BusReply{.error = error});
}

int HeldCall::answered(sd_bus_message* message, void* self, sd_bus_error*)
{
    auto& call = *static_cast<HeldCall*>(self);
    if (const auto held = call.m_loop.release(call.m_number))
        call.m_handler(replyIn(message));
    return 1;
}

int sendOneWay(BusLoop& loop, const BusCall& call)
{
    OwnedBusMessage message;
    if (const int error = makeMessage(loop.bus(), call, message); error != 0)
        return error;
    (void)busLibrary()->sd_bus_message_set_expect_reply(message.get(), 0);
    const int sent = busLibrary()->sd_bus_send(loop.bus(), message.get(), nullptr);
    traceBusMessage(message.get());
    return sent < 0 ? -sent : 0;
}

int sendSignal(BusLoop& loop, const BusBroadcast& signal)
{
    const BusLibrary& library = *busLibrary();
    if (loop.bus() == nullptr)
        return ENOTCONN;
    sd_bus_message* made = nullptr;
    const int result = library.sd_bus_message_new_signal(
        loop.bus(), &made, signal.path.constData(), signal.interface.constData(), signal.member.constData());
    const OwnedBusMessage message(made);
    if (result < 0)
        return -result;
    if (const int error = appendBody(made, signal.body); error != 0)
        return error;
    const int sent = library.sd_bus_send(loop.bus(), made, nullptr);
    traceBusMessage(made);
    return sent < 0 ? -sent : 0;
}

HeldMatch::HeldMatch(BusSignalHandler handler, std::function<void(int error)> installed)
    : m_handler(std::make_shared<const BusSignalHandler>(std::move(handler)))
    , m_installed(std::move(installed))
{
}

int HeldMatch::add(sd_bus* bus, const QByteArray& rule)
{
    if (bus == nullptr)
        return ENOTCONN;
    sd_bus_slot* slot = nullptr;
    const int result = busLibrary()->sd_bus_add_match_async(bus, &slot, rule.constData(), caught, taken, this);
    m_slot.reset(slot);
    return result < 0 ? -result : 0;
}

void HeldMatch::lost(int error)
{
    if (const auto installed = std::exchange(m_installed, nullptr))
        installed(error);
}

int HeldMatch::caught(sd_bus_message* message, void* self, sd_bus_error*)
{
    const BusLibrary& library = *busLibrary();
    const auto handler = static_cast<HeldMatch*>(self)->m_handler;
    BusSignal signal{.sender = bytesOf(library.sd_bus_message_get_sender(message)),
                     .path = bytesOf(library.sd_bus_message_get_path(message)),
                     .interface = bytesOf(library.sd_bus_message_get_interface(message)),
                     .member = bytesOf(library.sd_bus_message_get_member(message)),
                     .values = {}};
    if (readBody(message, signal.values) == 0)
        (*handler)(signal);
    return 0; // others may have matched it too
}

int HeldMatch::taken(sd_bus_message* message, void* self, sd_bus_error*)
{
    static_cast<HeldMatch*>(self)->lost(busLibrary()->sd_bus_message_get_errno(message));
    return 1;
}

} // namespace havrel::platform
