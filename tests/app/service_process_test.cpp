// SPDX-License-Identifier: MIT
// The program as the desktop runs it: in a process of its own, started by the bus.
#include "foundation/pasteboard.h"
#include "foundation/service_address.h"
#include "platform/bus_connection.h"
#include "platform/journal.h"
#include "platform/owned_descriptor.h"
#include "platform/pipe.h"
#include "tests/support/awaited.h"
#include "tests/support/environment_value.h"
#include "tests/support/private_bus.h"

#include <QProcess>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <optional>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>

namespace havrel::tests {
namespace {

constexpr int kDeadline = 60'000; // milliseconds

/// Makes this process an ordinary user's for good, real ids included, until it goes, when it is run by root: the
/// toolkit runs in no other, and root's programs log nothing to the console.
class EntirelyOrdinaryUser
{
public:
    explicit EntirelyOrdinaryUser(const std::string& folder)
    {
        if (::geteuid() != 0)
            return;
        if (::chown(folder.c_str(), kNobody, kNobody) != 0 || ::setresgid(kNobody, kNobody, 0) != 0 ||
            ::setresuid(kNobody, kNobody, 0) != 0)
            throw std::runtime_error("cannot become an ordinary user");
        m_wasRoot = true;
    }
    ~EntirelyOrdinaryUser()
    {
        if (m_wasRoot && (::setresuid(0, 0, 0) != 0 || ::setresgid(0, 0, 0) != 0))
            ::_exit(1); // the tests to come would run as somebody else
    }
    Q_DISABLE_COPY_MOVE(EntirelyOrdinaryUser)

private:
    static constexpr uid_t kNobody = 65534;
    bool m_wasRoot = false;
};

/// A named pipe into which a program writes its errors.
class HeardErrors
{
public:
    explicit HeardErrors(const QByteArray& path)
    {
        if (::mkfifo(path.constData(), 0600) != 0)
            throw std::runtime_error("cannot make a named pipe");
        m_pipe = platform::OwnedDescriptor(::open(path.constData(), O_RDWR | O_CLOEXEC)); // has a writer all the time
    }

    /// How often \p text was heard; waits for \p count times.
    int countOf(QByteArrayView text, int count)
    {
        pollfd readable{m_pipe.get(), POLLIN, 0};
        while (m_heard.count(text) < count && ::poll(&readable, 1, kDeadline) == 1)
            m_heard += platform::readAvailable(m_pipe.get());
        return static_cast<int>(m_heard.count(text));
    }
    /// Everything up to \p text; waits for it.
    QByteArray until(QByteArrayView text)
    {
        pollfd readable{m_pipe.get(), POLLIN, 0};
        while (!m_heard.contains(text) && ::poll(&readable, 1, kDeadline) == 1)
            m_heard += platform::readAvailable(m_pipe.get());
        return m_heard;
    }

private:
    platform::OwnedDescriptor m_pipe;
    QByteArray m_heard;
};

/// The program in a folder of an ordinary user, and that user's environment.
class ServiceProcess : public ::testing::Test
{
protected:
    ServiceProcess()
    {
        // The folder of the build may be shut to the user.
        std::filesystem::copy_file(HAVREL_SERVICE_PROGRAM, m_tree.path("havrel-service"));
        m_user.emplace(m_tree.root());
        const std::pair<const char*, QByteArray> values[] = {
            {"TMPDIR", m_tree.bytes(".")},
            {"HOME", m_tree.bytes(".")},
            {"XDG_RUNTIME_DIR", m_tree.bytes(".")},
            {"XDG_STATE_HOME", m_tree.bytes("state")},
            {"QT_QPA_PLATFORM", "offscreen"},
            {"QT_LOGGING_TO_CONSOLE", "1"},
        };
        for (const auto& [name, value] : values)
            m_environment.push_back(std::make_unique<EnvironmentValue>(name, value));
    }

