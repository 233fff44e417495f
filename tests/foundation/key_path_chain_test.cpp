// SPDX-License-Identifier: MIT
#include "foundation/key_path_chain.h"

#include "diagnostics/exception.h"
#include "foundation/observation_hub.h"
#include "foundation/observing.h"
#include "tests/foundation/observation_journal.h"
#include "tests/foundation/observed_book.h"
#include "tests/foundation/observed_switch.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

constexpr auto kLater = ObservationOptions::NoInitialCall;

TEST(KeyPathChain, BringsChangesOfTheLastObject)
{
    ObservationJournal journal;
    ObservedBook book;
    ObservedBook sequel;
    book.setSequel(&sequel);
    observeProperty(book, "sequel.pages", journal.block());

    sequel.setPages(5);
    book.setPages(6);

    EXPECT_EQ(journal.read(), "0->0; 0->5");
}

TEST(KeyPathChain, BringsEditsOfTheLastObjectByKind)
{
    ObservationJournal journal;
    ObservedBook book;
    ObservedBook sequel;
    book.setSequel(&sequel);
    observeRelationship(
        book, "sequel.marks", kLater, {.change = journal.block(), .insertion = journal.insertionBlock()});

    sequel.insertMarks({7}, {0});
    sequel.removeMarks({0});

    EXPECT_EQ(journal.read(), "insert (7) at { 0 }; (null)->()");
}

TEST(KeyPathChain, FollowsAnObjectOnTheWayThatIsReplaced)
{
    ObservationJournal journal;
    ObservedBook book;
    ObservedBook first;
    ObservedBook second;
    first.setPages(1);
    second.setPages(2);
    book.setSequel(&first);
    observeProperty(book, "sequel.pages", kLater, journal.block());

    book.setSequel(&second);
    first.setPages(10);
    second.setPages(20);
    book.setSequel(nullptr);
    second.setPages(30);
    book.setSequel(&first);

    EXPECT_EQ(journal.read(), "1->2; 2->20; 20->(null); (null)->10");
}

TEST(KeyPathChain, IsSilentWhenTheReplacementLeadsToAnEqualValue)
{
    ObservationJournal journal;
    ObservedBook book;
    ObservedBook first;
    ObservedBook second;
    book.setSequel(&first);
    observeProperty(book, "sequel.pages", kLater, journal.block());

    book.setSequel(&second);

    EXPECT_EQ(journal.read(), "");
}

TEST(KeyPathChain, TakesTheValueForNilWhenAnObjectOnTheWayDies)
{
    ObservationJournal journal;
    ObservedBook book;
    ObservedBook next;
    auto sequel = std::make_unique<ObservedBook>();
    sequel->setPages(3);
    book.setSequel(sequel.get());
    observeProperty(book, "sequel.pages", kLater, journal.block());

    sequel.reset(); // the property still holds its address
    EXPECT_EQ(journal.read(), "3->(null)");
    book.setSequel(nullptr);
    EXPECT_EQ(journal.read(), "");
    book.setSequel(&next);

    EXPECT_EQ(journal.read(), "(null)->0");
}

TEST(KeyPathChain, AnswersALaterBlockWithoutLookingAtTheDeadObject)
{
    ObservationJournal journal;
    ObservedBook book;
    auto sequel = std::make_unique<ObservedBook>();
    book.setSequel(sequel.get());
    observeProperty(book, "sequel.pages", kLater, [](auto&&...) {});
    sequel.reset();

    observeProperty(book, "sequel.pages", journal.block());

    EXPECT_EQ(journal.read(), "(null)->(null)");
}

TEST(KeyPathChain, GoesOverSeveralObjects)
{
    ObservationJournal journal;
    ObservedBook book;
    ObservedBook second;
    ObservedBook third;
    book.setSequel(&second);
    second.setSequel(&third);
    observeProperty(book, "sequel.sequel.title", kLater, journal.block());

    third.setTitle(QStringLiteral("End"));
    second.setSequel(nullptr);
    third.setTitle(QStringLiteral("unheard"));
    second.setSequel(&third);
    book.setSequel(&third);

    EXPECT_EQ(journal.read(), "(null)->End; End->(null); (null)->unheard; unheard->(null)");
}

TEST(KeyPathChain, MayMeetTheSameObjectTwice)
{
    ObservationJournal journal;
    ObservedBook book;
    book.setSequel(&book);
    observeProperty(book, "sequel.sequel.pages", kLater, journal.block());

    book.setPages(4);
    book.setSequel(nullptr);

    EXPECT_EQ(journal.read(), "0->4; 4->(null)");
}

TEST(KeyPathChain, LeadsThroughSharedObjects)
{
    ObservationJournal journal;
    ObservedBook book;
    auto prequel = std::make_shared<ObservedBook>();
    book.setPrequel(prequel);
    observeProperty(book, "prequel.pages", journal.block());

    prequel->setPages(1);
    book.setPrequel(std::make_shared<ObservedBook>());
    prequel->setPages(2);
    book.setPrequel(nullptr);

    EXPECT_EQ(journal.read(), "0->0; 0->1; 1->0; 0->(null)");
}

