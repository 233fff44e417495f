// SPDX-License-Identifier: MIT
#include "platform/bus_connection.h"

#include "tests/support/awaited.h"
#include "tests/support/private_bus.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <thread>

#include <sys/socket.h>

namespace havrel::platform {
namespace {

using tests::Awaited;
using tests::PrivateBus;

constexpr std::chrono::seconds kDeadline{60};
constexpr const char* kName = "com.havrel.Test";
constexpr const char* kPath = "/com/havrel/Test";
constexpr const char* kInterface = "com.havrel.Tests";

/// An interface with one method.
BusInterface interfaceWith(BusMethod method)
{
    BusInterface interface {
        .name = kInterface, .methods = {}
    };
    interface.methods.push_back(std::move(method));
    return interface;
}

BusMethod echo()
{
    return {.name = "echo",
            .takes = "v",
            .takesNames = {"value"},
            .answers = "v",
            .answersNames = {"same"},
            .call = [](BusRequest request) { EXPECT_EQ(request.reply(request.values()), 0); }};
}

BusMethod note(Awaited<QVariantList>& noted)
{
    return {.name = "note", .takes = "i", .call = [&noted](BusRequest request) {
                noted.tell(request.values());
                EXPECT_EQ(request.reply(), 0);
            }};
}

class Bus : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(m_service.open(), 0);
        ASSERT_EQ(m_client.open(), 0);
    }
    BusSettings settings() const { return {.address = m_bus.address()}; }
    BusCall callOf(const QByteArray& member, const BusBody& body = {}) const
    {
        return {.destination = m_service.uniqueName(),
                .path = kPath,
                .interface = kInterface,
                .member = member,
                .body = body,
                .limit = kDeadline};
    }
    void serve(BusMethod method)
    {
        ASSERT_EQ(m_service.exportInterface(kPath, interfaceWith(std::move(method)), m_export), 0);
    }

    PrivateBus m_bus;
    BusConnection m_service{settings()};
    BusConnection m_client{settings()};
    BusRegistration m_export;
};

TEST_F(Bus, CarriesACallAndItsAnswer)
{
    serve(echo());
    const BusReply reply = m_client.callAndWait(callOf("echo", {"v", {QStringLiteral("äöü")}}));
    EXPECT_EQ(reply.error, 0) << qPrintable(reply.errorText);
    EXPECT_EQ(reply.values, QVariantList{QStringLiteral("äöü")});
}

TEST_F(Bus, CarriesBytesOfEveryKindAndMegabytesOfThem)
{
    serve(echo());
    QByteArray bytes;
    for (int i = 0; i < 5'000'000; ++i)
        bytes += static_cast<char>(i * 7);
    const BusReply reply = m_client.callAndWait(callOf("echo", {"v", {bytes}}));
    EXPECT_EQ(reply.error, 0) << qPrintable(reply.errorText);
    EXPECT_EQ(reply.values.value(0).toByteArray(), bytes);
}

TEST_F(Bus, TellsTheSenderOfACallAndItsUser)
{
    Awaited<QByteArray> sender;
    serve({.name = "who", .call = [&](BusRequest request) { sender.tell(request.origin().sender); }});
    (void)m_client.callAndWait(callOf("who"));
    EXPECT_EQ(sender.one(), m_client.uniqueName());
    uid_t user = 12345;
    EXPECT_EQ(m_service.userOf(m_client.uniqueName(), user), 0);
    EXPECT_EQ(user, ::geteuid());
    EXPECT_NE(m_service.userOf(":1.99999", user), 0);
}

TEST_F(Bus, TellsUsersWithoutWaitingAndInTheOrderOfTheQuestions)
{
    Awaited<std::pair<int, uid_t>> answers;
    const auto tell = [&answers](int error, uid_t user) { answers.tell({error, user}); };
    m_client.call(callOf("nothing"), [&](const BusReply&) { // on the event thread, which must not wait
        m_client.userOf(":1.99999", tell);
        m_client.userOf(m_service.uniqueName(), tell);
    });
    const auto both = answers.first(2);
    ASSERT_EQ(both.size(), 2U);
    EXPECT_NE(both[0].first, 0);
    EXPECT_EQ(both[1], (std::pair<int, uid_t>{0, ::geteuid()}));
    m_client.close();
    m_client.userOf(m_service.uniqueName(), tell);
    EXPECT_EQ(answers.first(3).at(2).first, ENOTCONN);
}

