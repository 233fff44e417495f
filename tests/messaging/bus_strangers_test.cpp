// SPDX-License-Identifier: MIT
#include "messaging/bus_transport.h"
#include "messaging/xpc_connection.h"
#include "messaging/xpc_endpoint.h"
#include "platform/bus_connection.h"
#include "tests/messaging/library_object.h"
#include "tests/messaging/library_process.h"
#include "tests/support/awaited.h"
#include "tests/support/private_bus.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace havrel {
namespace {

using platform::BusCall;
using platform::BusConnection;
using platform::BusReply;
using tests::Awaited;
using tests::libraryInterface;
using tests::LibraryObject;
using tests::LibraryProcess;
using tests::PrivateBus;

const QString kService = QStringLiteral("com.havrel.library.1000");
constexpr const char* kBusName = "com.havrel.library._1000";
constexpr const char* kInterface = "com.havrel.TestLibrary";

BusAddresses onlySession(const PrivateBus& bus)
{
    return {.session = bus.address(), .system = "unix:path=/none"};
}

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

TEST_F(StrangersOnTheBus, ReachTheServiceWhoseNameTheyCall)
{
    const auto archive = std::make_shared<LibraryObject>();
    const auto second = m_transport.listenerForService(QStringLiteral("com.havrel.archive"), xpc_options::kNone);
    second->setAcceptor([&](const XPCConnectionPtr& connection) {
        connection->setExportedInterface(libraryInterface());
        connection->setExportedObject(archive);
        return true;
    });
    ASSERT_EQ(second->resume(), 0);
    ASSERT_TRUE(isWell()) << "at 5 is a connection to the first one";
    BusCall call = callOf("note_", {"i", {7}});
    call.destination = "com.havrel.archive";
    EXPECT_EQ(errorOf(call), "org.freedesktop.DBus.Error.UnknownObject") << "at 5";
    call.path = "/com/havrel/connection/6";
    EXPECT_EQ(errorOf(call), "");
    EXPECT_EQ(archive->noted.count(), 1U);
    call.destination = m_listener->endpoint().owner;
    EXPECT_EQ(errorOf(call), "") << "it has begun, and goes on by the unique name";
    EXPECT_EQ(archive->noted.count(), 2U);
    call.path = "/com/havrel/connection/7";
    EXPECT_EQ(errorOf(call), "org.freedesktop.DBus.Error.UnknownObject") << "which of the two?";
    second->invalidate();
    EXPECT_EQ(errorOf(call), "") << "there is only one";
    EXPECT_EQ(m_object->noted.count(), 2U);
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

TEST_F(StrangersOnTheBus, AreRefusedWhenTheyAreAnotherUsers)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can be another user";
    m_bus.letOthersIn();
    EXPECT_FALSE(LibraryProcess::reaches(m_bus.address(), LibraryProcess::As::Nobody));
    EXPECT_EQ(m_accepted.count(), 0U) << "the acceptor is not even asked";
    EXPECT_EQ(m_object->noted.count(), 0U);
    EXPECT_TRUE(LibraryProcess::reaches(m_bus.address(), LibraryProcess::As::Same));
    EXPECT_EQ(m_accepted.count(), 1U);
}

TEST_F(StrangersOnTheBus, MayBeAnsweredWhenTheyHaveGoneOrTheConnectionHasEnded)
{
    Awaited<XPCReply> replies;
    m_object = std::make_shared<LibraryObject>([&](const XPCMessage& message) {
        if (message.keywordName == "borrow:withReply:")
            replies.tell(message.reply);
        else if (message.reply)
            message.reply({});
    });
    auto other = std::make_unique<BusConnection>(platform::BusSettings{.address = m_bus.address()});
    ASSERT_EQ(other->open(), 0);
    const BusCall call = callOf("borrow_withReply_", {"s", {QString()}});
    other->call(call, [](const BusReply&) {});
    m_stranger.call(call, [](const BusReply&) {});
    const auto kept = replies.first(2);
    ASSERT_EQ(kept.size(), 2U);
    other.reset();
    for (const XPCConnectionPtr& each : m_accepted.first(2))
        each->invalidate();
    for (const XPCReply& each : kept)
        each({QStringLiteral("late")});
    BusCall elsewhere = callOf("barrierWithCompletion_");
    elsewhere.path = "/com/havrel/connection/8";
    EXPECT_EQ(m_stranger.callAndWait(elsewhere).error, 0);
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

} // namespace
} // namespace havrel
