// SPDX-License-Identifier: MIT
#include "foundation/notification_center.h"

#include "foundation/dispatch.h"
#include "foundation/observing.h"
#include "tests/foundation/observation_journal.h"
#include "tests/foundation/observed_book.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <future>
#include <thread>

namespace havrel {
namespace {

const QString kDidOpen = QStringLiteral("LibraryDidOpen");
const QString kDidClose = QStringLiteral("LibraryDidClose");

class NotificationCenterFixture : public ::testing::Test
{
protected:
    [[nodiscard]] NotificationCenter::Block writing(const QString& label = {})
    {
        return [this, label](const Notification& each) {
            m_journal.write(label + each.name + u' ' + descriptionOf(each.userInfo));
        };
    }
    [[nodiscard]] NotificationRegistration
    on(const QString& name, const QVariant& object = {}, const QString& label = {})
    {
        return m_center.addObserver(name, object, {}, writing(label));
    }

    NotificationCenter m_center;
    ObservationJournal m_journal;
};

TEST_F(NotificationCenterFixture, TellsWhatWasPostedWithNameObjectAndInfo)
{
    QObject sender;
    std::vector<Notification> told;
    const auto registration =
        m_center.addObserver(kDidOpen, {}, {}, [&told](const Notification& each) { told.push_back(each); });

    m_center.post(kDidOpen, sender, {{QStringLiteral("at"), 9}});
    m_center.post(kDidClose, sender);

    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].name, kDidOpen);
    EXPECT_EQ(told[0].object.value<QObject*>(), &sender);
    EXPECT_EQ(told[0].userInfo, (QVariantMap{{QStringLiteral("at"), 9}}));
}

TEST_F(NotificationCenterFixture, TellsInTheOrderOfRegistration)
{
    const auto first = on(kDidOpen, {}, QStringLiteral("1 "));
    const auto any = on({}, {}, QStringLiteral("2 "));
    const auto third = on(kDidOpen, {}, QStringLiteral("3 "));

    m_center.post(kDidOpen);
    m_center.post(kDidClose);

    EXPECT_EQ(m_journal.read(), "1 LibraryDidOpen {}; 2 LibraryDidOpen {}; 3 LibraryDidOpen {}; 2 LibraryDidClose {}");
}

TEST_F(NotificationCenterFixture, ComparesSenders)
{
    ObservedBook book;
    const auto shared = std::make_shared<ObservedBook>();
    const auto byPointer = on(kDidOpen, QVariant::fromValue(&book), QStringLiteral("pointer "));
    const auto byShared = on(kDidOpen, QVariant::fromValue(shared), QStringLiteral("shared "));
    const auto byText = on(kDidOpen, QStringLiteral("LogRotator"), QStringLiteral("text "));

    m_center.post(kDidOpen, book);
    m_center.post(kDidOpen, *shared);
    m_center.post(kDidOpen, QVariant::fromValue(shared));
    m_center.post(kDidOpen, QString::fromLatin1("LogRotator"));
    m_center.post(kDidOpen, QStringLiteral("another"));
    m_center.post(kDidOpen);

    EXPECT_EQ(m_journal.read(),
              "pointer LibraryDidOpen {}; shared LibraryDidOpen {}; shared LibraryDidOpen {}; text LibraryDidOpen {}");
}

TEST_F(NotificationCenterFixture, EndsARegistrationWithItsObject)
{
    {
        auto registration = on(kDidOpen);
        NotificationRegistration other = std::move(registration);
        EXPECT_FALSE(registration.isActive()); // NOLINT(bugprone-use-after-move): moved-from ones have ended
        EXPECT_TRUE(other.isActive());
        m_center.post(kDidOpen);
    }
    auto replaced = on(kDidOpen);
    replaced = NotificationRegistration();
    m_center.post(kDidOpen);

    EXPECT_EQ(m_journal.read(), "LibraryDidOpen {}");
}

TEST_F(NotificationCenterFixture, EndsARegistrationWithTheSenderItIsAbout)
{
    auto sender = std::make_unique<QObject>();
    const auto first = on(kDidOpen, QVariant::fromValue(sender.get()));
    const auto second = on(kDidClose, QVariant::fromValue(sender.get()));
    EXPECT_TRUE(first.isAbout(*sender));

    sender.reset();

    EXPECT_FALSE(first.isActive());
    EXPECT_FALSE(second.isActive());
}

template<class Sender>
class NotificationSenders : public NotificationCenterFixture
{
};

using Senders = ::testing::Types<ObservedBook, QObject>;
TYPED_TEST_SUITE(NotificationSenders, Senders);

