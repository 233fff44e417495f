// SPDX-License-Identifier: MIT
#include "messaging/bus_transport.h"

#include "foundation/error.h"
#include "messaging/bus_router.h"
#include "messaging/transport_connection.h"
#include "messaging/xpc_endpoint.h"
#include "messaging/xpc_error.h"
#include "platform/bus_connection.h"
#include "tests/messaging/bus_world.h"
#include "tests/messaging/library_object.h"
#include "tests/messaging/library_process.h"
#include "tests/support/awaited.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace havrel {
namespace {

using platform::BusCall;
using platform::BusConnection;
using platform::BusReply;
using tests::Awaited;
using tests::BusWorld;
using tests::libraryInterface;
using tests::LibraryObject;
using tests::LibraryProcess;
using tests::PrivateBus;

const QString kService = QStringLiteral("com.havrel.library.1000");
constexpr const char* kBusName = "com.havrel.library._1000";
constexpr const char* kStarter = "com.havrel.Library";
constexpr const char* kInterface = "com.havrel.TestLibrary";

BusAddresses onlySession(const PrivateBus& bus)
{
    return {.session = bus.address(), .system = "unix:path=/none"};
}

/// What comes out of one message: its reply, or its error.
struct Outcome
{
    std::optional<QVariantList> values;
    std::optional<Error> error;

    [[nodiscard]] qint64 code() const { return error ? error->code() : 0; }
};

/// One connection of a test, with what has become of it.
class Caller
{
public:
    explicit Caller(XPCConnectionPtr connection)
        : m_connection(std::move(connection))
    {
        m_connection->setRemoteObjectInterface(libraryInterface());
        m_connection->setInvalidationHandler([this] { ends.tell(true); });
        m_connection->resume();
    }
    ~Caller()
    {
        Awaited<bool> done;
        m_connection->invalidate();
        dynamic_cast<TransportConnection&>(*m_connection).replyQueue().async([&] { done.tell(true); });
        EXPECT_TRUE(done.one().has_value());
    }
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;
    Caller(Caller&&) = delete;
    Caller& operator=(Caller&&) = delete;

    void send(const QByteArray& keywordName, const QVariantList& values)
    {
        m_connection->remoteObjectProxyWithErrorHandler([this](const Error& error) { errors.tell(error); })
            ->send(keywordName, values);
    }
    void ask(const QByteArray& keywordName, const QVariantList& values, Awaited<Outcome>& outcomes)
    {
        m_connection->remoteObjectProxyWithErrorHandler([&](const Error& error) {
                        outcomes.tell({{}, error});
                    })
            ->send(keywordName, values, [&](const QVariantList& answer) {
                outcomes.tell({answer, {}});
            });
    }
    Outcome ask(const QByteArray& keywordName, const QVariantList& values = {})
    {
        Awaited<Outcome> outcomes;
        ask(keywordName, values, outcomes);
        return outcomes.one().value_or(Outcome());
    }
    bool barrier() { return ask("barrierWithCompletion:").values.has_value(); }
    XPCConnection& connection() { return *m_connection; }

    Awaited<bool> ends;
    Awaited<Error> errors;

private:
    const XPCConnectionPtr m_connection;
};

// ---- what anybody on the bus may send

/// A listener, and a stranger on the same bus who knows only the bus.
class StrangersOnTheBus : public ::testing::Test
{
protected:
    StrangersOnTheBus()
    {
        m_listener->setAcceptor([this](const XPCConnectionPtr& connection) {
            connection->setExportedInterface(libraryInterface());
            connection->setExportedObject(m_object);
            connection->setRemoteObjectInterface(libraryInterface());
            m_accepted.tell(connection);
            return true;
        });
        EXPECT_EQ(m_listener->resume(), 0);
        EXPECT_EQ(m_stranger.open(), 0);
    }

