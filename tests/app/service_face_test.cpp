// SPDX-License-Identifier: MIT
#include "app/service_face.h"

#include "app/service_requests.h"
#include "foundation/dispatch.h"
#include "foundation/service_address.h"
#include "platform/bus_connection.h"
#include "tests/support/awaited.h"
#include "tests/support/private_bus.h"
#include "tests/support/recording_logr.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>

#include <sys/socket.h>
#include <sys/un.h>

namespace havrel {
namespace {

using platform::BusCall;
using platform::BusConnection;
using platform::BusReply;
using tests::Awaited;
using tests::PrivateBus;

constexpr std::chrono::seconds kDeadline{60};

/// What was asked, and with which activation token in the environment.
struct Asked
{
    QByteArray member;
    Pasteboard pasteboard;
    QByteArray token;

    bool operator==(const Asked&) const = default;
};

class RecordingRequests final : public ServiceRequests
{
public:
    void revealInArchive(const Pasteboard& pasteboard) override { ask("reveal", pasteboard); }
    void captureToArchive(const Pasteboard& pasteboard) override { ask("capture", pasteboard); }
    void setCapturePreferences(const Pasteboard& pasteboard) override { ask("preferences", pasteboard); }

    std::vector<Asked> asked;
    std::function<void()> meanwhile = [] {};

private:
    void ask(const QByteArray& member, const Pasteboard& pasteboard)
    {
        asked.push_back({member, pasteboard, qgetenv("XDG_ACTIVATION_TOKEN")});
        meanwhile();
    }
};

class ServiceFaceOnABus : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(m_serving.open(), 0);
        ASSERT_EQ(m_client.open(), 0);
        ASSERT_EQ(m_face.appear(), 0);
    }

    static BusCall callOf(const char* interface, const QByteArray& member, const platform::BusBody& body)
    {
        return {.destination = service_address::kBusName,
                .path = service_address::kObjectPath,
                .interface = interface,
                .member = member,
                .body = body,
                .limit = kDeadline};
    }
    static BusCall request(const QByteArray& member, const QVariantMap& pasteboard)
    {
        return callOf(service_address::kInterface, member, {"a{say}", {pasteboard}});
    }
    static BusCall desktop(const QByteArray& member, const platform::BusBody& body)
    {
        return callOf("org.freedesktop.Application", member, body);
    }
    /// Runs the event loop until \p count requests were made.
    void await(std::size_t count)
    {
        const auto end = std::chrono::steady_clock::now() + kDeadline;
        while (m_requests.asked.size() < count && std::chrono::steady_clock::now() < end)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 1'000);
        ASSERT_EQ(m_requests.asked.size(), count);
    }
    /// Runs everything that calls that were answered have put on the main queue: the event thread does that after the
    /// answer.
    void drain()
    {
        EXPECT_EQ(m_serving.barrier(kDeadline), 0);
        bool reached = false;
        onMainQueue([&] { reached = true; });
        while (!reached)
            QCoreApplication::processEvents();
    }
    [[nodiscard]] bool nameIsOwned()
    {
        const BusReply reply = m_client.callAndWait({.destination = "org.freedesktop.DBus",
                                                     .path = "/org/freedesktop/DBus",
                                                     .interface = "org.freedesktop.DBus",
                                                     .member = "NameHasOwner",
                                                     .body = {"s", {QString::fromLatin1(service_address::kBusName)}},
                                                     .limit = kDeadline});
        return reply.values.value(0).toBool();
    }

    /// What the services that the bus starts have written, once it is \p wanted.
    QByteArray writtenLines(const TemporaryTree& tree, const QByteArray& wanted)
    {
        const auto end = std::chrono::steady_clock::now() + kDeadline;
        QByteArray found;
        do {
            (void)m_client.barrier(kDeadline);
            QFile file(QString::fromStdString(tree.path("lines")));
            if (file.open(QIODevice::ReadOnly))
                found = file.readAll();
        } while (found != wanted && std::chrono::steady_clock::now() < end);
        return found;
    }

    PrivateBus m_bus;
    BusConnection m_serving{{.address = m_bus.address()}};
    BusConnection m_client{{.address = m_bus.address()}};
    RecordingRequests m_requests;
    ServiceFace m_face{m_requests, m_serving};
    const QVariantMap m_items{{QStringLiteral("text/uri-list"), QByteArray("file:///a%FF\r\n")}};
    const Pasteboard m_pasteboard{{QStringLiteral("text/uri-list"), QByteArray("file:///a%FF\r\n")}};
};

