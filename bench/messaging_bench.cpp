// SPDX-License-Identifier: MIT
// What a message costs between two processes over a message bus of the benchmark's own, beside the bare library through
// the same bus: a barrier's round trip, and one-way messages. Both take turns in one run; medians over the rounds.
//
// usage: messaging_bench
#include "bench/bare_bus.h"
#include "foundation/condition_lock.h"
#include "messaging/bus_transport.h"
#include "messaging/protocol.h"
#include "messaging/xpc_interface.h"
#include "tests/support/private_bus.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

namespace havrel {
namespace {

constexpr int kRounds = 11;
constexpr int kRoundTrips = 1'000;
constexpr int kOneWay = 20'000;
constexpr const char* kBareName = "com.havrel.Bare";
constexpr const char* kService = "com.havrel.bench";
constexpr const char* kPath = "/com/havrel/Bare";
constexpr const char* kInterface = "com.havrel.Bare";

const Protocol& protocol()
{
    static const Protocol s_protocol("Bench", {}, {{"barrierWithCompletion:", {}, QByteArrayList{}}, {"note:", {"i"}}});
    return s_protocol;
}

/// A process that does \p block, and goes with its owner.
class Peer
{
public:
    explicit Peer(const std::function<void()>& block)
        : m_process(::fork())
    {
        if (m_process != 0)
            return;
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        block();
        ::_exit(0);
    }
    ~Peer()
    {
        if (m_process > 1) {
            ::kill(m_process, SIGKILL);
            ::waitpid(m_process, nullptr, 0);
        }
    }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;
    Peer(Peer&&) = delete;
    Peer& operator=(Peer&&) = delete;

private:
    const pid_t m_process;
};

int answered(sd_bus_message* message, void*, sd_bus_error*)
{
    return sd_bus_reply_method_return(message, "");
}

int noted(sd_bus_message* message, void*, sd_bus_error*)
{
    int number = 0;
    return sd_bus_message_read(message, "i", &number);
}

void serveBare(const QByteArray& address)
{
    static const sd_bus_vtable s_table[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("barrier", "", "", answered, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("note", "i", "", noted, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_VTABLE_END,
    };
    sd_bus* bus = bareBus(address);
    sd_bus_add_object_vtable(bus, nullptr, kPath, kInterface, s_table, nullptr);
    if (sd_bus_request_name(bus, kBareName, 0) < 0)
        fail("bare name");
    for (;;)
        if (sd_bus_process(bus, nullptr) == 0)
            sd_bus_wait(bus, UINT64_MAX);
}

class BenchObject final : public XPCExportedObject
{
public:
    void received(const XPCMessage& message) override
    {
        if (message.reply)
            message.reply({});
    }
};

void serveOurs(const QByteArray& address)
{
    BusTransport transport({.session = address, .system = "unix:path=/none"});
    const auto listener = transport.listenerForService(QString::fromLatin1(kService), xpc_options::kNone);
    const auto object = std::make_shared<BenchObject>();
    const auto interface = std::make_shared<XPCInterface>(protocol());
    listener->setAcceptor([&](const XPCConnectionPtr& connection) {
        connection->setExportedInterface(interface);
        connection->setExportedObject(object);
        return true;
    });
    if (listener->resume() != 0)
        fail("our name");
    for (;;)
        ::pause();
}

double secondsOf(const std::function<void()>& block)
{
    const auto start = std::chrono::steady_clock::now();
    block();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// The bare library as the caller.
class BareCaller
{
public:
    explicit BareCaller(const QByteArray& address)
        : m_bus(bareBus(address))
    {
        while (sd_bus_call_method(m_bus, kBareName, kPath, kInterface, "barrier", nullptr, nullptr, "") < 0)
            ::usleep(1'000);
    }
    void barrier() const
    {
        sd_bus_message* reply = nullptr;
        if (sd_bus_call_method(m_bus, kBareName, kPath, kInterface, "barrier", nullptr, &reply, "") < 0)
            fail("bare barrier");
        sd_bus_message_unref(reply);
    }
    void note(int number) const
    {
        sd_bus_message* message = nullptr;
        sd_bus_message_new_method_call(m_bus, &message, kBareName, kPath, kInterface, "note");
        sd_bus_message_append(message, "i", number);
        sd_bus_message_set_expect_reply(message, 0);
        sd_bus_send(m_bus, message, nullptr);
        sd_bus_message_unref(message);
    }

private:
    sd_bus* const m_bus;
};

class OurCaller
{
public:
    explicit OurCaller(const QByteArray& address)
        : m_transport({.session = address, .system = "unix:path=/none"})
    {
        do {
            m_connection = m_transport.connectionToService(QString::fromLatin1(kService), xpc_options::kNone);
            m_connection->setRemoteObjectInterface(std::make_shared<XPCInterface>(protocol()));
            m_connection->resume();
            m_proxy = m_connection->remoteObjectProxyWithErrorHandler([this](const Error&) {
                m_failed = true;
                m_lock->messageReplied();
            });
            m_failed = false;
            barrier();
        } while (m_failed);
    }
    void barrier() const
    {
        m_lock->rearmMessageSync();
        m_proxy->send("barrierWithCompletion:", {}, [this](const QVariantList&) { m_lock->messageReplied(); });
        m_lock->waitForMessageReply();
    }
    void note(int number) const { m_proxy->send("note:", {number}); }

private:
    BusTransport m_transport;
    XPCConnectionPtr m_connection;
    XPCProxyPtr m_proxy;
    std::atomic<bool> m_failed = false;
    const std::shared_ptr<ConditionLock> m_lock = ConditionLock::messageLock();
};

template<class Caller>
double roundTrip(const Caller& caller)
{
    return secondsOf([&] {
               for (int i = 0; i < kRoundTrips; ++i)
                   caller.barrier();
           }) /
           kRoundTrips;
}

template<class Caller>
double oneWay(const Caller& caller)
{
    return secondsOf([&] {
               for (int i = 0; i < kOneWay; ++i)
                   caller.note(i);
               caller.barrier();
           }) /
           kOneWay;
}

void measure()
{
    const tests::PrivateBus bus;
    const Peer barePeer([&] { serveBare(bus.address()); });
    const Peer ourPeer([&] { serveOurs(bus.address()); });
    const BareCaller bare(bus.address());
    const OurCaller ours(bus.address());
    std::vector<double> bareTrips, ourTrips, bareNotes, ourNotes;
    for (int i = 0; i < kRounds; ++i) {
        bareTrips.push_back(roundTrip(bare));
        ourTrips.push_back(roundTrip(ours));
        bareNotes.push_back(oneWay(bare));
        ourNotes.push_back(oneWay(ours));
    }
    std::printf("barrier round trip: %.1f us, bare %.1f us, ratio %.2f\n",
                median(ourTrips) * 1e6,
                median(bareTrips) * 1e6,
                median(ourTrips) / median(bareTrips));
    std::printf("one-way messages a second: %.0f, bare %.0f, ratio %.2f\n",
                1 / median(ourNotes),
                1 / median(bareNotes),
                median(bareNotes) / median(ourNotes));
}

} // namespace
} // namespace havrel

int main()
{
    havrel::measure();
    return 0;
}
