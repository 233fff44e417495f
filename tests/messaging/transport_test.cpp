// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"
#include "messaging/xpc_endpoint.h"
#include "messaging/xpc_error.h"
#include "tests/messaging/transport_fixture.h"

#include <QCoreApplication>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <thread>

#include <unistd.h>

namespace havrel {
namespace {

using tests::Awaited;
using tests::kLibrary;
using tests::libraryInterface;
using tests::LibraryObject;

/// What every transport has to do, on each of them.
template<class World>
class Transport : public tests::TransportFixture<World>
{
};

TYPED_TEST_SUITE(Transport, tests::Worlds);

TYPED_TEST(Transport, CarriesAMessageAndItsReply)
{
    this->serve();
    this->connect();
    const auto outcome = this->ask("borrow:withReply:", {QStringLiteral("Æsop")});
    EXPECT_EQ(outcome.values, QVariantList{QStringLiteral("Æsop")});
    EXPECT_EQ(this->m_object->noted.first(1)[0].keywordName, "borrow:withReply:");
    EXPECT_EQ(this->m_connection->serviceName(), QLatin1StringView(kLibrary));
    EXPECT_TRUE(this->m_accepted.one().value()->serviceName().isNull());
}

TYPED_TEST(Transport, CarriesIntegersAsSixtyFourBitsAndBytesAsTheyAre)
{
    this->serve([](const XPCMessage& message) {
        if (message.keywordName == "sum:and:withReply:")
            message.reply({message.values[0].toLongLong() + message.values[1].toLongLong()});
    });
    this->connect();
    const auto outcome = this->ask("sum:and:withReply:", {-5, 3U});
    EXPECT_EQ(outcome.values, QVariantList{qint64{-2}});
    this->send("notePath:", {QByteArray("/\0\xff", 3)});
    const auto noted = this->m_object->noted.first(2);
    EXPECT_EQ(noted[0].values[0].typeId(), QMetaType::LongLong);
    EXPECT_EQ(noted[0].values[1].typeId(), QMetaType::ULongLong);
    EXPECT_EQ(noted[1].values, (QVariantList{QByteArray("/\0\xff", 3)}));
}

TYPED_TEST(Transport, CarriesDictionariesWithWhatTheyHold)
{
    const QVariantMap archive{{QStringLiteral("path"), QByteArray("/home/\xff.zephra")},
                              {QStringLiteral("count"), qint64{3}},
                              {QStringLiteral("more"), QVariantMap{{QStringLiteral("a"), true}}}};
    const QVariant catalogue = QVariantList{archive, QVariantMap()};
    this->serve([&](const XPCMessage& message) { message.reply({catalogue}); });
    this->connect();
    EXPECT_EQ(this->ask("catalogueWithReply:").values, QVariantList({catalogue}));
}

TYPED_TEST(Transport, KeepsTheOrderOfMessagesOfEveryKind)
{
    this->serve();
    this->connect();
    Awaited<typename TestFixture::Outcome> outcomes;
    for (int i = 0; i < 1'000; ++i)
        if (i % 3 == 0)
            this->ask("echo:withReply:", {i}, outcomes);
        else
            this->send("note:", {i});
    ASSERT_TRUE(this->barrier());
    const auto noted = this->m_object->noted.first(1'000);
    for (std::size_t i = 0; i < 1'000; ++i)
        ASSERT_EQ(noted[i].values.constFirst().toInt(), static_cast<int>(i));
    ASSERT_EQ(outcomes.count(), 334U) << "replies that came before the barrier's are handled before it";
}

TYPED_TEST(Transport, HandlesRepliesInTheOrderInWhichTheyAreGiven)
{
    std::vector<XPCReply> kept;
    this->serve([&](const XPCMessage& message) {
        if (message.keywordName == "barrierWithCompletion:")
            for (auto each = kept.rbegin(); each != kept.rend(); ++each)
                (*each)({QVariant::fromValue(static_cast<int>(kept.rend() - each))});
        if (message.keywordName == "barrierWithCompletion:")
            message.reply({});
        else
            kept.push_back(message.reply);
    });
    this->connect();
    Awaited<int> order;
    for (int i = 0; i < 100; ++i)
        this->m_proxy->send("echo:withReply:", {i}, [&order, i](const QVariantList&) { order.tell(i); });
    ASSERT_TRUE(this->barrier());
    const auto all = order.first(100);
    ASSERT_EQ(all.size(), 100U);
    for (std::size_t i = 0; i < 100; ++i)
        EXPECT_EQ(all[i], 99 - static_cast<int>(i));
}

TYPED_TEST(Transport, SpeaksInBothDirections)
{
    this->serve();
    const auto own = std::make_shared<LibraryObject>();
    this->connect(false);
    this->m_connection->setExportedInterface(libraryInterface());
    this->m_connection->setExportedObject(own);
    this->m_connection->resume();
    ASSERT_TRUE(this->barrier());
    const auto back = this->m_accepted.one().value()->remoteObjectProxyWithErrorHandler({});
    Awaited<QVariantList> replies;
    back->send("note:", {1});
    back->send("echo:withReply:", {QStringLiteral("x")}, [&](const QVariantList& values) { replies.tell(values); });
    EXPECT_EQ(replies.one(), QVariantList{QStringLiteral("x")});
    EXPECT_EQ(own->noted.count(), 2U);
}

TYPED_TEST(Transport, ReachesAListenerByItsEndpoint)
{
    this->m_object = std::make_shared<LibraryObject>();
    this->m_listener = this->m_world.server().anonymousListener();
    this->m_listener->setAcceptor(this->acceptor(libraryInterface()));
    ASSERT_EQ(this->m_listener->resume(), 0);
    const auto endpoint = XPCEndpoint::fromValue(this->m_listener->endpoint().asValue());
    ASSERT_TRUE(endpoint.has_value());
    this->m_connection = this->m_world.caller().connectionToEndpoint(*endpoint);
    this->m_made.push_back(this->m_connection);
    this->m_connection->setRemoteObjectInterface(libraryInterface());
    this->m_connection->resume();
    EXPECT_TRUE(this->barrier());
    EXPECT_TRUE(this->m_connection->serviceName().isNull());
}

TYPED_TEST(Transport, KeepsApartConnectionsToOneService)
{
    this->serve();
    this->connect();
    ASSERT_TRUE(this->barrier());
    const XPCConnectionPtr first = this->m_connection;
    this->connect();
    ASSERT_TRUE(this->barrier());
    ASSERT_EQ(this->m_accepted.first(2).size(), 2U);
    first->invalidate();
    ASSERT_TRUE(this->m_farEnds.one().has_value());
    EXPECT_TRUE(this->barrier());
    EXPECT_EQ(this->m_farEnds.count(), 1U);
}

TYPED_TEST(Transport, TellsTheUserAtTheOtherEndOnceItIsKnown)
{
    this->serve();
    this->connect();
    EXPECT_EQ(this->m_connection->effectiveUserIdentifier(), std::nullopt);
    ASSERT_TRUE(this->barrier());
    EXPECT_EQ(this->m_connection->effectiveUserIdentifier(), ::geteuid());
    EXPECT_EQ(this->m_accepted.one().value()->effectiveUserIdentifier(), ::geteuid());
}

TYPED_TEST(Transport, KeepsMessagesUntilItIsResumed)
{
    this->serve();
    this->connect(false);
    Awaited<typename TestFixture::Outcome> outcomes;
    this->send("note:", {1});
    this->ask("barrierWithCompletion:", {}, outcomes);
    EXPECT_EQ(this->m_object->noted.count(), 0U);
    this->m_connection->resume();
    EXPECT_TRUE(outcomes.one().value().values.has_value());
    EXPECT_EQ(this->m_object->noted.count(), 2U);
}

TYPED_TEST(Transport, RaisesForMessagesAndValuesThatTheInterfaceDoesNotHave)
{
    this->serve();
    this->connect();
    EXPECT_THROW(this->send("lend:", {1}), Exception);
    EXPECT_THROW(this->send("note:", {}), Exception);
    EXPECT_THROW(this->send("note:", {1, 2}), Exception);
    EXPECT_THROW(this->send("note:", {QStringLiteral("1")}), Exception);
    EXPECT_THROW(this->send("note:", {qint64{1} << 40}), Exception);
    EXPECT_THROW(this->send("barrierWithCompletion:"), Exception) << "without its reply block";
    EXPECT_THROW(this->m_proxy->send("note:", {1}, [](const QVariantList&) {}), Exception);
    EXPECT_TRUE(this->barrier());
    EXPECT_EQ(this->m_object->noted.count(), 1U);
}

// ---- what goes wrong

TYPED_TEST(Transport, FailsMessagesToAServiceThatIsNotThereButNotInsideOfSending)
{
    this->connect();
    Awaited<bool> wasInside;
    const auto proxy = this->m_connection->remoteObjectProxyWithErrorHandler(
        [&](const Error& error) { wasInside.tell(!ReplyQueue::isAnyCurrent() || error.code() != 4099); });
    proxy->send("note:", {1});
    EXPECT_EQ(wasInside.one(), false);
    EXPECT_TRUE(this->m_ends.one().has_value());
    const auto later = this->ask("barrierWithCompletion:");
    ASSERT_TRUE(later.error.has_value());
    EXPECT_EQ(later.error->code(), xpc_error::kConnectionInvalid);
    EXPECT_EQ(later.error->domain(), error_domain::kCocoa);
    EXPECT_EQ(this->m_connection->effectiveUserIdentifier(), std::nullopt);
}

TYPED_TEST(Transport, RefusesToServeANameTwice)
{
    this->serve();
    const auto second = this->m_world.caller().listenerForService(QString::fromLatin1(kLibrary), xpc_options::kNone);
    EXPECT_EQ(second->resume(), EEXIST);
    this->m_listener->invalidate();
    EXPECT_EQ(second->resume(), 0);
}

TYPED_TEST(Transport, LeavesAcceptedConnectionsAloneWhenItsListenerEnds)
{
    this->serve();
    this->connect();
    ASSERT_TRUE(this->barrier());
    this->m_listener.reset();
    EXPECT_TRUE(this->barrier());
    const XPCConnectionPtr first = this->m_connection;
    this->connect();
    EXPECT_FALSE(this->barrier());
}

TYPED_TEST(Transport, EndsConnectionsThatAreNotWelcome)
{
    this->serve();
    this->m_listener->invalidate();
    this->m_listener = this->m_world.server().listenerForService(QString::fromLatin1(kLibrary), xpc_options::kNone);
    this->m_listener->setAcceptor([](const XPCConnectionPtr&) { return false; });
    ASSERT_EQ(this->m_listener->resume(), 0);
    this->connect();
    EXPECT_FALSE(this->barrier());
    EXPECT_TRUE(this->m_ends.one().has_value());
}

TYPED_TEST(Transport, FailsWhatWaitsWhenItIsInvalidatedAndTellsBothEndsOnce)
{
    std::vector<XPCReply> kept;
    this->serve([&](const XPCMessage& message) { kept.push_back(message.reply); });
    this->connect();
    Awaited<typename TestFixture::Outcome> outcomes;
    for (int i = 0; i < 10; ++i)
        this->ask("echo:withReply:", {i}, outcomes);
    ASSERT_EQ(this->m_object->noted.first(10).size(), 10U);
    this->m_connection->invalidate();
    this->m_connection->invalidate();
    for (const auto& each : outcomes.first(10))
        EXPECT_EQ(each.error.value_or(Error()).code(), xpc_error::kConnectionInvalid);
    EXPECT_TRUE(this->m_ends.one().has_value());
    EXPECT_TRUE(this->m_farEnds.one().has_value());
    for (const XPCReply& each : kept)
        each({1}); // harmless
    EXPECT_FALSE(this->barrier());
    EXPECT_EQ(this->m_ends.count(), 1U);
    EXPECT_EQ(this->m_farEnds.count(), 1U);
    EXPECT_EQ(outcomes.count(), 10U);
}

TYPED_TEST(Transport, FailsWhatWaitsWhenTheOtherEndInvalidates)
{
    this->serve([this](const XPCMessage& message) {
        if (message.keywordName == "burn")
            this->m_accepted.one().value()->invalidate();
    });
    this->connect();
    Awaited<typename TestFixture::Outcome> outcomes;
    this->ask("echo:withReply:", {1}, outcomes);
    this->send("burn");
    EXPECT_TRUE(outcomes.one().value().error.has_value());
    EXPECT_TRUE(this->m_ends.one().has_value());
}

TYPED_TEST(Transport, DeliversWhatTheOtherEndAnsweredBeforeItEnded)
{
    this->serve([this](const XPCMessage& message) {
        message.reply(message.values);
        this->m_accepted.one().value()->invalidate();
    });
    this->connect();
    EXPECT_EQ(this->ask("echo:withReply:", {QStringLiteral("last")}).values, QVariantList{QStringLiteral("last")});
    EXPECT_TRUE(this->m_ends.one().has_value());
}

TYPED_TEST(Transport, CallsNoInvalidationHandlerThatWasTakenAway)
{
    this->serve();
    this->connect();
    ASSERT_TRUE(this->barrier());
    this->m_connection->setInvalidationHandler({});
    this->m_connection->invalidate();
    EXPECT_FALSE(this->barrier()); // comes after it would have been called
    EXPECT_EQ(this->m_ends.count(), 0U);
}

TYPED_TEST(Transport, TurnsADroppedReplyBlockIntoAnError)
{
    this->serve([](const XPCMessage& message) {
        if (message.keywordName == "barrierWithCompletion:")
            message.reply({});
    });
    this->connect();
    EXPECT_TRUE(this->ask("echo:withReply:", {1}).error.has_value());
    EXPECT_TRUE(this->barrier()) << "and the connection lives on";
}

TYPED_TEST(Transport, TurnsAnExceptionOfTheExportedObjectIntoAnError)
{
    this->serve([](const XPCMessage& message) {
        if (message.keywordName != "barrierWithCompletion:")
            throw std::runtime_error("no");
        message.reply({});
    });
    this->connect();
    this->send("note:", {1});
    EXPECT_TRUE(this->ask("echo:withReply:", {1}).error.has_value());
    EXPECT_TRUE(this->barrier());
}

TYPED_TEST(Transport, TurnsAReplyThatDoesNotFitIntoAnError)
{
    Awaited<bool> raised;
    this->serve([&](const XPCMessage& message) {
        try {
            message.reply({QStringLiteral("no number")});
        } catch (const Exception&) {
            raised.tell(true);
        }
    });
    this->connect();
    EXPECT_TRUE(this->ask("sum:and:withReply:", {1, 1U}).error.has_value());
    EXPECT_TRUE(raised.one().has_value());
}

TYPED_TEST(Transport, CountsOnlyTheFirstCallOfAReplyBlock)
{
    this->serve([](const XPCMessage& message) {
        message.reply({QStringLiteral("first")});
        message.reply({QStringLiteral("second")});
    });
    this->connect();
    EXPECT_EQ(this->ask("borrow:withReply:", {QString()}).values, QVariantList{QStringLiteral("first")});
}

TYPED_TEST(Transport, AnswersMessagesThatTheOtherEndDoesNotKnowWithErrors)
{
    this->serve({}, std::make_shared<XPCInterface>(tests::smallLibraryProtocol()));
    this->connect();
    this->send("burn");
    EXPECT_TRUE(this->ask("echo:withReply:", {1}).error.has_value());
    EXPECT_TRUE(this->ask("sum:and:withReply:", {1, 1U}).error.has_value()) << "other types";
    EXPECT_TRUE(this->barrier());
    EXPECT_EQ(this->m_object->noted.count(), 1U);
}

TYPED_TEST(Transport, LetsAHandlerWaitForAnotherConnection)
{
    this->serve();
    const auto own = std::make_shared<LibraryObject>([this](const XPCMessage& message) {
        const auto other = this->m_world.caller().connectionToService(QString::fromLatin1(kLibrary), 0);
        other->setRemoteObjectInterface(libraryInterface());
        other->resume();
        Awaited<QVariantList> answers;
        const auto proxy = other->remoteObjectProxyWithErrorHandler([&](const Error&) { answers.tell({}); });
        proxy->send("echo:withReply:", message.values, [&](const QVariantList& values) { answers.tell(values); });
        message.reply(answers.one().value_or(QVariantList()));
        other->invalidate();
    });
    this->connect(false);
    this->m_connection->setExportedInterface(libraryInterface());
    this->m_connection->setExportedObject(own);
    this->m_connection->resume();
    ASSERT_TRUE(this->barrier());
    const auto back = this->m_accepted.one().value()->remoteObjectProxyWithErrorHandler({});
    Awaited<QVariantList> replies;
    back->send("echo:withReply:", {qint64{5}}, [&](const QVariantList& values) { replies.tell(values); });
    EXPECT_EQ(replies.one(), QVariantList{qint64{5}});
}

TYPED_TEST(Transport, LetsNoMoreThanAThousandOneWayMessagesBeUnderWay)
{
    std::atomic<int> sent = 0;
    std::atomic<int> handled = 0;
    std::atomic<int> most = 0;
    Awaited<bool> gate;
    this->serve([&](const XPCMessage& message) {
        if (message.keywordName == "burn")
            (void)gate.one();
        most = std::max(most.load(), sent - handled.exchange(handled + 1));
        if (message.reply)
            message.reply({});
    });
    this->connect();
    this->send("burn");
    std::thread sender([&] {
        for (int i = 0; i < 5'000; ++i, ++sent)
            this->send("note:", {i});
    });
    gate.tell(true);
    sender.join();
    ASSERT_TRUE(this->barrier());
    EXPECT_EQ(handled, 5'002);
    EXPECT_LE(most, 1'024 + 2);
}

TYPED_TEST(Transport, SurvivesThreadsThatCallAndInvalidateAtOnce)
{
    this->serve();
    constexpr int kRounds = 200;
    for (int round = 0; round < kRounds; ++round) {
        const auto connection = this->m_world.caller().connectionToService(QString::fromLatin1(kLibrary), 0);
        connection->setRemoteObjectInterface(libraryInterface());
        Awaited<int> outcomes;
        connection->resume();
        const auto proxy = connection->remoteObjectProxyWithErrorHandler([&](const Error&) { outcomes.tell(0); });
        const auto call = [&] {
            for (int i = 0; i < 20; ++i)
                proxy->send("echo:withReply:", {i}, [&](const QVariantList&) { outcomes.tell(1); });
        };
        std::thread first(call);
        std::thread second(call);
        std::thread ending([&] {
            (void)outcomes.first(static_cast<std::size_t>(round % 20));
            connection->invalidate();
        });
        first.join();
        second.join();
        ending.join();
        ASSERT_EQ(outcomes.first(40).size(), 40U) << "every message ends once, in round " << round;
    }
}

TYPED_TEST(Transport, EndsAConnectionWithItsLastOwner)
{
    std::vector<XPCReply> kept;
    this->serve([&](const XPCMessage& message) { kept.push_back(message.reply); });
    this->connect();
    Awaited<typename TestFixture::Outcome> outcomes;
    this->ask("echo:withReply:", {1}, outcomes);
    ASSERT_TRUE(this->m_accepted.one().has_value());
    ASSERT_EQ(this->m_object->noted.first(1).size(), 1U);
    this->m_proxy.reset();
    this->m_connection.reset();
    EXPECT_TRUE(outcomes.one().value().error.has_value());
    EXPECT_TRUE(this->m_farEnds.one().has_value());
    EXPECT_EQ(this->m_ends.count(), 0U);
}

/// Handles the main queue's events until \p isDone.
template<class IsDone>
void handleEvents(const IsDone& isDone)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!isDone() && std::chrono::steady_clock::now() < deadline)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
}

TYPED_TEST(Transport, TellsDistributedNotificationsToEverybodyOnTheMainQueue)
{
    int argc = 0;
    QCoreApplication application(argc, nullptr);
    std::vector<QString> here;
    std::vector<QString> there;
    std::vector<QString> other;
    const auto name = QStringLiteral("com.havrel.switchboard.started");
    const auto first = this->m_world.caller().addDistributedObserver(name, [&](const QString& object) {
        EXPECT_EQ(QThread::currentThread(), application.thread());
        here.push_back(object);
    });
    auto second =
        this->m_world.server().addDistributedObserver(name, [&](const QString& object) { there.push_back(object); });
    const auto third = this->m_world.caller().addDistributedObserver(
        QStringLiteral("com.havrel.other"), [&](const QString& object) { other.push_back(object); });
    this->m_world.server().postDistributedNotification(name, QStringLiteral("com.havrel.switchboard.1000"));
    handleEvents([&] { return here.size() == 1 && there.size() == 1; });
    second.reset();
    this->m_world.server().postDistributedNotification(name, QStringLiteral("com.havrel.switchboard"));
    this->m_world.caller().postDistributedNotification(name, QString());
    handleEvents([&] { return here.size() == 3; });
    EXPECT_EQ(here,
              (std::vector<QString>{
                  QStringLiteral("com.havrel.switchboard.1000"), QStringLiteral("com.havrel.switchboard"), QString()}));
    EXPECT_EQ(there.size(), 1U);
    EXPECT_TRUE(other.empty());
}

} // namespace
} // namespace havrel