TEST_F(ServiceFaceOnABus, AnswersBeforeTheWorkBegins)
{
    const BusReply reply = m_client.callAndWait(request(service_address::kReveal, m_items));
    EXPECT_EQ(reply.error, 0) << qPrintable(reply.errorText);
    EXPECT_EQ(reply.values, QVariantList());
    EXPECT_TRUE(m_requests.asked.empty()); // the event loop has not run
    await(1);
    EXPECT_EQ(m_requests.asked, (std::vector<Asked>{{"reveal", m_pasteboard, ""}}));
}

TEST_F(ServiceFaceOnABus, HandsOverRequestsInTheirOrder)
{
    const std::vector<QByteArray> members{
        service_address::kPreferences, service_address::kCapture, service_address::kReveal, service_address::kCapture};
    for (const QByteArray& each : members)
        ASSERT_EQ(m_client.send(request(each, m_items)), 0);
    await(members.size());
    const std::vector<Asked> expected{{"preferences", m_pasteboard, ""},
                                      {"capture", m_pasteboard, ""},
                                      {"reveal", m_pasteboard, ""},
                                      {"capture", m_pasteboard, ""}};
    EXPECT_EQ(m_requests.asked, expected);
}

TEST_F(ServiceFaceOnABus, TellsAnAbsentTypeFromAnEmptyOne)
{
    ASSERT_EQ(m_client.send(request(service_address::kReveal, {})), 0);
    ASSERT_EQ(m_client.send(request(service_address::kReveal, {{QStringLiteral("text/uri-list"), QByteArray()}})), 0);
    await(2);
    EXPECT_FALSE(m_requests.asked[0].pasteboard.contains(QStringLiteral("text/uri-list")));
    EXPECT_TRUE(m_requests.asked[1].pasteboard.contains(QStringLiteral("text/uri-list")));
}

TEST_F(ServiceFaceOnABus, ServesFurtherRequestsWhileOneBlocksInAnEventLoop)
{
    m_requests.meanwhile = [&] {
        if (m_requests.asked.size() > 1)
            return;
        ASSERT_EQ(m_client.callAndWait(request(service_address::kCapture, m_items)).error, 0);
        await(2);
    };
    ASSERT_EQ(m_client.send(request(service_address::kReveal, m_items)), 0);
    await(2);
    EXPECT_EQ(m_requests.asked[1].member, "capture");
}

TEST_F(ServiceFaceOnABus, GoesOnAfterARequestThatThrows)
{
    m_requests.meanwhile = [] { throw std::runtime_error("broken"); };
    ASSERT_EQ(m_client.callAndWait(request(service_address::kReveal, m_items)).error, 0);
    ASSERT_EQ(m_client.callAndWait(request(service_address::kReveal, m_items)).error, 0);
    await(2);
}

TEST_F(ServiceFaceOnABus, LeavesTheActivationTokenToTheRequestThatBroughtIt)
{
    QVariantMap items = m_items;
    items.insert(pasteboard::kActivationToken, QByteArray("token-1"));
    ASSERT_EQ(m_client.send(request(service_address::kReveal, items)), 0);
    ASSERT_EQ(m_client.send(request(service_address::kReveal, m_items)), 0);
    await(2);
    EXPECT_EQ(m_requests.asked[0].token, "token-1");
    EXPECT_EQ(m_requests.asked[1].token, "");
}

TEST_F(ServiceFaceOnABus, TakesTheActivationTokenBackAfterTheRequest)
{
    QVariantMap items = m_items;
    items.insert(pasteboard::kActivationToken, QByteArray("token-1"));
    QByteArray afterTheInner;
    m_requests.meanwhile = [&] {
        if (m_requests.asked.size() > 1)
            return;
        ASSERT_EQ(m_client.callAndWait(request(service_address::kCapture, m_items)).error, 0);
        await(2);
        afterTheInner = qgetenv("XDG_ACTIVATION_TOKEN");
    };
    ASSERT_EQ(m_client.send(request(service_address::kReveal, items)), 0);
    await(2);
    EXPECT_EQ(m_requests.asked[1].token, "");
    EXPECT_EQ(afterTheInner, "token-1");
    EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
}

