// SPDX-License-Identifier: MIT
#include "platform/bus_connection.h"

#include "platform/bus_calls.h"
#include "platform/bus_exports.h"
#include "platform/bus_loop.h"
#include "platform/held_tree.h"

#include <cerrno>
#include <future>

namespace havrel::platform {
namespace {

// What the bus answers, and how it is asked.
// \source the message bus specification, "Message Bus Messages"
constexpr quint64 kDoNotQueue = 4;
constexpr quint64 kPrimaryOwner = 1;
constexpr quint64 kExists = 3;
constexpr quint64 kAlreadyOwner = 4;
constexpr quint64 kReleased = 1;

constexpr const char* kBus = "org.freedesktop.DBus";
constexpr const char* kBusPath = "/org/freedesktop/DBus";

// Names are taken and given up at the beginning and the end of programs, which must come even if the bus is stopped.
constexpr std::chrono::seconds kNameLimit{25};

/// The one number that the bus answered; 0 when it answered something else.
quint64 numberIn(const BusReply& reply)
{
    return reply.error == 0 && reply.values.size() == 1 ? reply.values.constFirst().toULongLong() : 0;
}

/// A question to the bus itself.
BusCall
toBus(const QByteArray& member, const BusBody& body, std::optional<std::chrono::milliseconds> limit = std::nullopt)
{
    return {.destination = kBus, .path = kBusPath, .interface = kBus, .member = member, .body = body, .limit = limit};
}

BusCall askingUserOf(const QByteArray& name)
{
    return toBus("GetConnectionUnixUser", {"s", {QString::fromUtf8(name)}});
}

/// What is no number must not be taken for root.
int takeUser(const BusReply& reply, uid_t& user)
{
    if (reply.error != 0)
        return reply.error;
    bool isNumber = false;
    user = reply.values.value(0).toUInt(&isNumber);
    return isNumber ? 0 : EPROTO;
}

} // namespace

BusConnection::BusConnection(BusSettings settings)
    : m_limit(settings.limit)
    , m_kind(settings.kind)
    , m_address(std::move(settings.address))
    , m_loop(std::make_shared<BusLoop>(std::move(settings.disconnected)))
{
}

BusConnection::~BusConnection()
{
    m_loop->stop();
}

int BusConnection::open()
{
    return m_loop->start(m_kind, m_address, m_limit);
}

QByteArray BusConnection::uniqueName() const
{
    return m_loop->uniqueName();
}

int BusConnection::exportInterface(const QByteArray& path, BusInterface declared, BusRegistration& registration)
{
    int error = ENOTCONN;
    quint64 number = 0;
    m_loop->run([&] {
        OwnedBusSlot slot;
        error = ExportedInterface::exportAt(
            m_loop->bus(), path, std::make_unique<ExportedInterface>(m_loop, std::move(declared)), slot);
        if (error == 0)
            number = m_loop->hold(std::make_unique<HeldExport>(std::move(slot)));
    });
    if (error == 0)
        registration = BusRegistration(m_loop, number);
    return error;
}

int BusConnection::serveTree(BusTree tree, BusRegistration& registration)
{
    int error = ENOTCONN;
    quint64 number = 0;
    m_loop->run([&] {
        auto held = std::make_unique<HeldTree>(m_loop, std::move(tree));
        error = held->serve(m_loop->bus());
        if (error == 0)
            number = m_loop->hold(std::move(held));
    });
    if (error == 0)
        registration = BusRegistration(m_loop, number);
    return error;
}

BusReply BusConnection::askBus(const QByteArray& member, const BusBody& body, BusLimit limit)
{
    return callAndWait(toBus(member, body, limit));
}

int BusConnection::requestName(const QByteArray& name)
{
    const BusReply reply = askBus("RequestName", {"su", {QString::fromUtf8(name), kDoNotQueue}}, kNameLimit);
    if (reply.error != 0)
        return reply.error;
    const quint64 answer = numberIn(reply);
    if (answer == kPrimaryOwner || answer == kAlreadyOwner)
        return 0;
    return answer == kExists ? EEXIST : EPROTO;
}

int BusConnection::releaseName(const QByteArray& name)
{
    const BusReply reply = askBus("ReleaseName", {"s", {QString::fromUtf8(name)}}, kNameLimit);
    if (reply.error != 0)
        return reply.error;
    return numberIn(reply) == kReleased ? 0 : ENOENT;
}

void BusConnection::call(const BusCall& call, BusReplyHandler handler)
{
    const auto shared = std::make_shared<BusReplyHandler>(std::move(handler));
    BusLoop* loop = m_loop.get();
    const bool queued = m_loop->runSoon([loop, call, shared] { HeldCall::send(*loop, call, std::move(*shared)); });
    if (!queued)
        (*shared)(BusReply{.error = ENOTCONN});
}

BusReply BusConnection::callAndWait(const BusCall& request)
{
    if (m_loop->isCurrent())
        return {.error = EDEADLK};
    std::promise<BusReply> promise;
    call(request, [&](const BusReply& reply) { promise.set_value(reply); });
    return promise.get_future().get();
}

int BusConnection::send(const BusCall& call)
{
    int error = ENOTCONN;
    m_loop->run([&] { error = sendOneWay(*m_loop, call); });
    return error;
}

void BusConnection::post(const BusCall& call, std::function<void(int error)> failed)
{
    BusLoop* loop = m_loop.get();
    const bool queued = m_loop->runSoon([loop, call, failed] {
        if (const int error = sendOneWay(*loop, call); error != 0)
            failed(error);
    });
    if (!queued)
        failed(ENOTCONN);
}

int BusConnection::broadcast(const BusBroadcast& signal)
{
    int error = ENOTCONN;
    m_loop->run([&] { error = sendSignal(*m_loop, signal); });
    return error;
}

int BusConnection::barrier(std::chrono::milliseconds limit)
{
    return callAndWait({.destination = kBus, .path = kBusPath, .interface = kBus, .member = "GetId", .limit = limit})
        .error;
}

int BusConnection::match(const QByteArray& rule, BusSignalHandler handler, BusRegistration& registration)
{
    if (m_loop->isCurrent())
        return EDEADLK;
    std::promise<int> installed;
    quint64 number = 0;
    int error = ENOTCONN;
    m_loop->run([&] {
        auto held = std::make_unique<HeldMatch>(std::move(handler), [&](int answer) { installed.set_value(answer); });
        error = held->add(m_loop->bus(), rule);
        if (error == 0)
            number = m_loop->hold(std::move(held));
    });
    if (error == 0)
        error = installed.get_future().get();
    BusRegistration added(m_loop, number);
    if (error == 0)
        registration = std::move(added);
    return error;
}

int BusConnection::watchOwner(const QByteArray& name,
                              std::function<void(const QByteArray& before, const QByteArray& now)> handler,
                              BusRegistration& registration)
{
    const QByteArray rule = QByteArray("type='signal',sender='") + kBus + "',path='" + kBusPath + "',interface='" +
                            kBus + "',member='NameOwnerChanged',arg0='" + name + "'";
    return match(
        rule,
        [handler = std::move(handler)](const BusSignal& signal) {
            if (signal.values.size() == 3)
                handler(signal.values[1].toString().toUtf8(), signal.values[2].toString().toUtf8());
        },
        registration);
}

int BusConnection::userOf(const QByteArray& name, uid_t& user)
{
    return takeUser(callAndWait(askingUserOf(name)), user);
}

void BusConnection::userOf(const QByteArray& name, std::function<void(int error, uid_t user)> handler)
{
    call(askingUserOf(name), [handler = std::move(handler)](const BusReply& reply) {
        uid_t user = 0;
        const int error = takeUser(reply, user);
        handler(error, user);
    });
}

int BusConnection::ownerOf(const QByteArray& name, QByteArray& owner)
{
    const BusReply reply = askBus("GetNameOwner", {"s", {QString::fromUtf8(name)}});
    owner = reply.error == 0 ? reply.values.value(0).toString().toUtf8() : QByteArray();
    return reply.errorName == "org.freedesktop.DBus.Error.NameHasNoOwner" ? 0 : reply.error;
}

int BusConnection::startService(const QByteArray& name)
{
    return askBus("StartServiceByName", {"su", {QString::fromUtf8(name), 0U}}).error;
}

void BusConnection::close()
{
    m_loop->stop();
}

} // namespace havrel::platform
