// SPDX-License-Identifier: MIT
#include "messaging/bus_transport.h"

#include "diagnostics/exception.h"
#include "messaging/bus_router.h"
#include "messaging/xpc_endpoint.h"
#include "messaging/xpc_error.h"
#include "platform/bus_connection.h"
#include "tests/messaging/bus_world.h"
#include "tests/messaging/library_caller.h"
#include "tests/messaging/library_process.h"
#include "tests/support/awaited.h"
#include "tests/support/environment_value.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include <unistd.h>

namespace havrel {
namespace {

using platform::BusConnection;
using tests::Awaited;
using tests::BusWorld;
using tests::LibraryCaller;
using tests::libraryInterface;
using tests::LibraryObject;
using tests::LibraryOutcome;
using tests::LibraryProcess;
using tests::PrivateBus;

const QString kService = QStringLiteral("com.havrel.library.1000");
constexpr const char* kBusName = "com.havrel.library._1000";
constexpr const char* kStarter = "com.havrel.Library";

BusAddresses onlySession(const PrivateBus& bus)
{
    return {.session = bus.address(), .system = "unix:path=/none"};
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
    LibraryCaller caller(toService());
    ASSERT_TRUE(caller.barrier());
    library.kill();
    EXPECT_TRUE(caller.ends.one().has_value());
    EXPECT_EQ(caller.ask("barrierWithCompletion:").code(), xpc_error::kConnectionInvalid);
    EXPECT_EQ(caller.connection().effectiveUserIdentifier(), std::nullopt);
}

TEST_F(ComponentProcess, IsNoticedWhenItIsKilledWithACallersReplyInItsHands)
{
    LibraryProcess library(m_bus.address());
    LibraryCaller caller(toService());
    Awaited<LibraryOutcome> outcomes;
    caller.ask("echo:withReply:", {QStringLiteral("keep")}, outcomes);
    ASSERT_TRUE(caller.barrier());
    library.kill();
    EXPECT_EQ(outcomes.one().value_or(LibraryOutcome()).code(), xpc_error::kConnectionInvalid);
    EXPECT_TRUE(caller.ends.one().has_value());
}

TEST_F(ComponentProcess, IsNoticedWhenItKillsItselfInsideOfAMessage)
{
    LibraryProcess library(m_bus.address());
    LibraryCaller caller(toService());
    caller.send("note:", {1});
    caller.send("burn", {});
    caller.send("note:", {2});
    EXPECT_EQ(caller.ask("barrierWithCompletion:").code(), xpc_error::kConnectionInvalid);
    EXPECT_TRUE(caller.ends.one().has_value());
}

TEST_F(ComponentProcess, IsNotMixedUpWithItsSuccessor)
{
    auto first = std::make_unique<LibraryProcess>(m_bus.address());
    LibraryCaller caller(toService());
    ASSERT_TRUE(caller.barrier());
    first.reset();
    const LibraryProcess second(m_bus.address());
    EXPECT_EQ(caller.ask("barrierWithCompletion:").code(), xpc_error::kConnectionInvalid);
    LibraryCaller again(toService());
    EXPECT_TRUE(again.barrier());
}

TEST_F(ComponentProcess, KeepsItsCallersWaitingWhileItIsStopped)
{
    LibraryProcess library(m_bus.address());
    LibraryCaller caller(toService());
    ASSERT_TRUE(caller.barrier());
    library.stop();
    Awaited<LibraryOutcome> outcomes;
    for (int i = 0; i < 500; ++i)
        caller.send("note:", {i});
    caller.ask("barrierWithCompletion:", {}, outcomes);
    ASSERT_EQ(router().bus().barrier(std::chrono::seconds(60)), 0) << "the bus has all of it";
    EXPECT_EQ(outcomes.count(), 0U);
    library.resume();
    EXPECT_TRUE(outcomes.one().value_or(LibraryOutcome()).values.has_value());
    EXPECT_EQ(caller.errors.count(), 0U);
}

TEST_F(ComponentProcess, LetsAConnectionEndWhileItIsStopped)
{
    LibraryProcess library(m_bus.address());
    LibraryCaller caller(toService());
    ASSERT_TRUE(caller.barrier());
    library.stop();
    Awaited<LibraryOutcome> outcomes;
    caller.ask("barrierWithCompletion:", {}, outcomes);
    caller.connection().invalidate();
    EXPECT_EQ(outcomes.one().value_or(LibraryOutcome()).code(), xpc_error::kConnectionInvalid);
    EXPECT_TRUE(caller.ends.one().has_value());
    EXPECT_EQ(router().routeCount(), 1U) << "the path stays taken";
    library.kill();
}

TEST_F(ComponentProcess, IsStartedByTheBusUnderTheNameThatStandsForIt)
{
    m_bus.addService(kStarter, std::string(HAVREL_LIBRARY_PROGRAM) + " " + m_bus.address().toStdString());
    LibraryCaller caller(toService());
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
    LibraryCaller caller(toService());
    EXPECT_EQ(caller.ask("barrierWithCompletion:").code(), xpc_error::kConnectionInvalid);
}

TEST_F(ComponentProcess, FailsWhenWhatIsStartedDoesNotServeTheName)
{
    BusConnection other({.address = m_bus.address()});
    ASSERT_EQ(other.open(), 0);
    ASSERT_EQ(other.requestName(kStarter), 0);
    LibraryCaller caller(toService());
    EXPECT_EQ(caller.ask("barrierWithCompletion:").code(), xpc_error::kConnectionInvalid);
}

TEST_F(ComponentProcess, EndsWithTheBus)
{
    LibraryProcess library(m_bus.address());
    LibraryCaller caller(toService());
    ASSERT_TRUE(caller.barrier());
    Awaited<LibraryOutcome> outcomes;
    caller.ask("echo:withReply:", {QStringLiteral("keep")}, outcomes);
    m_bus.end();
    EXPECT_EQ(outcomes.one().value_or(LibraryOutcome()).code(), xpc_error::kConnectionInvalid);
    EXPECT_TRUE(caller.ends.one().has_value());
    LibraryCaller later(toService());
    EXPECT_EQ(later.ask("barrierWithCompletion:").code(), xpc_error::kConnectionInvalid);
}

/// The loss may be met first by the thread that sends, also in the midst of asking what has been handled.
TEST(BusLoss, EndsAConnectionWhoseMessagesStream)
{
    for (int round = 0; round < 5; ++round) {
        PrivateBus bus;
        BusTransport transport(onlySession(bus));
        const LibraryProcess library(bus.address());
        LibraryCaller caller(transport.connectionToService(kService, xpc_options::kNone));
        ASSERT_TRUE(caller.barrier());
        std::thread sender([&] {
            while (caller.ends.count() == 0)
                caller.send("note:", {1});
        });
        bus.end();
        sender.join();
        EXPECT_EQ(caller.ask("barrierWithCompletion:").code(), xpc_error::kConnectionInvalid);
    }
}

/// The library's own default is 25 seconds; here it is so short that no answer would come in time.
TEST(BusWaits, HaveNoTimeLimitOfTheLibrarys)
{
    const tests::EnvironmentValue limit("SYSTEMD_BUS_TIMEOUT", "1us");
    const PrivateBus bus;
    BusTransport transport(onlySession(bus));
    const LibraryProcess library(bus.address());
    LibraryCaller caller(transport.connectionToService(kService, xpc_options::kNone));
    EXPECT_TRUE(caller.barrier());
}

// ---- values at the edge of what the bus carries

/// A message that is larger or deeper than the bus admits must fail by itself: the bus would end everything else.
class BusEdges : public ::testing::Test
{
protected:
    BusEdges()
    {
        m_listener->setAcceptor([this](const XPCConnectionPtr& connection) {
            connection->setExportedInterface(libraryInterface());
            connection->setExportedObject(m_object);
            return true;
        });
        EXPECT_EQ(m_listener->resume(), 0);
    }
    /// \return none when it is refused at once
    std::optional<LibraryOutcome> echo(const QVariant& value)
    {
        try {
            return m_caller->ask("echo:withReply:", {value});
        } catch (const Exception&) {
            return std::nullopt;
        }
    }