TEST_F(ServiceFaceOnABus, IsAnApplicationThatADesktopCanStart)
{
    const QVariantMap token{{QStringLiteral("activation-token"), QStringLiteral("t")},
                            {QStringLiteral("desktop-startup-id"), QStringLiteral("d")}};
    const QVariantMap identity{{QStringLiteral("desktop-startup-id"), QStringLiteral("d")}};
    const QVariantMap wrong{{QStringLiteral("activation-token"), 7}};
    const QStringList uris{QStringLiteral("file:///a"), QStringLiteral("file:///b\nc")};
    const QByteArray lines = "file:///a\r\nfile:///b%0Ac\r\n";
    const auto action = [](const char* name, const QVariantList& parameter, const QVariantMap& data = {}) {
        return desktop("ActivateAction", {"sava{sv}", {QString::fromLatin1(name), parameter, data}});
    };
    const auto list = [&](const QByteArray& bytes) { return Pasteboard{{pasteboard::kUriList, bytes}}; };
    const auto listAndToken = [&](const QByteArray& bytes, const char* text) {
        return Pasteboard{{pasteboard::kUriList, bytes}, {pasteboard::kActivationToken, text}};
    };
    struct Row
    {
        BusCall call;
        Asked asked;
    };
    const Row rows[] = {
        {desktop("Open", {"asa{sv}", {uris, token}}), {"preferences", listAndToken(lines, "t"), "t"}},
        {desktop("Open", {"asa{sv}", {uris, wrong}}), {"preferences", list(lines), ""}},
        {desktop("Open", {"asa{sv}", {QStringList(), QVariantMap()}}), {"preferences", {}, ""}},
        {action("reveal", {uris}, identity), {"reveal", listAndToken(lines, "d"), "d"}},
        {action("capture", {uris[0], 5, uris.mid(1)}), {"capture", list(lines), ""}},
        {action("preferences", {}), {"preferences", {}, ""}},
    };
    std::size_t count = 0;
    for (const Row& row : rows) {
        EXPECT_EQ(m_client.callAndWait(row.call).error, 0);
        await(++count);
        EXPECT_EQ(m_requests.asked.back(), row.asked) << "row " << count;
    }
}

TEST_F(ServiceFaceOnABus, AnswersActivationAndUnknownActionsWithoutDoingAnything)
{
    EXPECT_EQ(m_client.callAndWait(desktop("Activate", {"a{sv}", {QVariantMap()}})).error, 0);
    const platform::BusBody unknown{"sava{sv}", {QStringLiteral("sing"), QVariantList(), QVariantMap()}};
    EXPECT_EQ(m_client.callAndWait(desktop("ActivateAction", unknown)).error, 0);
    drain();
    EXPECT_TRUE(m_requests.asked.empty());
    EXPECT_TRUE(m_face.leave());
}

