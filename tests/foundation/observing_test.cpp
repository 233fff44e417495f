// SPDX-License-Identifier: MIT
#include "foundation/observing.h"

#include "diagnostics/exception.h"
#include "foundation/observation_hub.h"
#include "foundation/selector.h"
#include "tests/foundation/observation_journal.h"
#include "tests/foundation/observed_book.h"

#include <gtest/gtest.h>

#include <thread>

namespace havrel {
namespace {

constexpr auto kLater = ObservationOptions::NoInitialCall;

TEST(Observing, CallsTheBlockAtOnceWithTheCurrentValueAsOldAndNew)
{
    ObservationJournal journal;
    ObservedBook book;
    book.setPages(3);

    observeProperty(book, "pages", journal.block());

    EXPECT_EQ(journal.read(), "3->3");
}

TEST(Observing, LeavesTheFirstCallOutWhenToldTo)
{
    ObservationJournal journal;
    ObservedBook book;

    observeProperty(book, "pages", kLater, journal.block());
    EXPECT_EQ(journal.read(), "");
    book.setPages(4);

    EXPECT_EQ(journal.read(), "0->4");
}

TEST(Observing, TellsABlockItsOwnerAndTheObject)
{
    ObservedBook owner;
    ObservedBook book;
    std::vector<std::pair<QObject*, QObject*>> told;

    observeObject({owner, book}, "pages", [&told](QObject* to, QObject* of, const QVariant&, const QVariant&) {
        told.emplace_back(to, of);
    });
    book.setPages(1);

    EXPECT_EQ(told, (std::vector<std::pair<QObject*, QObject*>>{{&owner, &book}, {&owner, &book}}));
}

TEST(Observing, IsSilentWhenAnEqualValueIsSet)
{
    ObservationJournal journal;
    ObservedBook book;
    book.setPages(4);
    book.setNote(1);
    observeProperties(book, {"pages", "note"}, kLater, journal.block());

    book.setPages(4);
    book.setNote(1.0);

    EXPECT_EQ(journal.read(), "");
}

TEST(Observing, TellsAnAbsentTextFromAnEmptyOne)
{
    ObservationJournal journal;
    ObservedBook book;
    observeProperty(book, "title", kLater, journal.block());

    book.setTitle(QStringLiteral(""));
    book.setTitle(QString());

    EXPECT_EQ(journal.read(), "(null)->; ->(null)");
}

TEST(Observing, TurnsTheNullObjectIntoNil)
{
    ObservationJournal journal;
    ObservedBook book;
    observeProperty(book, "note", journal.block());

    book.setNote(nullObject());
    book.setNote(1);
    book.setNote(nullObject());

    EXPECT_EQ(journal.read(), "(null)->(null); (null)->1; 1->(null)");
}

TEST(Observing, WatchesEachKeyPathOfAListWithAnObserverOfItsOwn)
{
    ObservationJournal journal;
    ObservedBook book;
    observeProperties(book, {"title", "pages"}, journal.block());
    EXPECT_EQ(journal.read(), "(null)->(null); 0->0");

    book.setTitle(QStringLiteral("Tides"));
    book.setPages(7);
    book.setSubtitle(QStringLiteral("unheard"));

    EXPECT_EQ(journal.read(), "(null)->Tides; 0->7");
    EXPECT_NE(mtk_observerForKeyPath(book, "title", book), mtk_observerForKeyPath(book, "pages", book));
}

TEST(Observing, WatchesSeveralKeyPathsOfAnotherObject)
{
    ObservationJournal journal;
    ObservedBook owner;
    ObservedBook book;
    observeObject({owner, book}, {"title", "pages"}, journal.block());
    EXPECT_EQ(journal.read(), "(null)->(null); 0->0");
    observeObject({owner, book}, {"subtitle", "note"}, kLater, journal.block());

    book.setPages(7);
    book.setNote(1);
    owner.setPages(8);

    EXPECT_EQ(journal.read(), "0->7; (null)->1");
}

TEST(Observing, SharesOneObserverAmongTheBlocksOfAnOwnerAndKeepsTheirOrder)
{
    ObservationJournal journal;
    ObservedBook book;
    observeProperty(book, "pages", kLater, journal.block(QStringLiteral("first ")));
    const auto observer = mtk_observerForKeyPath(book, "pages", book);
    observeProperty(book, "pages", kLater, journal.block(QStringLiteral("second ")));

    book.setPages(1);

    EXPECT_EQ(mtk_observerForKeyPath(book, "pages", book), observer);
    EXPECT_EQ(journal.read(), "first 0->1; second 0->1");
}

TEST(Observing, KeepsTheObserversOfTwoOwnersApart)
{
    ObservationJournal journal;
    ObservedBook book;
    ObservedBook owner;
    ObservedBook other;
    observeObject({owner, book}, "pages", kLater, journal.block(QStringLiteral("owner ")));
    observeObject({other, book}, "pages", kLater, journal.block(QStringLiteral("other ")));

    removeAllObservationsOfObject(owner, book);
    book.setPages(1);

    EXPECT_EQ(journal.read(), "other 0->1");
}

TEST(Observing, EndsWhenTheOwnerDiesBeforeTheTarget)
{
    ObservationJournal journal;
    ObservedBook book;
    {
        ObservedBook owner;
        observeObject({owner, book}, "pages", kLater, journal.block());
        book.setPages(1);
    }
    EXPECT_EQ(journal.read(), "0->1");

    book.setPages(2);

    EXPECT_EQ(journal.read(), "");
    EXPECT_FALSE(ObservationHub::of(book).isObserved("pages"));
}

TEST(Observing, EndsWhenAnOwnerOfAForeignClassDies)
{
    ObservationJournal journal;
    ObservedBook book;
    {
        QObject owner;
        observeObject({owner, book}, "pages", kLater, journal.block());
    }

    book.setPages(2);

    EXPECT_EQ(journal.read(), "");
}

TEST(Observing, LetsTheTargetGoBeforeTheOwner)
{
    ObservationJournal journal;
    ObservedBook owner;
    {
        ObservedBook book;
        observeObject({owner, book}, "pages", journal.block());
    }

    EXPECT_TRUE(ObservationHub::of(owner).ownedObservers().empty());
    removeAllObservations(owner);
}

TEST(Observing, EndsAllThatAnOwnerHas)
{
    ObservationJournal journal;
    ObservedBook owner;
    ObservedBook book;
    observeObject({owner, book}, {"pages", "title"}, kLater, journal.block());
    observeProperty(owner, "pages", kLater, journal.block());

    removeAllObservations(owner);
    book.setPages(1);
    owner.setPages(1);

    EXPECT_EQ(journal.read(), "");
}

TEST(Observing, EndsTheObservationOfOneKeyPathOnly)
{
    ObservationJournal journal;
    ObservedBook owner;
    ObservedBook book;
    observeObject({owner, book}, {"pages", "title"}, kLater, journal.block());

    removeObservationsOfObject(owner, book, "pages");
    removeObservationsOfObject(owner, book, "note");
    book.setPages(1);
    book.setTitle(QStringLiteral("Tides"));

    EXPECT_EQ(journal.read(), "(null)->Tides");
}

TEST(Observing, CanEndFromTheObservedSideForOneOwner)
{
    ObservationJournal journal;
    ObservedBook owner;
    ObservedBook book;
    observeObject({owner, book}, {"pages", "title", "note"}, kLater, journal.block());

    mtk_removeObservationsForOwner(book, owner, "pages");
    book.setPages(1);
    EXPECT_EQ(journal.read(), "");
    mtk_removeAllObservationsForOwner(book, owner);
    book.setTitle(QStringLiteral("Tides"));

    EXPECT_EQ(journal.read(), "");
}

TEST(Observing, CanEndEveryObservationOfAnObject)
{
    ObservationJournal journal;
    ObservedBook owner;
    ObservedBook book;
    observeObject({owner, book}, "pages", kLater, journal.block());
    observeProperty(book, "pages", kLater, journal.block());

    ObservationHub::of(book).internalRemoveAllObservations();
    book.setPages(1);

    EXPECT_EQ(journal.read(), "");
}

TEST(Observing, StartsAgainAfterItWasEnded)
{
    ObservationJournal journal;
    ObservedBook book;
    observeProperty(book, "pages", kLater, journal.block(QStringLiteral("old ")));
    removeAllObservations(book);
    observeProperty(book, "pages", kLater, journal.block(QStringLiteral("new ")));

    book.setPages(1);

    EXPECT_EQ(journal.read(), "new 0->1");
}

TEST(Observing, DeliversEveryChangeOfABlockThatSetsAgainTheInnerFirst)
{
    ObservationJournal journal;
    ObservedBook book;
    observeProperty(book, "pages", kLater, [](QObject* owner, QObject*, const QVariant&, const QVariant& now) {
        if (now == 1)
            qobject_cast<ObservedBook*>(owner)->setPages(2);
    });
    observeProperty(book, "pages", kLater, journal.block());

    book.setPages(1);

    EXPECT_EQ(journal.read(), "1->2; 0->1");
    EXPECT_EQ(book.pages(), 2);
}

TEST(Observing, DoesNotRunABlockThatWasAddedDuringTheChange)
{
    ObservationJournal journal;
    ObservedBook book;
    observeProperty(book, "pages", kLater, [&](QObject*, QObject*, const QVariant&, const QVariant&) {
        observeProperty(book, "pages", kLater, journal.block());
    });

    book.setPages(1);
    EXPECT_EQ(journal.read(), "");
    book.setPages(2);

    EXPECT_EQ(journal.read(), "1->2");
}

TEST(Observing, RunsTheBlocksOfTheChangeOnceMoreWhenOneOfThemRemovesTheObservation)
{
    ObservationJournal journal;
    ObservedBook book;
    observeProperty(book, "pages", kLater, [&book](QObject*, QObject*, const QVariant&, const QVariant&) {
        removeAllObservations(book);
    });
    observeProperty(book, "pages", kLater, journal.block());

    book.setPages(1);
    EXPECT_EQ(journal.read(), "0->1");
    book.setPages(2);

    EXPECT_EQ(journal.read(), "");
}

TEST(Observing, PassesAnObserverOverThatWasRemovedDuringTheChange)
{
    ObservationJournal journal;
    ObservedBook book;
    ObservedBook owner;
    observeProperty(book, "pages", kLater, [&](QObject*, QObject*, const QVariant&, const QVariant&) {
        removeAllObservations(owner);
    });
    observeObject({owner, book}, "pages", kLater, journal.block());

    book.setPages(1);

    EXPECT_EQ(journal.read(), "");
}

TEST(Observing, RunsNoFurtherBlockOnceOneHasDeletedTheTarget)
{
    ObservationJournal journal;
    auto* book = std::make_unique<ObservedBook>().release();
    ObservedBook other;
    observeProperty(
        *book, "pages", kLater, [](QObject* owner, QObject*, const QVariant&, const QVariant&) { delete owner; });
    observeProperty(*book, "pages", kLater, journal.block());
    observeObject({other, *book}, "pages", kLater, journal.block());

    book->setPages(1);

    EXPECT_EQ(journal.read(), "");
}

TEST(Observing, RunsNoFurtherBlockOfAnOwnerThatOneHasDeleted)
{
    ObservationJournal journal;
    ObservedBook book;
    ObservedBook other;
    auto owner = std::make_unique<ObservedBook>();
    observeObject({*owner, book}, "pages", kLater, [&owner](QObject*, QObject*, const QVariant&, const QVariant&) {
        owner.reset();
    });
    observeObject({*owner, book}, "pages", kLater, journal.block(QStringLiteral("owner ")));
    observeObject({other, book}, "pages", kLater, journal.block(QStringLiteral("other ")));

    book.setPages(1);
    book.setPages(2);

    EXPECT_EQ(journal.read(), "other 0->1; other 1->2");
}

TEST(Observing, SurvivesANestedChangeThatDeletesTheTarget)
{
    ObservationJournal journal;
    auto* book = std::make_unique<ObservedBook>().release();
    observeProperty(*book, "pages", kLater, [book](QObject*, QObject*, const QVariant&, const QVariant& now) {
        if (now == 2)
            delete book;
        else
            book->setPages(2);
    });
    observeProperty(*book, "pages", kLater, journal.block());

    book->setPages(1);

    EXPECT_EQ(journal.read(), "");
}

TEST(Observing, SurvivesABlockThatDeletesTheTargetAtItsFirstCall)
{
    auto* book = std::make_unique<ObservedBook>().release();
    int calls = 0;

    observeProperties(*book, {"pages", "title"}, [&calls](QObject* owner, QObject*, const QVariant&, const QVariant&) {
        ++calls;
        delete owner;
    });

    EXPECT_EQ(calls, 1);
}

TEST(Observing, LetsAnOwnerGoThatOnlyItsOwnBlocksHold)
{
    auto owner = std::make_shared<ObservedBook>();
    const std::weak_ptr<ObservedBook> gone = owner;
    ObservedBook book;
    observeProperty(*owner, "pages", [owner](QObject*, QObject*, const QVariant&, const QVariant&) {});
    observeObject({*owner, book}, "pages", [owner](QObject*, QObject*, const QVariant&, const QVariant&) {});
    ObservedBook& named = *std::exchange(owner, nullptr);
    ASSERT_FALSE(gone.expired());

    removeAllObservations(named);

    EXPECT_TRUE(gone.expired());
}

TEST(Observing, HandsOnWhatABlockThrowsAndStaysUsable)
{
    ObservationJournal journal;
    ObservedBook book;
    observeProperty(book, "pages", kLater, [](QObject*, QObject*, const QVariant&, const QVariant& now) {
        if (now == 1)
            throw std::runtime_error("refused");
    });
    observeProperty(book, "pages", kLater, journal.block());

    EXPECT_THROW(book.setPages(1), std::runtime_error);
    EXPECT_EQ(journal.read(), "");
    book.setPages(2);

    EXPECT_EQ(journal.read(), "1->2");
}

TEST(Observing, RefusesAPropertyThatTheTargetDoesNotHave)
{
    ObservedBook book;
    try {
        observeProperty(book, "colour", [](auto&&...) {});
        FAIL() << "observed an unknown property";
    } catch (const HVException& exception) {
        EXPECT_EQ(exception.name(), exception_name::kBug);
        EXPECT_EQ(exception.reason(), QStringLiteral("unknown property"));
        EXPECT_EQ(exception.detail(QStringLiteral("Property")), QStringLiteral("colour"));
    }
    EXPECT_TRUE(ObservationHub::of(book).observers().empty());
}

TEST(Observing, WorksOnAnyThreadWithoutAnApplicationObject)
{
    ObservationJournal journal;
    std::thread([&journal] {
        ObservedBook book;
        ObservedBook owner;
        observeProperty(book, "pages", journal.block());
        observeObject({owner, book}, "title", kLater, journal.block());
        book.setPages(1);
        book.setTitle(QStringLiteral("Tides"));
    }).join();

    EXPECT_EQ(journal.read(), "0->0; 0->1; (null)->Tides");
}

TEST(ObservingRelationships, TellsEachKindOfChangeWithItsIndexes)
{
    ObservationJournal journal;
    ObservedBook book;
    observeRelationship(book,
                        "marks",
                        kLater,
                        {.change = journal.block(),
                         .insertion = journal.insertionBlock(),
                         .removal = journal.removalBlock(),
                         .replacement = journal.replacementBlock()});

    book.setMarks({1, 2, 3});
    EXPECT_EQ(journal.read(), "()->(1, 2, 3)");
    book.insertMarks({10, 20}, {0, 3});
    EXPECT_EQ(book.marks(), (QList<int>{10, 1, 2, 20, 3}));
    EXPECT_EQ(journal.read(), "insert (10, 20) at { 0, 3 }");
    book.removeMarks({1, 2});
    EXPECT_EQ(book.marks(), (QList<int>{10, 20, 3}));
    EXPECT_EQ(journal.read(), "remove (1, 2) at { 1-2 }");
    book.replaceMarks({0, 2}, {5, 3});
    EXPECT_EQ(book.marks(), (QList<int>{5, 20, 3}));
    EXPECT_EQ(journal.read(), "replace (10, 3)->(5, 3) at { 0, 2 }");
    book.setMarks({5, 20, 3});
    EXPECT_EQ(journal.read(), "");
}

TEST(ObservingRelationships, CallsTheChangeBlockAtOnceUnlessToldNotTo)
{
    ObservationJournal journal;
    ObservedBook book;
    book.setMarks({1});

    observeRelationship(book, "marks", {.change = journal.block(), .insertion = journal.insertionBlock()});

    EXPECT_EQ(journal.read(), "(1)->(1)");
}

TEST(ObservingRelationships, FallsBackOnTheChangeBlockWithNilAndTheWholeValue)
{
    ObservationJournal journal;
    ObservedBook book;
    book.setMarks({1, 2});
    observeRelationship(book, "marks", kLater, {.change = journal.block(), .removal = journal.removalBlock()});

    book.insertMarks({3}, {2});
    EXPECT_EQ(journal.read(), "(null)->(1, 2, 3)");
    book.removeMarks({0});
    EXPECT_EQ(journal.read(), "remove (1) at { 0 }");
    book.replaceMarks({0}, {9});
    EXPECT_EQ(journal.read(), "(null)->(9, 3)");
}

TEST(ObservingRelationships, BringsEveryKindOfChangeToASingleBlock)
{
    ObservationJournal journal;
    ObservedBook book;
    observeRelationship(book, "marks", journal.block());
    EXPECT_EQ(journal.read(), "()->()");

    book.setMarks({1});
    book.insertMarks({2}, {1});
    book.replaceMarks({0}, {1}); // equal elements are replaced all the same
    book.removeMarks({0, 1});

    EXPECT_EQ(journal.read(), "()->(1); (null)->(1, 2); (null)->(1, 2); (null)->()");
}

TEST(ObservingRelationships, KeepsEditsFromThoseWhoObserveTheProperty)
{
    ObservationJournal journal;
    ObservedBook book;
    observeProperty(book, "marks", kLater, journal.block());

    book.insertMarks({1}, {0});
    book.removeMarks({0});

    EXPECT_EQ(journal.read(), "");
}

TEST(ObservingMaps, KeepsTheDestinationEqualToTheTransformedSource)
{
    ObservedBook book;
    book.setPages(2);
    map(book, "pages", "title", [](const QVariant& pages) { return QStringLiteral("%1 pp.").arg(pages.toInt()); });
    EXPECT_EQ(book.title(), QStringLiteral("2 pp."));

    book.setPages(3);

    EXPECT_EQ(book.title(), QStringLiteral("3 pp."));
}

TEST(ObservingMaps, CopiesTheSourceWithoutATransform)
{
    ObservedBook book;
    book.setTitle(QStringLiteral("Tides"));
    map(book, "title", "subtitle", nullptr);
    EXPECT_EQ(book.subtitle(), QStringLiteral("Tides"));

    book.setTitle({});

    EXPECT_TRUE(book.subtitle().isNull());
}

TEST(ObservingMaps, PutsTheSubstituteInThePlaceOfNil)
{
    ObservedBook book;
    mapNull(book, "title", "subtitle", QStringLiteral("untitled"));
    EXPECT_EQ(book.subtitle(), QStringLiteral("untitled"));

    book.setTitle(QStringLiteral("Tides"));
    EXPECT_EQ(book.subtitle(), QStringLiteral("Tides"));
    book.setTitle(QString());

    EXPECT_EQ(book.subtitle(), QStringLiteral("untitled"));
}

TEST(ObservingMaps, FollowsEditsOfAToManySource)
{
    ObservedBook book;
    map(book, "marks", "pages", [](const QVariant& marks) { return marks.toList().size(); });

    book.insertMarks({4, 5}, {0, 1});

    EXPECT_EQ(book.pages(), 2);
}

TEST(ObservingMaps, SettlesWhenTwoPropertiesAreMappedOntoEachOther)
{
    ObservedBook book;
    map(book, "title", "subtitle", nullptr);
    map(book, "subtitle", "title", nullptr);

    book.setSubtitle(QStringLiteral("Tides"));

    EXPECT_EQ(book.title(), QStringLiteral("Tides"));
}

TEST(ObservingMaps, LeadsTheDestinationOverObjects)
{
    ObservedBook book;
    ObservedBook sequel;
    map(book, "title", "sequel.title", nullptr); // nothing there yet
    book.setSequel(&sequel);

    book.setTitle(QStringLiteral("Tides"));

    EXPECT_EQ(sequel.title(), QStringLiteral("Tides"));
}

TEST(ObservingMaps, ObservesNothingWhenTheDestinationCannotBeSet)
{
    ObservedBook book;

    EXPECT_THROW(map(book, "pages", "colour", nullptr), HVException);
    EXPECT_THROW(map(book, "pages", "edition", nullptr), HVException);

    EXPECT_FALSE(ObservationHub::of(book).isObserved("pages"));
}

} // namespace
} // namespace havrel
