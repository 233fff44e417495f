// SPDX-License-Identifier: MIT
// What it takes to find a component through the switchboard, to notice its death, and to find out that there is none:
// over a message bus of the benchmark's own, with every other end in a process of its own, beside the least that the
// bare library has to do for it. Medians.
//
// usage: connection_bench
#include "bench/bare_bus.h"
#include "bench/medians.h"
#include "components/component.h"
#include "components/published_component.h"
#include "components/switchboard.h"
#include "messaging/bus_transport.h"
#include "messaging/protocols.h"
#include "messaging/published_connection.h"
#include "messaging/shared_connections.h"
#include "messaging/switchboard_connection.h"
#include "messaging/switchboard_names.h"
#include "tests/support/private_bus.h"

#include <QCoreApplication>

#include <csignal>
#include <cstring>
#include <memory>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace havrel {
namespace {

constexpr const char* kIdentifier = "com.havrel.bench";
constexpr const char* kService = "com.havrel.Bench";
constexpr const char* kBareName = "com.havrel.Bare";
constexpr const char* kBarePath = "/com/havrel/Bare";
constexpr const char* kBus = "org.freedesktop.DBus";
constexpr const char* kBusPath = "/org/freedesktop/DBus";

BusAddresses onlySession(const QByteArray& address)
{
    return {.session = address, .system = "unix:path=/none"};
}

/// This program again, in another part.
class Peer
{
public:
    Peer(const char* part, const QByteArray& address)
        : m_process(::fork())
    {
        if (m_process != 0)
            return;
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::execl("/proc/self/exe", "connection_bench", part, address.constData(), nullptr);
        ::_exit(127);
    }
    ~Peer()
    {
        kill();
        ::waitpid(m_process, nullptr, 0);
    }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;
    Peer(Peer&&) = delete;
    Peer& operator=(Peer&&) = delete;