    BusWorld m_world;
    const std::shared_ptr<LibraryObject> m_object = std::make_shared<LibraryObject>();
    std::unique_ptr<XPCListener> m_listener = m_world.server().listenerForService(kService, xpc_options::kNone);
    const std::unique_ptr<LibraryCaller> m_caller =
        std::make_unique<LibraryCaller>(m_world.caller().connectionToService(kService, xpc_options::kNone));
};

TEST_F(BusEdges, LetNestsThroughUpToADepthAndRefuseDeeperOnes)
{
    QVariant list = 1;
    QVariant dictionary = 1;
    bool wasRefused = false;
    for (int depth = 1; depth <= 40; ++depth) {
        list = QVariantList{list};
        dictionary = QVariantMap{{QStringLiteral("in"), dictionary}};
        for (const QVariant& each : {list, dictionary}) {
            const auto outcome = echo(each);
            wasRefused = wasRefused || !outcome;
            if (outcome) {
                EXPECT_TRUE(outcome->values.has_value()) << depth;
            }
        }
    }
    EXPECT_TRUE(wasRefused);
    EXPECT_TRUE(m_caller->barrier());
    EXPECT_EQ(m_caller->ends.count(), 0U);
}

TEST_F(BusEdges, RefuseArraysOfMoreThanSixtyFourMegabytes)
{
    constexpr qsizetype kLargest = 64 * 1'024 * 1'024;
    const QByteArray half(kLargest / 2, 'x');
    EXPECT_EQ(echo(QByteArray(kLargest + 1, 'x')).value().code(), xpc_error::kConnectionInterrupted);
    EXPECT_EQ(echo(QVariantList{half, half}).value().code(), xpc_error::kConnectionInterrupted);
    m_caller->send("notePath:", {QByteArray(kLargest + 1, 'x')});
    EXPECT_EQ(m_caller->errors.one().value_or(Error()).code(), xpc_error::kConnectionInterrupted);
    EXPECT_TRUE(m_caller->barrier());
    EXPECT_EQ(m_caller->ends.count(), 0U);
}

TEST_F(BusEdges, CarryTextsWithCharactersThatAreNone)
{
    const QString odd = QStringLiteral("a") + QChar(0xFFFE) + QChar(0xFFFF) + QChar(0xFDD0) + QChar(0xD800);
    const auto outcome = echo(odd);
    ASSERT_TRUE(outcome.has_value());
    EXPECT_TRUE(outcome->values.has_value()) << qPrintable(outcome->error.value_or(Error()).localizedDescription());
    EXPECT_TRUE(m_caller->barrier());
}

// ---- what is left behind

/// How many rules for signals the bus keeps for the process; none where it does not tell.
std::optional<quint64> rulesAtTheBus(BusConnection& bus)
{
    const platform::BusReply reply = bus.callAndWait({.destination = "org.freedesktop.DBus",
                                                      .path = "/org/freedesktop/DBus",
                                                      .interface = "org.freedesktop.DBus.Debug.Stats",
                                                      .member = "GetConnectionStats",
                                                      .body = {"s", {QString::fromLatin1(bus.uniqueName())}}});
    const QVariantMap stats = reply.values.value(0).toMap();
    const auto found = stats.constFind(QStringLiteral("MatchRules"));
    return found == stats.constEnd() ? std::nullopt : std::optional(found->toULongLong());
}

TEST_F(ComponentProcess, LeavesNothingBehindAfterManyConnections)
{
    LibraryProcess library(m_bus.address());
    LibraryCaller caller(toService());
    ASSERT_TRUE(caller.barrier());
    const auto descriptors = [] {
        const std::filesystem::directory_iterator open("/proc/self/fd");
        return std::distance(begin(open), end(open));
    };
    const auto before = descriptors();
    const auto rules = rulesAtTheBus(router().bus());
    ASSERT_TRUE(rules.has_value());
    constexpr int kConnections = 10'000;
    for (int i = 0; i < kConnections; ++i) {
        LibraryCaller each(toService());
        ASSERT_TRUE(each.barrier()) << i;
    }
    ASSERT_TRUE(caller.barrier()) << "every path is closed at both ends once this has come back";
    EXPECT_EQ(descriptors(), before);
    EXPECT_EQ(router().routeCount(), 1U);
    EXPECT_EQ(router().peerCount(), 1U);
    EXPECT_EQ(rulesAtTheBus(router().bus()), rules);
    EXPECT_EQ(caller.ask("sum:and:withReply:", {0, 0U}).values, QVariantList{qint64{1}}) << "connections over there";
}

/// The file is written by the time that the answer comes.
TEST_F(ComponentProcess, PrintsEveryMessageWhereTheEnvironmentAsksForIt)
{
    const TemporaryTree tree;
    const std::string file = tree.path("trace");
    const LibraryProcess library(m_bus.address(), LibraryProcess::As::Same, file.c_str());
    LibraryCaller caller(toService());
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
    LibraryCaller caller(m_transport.connectionToEndpoint(gone));
    EXPECT_EQ(caller.ask("barrierWithCompletion:").code(), xpc_error::kConnectionInvalid);
    EXPECT_TRUE(caller.ends.one().has_value());
    for (const char* path : {"", "no path", "/com/havrel/endpoint/1/"}) {
        LibraryCaller odd(m_transport.connectionToEndpoint({":1.0", path}));
        EXPECT_NE(odd.ask("barrierWithCompletion:").code(), 0) << path;
    }
}

TEST_F(ComponentProcess, IsRefusedWhenItIsAnotherUsers)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can be another user";
    m_bus.letOthersIn();
    const LibraryProcess library(m_bus.address(), LibraryProcess::As::Nobody);
    LibraryCaller caller(toService());
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
    LibraryCaller here(transport.connectionToService(kService, xpc_options::kNone));
    EXPECT_FALSE(here.barrier());
    LibraryCaller there(transport.connectionToService(kService, xpc_options::kPrivileged));
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
    LibraryCaller caller(transport.connectionToEndpoint(listener->endpoint()));
    EXPECT_TRUE(caller.barrier());
}

TEST(NoBus, FailsAtOnceAndSaysWhy)
{
    BusTransport transport({.session = "unix:path=/none", .system = "unix:path=/none"});
    LibraryCaller caller(transport.connectionToService(kService, xpc_options::kNone));
    EXPECT_EQ(caller.ask("barrierWithCompletion:").code(), xpc_error::kConnectionInvalid);
    EXPECT_NE(transport.listenerForService(kService, xpc_options::kNone)->resume(), 0);
    EXPECT_NE(transport.anonymousListener()->resume(), 0);
    const auto observer = transport.addDistributedObserver(kService, [](const QString&) {});
    transport.postDistributedNotification(kService, QString());
    EXPECT_TRUE(observer);
}

} // namespace
} // namespace havrel
