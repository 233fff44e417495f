// SPDX-License-Identifier: MIT
#include "foundation/notify_relay.h"

#include "diagnostics/exception.h"
#include "foundation/observing.h"
#include "tests/foundation/observation_journal.h"
#include "tests/foundation/observed_book.h"
#include "tests/foundation/observed_switch.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

constexpr auto kLater = ObservationOptions::NoInitialCall;

TEST(NotifyRelay, BringsOldAndNewValuesOfAForeignObject)
{
    ObservationJournal journal;
    ObservedSwitch target;
    ObservedBook owner;
    observeObject({owner, target}, "level", journal.block());

    target.setLevel(3);
    target.setLevel(3); // signals without a change
    target.setLevel(4);

    EXPECT_EQ(journal.read(), "0->0; 0->3; 3->4");
}

TEST(NotifyRelay, LetsAForeignObjectObserveItself)
{
    ObservationJournal journal;
    ObservedSwitch target;
    observeProperty(target, "level", kLater, journal.block());

    target.setLevel(3);

    EXPECT_EQ(journal.read(), "0->3");
}

TEST(NotifyRelay, ServesInheritedPropertiesOfAnObservable)
{
    ObservationJournal journal;
    ObservedBook book;
    observeProperty(book, "objectName", kLater, journal.block());

    book.setObjectName(QStringLiteral("tides"));

    EXPECT_EQ(journal.read(), "(null)->tides");
}

TEST(NotifyRelay, DeliversBothChangesToEveryObserverWhenABlockSetsAgain)
{
    ObservationJournal journal;
    ObservedSwitch target;
    ObservedBook owner;
    observeProperty(target, "level", kLater, [&target](QObject*, QObject*, const QVariant&, const QVariant& now) {
        if (now == 1)
            target.setLevel(2);
    });
    observeProperty(target, "level", kLater, journal.block());
    observeObject({owner, target}, "level", kLater, journal.block(QStringLiteral("other ")));

    target.setLevel(1);

    EXPECT_EQ(journal.read(), "1->2; other 1->2; 0->1; other 0->1");
}

TEST(NotifyRelay, IsGoneWithTheLastObservation)
{
    ObservedSwitch target;
    ObservedBook owner;
    ObservedBook other;
    observeObject({owner, target}, "level", [](auto&&...) {});
    observeObject({other, target}, "level", [](auto&&...) {});
    ASSERT_TRUE(target.isListenedTo());

    removeAllObservations(owner);
    EXPECT_TRUE(target.isListenedTo());
    removeAllObservations(other);

    EXPECT_FALSE(target.isListenedTo());
}

TEST(NotifyRelay, SurvivesABlockThatEndsTheObservation)
{
    ObservationJournal journal;
    ObservedSwitch target;
    observeProperty(target, "level", kLater, [&](QObject* owner, QObject*, const QVariant&, const QVariant&) {
        removeAllObservations(*owner);
        journal.write(QStringLiteral("ended"));
    });

    target.setLevel(1);
    target.setLevel(2);

    EXPECT_EQ(journal.read(), "ended");
    EXPECT_FALSE(target.isListenedTo());
}

TEST(NotifyRelay, SurvivesABlockThatDeletesTheTarget)
{
    ObservationJournal journal;
    auto* target = std::make_unique<ObservedSwitch>().release();
    ObservedBook owner;
    observeObject({owner, *target}, "level", kLater, [](QObject*, QObject* object, const QVariant&, const QVariant&) {
        delete object;
    });
    observeObject({owner, *target}, "level", kLater, journal.block());

    target->setLevel(1);

    EXPECT_EQ(journal.read(), "");
}

TEST(NotifyRelay, RefusesAPropertyThatDoesNotTellOfItsChanges)
{
    ObservedSwitch target;
    try {
        observeProperty(target, "silent", [](auto&&...) {});
        FAIL() << "observed a property without a signal";
    } catch (const HVException& exception) {
        EXPECT_EQ(exception.reason(), QStringLiteral("property does not tell of its changes"));
        EXPECT_EQ(exception.detail(QStringLiteral("Class")), QStringLiteral("havrel::ObservedSwitch"));
    }
}

TEST(NotifyRelay, IsNotNeededForAConstant)
{
    ObservationJournal journal;
    ObservedBook book;

    observeProperty(book, "edition", journal.block());

    EXPECT_EQ(journal.read(), "1->1");
}

} // namespace
} // namespace havrel
