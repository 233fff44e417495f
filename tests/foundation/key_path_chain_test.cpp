// SPDX-License-Identifier: MIT
#include "foundation/key_path_chain.h"

#include "diagnostics/exception.h"
#include "foundation/observation_hub.h"
#include "foundation/observing.h"
#include "tests/foundation/observation_fixture.h"
#include "tests/foundation/observed_switch.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

using ObservedKeyPath = ObservationFixture;

TEST_F(ObservedKeyPath, BringsChangesOfTheLastObject)
{
    ObservedBook sequel;
    m_book.setSequel(&sequel);
    observeProperty(m_book, "sequel.pages", m_journal.block());

    sequel.setPages(5);
    m_book.setPages(6);

    EXPECT_EQ(m_journal.read(), "0->0; 0->5");
}

TEST_F(ObservedKeyPath, BringsEditsOfTheLastObjectByKind)
{
    ObservedBook sequel;
    m_book.setSequel(&sequel);
    observeRelationship(
        m_book, "sequel.marks", kLater, {.change = m_journal.block(), .insertion = m_journal.insertionBlock()});

    sequel.insertMarks({7}, {0});
    sequel.removeMarks({0});

    EXPECT_EQ(m_journal.read(), "insert (7) at { 0 }; (null)->()");
}

TEST_F(ObservedKeyPath, FollowsAnObjectOnTheWayThatIsReplaced)
{
    ObservedBook first;
    ObservedBook second;
    first.setPages(1);
    second.setPages(2);
    m_book.setSequel(&first);
    observeProperty(m_book, "sequel.pages", kLater, m_journal.block());

    m_book.setSequel(&second);
    first.setPages(10);
    second.setPages(20);
    m_book.setSequel(nullptr);
    second.setPages(30);
    m_book.setSequel(&first);

    EXPECT_EQ(m_journal.read(), "1->2; 2->20; 20->(null); (null)->10");
}