    BusCall callOf(const QByteArray& member, const platform::BusBody& body = {}) const
    {
        return {.destination = kBusName,
                .path = "/com/havrel/connection/5",
                .interface = kInterface,
                .member = member,
                .body = body};
    }
    std::string errorOf(const BusCall& call) { return m_stranger.callAndWait(call).errorName.toStdString(); }
    bool isWell() { return m_stranger.callAndWait(callOf("barrierWithCompletion_")).error == 0; }

    PrivateBus m_bus;
    BusTransport m_transport{onlySession(m_bus)};
    std::shared_ptr<LibraryObject> m_object = std::make_shared<LibraryObject>();
    Awaited<XPCConnectionPtr> m_accepted;
    std::unique_ptr<XPCListener> m_listener = m_transport.listenerForService(kService, xpc_options::kNone);
    BusConnection m_stranger{{.address = m_bus.address()}};
};

TEST_F(StrangersOnTheBus, MayConnectByPlainCalls)
{
    const BusReply reply = m_stranger.callAndWait(callOf("borrow_withReply_", {"s", {QStringLiteral("Emma")}}));
    EXPECT_EQ(reply.error, 0) << qPrintable(reply.errorText);
    EXPECT_EQ(reply.values, QVariantList{QStringLiteral("Emma")});
    BusCall elsewhere = callOf("barrierWithCompletion_");
    elsewhere.path = "/com/havrel/connection/com_havrel_library__1000/anything";
    EXPECT_EQ(m_stranger.callAndWait(elsewhere).error, 0);
    EXPECT_EQ(m_accepted.first(2).size(), 2U);
}

TEST_F(StrangersOnTheBus, MayWaitForMessagesWithoutAReplyBlock)
{
    EXPECT_EQ(m_stranger.callAndWait(callOf("note_", {"i", {7}})).error, 0);
    EXPECT_EQ(m_object->noted.count(), 1U);
    EXPECT_EQ(m_stranger.send(callOf("borrow_withReply_", {"s", {QString()}})), 0) << "and ask for no reply";
    EXPECT_TRUE(isWell());
    EXPECT_EQ(m_object->noted.count(), 3U);
}

TEST_F(StrangersOnTheBus, AreSpokenToOnTheirPath)
{
    Awaited<QByteArray> spoken;
    platform::BusRegistration served;
    ASSERT_EQ(m_stranger.serveTree({.prefix = "/com/havrel/connection",
                                    .takes = [](const QByteArray&) { return true; },
                                    .called =
                                        [&](const platform::BusTreeCall& call) {
                                            spoken.tell(call.path + ' ' + call.interface + ' ' + call.member);
                                            if (call.answer)
                                                call.answer->reply({"s", {QStringLiteral("yes")}});
                                        }},
                                   served),
              0);
    ASSERT_TRUE(isWell());
    Awaited<QVariantList> replies;
    m_accepted.one().value()->remoteObjectProxyWithErrorHandler({})->send(
        "borrow:withReply:", {QString()}, [&](const QVariantList& values) { replies.tell(values); });
    EXPECT_EQ(replies.one(), QVariantList{QStringLiteral("yes")});
    EXPECT_EQ(spoken.one(), "/com/havrel/connection/5 com.havrel.TestLibrary borrow_withReply_");
    m_accepted.one().value()->invalidate();
    EXPECT_EQ(spoken.first(2)[1], "/com/havrel/connection/5 com.havrel.Connection closed");
}

struct BadCall
{
    const char* interface;
    const char* member;
    platform::BusBody body;
    const char* error; // without its prefix
};

TEST_F(StrangersOnTheBus, GetErrorsForWhatTheyShouldNotSend)
{
    QVariant nested = 1;
    for (int i = 0; i < 20; ++i)
        nested = QVariantList{nested};
    const BadCall calls[] = {
        {kInterface, "lend_", {"s", {QString()}}, "UnknownMethod"},
        {kInterface, "borrow", {"s", {QString()}}, "UnknownMethod"},
        {kInterface, "borrow:withReply:", {"s", {QString()}}, ""}, // no name of a member: not even sent
        {kInterface, "borrow_withReply_", {"i", {1}}, "InvalidArgs"},
        {kInterface, "borrow_withReply_", {}, "InvalidArgs"},
        {kInterface, "borrow_withReply_", {"ss", {QString(), QString()}}, "InvalidArgs"},
        {kInterface, "sum_and_withReply_", {"ii", {1, 1}}, "InvalidArgs"},
        {kInterface, "note_", {"v", {nested}}, "InvalidArgs"},
        {kInterface, "note_", {"a{sv}", {QVariantMap{{QStringLiteral("a"), nested}}}}, "InvalidArgs"},
        {"com.havrel.Other", "borrow_withReply_", {"s", {QString()}}, "UnknownMethod"},
        {"com.havrel.Connection", "open", {}, "UnknownMethod"},
        {"org.example.Other", "borrow_withReply_", {"s", {QString()}}, "UnknownMethod"},
    };
    ASSERT_TRUE(isWell());
    for (const BadCall& each : calls) {
        BusCall call = callOf(each.member, each.body);
        call.interface = each.interface;
        const std::string prefix = *each.error ? "org.freedesktop.DBus.Error." : "";
        EXPECT_EQ(errorOf(call), prefix + each.error) << each.interface << '.' << each.member;
        (void)m_stranger.send(call);
    }
    EXPECT_TRUE(isWell());
    EXPECT_EQ(m_object->noted.count(), 2U);
}

TEST_F(StrangersOnTheBus, MayCarryMegabytesAndDeepNests)
{
    QVariant nested = 1;
    for (int i = 0; i < 15; ++i)
        nested = QVariantList{nested};
    EXPECT_EQ(m_stranger.callAndWait(callOf("echo_withReply_", {"v", {nested}})).error, 0);
    const QByteArray large(30'000'000, 'x');
    const BusReply reply = m_stranger.callAndWait(callOf("echo_withReply_", {"v", {large}}));
    EXPECT_EQ(reply.values, QVariantList{large});
    EXPECT_TRUE(isWell());
}

TEST_F(StrangersOnTheBus, FindNothingElsewhere)
{
    for (const char* path :
         {"/", "/com/havrel", "/com/havrel/connection", "/com/havrel/connection/5/6", "/com/havrel/endpoint/1"}) {
        BusCall call = callOf("barrierWithCompletion_");
        call.path = path;
        EXPECT_NE(errorOf(call), "") << path;
    }
    EXPECT_EQ(m_accepted.count(), 0U);
    EXPECT_EQ(errorOf({.destination = kBusName,
                       .path = "/com/havrel/connection/9",
                       .interface = "com.havrel.Connection",
                       .member = "handled"}),
              "org.freedesktop.DBus.Error.UnknownObject");
    EXPECT_EQ(m_accepted.count(), 0U) << "what connections say of themselves begins none";
}

TEST_F(StrangersOnTheBus, CloseTheirConnections)
{
    ASSERT_TRUE(isWell());
    Awaited<bool> ends;
    m_accepted.one().value()->setInvalidationHandler([&] { ends.tell(true); });
    BusCall close = callOf("closed");
    close.interface = "com.havrel.Connection";
    EXPECT_EQ(m_stranger.callAndWait(close).error, 0);
    EXPECT_TRUE(ends.one().has_value());
    EXPECT_EQ(m_stranger.callAndWait(close).error, 0) << "twice is harmless";
}

TEST_F(StrangersOnTheBus, CanLookAtWhatIsServed)
{
    ASSERT_TRUE(isWell());
    BusCall look = callOf("Introspect");
    look.interface = "org.freedesktop.DBus.Introspectable";
    const BusReply reply = m_stranger.callAndWait(look);
    EXPECT_EQ(reply.error, 0);
    EXPECT_TRUE(reply.values.value(0).toString().contains(QStringLiteral("com.havrel.TestLibrary")));
}

// ---- another process at the other end

class ComponentProcess : public ::testing::Test
{
protected:
    XPCConnectionPtr toService() { return m_transport.connectionToService(kService, xpc_options::kNone); }
    BusRouter& router()
    {
        int error = 0;
        return *m_transport.buses().router(platform::BusKind::Session, error);
    }