TEST(KeyPathChain, LeadsThroughValuesOfNoFixedType)
{
    ObservationJournal journal;
    ObservedBook book;
    ObservedBook other;
    observeProperty(book, "note.pages", journal.block());

    book.setNote(QVariant::fromValue(&other));
    other.setPages(1);
    book.setNote(QStringLiteral("no object"));
    book.setNote(QVariant::fromValue(std::make_shared<ObservedBook>()));

    EXPECT_EQ(journal.read(), "(null)->(null); (null)->0; 0->1; 1->(null); (null)->0");
}

TEST(KeyPathChain, LeadsFromAndToForeignObjects)
{
    ObservationJournal journal;
    ObservedSwitch first;
    ObservedSwitch second;
    ObservedBook book;
    ObservedBook owner;
    first.setPartner(&second);
    second.setPartner(&book);
    observeObject({owner, first}, "partner.partner.pages", journal.block());

    book.setPages(2);
    second.setPartner(nullptr);

    EXPECT_EQ(journal.read(), "0->0; 0->2; 2->(null)");
}

TEST(KeyPathChain, NoticesTheDeathOfAForeignObjectOnTheWay)
{
    ObservationJournal journal;
    ObservedBook book;
    auto window = std::make_unique<ObservedSwitch>();
    book.setWindow(window.get());
    window->setLevel(4);
    observeProperty(book, "window.level", kLater, journal.block());

    window.reset();

    EXPECT_EQ(journal.read(), "4->(null)");
}

TEST(KeyPathChain, EndsWithItsOwnerOnEveryObject)
{
    ObservationJournal journal;
    ObservedBook book;
    ObservedBook sequel;
    book.setSequel(&sequel);
    {
        ObservedBook owner;
        observeObject({owner, book}, "sequel.pages", kLater, journal.block());
        ASSERT_TRUE(ObservationHub::of(sequel).isObserved("pages"));
    }
    EXPECT_FALSE(ObservationHub::of(sequel).isObserved("pages"));
    EXPECT_FALSE(ObservationHub::of(book).isObserved("sequel"));

    sequel.setPages(1);
    book.setSequel(nullptr);

    EXPECT_EQ(journal.read(), "");
}

TEST(KeyPathChain, EndsWithItsTargetAndLeavesTheOthersAlone)
{
    ObservationJournal journal;
    ObservedBook sequel;
    ObservedBook owner;
    {
        ObservedBook book;
        book.setSequel(&sequel);
        observeObject({owner, book}, "sequel.pages", kLater, journal.block());
    }

    sequel.setPages(1);

    EXPECT_EQ(journal.read(), "");
    EXPECT_FALSE(ObservationHub::of(sequel).isObserved("pages"));
}

TEST(KeyPathChain, ListensWhereTheLastOfTwoNestedChangesLeads)
{
    ObservationJournal journal;
    ObservedBook book;
    ObservedBook first;
    ObservedBook second;
    observeProperty(book, "sequel", kLater, [&](QObject*, QObject*, const QVariant&, const QVariant& now) {
        if (now.value<ObservedBook*>() == &first)
            book.setSequel(&second);
    });
    observeProperty(book, "sequel.pages", kLater, journal.block());

    book.setSequel(&first);
    EXPECT_EQ(journal.read(), "(null)->0");
    first.setPages(1);
    second.setPages(2);

    EXPECT_EQ(journal.read(), "0->2");
}

TEST(KeyPathChain, SurvivesABlockThatDeletesTheTargetFromTheLastObject)
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

TEST(KeyPathChain, SurvivesABlockThatDeletesTheObjectOnTheWay)
{
    ObservationJournal journal;
    ObservedBook book;
    auto sequel = std::make_unique<ObservedBook>();
    book.setSequel(sequel.get());
    observeProperty(book, "sequel.pages", kLater, [&](QObject*, QObject*, const QVariant&, const QVariant& now) {
        journal.write(descriptionOf(now));
        sequel.reset();
    });

    sequel->setPages(1);

    EXPECT_EQ(journal.read(), "1; (null)");
}

TEST(KeyPathChain, KeepsWhatABlockThrowsAtAnObjectsDeathFromItsDestructor)
{
    ObservedBook book;
    auto sequel = std::make_unique<ObservedBook>();
    book.setSequel(sequel.get());
    int calls = 0;
    observeProperty(book, "sequel.pages", kLater, [&calls](QObject*, QObject*, const QVariant&, const QVariant&) {
        ++calls;
        throw std::runtime_error("refused");
    });

    EXPECT_NO_THROW(sequel.reset());

    EXPECT_EQ(calls, 1);
}

TEST(KeyPathChain, RefusesAnUnknownNameOnTheWayAndLeavesNothingBehind)
{
    ObservedBook book;
    ObservedBook sequel;
    book.setSequel(&sequel);

    EXPECT_THROW(observeProperty(book, "sequel.colour", [](auto&&...) {}), HVException);
    EXPECT_THROW(observeProperty(book, "colour.pages", [](auto&&...) {}), HVException);
    EXPECT_THROW(observeProperty(book, "sequel..pages", [](auto&&...) {}), HVException);
    EXPECT_THROW(observeProperty(book, ".", [](auto&&...) {}), HVException);

    EXPECT_TRUE(ObservationHub::of(book).observers().empty());
    EXPECT_FALSE(ObservationHub::of(book).isObserved("sequel"));
}

} // namespace
} // namespace havrel