    void kill() const { ::kill(m_process, SIGKILL); }

private:
    const pid_t m_process;
};

// ---- the other parts

int beSwitchboard(const QByteArray& address)
{
    BusTransport transport(onlySession(address));
    Switchboard switchboard(transport, {.serviceName = switchboard_names::perUserService()});
    return switchboard.start() == 0 ? QCoreApplication::exec() : 1;
}

class BenchComponent final : public Component
{
};

int beComponent(const QByteArray& address)
{
    BusTransport transport(onlySession(address));
    XPCTransport::setShared(&transport);
    PublishedComponent published([] { return std::make_shared<BenchComponent>(); },
                                 {.identifier = QString::fromLatin1(kIdentifier),
                                  .serviceName = QString::fromLatin1(kService),
                                  .protocol = protocols::componentServing()});
    return published.start() == 0 ? QCoreApplication::exec() : 1;
}

int answered(sd_bus_message* message, void*, sd_bus_error*)
{
    return sd_bus_reply_method_return(message, "");
}

int beBare(const QByteArray& address)
{
    static const sd_bus_vtable s_table[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("ask", "", "", answered, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_VTABLE_END,
    };
    sd_bus* bus = bareBus(address);
    sd_bus_add_object_vtable(bus, nullptr, kBarePath, kBareName, s_table, nullptr);
    if (sd_bus_request_name(bus, kBareName, 0) < 0)
        fail("bare name");
    for (;;)
        if (sd_bus_process(bus, nullptr) == 0)
            sd_bus_wait(bus, UINT64_MAX);
}

// ---- ours

/// A process's connections at its start: none.
class Connections
{
public:
    explicit Connections(const QByteArray& address)
        : m_transport(onlySession(address))
    {
        XPCTransport::setShared(&m_transport);
    }
    ~Connections()
    {
        QCoreApplication::sendPostedEvents(); // what waits there holds connections
        SharedConnections::all().forget();
        XPCTransport::setShared(nullptr);
    }
    Connections(const Connections&) = delete;
    Connections& operator=(const Connections&) = delete;
    Connections(Connections&&) = delete;
    Connections& operator=(Connections&&) = delete;

    [[nodiscard]] static std::shared_ptr<HVPublishedConnection> to(const char* identifier)
    {
        return HVConnection::connectionWithPublishedName(
            QString::fromLatin1(identifier), xpc_options::kNone, protocols::componentServing());
    }

private:
    BusTransport m_transport;
};

void waitForComponent(const QByteArray& address)
{
    const Connections connections(address);
    while (!Connections::to(kIdentifier)->ping())
        ::usleep(1'000);
}

double firstConnection(const QByteArray& address)
{
    std::unique_ptr<Connections> connections;
    std::shared_ptr<HVPublishedConnection> connection;
    const double time = milliseconds([&] {
        connections = std::make_unique<Connections>(address);
        connection = Connections::to(kIdentifier);
        if (!connection->ping())
            fail("our component");
    });
    connection.reset();
    return time;
}

double nextConnection(const std::shared_ptr<HVPublishedConnection>& connection)
{
    connection->disconnect();
    return milliseconds([&] {
        if (!connection->ping())
            fail("our component");
    });
}

double missing()
{
    const auto connection = Connections::to("com.havrel.nobody");
    return milliseconds([&] {
        if (connection->ping())
            fail("somebody");
    });
}

double death(const QByteArray& address)
{
    const Peer component("component", address);
    waitForComponent(address);
    const Connections connections(address);
    const auto connection = Connections::to(kIdentifier);
    bool hasEnded = false;
    connection->setInvalidationHandler([&] { hasEnded = true; });
    if (!connection->ping())
        fail("our component");
    return milliseconds([&] {
        component.kill();
        while (!hasEnded)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    });
}

// ---- the bare library

void askBare(sd_bus* bus)
{
    if (sd_bus_call_method(bus, kBareName, kBarePath, kBareName, "ask", nullptr, nullptr, "") < 0)
        fail("bare call");
}

void waitForBare(sd_bus* bus)
{
    while (sd_bus_call_method(bus, kBareName, kBarePath, kBareName, "ask", nullptr, nullptr, "") < 0)
        ::usleep(1'000);
}

/// Two questions, to whoever knows the component and to the component.
double bareFirstConnection(const QByteArray& address)
{
    sd_bus* bus = nullptr;
    const double time = milliseconds([&] {
        bus = bareBus(address);
        askBare(bus);
        askBare(bus);
    });
    sd_bus_flush_close_unref(bus);
    return time;
}

double bareNextConnection(sd_bus* bus)
{
    return milliseconds([&] {
        askBare(bus);
        askBare(bus);
    });
}

double bareMissing(sd_bus* bus)
{
    return milliseconds([&] {
        if (sd_bus_call_method(bus, "com.havrel.Nobody", kBarePath, kBareName, "ask", nullptr, nullptr, "") >= 0)
            fail("somebody");
    });
}

int vanished(sd_bus_message* /*message*/, void* flag, sd_bus_error* /*error*/)
{
    *static_cast<bool*>(flag) = true;
    return 0;
}

double bareDeath(const QByteArray& address)
{
    const Peer component("bare", address);
    sd_bus* bus = bareBus(address);
    waitForBare(bus);
    bool hasEnded = false;
    const QByteArray rule = QByteArray("type='signal',sender='") + kBus + "',path='" + kBusPath +
                            "',member='NameOwnerChanged',arg0='" + kBareName + "'";
    if (sd_bus_add_match(bus, nullptr, rule.constData(), vanished, &hasEnded) < 0)
        fail("bare match");
    const double time = milliseconds([&] {
        component.kill();
        while (!hasEnded)
            if (sd_bus_process(bus, nullptr) == 0)
                sd_bus_wait(bus, UINT64_MAX);
    });
    sd_bus_flush_close_unref(bus);
    return time;
}

// ---- side by side

void print(const char* what, double ours, double bare)
{
    std::printf("%s: %.2f ms, bare %.2f ms, ratio %.1f\n", what, ours, bare, ours / bare);
}

void measureConnecting(const QByteArray& address)
{
    const Peer component("component", address);
    const Peer barePeer("bare", address);
    sd_bus* bare = bareBus(address);
    waitForBare(bare);
    waitForComponent(address);
    print("first connection to a component of a process", median([&] { return firstConnection(address); }), median([&] {
              return bareFirstConnection(address);
          }));
    const Connections connections(address);
    const auto connection = Connections::to(kIdentifier);
    print("another one", median([&] { return nextConnection(connection); }), median([&] {
              return bareNextConnection(bare);
          }));
    print("no such component", median(missing), median([&] { return bareMissing(bare); }));
    sd_bus_flush_close_unref(bare);
}

int measure()
{
    const tests::PrivateBus bus;
    const Peer switchboard("switchboard", bus.address());
    measureConnecting(bus.address());
    print("death of a component noticed", median([&] { return death(bus.address()); }), median([&] {
              return bareDeath(bus.address());
          }));
    return 0;
}

int run(int argc, char** argv)
{
    if (argc == 1)
        return measure();
    if (argc != 3)
        return 2;
    if (std::strcmp(argv[1], "switchboard") == 0)
        return beSwitchboard(argv[2]);
    return std::strcmp(argv[1], "component") == 0 ? beComponent(argv[2]) : beBare(argv[2]);
}

} // namespace
} // namespace havrel

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const int status = havrel::run(argc, argv);
    std::fflush(stdout);
    std::_Exit(status); // threads still hold what would be destroyed
}