    PrivateBus m_bus;
    BusTransport m_transport{onlySession(m_bus)};
};

TEST_F(ComponentProcess, IsNoticedWhenItIsKilled)
{
    LibraryProcess library(m_bus.address());
    Caller caller(toService());
    ASSERT_TRUE(caller.barrier());
    library.kill();
    EXPECT_TRUE(caller.ends.one().has_value());
    EXPECT_EQ(caller.ask("barrierWithCompletion:").code(), xpc_error::kConnectionInvalid);
    EXPECT_EQ(caller.connection().effectiveUserIdentifier(), std::nullopt);
}

TEST_F(ComponentProcess, IsNoticedWhenItIsKilledWithACallersReplyInItsHands)
{
    LibraryProcess library(m_bus.address());
    Caller caller(toService());
    Awaited<Outcome> outcomes;
    caller.ask("echo:withReply:", {QStringLiteral("keep")}, outcomes);
    ASSERT_TRUE(caller.barrier());
    library.kill();
    EXPECT_EQ(outcomes.one().value_or(Outcome()).code(), xpc_error::kConnectionInvalid);
    EXPECT_TRUE(caller.ends.one().has_value());
}

TEST_F(ComponentProcess, IsNoticedWhenItKillsItselfInsideOfAMessage)
{
    LibraryProcess library(m_bus.address());
    Caller caller(toService());
    caller.send("note:", {1});
    caller.send("burn", {});
    caller.send("note:", {2});
    EXPECT_EQ(caller.ask("barrierWithCompletion:").code(), xpc_error::kConnectionInvalid);
    EXPECT_TRUE(caller.ends.one().has_value());
}

TEST_F(ComponentProcess, IsNotMixedUpWithItsSuccessor)
{
    auto first = std::make_unique<LibraryProcess>(m_bus.address());
    Caller caller(toService());
    ASSERT_TRUE(caller.barrier());
    first.reset();
    const LibraryProcess second(m_bus.address());
    EXPECT_EQ(caller.ask("barrierWithCompletion:").code(), xpc_error::kConnectionInvalid);
    Caller again(toService());
    EXPECT_TRUE(again.barrier());
}

TEST_F(ComponentProcess, KeepsItsCallersWaitingWhileItIsStopped)
{
    LibraryProcess library(m_bus.address());
    Caller caller(toService());
    ASSERT_TRUE(caller.barrier());
    library.stop();
    Awaited<Outcome> outcomes;
    for (int i = 0; i < 500; ++i)
        caller.send("note:", {i});
    caller.ask("barrierWithCompletion:", {}, outcomes);
    ASSERT_EQ(router().bus().barrier(std::chrono::seconds(60)), 0) << "the bus has all of it";
    EXPECT_EQ(outcomes.count(), 0U);
    library.resume();
    EXPECT_TRUE(outcomes.one().value_or(Outcome()).values.has_value());
    EXPECT_EQ(caller.errors.count(), 0U);
}

TEST_F(ComponentProcess, LetsAConnectionEndWhileItIsStopped)
{
    LibraryProcess library(m_bus.address());
    Caller caller(toService());
    ASSERT_TRUE(caller.barrier());
    library.stop();
    Awaited<Outcome> outcomes;
    caller.ask("barrierWithCompletion:", {}, outcomes);
    caller.connection().invalidate();
    EXPECT_EQ(outcomes.one().value_or(Outcome()).code(), xpc_error::kConnectionInvalid);
    EXPECT_TRUE(caller.ends.one().has_value());
    EXPECT_EQ(router().routeCount(), 1U) << "the path stays taken";
    library.kill();
}

TEST_F(ComponentProcess, IsStartedByTheBusUnderTheNameThatStandsForIt)
{
    m_bus.addService(kStarter, std::string(HAVREL_LIBRARY_PROGRAM) + " " + m_bus.address().toStdString());
    Caller caller(toService());
    EXPECT_TRUE(caller.barrier());
    QByteArray owner;
    EXPECT_EQ(router().bus().ownerOf(kStarter, owner), 0);
    QByteArray same;
    EXPECT_EQ(router().bus().ownerOf(kBusName, same), 0);
    EXPECT_EQ(owner, same);
    caller.send("burn", {}); // it outlives its bus otherwise
    EXPECT_TRUE(caller.ends.one().has_value());
}

TEST_F(ComponentProcess, FailsAtOnceWhenItsProgramDoesNotStart)
{
    m_bus.addService(kStarter, "/bin/false");
    Caller caller(toService());
    EXPECT_EQ(caller.ask("barrierWithCompletion:").code(), xpc_error::kConnectionInvalid);
}

TEST_F(ComponentProcess, FailsWhenWhatIsStartedDoesNotServeTheName)
{
    BusConnection other({.address = m_bus.address()});
    ASSERT_EQ(other.open(), 0);
    ASSERT_EQ(other.requestName(kStarter), 0);
    Caller caller(toService());
    EXPECT_EQ(caller.ask("barrierWithCompletion:").code(), xpc_error::kConnectionInvalid);
}

TEST_F(ComponentProcess, EndsWithTheBus)
{
    LibraryProcess library(m_bus.address());
    Caller caller(toService());
    ASSERT_TRUE(caller.barrier());
    Awaited<Outcome> outcomes;
    caller.ask("echo:withReply:", {QStringLiteral("keep")}, outcomes);
    m_bus.end();
    EXPECT_EQ(outcomes.one().value_or(Outcome()).code(), xpc_error::kConnectionInvalid);
    EXPECT_TRUE(caller.ends.one().has_value());
    Caller later(toService());
    EXPECT_EQ(later.ask("barrierWithCompletion:").code(), xpc_error::kConnectionInvalid);
}

TEST_F(ComponentProcess, LeavesNothingBehindAfterManyConnections)
{
    LibraryProcess library(m_bus.address());
    Caller caller(toService());
    ASSERT_TRUE(caller.barrier());
    const auto descriptors = [] {
        const std::filesystem::directory_iterator open("/proc/self/fd");
        return std::distance(begin(open), end(open));
    };
    const auto before = descriptors();
    constexpr int kConnections = 10'000;
    for (int i = 0; i < kConnections; ++i) {
        Caller each(toService());
        ASSERT_TRUE(each.barrier()) << i;
    }
    ASSERT_TRUE(caller.barrier()) << "every path is closed at both ends once this has come back";
    EXPECT_EQ(descriptors(), before);
    EXPECT_EQ(router().routeCount(), 1U);
    EXPECT_EQ(router().peerCount(), 1U);
    EXPECT_EQ(caller.ask("sum:and:withReply:", {0, 0U}).values, QVariantList{qint64{1}}) << "connections over there";
}

/// The file is written by the time that the answer comes.
TEST_F(ComponentProcess, PrintsEveryMessageWhereTheEnvironmentAsksForIt)
{
    const TemporaryTree tree;
    const std::string file = tree.path("trace");
    const LibraryProcess library(m_bus.address(), LibraryProcess::As::Same, file.c_str());
    Caller caller(toService());
    caller.send("notePath:", {QByteArray("/seen")});
    ASSERT_TRUE(caller.ask("borrow:withReply:", {QStringLiteral("Emma")}).values.has_value());
    ASSERT_TRUE(caller.barrier()) << "after the answer to the one before";
    std::ifstream stream(file);
    const std::string trace(std::istreambuf_iterator<char>(stream), {});
    for (const char* each : {"notePath_", "borrow_withReply_", "STRING \"Emma\"", "Type=method_return", "RequestName"})
        EXPECT_NE(trace.find(each), std::string::npos) << each << " in:\n" << trace;
}

TEST_F(ComponentProcess, IsReachedByAnEndpointAsLongAsItLives)
{
    LibraryProcess library(m_bus.address());
    const XPCEndpoint gone{":1.4711", "/com/havrel/endpoint/1"};
    Caller caller(m_transport.connectionToEndpoint(gone));
    EXPECT_EQ(caller.ask("barrierWithCompletion:").code(), xpc_error::kConnectionInvalid);
    EXPECT_TRUE(caller.ends.one().has_value());
    for (const char* path : {"", "no path", "/com/havrel/endpoint/1/"}) {
        Caller odd(m_transport.connectionToEndpoint({":1.0", path}));
        EXPECT_NE(odd.ask("barrierWithCompletion:").code(), 0) << path;
    }
}

TEST_F(ComponentProcess, IsRefusedWhenItIsAnotherUsers)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can be another user";
    m_bus.letOthersIn();
    const LibraryProcess library(m_bus.address(), LibraryProcess::As::Nobody);
    Caller caller(toService());
    const Error error = caller.ask("barrierWithCompletion:").error.value_or(Error());
    EXPECT_EQ(error.code(), xpc_error::kConnectionInvalid);
    EXPECT_EQ(error.localizedDescription(), systemErrorText(EPERM));
    EXPECT_TRUE(caller.ends.one().has_value());
}