TEST_F(ServiceFaceOnABus, ServesWhatTheInstalledDescriptionSays)
{
    BusCall look = callOf("org.freedesktop.DBus.Introspectable", "Introspect", {});
    const QString served = m_client.callAndWait(look).values.value(0).toString();
    QFile file(QStringLiteral(HAVREL_SOURCES "/resources/bus/com.havrel.Service.xml"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString described = QString::fromUtf8(file.readAll());
    static const QRegularExpression interface(QStringLiteral("<interface name=\"[^\"]*\">.*?</interface>"),
                                              QRegularExpression::DotMatchesEverythingOption);
    int count = 0;
    for (auto each = interface.globalMatch(described); each.hasNext(); ++count) {
        QString wanted = each.next().captured();
        wanted.remove(QRegularExpression(QStringLiteral("<!--.*?-->"), QRegularExpression::DotMatchesEverythingOption));
        EXPECT_TRUE(served.simplified().contains(wanted.simplified())) << qPrintable(wanted) << qPrintable(served);
    }
    EXPECT_EQ(count, 2);
}

TEST_F(ServiceFaceOnABus, TakesTheNameOfNobodyElse)
{
    RecordingRequests requests;
    ServiceFace second(requests, m_client);
    EXPECT_EQ(second.appear(), EEXIST);
}

TEST_F(ServiceFaceOnABus, LeavesWhenNothingIsAsked)
{
    EXPECT_TRUE(nameIsOwned());
    EXPECT_TRUE(m_face.leave());
    EXPECT_FALSE(nameIsOwned());
}

TEST_F(ServiceFaceOnABus, StaysForRequestsThatCameAtTheLastMoment)
{
    ASSERT_EQ(m_client.send(request(service_address::kReveal, m_items)), 0);
    ASSERT_EQ(m_client.barrier(kDeadline), 0); // the bus has it
    EXPECT_FALSE(m_face.leave());
    EXPECT_TRUE(nameIsOwned());
    await(1);
    EXPECT_EQ(m_client.callAndWait(request(service_address::kReveal, m_items)).error, 0);
    await(2);
    EXPECT_TRUE(m_face.leave());
}

TEST_F(ServiceFaceOnABus, SendsAwayAtItsEndThoseWhoCameMeanwhile)
{
    Awaited<BusReply> answers;
    m_face.keepRequests();
    for (int i = 0; i < 2; ++i)
        m_client.call(request(service_address::kReveal, m_items),
                      [&answers](const BusReply& reply) { answers.tell(reply); });
    ASSERT_EQ(m_client.barrier(kDeadline), 0);
    drain();
    EXPECT_EQ(answers.count(), 0U);
    m_face.end();
    for (const BusReply& each : answers.first(2))
        EXPECT_EQ(each.errorName, "org.freedesktop.DBus.Error.ServiceUnknown");
    EXPECT_EQ(answers.count(), 2U);
    EXPECT_FALSE(nameIsOwned());
    drain();
    EXPECT_TRUE(m_requests.asked.empty());
}

TEST_F(ServiceFaceOnABus, TellsThoseWhoCameMeanwhileWhatItIsTold)
{
    Awaited<BusReply> answer;
    m_face.keepRequests();
    m_client.call(desktop("Activate", {"a{sv}", {QVariantMap()}}),
                  [&answer](const BusReply& reply) { answer.tell(reply); });
    ASSERT_EQ(m_client.barrier(kDeadline), 0);
    m_face.end({.error = "com.havrel.Error.Some", .text = QStringLiteral("because")});
    const auto reply = answer.one();
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->errorName, "com.havrel.Error.Some");
    EXPECT_EQ(reply->errorText, QStringLiteral("because"));
}

TEST_F(ServiceFaceOnABus, PassesOnAtItsEndWhatWasAnsweredAndHasNotBegun)
{
    const TemporaryTree tree;
    m_bus.addService(service_address::kBusName, HAVREL_LEAVING_SERVICE " " + tree.path("lines"));
    const platform::BusBody nothing{"a{sv}", {QVariantMap()}};
    ASSERT_EQ(m_client.callAndWait(desktop("Activate", nothing)).error, 0); // there is nothing to be passed on
    for (const QByteArray line : {"first", "second"})
        ASSERT_EQ(m_client.callAndWait(request(service_address::kReveal, {{QStringLiteral("text/plain"), line}})).error,
                  0);
    m_face.end();
    drain();
    EXPECT_TRUE(m_requests.asked.empty());
    EXPECT_EQ(writtenLines(tree, "first\nsecond\n"), "first\nsecond\n");
}

TEST_F(ServiceFaceOnABus, LogsWhatNobodyTakes)
{
    const auto log = std::make_shared<tests::RecordingLogr>();
    const tests::SharedLoggerScope scope(log);
    ASSERT_EQ(m_client.callAndWait(request(service_address::kReveal, m_items)).error, 0);
    m_face.end(); // there is no next one
    const QStringList lines = log->shortLines(Logr::rootLogLine());
    ASSERT_EQ(lines.size(), 1);
    EXPECT_TRUE(lines[0].startsWith(QStringLiteral("Failure A request came too late, and nobody else took it")));
}

TEST_F(ServiceFaceOnABus, SendsThoseWhoKnowItsUniqueNameElsewhereOnceItHasLeft)
{
    ASSERT_TRUE(m_face.leave());
    BusCall call = request(service_address::kReveal, m_items);
    call.destination = m_serving.uniqueName();
    EXPECT_EQ(m_client.callAndWait(call).errorName, "org.freedesktop.DBus.Error.ServiceUnknown");
    drain();
    EXPECT_TRUE(m_requests.asked.empty());
}

TEST_F(ServiceFaceOnABus, LeavesAlsoWhenTheBusHasGone)
{
    m_bus.end();
    EXPECT_TRUE(m_face.leave());
    m_face.end();
}

TEST_F(ServiceFaceOnABus, TellsItsSupervisorBeforeItLeaves)
{
    const TemporaryTree tree;
    const int receiving = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    const QByteArray path = tree.bytes("notify");
    ASSERT_LT(static_cast<std::size_t>(path.size()), sizeof address.sun_path);
    std::copy(path.begin(), path.end(), address.sun_path);
    ASSERT_EQ(::bind(receiving, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    qputenv("NOTIFY_SOCKET", path);
    EXPECT_TRUE(m_face.leave());
    qunsetenv("NOTIFY_SOCKET");
    QByteArray told(100, '\0');
    const ssize_t length = ::recv(receiving, told.data(), 100, 0);
    ::close(receiving);
    EXPECT_EQ(told.left(length), "STOPPING=1");
}

} // namespace
} // namespace havrel