TEST_F(ObservedKeyPath, IsSilentWhenTheReplacementLeadsToAnEqualValue)
{
    ObservedBook first;
    ObservedBook second;
    m_book.setSequel(&first);
    observeProperty(m_book, "sequel.pages", kLater, m_journal.block());

    m_book.setSequel(&second);

    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(ObservedKeyPath, TakesTheValueForNilWhenAnObjectOnTheWayDies)
{
    ObservedBook next;
    auto sequel = std::make_unique<ObservedBook>();
    sequel->setPages(3);
    m_book.setSequel(sequel.get());
    observeProperty(m_book, "sequel.pages", kLater, m_journal.block());

    sequel.reset(); // the property still holds its address
    EXPECT_EQ(m_journal.read(), "3->(null)");
    m_book.setSequel(nullptr);
    EXPECT_EQ(m_journal.read(), "");
    m_book.setSequel(&next);

    EXPECT_EQ(m_journal.read(), "(null)->0");
}

TEST_F(ObservedKeyPath, AnswersALaterBlockWithoutLookingAtTheDeadObject)
{
    auto sequel = std::make_unique<ObservedBook>();
    m_book.setSequel(sequel.get());
    observeProperty(m_book, "sequel.pages", kLater, [](auto&&...) {});
    sequel.reset();

    observeProperty(m_book, "sequel.pages", m_journal.block());

    EXPECT_EQ(m_journal.read(), "(null)->(null)");
}

TEST_F(ObservedKeyPath, GoesOverSeveralObjects)
{
    ObservedBook second;
    ObservedBook third;
    m_book.setSequel(&second);
    second.setSequel(&third);
    observeProperty(m_book, "sequel.sequel.title", kLater, m_journal.block());

    third.setTitle(QStringLiteral("End"));
    second.setSequel(nullptr);
    third.setTitle(QStringLiteral("unheard"));
    second.setSequel(&third);
    m_book.setSequel(&third);

    EXPECT_EQ(m_journal.read(), "(null)->End; End->(null); (null)->unheard; unheard->(null)");
}

TEST_F(ObservedKeyPath, MayMeetTheSameObjectTwice)
{
    m_book.setSequel(&m_book);
    observeProperty(m_book, "sequel.sequel.pages", kLater, m_journal.block());

    m_book.setPages(4);
    m_book.setSequel(nullptr);

    EXPECT_EQ(m_journal.read(), "0->4; 4->(null)");
}

TEST_F(ObservedKeyPath, LeadsThroughSharedObjects)
{
    auto prequel = std::make_shared<ObservedBook>();
    m_book.setPrequel(prequel);
    observeProperty(m_book, "prequel.pages", m_journal.block());

    prequel->setPages(1);
    m_book.setPrequel(std::make_shared<ObservedBook>());
    prequel->setPages(2);
    m_book.setPrequel(nullptr);

    EXPECT_EQ(m_journal.read(), "0->0; 0->1; 1->0; 0->(null)");
}

TEST_F(ObservedKeyPath, LeadsThroughValuesOfNoFixedType)
{
    ObservedBook other;
    observeProperty(m_book, "note.pages", m_journal.block());

    m_book.setNote(QVariant::fromValue(&other));
    other.setPages(1);
    m_book.setNote(QStringLiteral("no object"));
    m_book.setNote(QVariant::fromValue(std::make_shared<ObservedBook>()));

    EXPECT_EQ(m_journal.read(), "(null)->(null); (null)->0; 0->1; 1->(null); (null)->0");
}

TEST_F(ObservedKeyPath, LeadsFromAndToForeignObjects)
{
    ObservedSwitch first;
    ObservedSwitch second;
    first.setPartner(&second);
    second.setPartner(&m_book);
    observeObject({m_owner, first}, "partner.partner.pages", m_journal.block());

    m_book.setPages(2);
    second.setPartner(nullptr);

    EXPECT_EQ(m_journal.read(), "0->0; 0->2; 2->(null)");
}

TEST_F(ObservedKeyPath, NoticesTheDeathOfAForeignObjectOnTheWay)
{
    auto window = std::make_unique<ObservedSwitch>();
    m_book.setWindow(window.get());
    window->setLevel(4);
    observeProperty(m_book, "window.level", kLater, m_journal.block());

    window.reset();

    EXPECT_EQ(m_journal.read(), "4->(null)");
}

TEST_F(ObservedKeyPath, EndsWithItsOwnerOnEveryObject)
{
    ObservedBook sequel;
    m_book.setSequel(&sequel);
    {
        ObservedBook owner;
        observeObject({owner, m_book}, "sequel.pages", kLater, m_journal.block());
        ASSERT_TRUE(ObservationHub::of(sequel).isObserved("pages"));
    }
    EXPECT_FALSE(ObservationHub::of(sequel).isObserved("pages"));
    EXPECT_FALSE(ObservationHub::of(m_book).isObserved("sequel"));

    sequel.setPages(1);
    m_book.setSequel(nullptr);

    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(ObservedKeyPath, EndsWithItsTargetAndLeavesTheOthersAlone)
{
    ObservedBook sequel;
    {
        ObservedBook book;
        book.setSequel(&sequel);
        observeObject({m_owner, book}, "sequel.pages", kLater, m_journal.block());
    }

    sequel.setPages(1);

    EXPECT_EQ(m_journal.read(), "");
    EXPECT_FALSE(ObservationHub::of(sequel).isObserved("pages"));
}

TEST_F(ObservedKeyPath, ListensWhereTheLastOfTwoNestedChangesLeads)
{
    ObservedBook first;
    ObservedBook second;
    observeProperty(m_book, "sequel", kLater, [&](QObject*, QObject*, const QVariant&, const QVariant& now) {
        if (now.value<ObservedBook*>() == &first)
            m_book.setSequel(&second);
    });
    observeProperty(m_book, "sequel.pages", kLater, m_journal.block());

    m_book.setSequel(&first);
    EXPECT_EQ(m_journal.read(), "(null)->0");
    first.setPages(1);
    second.setPages(2);

    EXPECT_EQ(m_journal.read(), "0->2");
}

TEST_F(ObservedKeyPath, SurvivesABlockThatDeletesTheTargetFromTheLastObject)
{
    auto book = std::make_unique<ObservedBook>();
    ObservedBook sequel;
    book->setSequel(&sequel);
    observeProperty(
        *book, "sequel.pages", kLater, [&book](QObject*, QObject*, const QVariant&, const QVariant&) { book.reset(); });

    sequel.setPages(1);
    sequel.setPages(2);

    EXPECT_EQ(book, nullptr);
}

TEST_F(ObservedKeyPath, SurvivesABlockThatDeletesTheObjectOnTheWay)
{
    auto sequel = std::make_unique<ObservedBook>();
    m_book.setSequel(sequel.get());
    observeProperty(m_book, "sequel.pages", kLater, [&](QObject*, QObject*, const QVariant&, const QVariant& now) {
        m_journal.write(descriptionOf(now));
        sequel.reset();
    });

    sequel->setPages(1);

    EXPECT_EQ(m_journal.read(), "1; (null)");
}

TEST_F(ObservedKeyPath, KeepsWhatABlockThrowsAtAnObjectsDeathFromItsDestructor)
{
    auto sequel = std::make_unique<ObservedBook>();
    m_book.setSequel(sequel.get());
    int calls = 0;
    observeProperty(m_book, "sequel.pages", kLater, [&calls](QObject*, QObject*, const QVariant&, const QVariant&) {
        ++calls;
        throw std::runtime_error("refused");
    });

    EXPECT_NO_THROW(sequel.reset());

    EXPECT_EQ(calls, 1);
}

TEST_F(ObservedKeyPath, RefusesAnUnknownNameOnTheWayAndLeavesNothingBehind)
{
    ObservedBook sequel;
    m_book.setSequel(&sequel);

    EXPECT_THROW(observeProperty(m_book, "sequel.colour", [](auto&&...) {}), HVException);
    EXPECT_THROW(observeProperty(m_book, "colour.pages", [](auto&&...) {}), HVException);
    EXPECT_THROW(observeProperty(m_book, "sequel..pages", [](auto&&...) {}), HVException);
    EXPECT_THROW(observeProperty(m_book, ".", [](auto&&...) {}), HVException);

    EXPECT_TRUE(ObservationHub::of(m_book).observers().empty());
    EXPECT_FALSE(ObservationHub::of(m_book).isObserved("sequel"));
}

} // namespace
} // namespace havrel