// ---- the machine's bus

TEST(SystemBus, CarriesPrivilegedServicesOfRootOnly)
{
    const PrivateBus session;
    const PrivateBus system;
    BusTransport transport({.session = session.address(), .system = system.address()});
    const auto object = std::make_shared<LibraryObject>();
    const auto listener = transport.listenerForService(kService, xpc_options::kPrivileged);
    listener->setAcceptor([&](const XPCConnectionPtr& connection) {
        connection->setExportedInterface(libraryInterface());
        connection->setExportedObject(object);
        return true;
    });
    ASSERT_EQ(listener->resume(), 0);
    Caller here(transport.connectionToService(kService, xpc_options::kNone));
    EXPECT_FALSE(here.barrier());
    Caller there(transport.connectionToService(kService, xpc_options::kPrivileged));
    EXPECT_EQ(there.barrier(), ::geteuid() == 0);
}

TEST(SystemBus, HasTheEndpointsOfAProcessWithoutASession)
{
    const PrivateBus system;
    BusTransport transport({.session = "unix:path=/none", .system = system.address()});
    const auto object = std::make_shared<LibraryObject>();
    const auto listener = transport.anonymousListener();
    listener->setAcceptor([&](const XPCConnectionPtr& connection) {
        connection->setExportedInterface(libraryInterface());
        connection->setExportedObject(object);
        return true;
    });
    ASSERT_EQ(listener->resume(), 0);
    Caller caller(transport.connectionToEndpoint(listener->endpoint()));
    EXPECT_TRUE(caller.barrier());
}

TEST(NoBus, FailsAtOnceAndSaysWhy)
{
    BusTransport transport({.session = "unix:path=/none", .system = "unix:path=/none"});
    Caller caller(transport.connectionToService(kService, xpc_options::kNone));
    EXPECT_EQ(caller.ask("barrierWithCompletion:").code(), xpc_error::kConnectionInvalid);
    EXPECT_NE(transport.listenerForService(kService, xpc_options::kNone)->resume(), 0);
    EXPECT_NE(transport.anonymousListener()->resume(), 0);
    const auto observer = transport.addDistributedObserver(kService, [](const QString&) {});
    transport.postDistributedNotification(kService, QString());
    EXPECT_TRUE(observer);
}

} // namespace
} // namespace havrel
