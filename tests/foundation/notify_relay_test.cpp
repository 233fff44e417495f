// SPDX-License-Identifier: MIT
#include "foundation/notify_relay.h"

#include "diagnostics/exception.h"
#include "foundation/observing.h"
#include "tests/foundation/observation_fixture.h"
#include "tests/foundation/observed_switch.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

class SignalRelay : public ObservationFixture
{
protected:
    ObservedSwitch m_target;
};

TEST_F(SignalRelay, BringsOldAndNewValuesOfAForeignObject)
{
    observeObject({m_owner, m_target}, "level", m_journal.block());

    m_target.setLevel(3);
    m_target.setLevel(3); // signals without a change
    m_target.setLevel(4);

    EXPECT_EQ(m_journal.read(), "0->0; 0->3; 3->4");
}

TEST_F(SignalRelay, LetsAForeignObjectObserveItself)
{
    observeProperty(m_target, "level", kLater, m_journal.block());

    m_target.setLevel(3);

    EXPECT_EQ(m_journal.read(), "0->3");
}

TEST_F(SignalRelay, ServesInheritedPropertiesOfAnObservable)
{
    observeProperty(m_book, "objectName", kLater, m_journal.block());

    m_book.setObjectName(QStringLiteral("tides"));

    EXPECT_EQ(m_journal.read(), "(null)->tides");
}

TEST_F(SignalRelay, DeliversBothChangesToEveryObserverWhenABlockSetsAgain)
{
    observeProperty(m_target, "level", kLater, [this](QObject*, QObject*, const QVariant&, const QVariant& now) {
        if (now == 1)
            m_target.setLevel(2);
    });
    observeProperty(m_target, "level", kLater, m_journal.block());
    observeObject({m_owner, m_target}, "level", kLater, m_journal.block(QStringLiteral("other ")));

    m_target.setLevel(1);

    EXPECT_EQ(m_journal.read(), "1->2; other 1->2; 0->1; other 0->1");
}

TEST_F(SignalRelay, IsGoneWithTheLastObservation)
{
    ObservedBook other;
    observeObject({m_owner, m_target}, "level", [](auto&&...) {});
    observeObject({other, m_target}, "level", [](auto&&...) {});
    ASSERT_TRUE(m_target.isListenedTo());

    removeAllObservations(m_owner);
    EXPECT_TRUE(m_target.isListenedTo());
    removeAllObservations(other);

    EXPECT_FALSE(m_target.isListenedTo());
}

TEST_F(SignalRelay, SurvivesABlockThatEndsTheObservation)
{
    observeProperty(m_target, "level", kLater, [&](QObject* owner, QObject*, const QVariant&, const QVariant&) {
        removeAllObservations(*owner);
        m_journal.write(QStringLiteral("ended"));
    });

    m_target.setLevel(1);
    m_target.setLevel(2);

    EXPECT_EQ(m_journal.read(), "ended");
    EXPECT_FALSE(m_target.isListenedTo());
}

TEST_F(SignalRelay, SurvivesABlockThatDeletesTheTarget)
{
    auto* target = std::make_unique<ObservedSwitch>().release();
    observeObject({m_owner, *target}, "level", kLater, [](QObject*, QObject* object, const QVariant&, const QVariant&) {
        delete object;
    });
    observeObject({m_owner, *target}, "level", kLater, m_journal.block());

    target->setLevel(1);

    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(SignalRelay, RefusesAPropertyThatDoesNotTellOfItsChanges)
{
    try {
        observeProperty(m_target, "silent", [](auto&&...) {});
        FAIL() << "observed a property without a signal";
    } catch (const HVException& exception) {
        EXPECT_EQ(exception.reason(), QStringLiteral("property does not tell of its changes"));
        EXPECT_EQ(exception.detail(QStringLiteral("Class")), QStringLiteral("havrel::ObservedSwitch"));
    }
}

TEST_F(SignalRelay, IsNotNeededForAConstant)
{
    observeProperty(m_book, "edition", m_journal.block());

    EXPECT_EQ(m_journal.read(), "1->1");
}

} // namespace
} // namespace havrel