TYPED_TEST(NotificationSenders, AreHeardOfOneAfterTheOtherAtOneAddress)
{
    alignas(TypeParam) std::array<std::byte, sizeof(TypeParam)> place;
    for (int i = 0; i < 3; ++i) {
        auto* sender = new (place.data()) TypeParam;
        const auto registration = this->on(kDidOpen, QVariant::fromValue(static_cast<QObject*>(sender)));
        this->m_center.post(kDidOpen, *sender);
        EXPECT_EQ(this->m_journal.read(), "LibraryDidOpen {}");

        sender->~TypeParam();

        EXPECT_FALSE(registration.isActive()) << "sender " << i;
    }
}

TEST_F(NotificationCenterFixture, LetsTheSenderOutliveTheCenter)
{
    QObject sender;
    NotificationRegistration registration;
    {
        NotificationCenter center;
        registration = center.addObserver(kDidOpen, QVariant::fromValue(&sender), {}, writing());
    }
    registration.end();

    EXPECT_FALSE(registration.isActive());
}

TEST_F(NotificationCenterFixture, MayEndAndAddRegistrationsWhileItTells)
{
    std::vector<NotificationRegistration> added;
    NotificationRegistration second;
    const auto first = m_center.addObserver(kDidOpen, {}, {}, [&](const Notification&) {
        second.end();
        added.push_back(on(kDidOpen, {}, QStringLiteral("added ")));
    });
    second = on(kDidOpen, {}, QStringLiteral("second "));

    m_center.post(kDidOpen);
    EXPECT_EQ(m_journal.read(), "");
    m_center.post(kDidOpen);

    EXPECT_EQ(m_journal.read(), "added LibraryDidOpen {}");
}

TEST_F(NotificationCenterFixture, RunsABlockAtOnceWhenThePostIsMadeOnItsQueue)
{
    SerialQueue queue(QStringLiteral("test"));
    NotificationRegistration registration;
    bool atOnce = false;
    queue.sync([&] {
        registration = m_center.addObserver(kDidOpen, {}, QueueReference::current(), writing());
        m_center.post(kDidOpen);
        atOnce = m_journal.read() == "LibraryDidOpen {}";
    });

    EXPECT_TRUE(atOnce);
}

TEST_F(NotificationCenterFixture, QueuesABlockWhenThePostIsMadeElsewhere)
{
    SerialQueue queue(QStringLiteral("test"));
    NotificationRegistration registration;
    queue.sync([&] {
        registration = m_center.addObserver(kDidOpen, {}, QueueReference::current(), [&](const Notification& each) {
            m_journal.write(queue.isCurrent() ? each.name : QStringLiteral("elsewhere"));
        });
    });
    std::promise<void> posted;
    queue.async([&posted] { posted.get_future().wait(); }); // keeps the queue busy

    m_center.post(kDidOpen);
    posted.set_value();
    queue.barrier();

    EXPECT_EQ(m_journal.read(), "LibraryDidOpen");
}