TEST_F(Bus, KeepsTheOrderOfCallsOfEveryKind)
{
    Awaited<QVariantList> noted;
    serve(note(noted));
    for (int i = 0; i < 1'000; ++i) {
        if (i % 3 == 0)
            ASSERT_EQ(m_client.send(callOf("note", {"i", {i}})), 0);
        else
            m_client.call(callOf("note", {"i", {i}}), [](const BusReply&) {});
    }
    const auto all = noted.first(1'000);
    ASSERT_EQ(all.size(), 1'000U);
    for (int i = 0; i < 1'000; ++i)
        ASSERT_EQ(all[static_cast<std::size_t>(i)], QVariantList{i});
}

TEST_F(Bus, LetsARequestBeAnsweredLaterAndFromAnotherThread)
{
    Awaited<std::shared_ptr<BusRequest>> kept;
    serve({.name = "later", .answers = "s", .call = [&](BusRequest request) {
               kept.tell(std::make_shared<BusRequest>(std::move(request)));
           }});
    Awaited<BusReply> replies;
    m_client.call(callOf("later"), [&](const BusReply& reply) { replies.tell(reply); });
    const auto request = kept.one();
    ASSERT_TRUE(request.has_value());
    std::thread([&] { EXPECT_EQ((*request)->reply({QStringLiteral("now")}), 0); }).join();
    const auto reply = replies.one();
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(reply->values, QVariantList{QStringLiteral("now")});
}

TEST_F(Bus, FailsARequestThatNobodyAnswers)
{
    serve({.name = "forget", .call = [](const BusRequest&) {}});
    const BusReply reply = m_client.callAndWait(callOf("forget"));
    EXPECT_NE(reply.error, 0);
    EXPECT_EQ(reply.errorName, "org.freedesktop.DBus.Error.Failed");
}

TEST_F(Bus, FailsARequestWhoseAnswerHasAnotherShapeThanWasDeclared)
{
    serve({.name = "misfit", .answers = "i", .call = [](BusRequest request) {
               EXPECT_EQ(request.reply({QStringLiteral("text")}), EINVAL);
           }});
    EXPECT_EQ(m_client.callAndWait(callOf("misfit")).errorName, "org.freedesktop.DBus.Error.Failed");
}

TEST_F(Bus, HandsOnTheErrorThatAHandlerGives)
{
    serve({.name = "refuse", .call = [](BusRequest request) {
               EXPECT_EQ(request.fail("com.havrel.Error.No", QStringLiteral("not today")), 0);
           }});
    const BusReply reply = m_client.callAndWait(callOf("refuse"));
    EXPECT_NE(reply.error, 0);
    EXPECT_EQ(reply.errorName, "com.havrel.Error.No");
    EXPECT_EQ(reply.errorText, QStringLiteral("not today"));
}

TEST_F(Bus, TurnsAwayCallsThatNoMethodTakes)
{
    Awaited<QVariantList> noted;
    serve(note(noted));
    struct Row
    {
        const char* member;
        BusBody body;
        const char* error;
    };
    const Row rows[] = {
        {"note", {"s", {QStringLiteral("1")}}, "org.freedesktop.DBus.Error.InvalidArgs"},
        {"note", {"u", {1U}}, "org.freedesktop.DBus.Error.InvalidArgs"},
        {"note", {}, "org.freedesktop.DBus.Error.InvalidArgs"},
        {"note", {"ii", {1, 2}}, "org.freedesktop.DBus.Error.InvalidArgs"},
        {"unknown", {}, "org.freedesktop.DBus.Error.UnknownMethod"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(m_client.callAndWait(callOf(row.member, row.body)).errorName, row.error) << row.member;
    EXPECT_EQ(noted.count(), 0U);
}

TEST_F(Bus, AnswersWithWhatItMetInsteadOfSendingWhatIsNoCall)
{
    struct Row
    {
        const char* why;
        BusCall call;
    };
    const auto with = [&](auto change) {
        BusCall call = callOf("echo", {"v", {1}});
        change(call);
        return call;
    };
    const Row rows[] = {
        {"a path that is none", with([](BusCall& call) { call.path = "com/havrel"; })},
        {"an interface that is none", with([](BusCall& call) { call.interface = "havrel"; })},
        {"a member that is none", with([](BusCall& call) { call.member = "1st"; })},
        {"a name that is none", with([](BusCall& call) { call.destination = "com.havrel.1000"; })},
        {"a value of another type", with([](BusCall& call) {
             call.body = {"s", {1}};
         })},
        {"more values than types", with([](BusCall& call) {
             call.body = {"s", {QString(), QString()}};
         })},
        {"fewer values than types", with([](BusCall& call) {
             call.body = {"ss", {QString()}};
         })},
        {"a signature that is none", with([](BusCall& call) {
             call.body = {"a{", {QVariantMap()}};
         })},
        {"a NUL in a text", with([](BusCall& call) {
             call.body = {"s", {QString(QChar(0))}};
         })},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(m_client.callAndWait(row.call).error, EINVAL) << row.why;
        EXPECT_EQ(m_client.send(row.call), EINVAL) << row.why;
    }
    EXPECT_EQ(m_client.barrier(kDeadline), 0);
}

TEST_F(Bus, ShowsWhatItServesToWhoeverLooks)
{
    serve(echo());
    BusCall look = callOf("Introspect");
    look.interface = "org.freedesktop.DBus.Introspectable";
    const QString seen = m_client.callAndWait(look).values.value(0).toString();
    EXPECT_TRUE(seen.contains(QStringLiteral("<interface name=\"com.havrel.Tests\">"))) << qPrintable(seen);
    EXPECT_TRUE(seen.contains(QStringLiteral("<arg type=\"v\" name=\"value\" direction=\"in\"/>"))) << qPrintable(seen);
    EXPECT_TRUE(seen.contains(QStringLiteral("<arg type=\"v\" name=\"same\" direction=\"out\"/>"))) << qPrintable(seen);
}

TEST_F(Bus, ServesSeveralInterfacesAtOnePathAndEachOnce)
{
    serve(echo());
    BusRegistration second;
    EXPECT_EQ(m_service.exportInterface(kPath, {.name = "com.havrel.More", .methods = {echo()}}, second), 0);
    BusRegistration third;
    EXPECT_EQ(m_service.exportInterface(kPath, interfaceWith(echo()), third), EEXIST);
    BusCall call = callOf("echo", {"v", {true}});
    call.interface = "com.havrel.More";
    EXPECT_EQ(m_client.callAndWait(call).values, QVariantList{true});
}

TEST_F(Bus, RefusesToServeWhatIsNoInterface)
{
    BusRegistration none;
    EXPECT_EQ(m_service.exportInterface("no path", interfaceWith(echo()), none), EINVAL);
    EXPECT_EQ(m_service.exportInterface(kPath, {.name = "havrel", .methods = {}}, none), EINVAL);
    EXPECT_EQ(m_service.exportInterface(kPath, interfaceWith({.name = "bad", .takes = "a{"}), none), EINVAL);
}

TEST_F(Bus, ServesNoLongerThanTheRegistrationLives)
{
    serve(echo());
    m_export.end();
    EXPECT_EQ(m_client.callAndWait(callOf("echo", {"v", {1}})).errorName, "org.freedesktop.DBus.Error.UnknownObject");
    serve(echo());
    EXPECT_EQ(m_client.callAndWait(callOf("echo", {"v", {1}})).error, 0);
}

TEST_F(Bus, LetsAHandlerEndItsOwnRegistration)
{
    serve({.name = "leave", .call = [&](BusRequest request) {
               m_export.end();
               EXPECT_EQ(request.reply(), 0);
           }});
    EXPECT_EQ(m_client.callAndWait(callOf("leave")).error, 0);
    EXPECT_NE(m_client.callAndWait(callOf("leave")).error, 0);
}

TEST_F(Bus, GivesANameToOneOwnerAtATime)
{
    EXPECT_EQ(m_service.requestName(kName), 0);
    EXPECT_EQ(m_service.requestName(kName), 0) << "which it has already";
    EXPECT_EQ(m_client.requestName(kName), EEXIST);
    EXPECT_EQ(m_client.releaseName(kName), ENOENT);
    EXPECT_EQ(m_service.releaseName(kName), 0);
    EXPECT_EQ(m_client.requestName(kName), 0);
    EXPECT_EQ(m_client.requestName("com.havrel.switchboard.1000"), EINVAL);
}

TEST_F(Bus, HandsOverEveryCallByANameBeforeItsReleaseIsAnswered)
{
    Awaited<QVariantList> noted;
    serve(note(noted));
    ASSERT_EQ(m_service.requestName(kName), 0);
    BusCall call = callOf("note", {"i", {1}});
    call.destination = kName;
    ASSERT_EQ(m_client.send(call), 0);
    ASSERT_EQ(m_client.barrier(kDeadline), 0); // the bus has routed it
    EXPECT_EQ(m_service.releaseName(kName), 0);
    EXPECT_EQ(noted.count(), 1U);
}

TEST_F(Bus, TellsWhenANameChangesHands)
{
    Awaited<QByteArrayList> changes;
    BusRegistration watch;
    const auto told = [&](const QByteArray& before, const QByteArray& now) { changes.tell({before, now}); };
    ASSERT_EQ(m_client.watchOwner(kName, told, watch), 0);
    ASSERT_EQ(m_service.requestName(kName), 0);
    ASSERT_EQ(m_service.releaseName(kName), 0);
    const std::vector<QByteArrayList> expected{{"", m_service.uniqueName()}, {m_service.uniqueName(), ""}};
    EXPECT_EQ(changes.first(2), expected);
    watch.end();
    ASSERT_EQ(m_service.requestName(kName), 0);
    ASSERT_EQ(m_client.barrier(kDeadline), 0);
    EXPECT_EQ(changes.count(), 2U);
}

TEST_F(Bus, RefusesAMatchThatIsNone)
{
    BusRegistration none;
    EXPECT_EQ(m_client.match(
                  "nonsense", [](const BusSignal&) {}, none),
              EINVAL);
}

TEST_F(Bus, TellsThatAServiceIsMissingAtOnce)
{
    BusCall call = callOf("echo", {"v", {1}});
    call.destination = "com.havrel.Missing";
    EXPECT_EQ(m_client.callAndWait(call).errorName, "org.freedesktop.DBus.Error.ServiceUnknown");
    call.startsService = false;
    EXPECT_NE(m_client.callAndWait(call).error, 0);
}

TEST_F(Bus, EndsACallAtItsLimit)
{
    Awaited<std::shared_ptr<BusRequest>> kept;
    serve({.name = "never",
           .call = [&](BusRequest request) { kept.tell(std::make_shared<BusRequest>(std::move(request))); }});
    BusCall call = callOf("never");
    call.limit = std::chrono::milliseconds(1);
    const BusReply reply = m_client.callAndWait(call);
    EXPECT_EQ(reply.error, ETIMEDOUT);
}

TEST_F(Bus, EndsACallWhosePeerDies)
{
    Awaited<std::shared_ptr<BusRequest>> kept;
    auto peer = std::make_unique<BusConnection>(settings());
    ASSERT_EQ(peer->open(), 0);
    BusRegistration exported;
    const BusMethod never{.name = "never", .call = [&](BusRequest request) {
                              kept.tell(std::make_shared<BusRequest>(std::move(request)));
                          }};
    ASSERT_EQ(peer->exportInterface(kPath, interfaceWith(never), exported), 0);
    BusCall call = callOf("never");
    call.destination = peer->uniqueName();
    call.limit.reset();
    Awaited<BusReply> replies;
    m_client.call(call, [&](const BusReply& reply) { replies.tell(reply); });
    ASSERT_TRUE(kept.one().has_value());
    peer.reset();
    const auto reply = replies.one();
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(reply->errorName, "org.freedesktop.DBus.Error.NoReply");
    EXPECT_EQ((*kept.one())->reply(), ENOTCONN);
}

TEST_F(Bus, TellsOnceThatTheBusHasGoneAndAnswersWhatWaited)
{
    Awaited<std::shared_ptr<BusRequest>> kept;
    serve({.name = "never",
           .call = [&](BusRequest request) { kept.tell(std::make_shared<BusRequest>(std::move(request))); }});
    Awaited<bool> lost;
    BusConnection client({.address = m_bus.address(), .disconnected = [&] { lost.tell(true); }});
    ASSERT_EQ(client.open(), 0);
    Awaited<BusReply> replies;
    BusCall call = callOf("never");
    call.limit.reset();
    client.call(call, [&](const BusReply& reply) { replies.tell(reply); });
    ASSERT_TRUE(kept.one().has_value());
    m_bus.end();
    EXPECT_TRUE(lost.one().has_value());
    const auto reply = replies.one();
    ASSERT_TRUE(reply.has_value());
    EXPECT_NE(reply->error, 0);
    EXPECT_EQ(client.callAndWait(call).error, ENOTCONN);
    EXPECT_EQ(client.send(call), ENOTCONN);
    EXPECT_NE(client.requestName(kName), 0);
    BusRegistration none;
    EXPECT_EQ(client.exportInterface(kPath, interfaceWith(echo()), none), ENOTCONN);
    EXPECT_EQ(client.match(
                  "type='signal'", [](const BusSignal&) {}, none),
              ENOTCONN);
    EXPECT_EQ(lost.count(), 1U);
}

TEST_F(Bus, SaysNothingOfItsOwnEnd)
{
    Awaited<bool> lost;
    {
        BusConnection client({.address = m_bus.address(), .disconnected = [&] { lost.tell(true); }});
        ASSERT_EQ(client.open(), 0);
    }
    EXPECT_EQ(lost.count(), 0U);
}

TEST_F(Bus, AnswersWhatWaitsWhenItsOwnerEndsIt)
{
    Awaited<std::shared_ptr<BusRequest>> kept;
    serve({.name = "never",
           .call = [&](BusRequest request) { kept.tell(std::make_shared<BusRequest>(std::move(request))); }});
    Awaited<BusReply> replies;
    auto client = std::make_unique<BusConnection>(settings());
    ASSERT_EQ(client->open(), 0);
    client->call(callOf("never"), [&](const BusReply& reply) { replies.tell(reply); });
    ASSERT_TRUE(kept.one().has_value());
    client.reset();
    ASSERT_EQ(replies.count(), 1U);
    EXPECT_EQ(replies.one()->error, ECANCELED);
}

TEST_F(Bus, RefusesToWaitOnItsOwnEventThread)
{
    Awaited<int> answers;
    m_client.call(callOf("echo"), [&](const BusReply&) {
        answers.tell(m_client.callAndWait(callOf("echo")).error);
        answers.tell(m_client.requestName(kName));
        BusRegistration none;
        answers.tell(m_client.match(
            "type='signal'", [](const BusSignal&) {}, none));
    });
    EXPECT_EQ(answers.first(3), (std::vector<int>{EDEADLK, EDEADLK, EDEADLK}));
}

TEST_F(Bus, SurvivesRegistrationsAndRequestsThatOutliveIt)
{
    Awaited<std::shared_ptr<BusRequest>> kept;
    BusRegistration watch;
    BusRegistration exported;
    {
        BusConnection peer(settings());
        ASSERT_EQ(peer.open(), 0);
        ASSERT_EQ(peer.watchOwner(
                      kName, [](const QByteArray&, const QByteArray&) {}, watch),
                  0);
        ASSERT_EQ(
            peer.exportInterface(
                kPath,
                interfaceWith(
                    {.name = "keep",
                     .call = [&](BusRequest request) { kept.tell(std::make_shared<BusRequest>(std::move(request))); }}),
                exported),
            0);
        BusCall call = callOf("keep");
        call.destination = peer.uniqueName();
        ASSERT_EQ(m_client.send(call), 0);
        ASSERT_TRUE(kept.one().has_value());
    }
    watch.end();
    EXPECT_EQ((*kept.one())->reply(), ENOTCONN);
}

TEST(BusOpening, TellsWhyThereIsNoBus)
{
    const TemporaryTree tree({"file"});
    const auto opened = [](const QByteArray& address) { return BusConnection({.address = address}).open(); };
    EXPECT_EQ(opened("unix:path=" + tree.bytes("missing")), ENOENT);
    EXPECT_EQ(opened("unix:path=" + tree.bytes("file")), ECONNREFUSED);
    EXPECT_EQ(opened("nonsense"), ECONNREFUSED) << "no address in it that could be tried";
}

TEST(BusOpening, EndsAtItsLimitWhenTheBusGreetsNobody)
{
    const PrivateBus bus;
    bus.stop();
    EXPECT_EQ(BusConnection({.address = bus.address(), .limit = std::chrono::milliseconds(1)}).open(), ETIMEDOUT);
    bus.resume();
    EXPECT_EQ(BusConnection({.address = bus.address()}).open(), 0);
}

TEST(BusOpening, IsNoConnectionBefore)
{
    BusConnection connection;
    EXPECT_EQ(connection.callAndWait({}).error, ENOTCONN);
    EXPECT_EQ(connection.uniqueName(), "");
}

TEST(BusActivation, StartsTheOwnerOfANameWhoseProgramFails)
{
    const PrivateBus bus;
    bus.addService(kName, "/bin/false");
    BusConnection client({.address = bus.address()});
    ASSERT_EQ(client.open(), 0);
    const BusReply reply = client.callAndWait(
        {.destination = kName, .path = kPath, .interface = kInterface, .member = "echo", .limit = kDeadline});
    EXPECT_EQ(reply.errorName, "org.freedesktop.DBus.Error.Spawn.ChildExited");
}

} // namespace
} // namespace havrel::platform