    /// Runs the program to its end.
    void run(const QStringList& arguments)
    {
        start(arguments);
        EXPECT_TRUE(m_process.waitForFinished(kDeadline));
        m_errors += m_process.readAllStandardError();
    }
    void start(const QStringList& arguments)
    {
        m_process.start(QString::fromStdString(m_tree.path("havrel-service")), arguments);
    }
    void useBus(const PrivateBus& bus)
    {
        m_environment.push_back(std::make_unique<EnvironmentValue>("DBUS_SESSION_BUS_ADDRESS", bus.address()));
    }
    /// What \p service answers to a request with nothing.
    static platform::BusReply answerOf(platform::BusConnection& client, const char* service)
    {
        platform::BusCall call{.destination = service_address::kBusName,
                               .path = service_address::kObjectPath,
                               .interface = service_address::kInterface,
                               .member = service};
        call.body.signature = "a{say}";
        call.body.values.append(QVariant(QVariantMap()));
        call.limit = std::chrono::milliseconds(kDeadline);
        return client.callAndWait(call);
    }
    static int callWithNothing(platform::BusConnection& client, const char* service)
    {
        return answerOf(client, service).error;
    }
    /// The process that serves; 0 when there is none just now.
    static pid_t servingProcess(platform::BusConnection& client)
    {
        platform::BusCall call{.destination = "org.freedesktop.DBus",
                               .path = "/org/freedesktop/DBus",
                               .interface = "org.freedesktop.DBus",
                               .member = "GetConnectionUnixProcessID"};
        call.body = {"s", {QString::fromLatin1(service_address::kBusName)}};
        return client.callAndWait(call).values.value(0).toInt();
    }