TEST_F(NotificationCenterFixture, DropsQueuedNotificationsOfARegistrationThatHasEnded)
{
    SerialQueue queue(QStringLiteral("test"));
    NotificationRegistration registration;
    queue.sync([&] { registration = m_center.addObserver(kDidOpen, {}, QueueReference::current(), writing()); });
    std::promise<void> ended;
    queue.async([&ended] { ended.get_future().wait(); });

    m_center.post(kDidOpen);
    registration.end();
    ended.set_value();
    queue.barrier();

    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(NotificationCenterFixture, DropsNotificationsForAQueueThatHasEnded)
{
    NotificationRegistration registration;
    {
        SerialQueue queue(QStringLiteral("test"));
        queue.sync([&] { registration = m_center.addObserver(kDidOpen, {}, QueueReference::current(), writing()); });
    }

    m_center.post(kDidOpen);

    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(NotificationCenterFixture, BringsPostsOfOtherThreadsToTheMainQueue)
{
    int argc = 1;
    char name[] = "test";
    char* argv[] = {name, nullptr};
    const QCoreApplication application(argc, argv);
    const auto registration = m_center.addObserver(kDidOpen, {}, QueueReference::current(), writing());

    std::thread([this] { m_center.post(kDidOpen); }).join();
    EXPECT_EQ(m_journal.read(), "");
    QCoreApplication::processEvents();
    EXPECT_EQ(m_journal.read(), "LibraryDidOpen {}");
    m_center.post(kDidOpen);

    EXPECT_EQ(m_journal.read(), "LibraryDidOpen {}");
}

TEST_F(NotificationCenterFixture, IgnoresAnEmptyBlock)
{
    EXPECT_FALSE(m_center.addObserver(kDidOpen, {}, {}, nullptr).isActive());
    m_center.post(kDidOpen);
}

TEST_F(NotificationCenterFixture, IsOneForTheProcess)
{
    EXPECT_EQ(&NotificationCenter::defaultCenter(), &NotificationCenter::defaultCenter());
}

TEST_F(NotificationCenterFixture, MayBeUsedFromSeveralThreads)
{
    constexpr int kThreads = 4;
    constexpr int kEach = 200;
    std::atomic<int> told = 0;
    const auto counting = m_center.addObserver(kDidOpen, {}, {}, [&told](const Notification&) { ++told; });
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([this] {
            for (int j = 0; j < kEach; ++j) {
                QObject sender;
                const auto own = m_center.addObserver(kDidOpen, QVariant::fromValue(&sender), {}, [](auto&&) {});
                m_center.post(kDidOpen, sender);
            }
        });
    for (std::thread& thread : threads)
        thread.join();

    EXPECT_EQ(told, kThreads * kEach);
}

class ObservingNotifications : public ::testing::Test
{
protected:
    [[nodiscard]] NotificationBlock writing()
    {
        return [this](QObject* owner, const Notification& each) {
            m_journal.write(owner->objectName() + u' ' + each.name);
        };
    }
    static void post(const QString& name, const QVariant& object = {})
    {
        NotificationCenter::defaultCenter().post(name, object);
    }

    ObservedBook m_owner;
    ObservationJournal m_journal;
};

TEST_F(ObservingNotifications, TellsTheOwnerWhoeverPosts)
{
    m_owner.setObjectName(QStringLiteral("owner"));
    observeNotification(m_owner, kDidOpen, writing());

    post(kDidOpen);
    post(kDidOpen, QStringLiteral("someone"));
    post(kDidClose);

    EXPECT_EQ(m_journal.read(), "owner LibraryDidOpen; owner LibraryDidOpen");
}

TEST_F(ObservingNotifications, TellsOfOneSenderOnly)
{
    QObject sender;
    observeNotification(m_owner, kDidOpen, sender, writing());
    observeNotification(m_owner, kDidClose, QStringLiteral("LogRotator"), writing());

    post(kDidOpen);
    post(kDidOpen, QVariant::fromValue(&sender));
    post(kDidClose, QStringLiteral("LogRotator"));

    EXPECT_EQ(m_journal.read(), " LibraryDidOpen;  LibraryDidClose");
}

TEST_F(ObservingNotifications, TellsOnTheQueueOnWhichItWasAskedFor)
{
    SerialQueue queue(QStringLiteral("test"));
    queue.sync([&] {
        observeNotification(m_owner, kDidOpen, [&](QObject*, const Notification& each) {
            m_journal.write(queue.isCurrent() ? each.name : QStringLiteral("elsewhere"));
        });
    });

    post(kDidOpen);
    queue.barrier();
    EXPECT_EQ(m_journal.read(), "LibraryDidOpen");
    queue.sync([] { post(kDidOpen); });

    EXPECT_EQ(m_journal.read(), "LibraryDidOpen");
}

TEST_F(ObservingNotifications, TellsOfEachNameFromEachSender)
{
    const QString one = QStringLiteral("one");
    const QString two = QStringLiteral("two");
    observeNotifications(m_owner, {kDidOpen, kDidClose}, {one, two}, writing());
    for (const QString& sender : {one, two, QStringLiteral("three")}) {
        post(kDidOpen, sender);
        post(kDidClose, sender);
    }
    EXPECT_EQ(m_journal.read(), " LibraryDidOpen;  LibraryDidClose;  LibraryDidOpen;  LibraryDidClose");

    removeAllObservations(m_owner);
    observeNotifications(m_owner, {kDidOpen, kDidClose}, {}, writing());
    post(kDidOpen, QStringLiteral("three"));

    EXPECT_EQ(m_journal.read(), " LibraryDidOpen");
}

TEST_F(ObservingNotifications, EndWithTheOwner)
{
    {
        ObservedBook owner;
        observeNotification(owner, kDidOpen, writing());
    }
    {
        QObject owner;
        observeNotification(owner, kDidOpen, writing());
    }

    post(kDidOpen);

    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(ObservingNotifications, EndWithTheRemovalOperations)
{
    QObject sender;
    observeNotification(m_owner, kDidOpen, sender, writing());
    observeNotification(m_owner, kDidClose, writing());

    removeAllObservationsOfObject(m_owner, sender);
    post(kDidOpen, QVariant::fromValue(&sender));
    EXPECT_EQ(m_journal.read(), "");
    post(kDidClose);
    EXPECT_EQ(m_journal.read(), " LibraryDidClose");
    removeAllObservations(m_owner);
    post(kDidClose);

    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(ObservingNotifications, SurviveABlockThatDeletesTheOwner)
{
    auto owner = std::make_unique<ObservedBook>();
    observeNotification(*owner, kDidOpen, [&owner](QObject*, const Notification&) { owner.reset(); });
    observeNotification(*owner, kDidOpen, writing());

    post(kDidOpen);

    EXPECT_EQ(m_journal.read(), "");
}

} // namespace
} // namespace havrel