    TemporaryTree m_tree;
    std::optional<EntirelyOrdinaryUser> m_user;
    std::vector<std::unique_ptr<EnvironmentValue>> m_environment;
    QProcess m_process;
    QByteArray m_errors;
};

TEST_F(ServiceProcess, IsStartedByTheBusAndEndsByItself)
{
    if (platform::journalExists())
        GTEST_SKIP() << "there is a journal here, which gets the lines instead of standard error";
    HeardErrors errors(m_tree.bytes("errors"));
    m_tree.write("serve", "exec " + m_tree.path("havrel-service") + " --idle-interval 50 2> " + m_tree.path("errors"));
    const PrivateBus bus;
    bus.addService(service_address::kBusName, "/bin/sh " + m_tree.path("serve"));
    platform::BusConnection client({.address = bus.address()});
    ASSERT_EQ(client.open(), 0);
    for (const char* each : {service_address::kReveal, service_address::kCapture, service_address::kPreferences})
        EXPECT_EQ(callWithNothing(client, each), 0) << each;
    const QByteArray heard = errors.until("stopping Service-3.0.6.4");
    EXPECT_TRUE(heard.contains("started Service-3.0.6.4")) << heard.constData();
    EXPECT_TRUE(heard.contains("Unrecognized clipboard contents; service performed no action"));
    EXPECT_TRUE(heard.contains("stopping Service-3.0.6.4"));
}

TEST_F(ServiceProcess, LosesNoneOfTheCallsThatAimAtItsEnd)
{
    constexpr int kCalls = 200;
    const PrivateBus bus;
    bus.addService(service_address::kBusName, m_tree.path("havrel-service") + " --idle-interval 1");
    platform::BusConnection client({.address = bus.address()});
    ASSERT_EQ(client.open(), 0);
    Awaited<QByteArray> owners;
    platform::BusRegistration watch;
    const auto changed = [&owners](const QByteArray&, const QByteArray& now) { owners.tell(now); };
    ASSERT_EQ(client.watchOwner(service_address::kBusName, changed, watch), 0);
    for (int i = 0; i < kCalls; ++i) {
        EXPECT_EQ(callWithNothing(client, service_address::kReveal), 0) << i;
        for (int round = i % 40; round > 0; --round) // later and later in its last moments
            ASSERT_EQ(client.barrier(std::chrono::milliseconds(kDeadline)), 0);
    }
    EXPECT_GT(owners.count(), 2U); // it did end in between
}

TEST_F(ServiceProcess, LosesNoneOfTheCallsAroundASignal)
{
    if (platform::journalExists())
        GTEST_SKIP() << "there is a journal here, which gets the lines instead of standard error";
    constexpr int kCalls = 40;
    HeardErrors errors(m_tree.bytes("errors"));
    m_tree.write("serve", "exec " + m_tree.path("havrel-service") + " 2> " + m_tree.path("errors"));
    const PrivateBus bus;
    bus.addService(service_address::kBusName, "/bin/sh " + m_tree.path("serve"));
    platform::BusConnection client({.address = bus.address()});
    ASSERT_EQ(client.open(), 0);
    int signals = 0;
    for (int i = 0; i < kCalls; ++i) {
        if (const pid_t process = servingProcess(client); process > 1 && i % 2 == 1)
            signals += ::kill(process, SIGTERM) == 0; // a call follows at once
        platform::BusReply reply = answerOf(client, service_address::kReveal);
        if (reply.errorName == "org.freedesktop.DBus.Error.ServiceUnknown")
            reply = answerOf(client, service_address::kReveal); // as the tool does
        EXPECT_EQ(reply.error, 0) << i << ": " << reply.errorName.constData();
        if (const pid_t process = servingProcess(client); process > 1 && i % 2 == 0)
            signals += ::kill(process, SIGTERM) == 0; // a call has just been answered
    }
    EXPECT_GT(signals, kCalls / 4);
    EXPECT_EQ(errors.countOf("Unrecognized clipboard contents", kCalls), kCalls);
}

TEST_F(ServiceProcess, TellsCallersThatThereIsNoDisplay)
{
    struct Row
    {
        const char* platform;
        const char* display;
    };
    const Row rows[] = {
        {"", ""},                 // none is named
        {"", ":65000"},           // nobody listens
        {"xcb", ""},              // none is named, but asked for
        {"no such platform", ""}, // the toolkit has none
    };
    for (const Row& row : rows) {
        const EnvironmentValue toolkit("QT_QPA_PLATFORM", row.platform);
        const EnvironmentValue display("DISPLAY", row.display);
        const EnvironmentValue compositor("WAYLAND_DISPLAY", "");
        const PrivateBus bus;
        bus.addService(service_address::kBusName, m_tree.path("havrel-service"));
        platform::BusConnection client({.address = bus.address()});
        ASSERT_EQ(client.open(), 0);
        for (const char* each : {service_address::kCapture, service_address::kPreferences}) {
            const platform::BusReply reply = answerOf(client, each);
            EXPECT_EQ(reply.errorName, service_address::kNoDisplay)
                << row.platform << "/" << row.display << ": " << qPrintable(reply.errorText);
        }
    }
}

TEST_F(ServiceProcess, EndsByASignal)
{
    const PrivateBus bus;
    useBus(bus);
    platform::BusConnection client({.address = bus.address()});
    ASSERT_EQ(client.open(), 0);
    Awaited<QByteArray> owner;
    platform::BusRegistration watch;
    ASSERT_EQ(
        client.watchOwner(
            service_address::kBusName, [&owner](const QByteArray&, const QByteArray& now) { owner.tell(now); }, watch),
        0);
    start({});
    ASSERT_TRUE(owner.one());
    m_process.terminate();
    EXPECT_TRUE(m_process.waitForFinished(kDeadline));
    EXPECT_EQ(m_process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(m_process.exitCode(), 0);
    EXPECT_EQ(owner.first(2).size(), 2U); // the name is free again
}

TEST_F(ServiceProcess, LeavesTheNameToTheOneThatHasIt)
{
    const PrivateBus bus;
    useBus(bus);
    platform::BusConnection other({.address = bus.address()});
    ASSERT_EQ(other.open(), 0);
    ASSERT_EQ(other.requestName(service_address::kBusName), 0);
    run({});
    EXPECT_EQ(m_process.exitCode(), 0);
    EXPECT_TRUE(m_errors.contains("havrel-service: another process serves already\n")) << m_errors.constData();
}

TEST_F(ServiceProcess, TellsWhatItLacks)
{
    const EnvironmentValue noBus("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + m_tree.bytes("none"));
    run({});
    EXPECT_EQ(m_process.exitCode(), 1);
    EXPECT_TRUE(m_errors.contains("havrel-service: cannot serve on the session bus: ")) << m_errors.constData();
    const EnvironmentValue noPlatform("QT_QPA_PLATFORM", "");
    const EnvironmentValue noDisplay("DISPLAY", "");
    const EnvironmentValue noCompositor("WAYLAND_DISPLAY", "");
    run({});
    EXPECT_EQ(m_process.exitCode(), 1);
    EXPECT_TRUE(m_errors.contains("havrel-service: there is no display")) << m_errors.constData();
}

TEST_F(ServiceProcess, TellsPeopleWhatItIs)
{
    const EnvironmentValue noPlatform("QT_QPA_PLATFORM", "");
    run({QStringLiteral("--help")});
    EXPECT_EQ(m_process.exitCode(), 0);
    EXPECT_TRUE(m_process.readAllStandardOutput().startsWith("Usage: havrel-service"));
    run({QStringLiteral("--version")});
    EXPECT_EQ(m_process.exitCode(), 0);
    EXPECT_TRUE(m_process.readAllStandardOutput().startsWith("havrel-service "));
    run({QStringLiteral("file")});
    EXPECT_EQ(m_process.exitCode(), 2);
    EXPECT_TRUE(m_errors.contains("unknown argument"));
}

} // namespace
} // namespace havrel::tests
